#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "nls/compare.h"
#include "nls/status.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

using nls::test::bytesOf;
using nls::test::CollatedLocale;
using nls::test::GuardedBuffer;
using nls::test::plainCollation;

// Bytes name their class: "a" letters, "1" digits, "_" others, "-" joins letters, "." digits, "+" both, "p" first of
// two, "t" first of three, "f" first of four, "~" ignored; all else separates.
class Table {
public:
    explicit Table(uint8_t kind, std::size_t cutClasses = 0) : size_(kOffset + 256 - cutClasses) {
        nlsWbTable head{};
        head.wbKind = kind;
        head.wbBodySize = static_cast<uint16_t>(size_ - 62);
        head.wbClassOffset = kOffset;
        unsigned char bytes[kOffset + 256] = {};
        std::memcpy(bytes, &head, sizeof head);
        std::memset(bytes + kOffset, 1, 256);
        const std::string names = "~.a1_-.+~ptf";
        for (std::size_t kind9 = 0; kind9 < names.size(); ++kind9)
            if (kind9 != 1)
                bytes[kOffset + static_cast<unsigned char>(names[kind9])] = static_cast<unsigned char>(kind9);
        std::memset(&bytes[kOffset + unsigned{'b'}], 2, 5);  // to "f"
        bytes[kOffset + 'f'] = 11;
        place_ = memory_.atEnd(bytes, size_);
    }
    const nlsWbTable* get() const { return reinterpret_cast<const nlsWbTable*>(place_); }

private:
    static constexpr std::size_t kOffset = 70;
    GuardedBuffer memory_{1024};
    std::size_t size_;
    unsigned char* place_;
};

struct Row {
    const char* why;
    std::string text;
    uint32_t options;
    std::vector<std::string> words;
};

TEST(Words, ByTheClassesOfTheirBytes) {
    const Table table{7};
    const Row rows[] = {
        {"nothing", "", 0, {}},
        {"separators", "  , ", 0, {}},
        {"ignored bytes", "a~a ~1~", 0, {"aa", "1"}},
        {"a joiner before its kind", "a-a a.1 a+1 1+a", 0, {"a-a", "a.1", "a+1", "1+a"}},
        {"a joiner before the other kind", "a.a 1-1", 0, {"a", "a", "1", "1"}},
        {"a joiner at the end and before a blank", "a+ a+", 0, {"a", "a"}},
        {"two joiners", "a++a", 0, {"a", "+a"}},
        {"a joiner opens a word", ".1 -1 ..1", 0, {".1", "1", ".1"}},
        {"an ignored byte behind a joiner", "a+~a", 0, {"a", "a"}},
        {"other word bytes", "_a+_", 0, {"_a", "_"}},
        {"pairs in a word", "ap,p,a", 0, {"ap,p,a"}},
        {"pairs as words", "ap,p,a", 1, {"a", "p,", "p,", "a"}},
        {"triples", "at,,t,,a", 0, {"a", "t,,", "t,,", "a"}},
        {"fours as pairs", "af,a", 0, {"af,a"}},
        {"fours as words", "af,,,a", 2, {"a", "f,,,", "a"}},
        {"cut off by the end", "ap", 0, {"ap"}},
        {"cut off by the end, alone", "ap", 1, {"a", "p"}},
        {"cut off by the end, three", "t,", 0, {"t,"}},
        {"cut off by the end, four", "f,,", 2, {"f,,"}},
    };
    GuardedBuffer texts{4096};
    for (const Row& row : rows) {
        const unsigned char* place = texts.atEnd(row.text.c_str(), row.text.size() + 1);
        std::vector<std::string> words;
        for (;;) {
            uint32_t length = 99, truncated = 0;
            unsigned char word[188];
            const unsigned char* const next = nextword(place, &length, word, table.get(), &truncated, row.options);
            EXPECT_EQ(truncated, 0U) << row.why;
            EXPECT_EQ(word[length], 0) << row.why;
            if (length == 0) {
                EXPECT_EQ(reinterpret_cast<uintptr_t>(next), UINTPTR_MAX) << row.why;
                break;
            }
            words.emplace_back(reinterpret_cast<char*>(word), length);
            place = next;
        }
        EXPECT_EQ(words, row.words) << row.why;
    }
}

TEST(Words, LongOnesAreCutAndPassedOver) {
    const Table table{7};
    const struct {
        std::string text, word;
        uint32_t truncated;
    } rows[] = {
        {std::string(184, 'a'), std::string(184, 'a'), 0},
        {std::string(200, 'a') + " a", std::string(184, 'a'), 1},
        {std::string(182, 'a') + "p,", std::string(182, 'a') + "p,", 0},
        {std::string(183, 'a') + "pa", std::string(183, 'a') + "a", 1},  // the second byte is a letter by itself
        {std::string(184, 'a') + "+a", std::string(184, 'a'), 1},
    };
    for (const auto& row : rows) {
        uint32_t length = 0, truncated = 0;
        unsigned char word[188];
        const unsigned char* const next = nextword(bytesOf(row.text), &length, word, table.get(), &truncated, 0);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(word), length), row.word);
        EXPECT_EQ(truncated, row.truncated);
        const std::size_t end = row.text.find(' ');
        EXPECT_EQ(next, bytesOf(row.text) + (end == std::string::npos ? row.text.size() : end));
    }
}

TEST(Words, ClassesBehindTheTableDontCount) {
    for (std::size_t cut = 0; cut <= 256; ++cut) {
        const Table table{7, cut};
        uint32_t length = 0, truncated = 0;
        unsigned char word[188];
        (void)nextword(bytesOf("a1"), &length, word, table.get(), &truncated, 0);
        EXPECT_EQ(length, cut < 256 - 'a' ? 2U : cut < 256 - '1' ? 1U : 0U) << cut;
    }
}

class WordsOfALocale : public testing::Test {
protected:
    nlsStatus next(nlsLocale* locale, int32_t size) {
        std::memset(buffer, 0xEE, sizeof buffer);
        return nlsGetNextWord(locale, nullptr, &cursor, 0, memory_.atEnd(buffer, static_cast<std::size_t>(size)), size,
                              &length);
    }
    std::string word(int32_t size) {
        return {reinterpret_cast<const char*>(memory_.atEnd(static_cast<std::size_t>(size))), length};
    }

    const unsigned char* cursor = nullptr;
    uint32_t length = 0;
    unsigned char buffer[400];

private:
    GuardedBuffer memory_{1024};
};

TEST_F(WordsOfALocale, AsTheyStandOrAsKeys) {
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    const Table plain{7}, keys{9};
    const std::string text = "AB a" + std::string(200, 'B');
    nlsWbTable* const tables[] = {const_cast<nlsWbTable*>(plain.get()), const_cast<nlsWbTable*>(keys.get())};
    Table capitals{7};
    for (nlsWbTable* const table : tables) {
        std::memset(reinterpret_cast<unsigned char*>(table) + 70 + unsigned{'A'}, 2, 26);
        made.get()->wordBreak = table;
        const bool asKey = table->wbKind == 9;
        cursor = bytesOf(text);
        EXPECT_EQ(next(made.get(), 2), NLS_BUF_SMALL);
        EXPECT_EQ(length, 2U);
        EXPECT_EQ(cursor, bytesOf(text));
        EXPECT_EQ(next(made.get(), 3), NLS_OK);
        EXPECT_EQ(word(3), asKey ? "ab" : "AB");
        EXPECT_EQ(cursor, bytesOf(text) + 2);
        EXPECT_EQ(next(made.get(), 184), NLS_BUF_SMALL);
        EXPECT_EQ(next(made.get(), 185), NLS_WORD_TRUNCATED);
        EXPECT_EQ(word(185), "a" + std::string(183, asKey ? 'b' : 'B'));
        EXPECT_EQ(next(made.get(), 185), NLS_END_OF_STRING);
        EXPECT_EQ(length, 0U);
        EXPECT_EQ(cursor, bytesOf(text) + text.size());
    }
    made.get()->coll = nullptr;
    cursor = bytesOf(text);
    EXPECT_EQ(next(made.get(), 9), NLS_BAD_COLLATION);
    EXPECT_EQ(cursor, bytesOf(text) + 2);
}

TEST_F(WordsOfALocale, KindsFlagsAndMissingTables) {
    const struct {
        uint8_t kind;
        nlsAttribStruct attrib;
        nlsStatus status;
        uint32_t needed;
        std::string firstWord;  // of "ap,"
    } rows[] = {
        {7, nls::test::singleByteCharset(), NLS_OK, 1, "ap,"},
        {9, nls::test::singleByteCharset(), NLS_OK, 0, "ap,"},
        {9, nls::test::sjisCharset(), NLS_OK, 0, "a"},
        {9, nls::test::utf8Charset(), NLS_OK, 0, "ap,"},
        {128, nls::test::sjisCharset(), NLS_OK, 0, "ap,"},
        {8, nls::test::singleByteCharset(), NLS_BAD_VERSION, 77, "ap,"},
        {3, nls::test::utf8Charset(), NLS_OK, 0, "ap,"},
        {0, nls::test::singleByteCharset(), NLS_BAD_VERSION, 77, "ap,"},
    };
    for (const auto& row : rows) {
        CollatedLocale made{row.attrib, plainCollation()};
        const Table table{row.kind};
        made.get()->wordBreak = const_cast<nlsWbTable*>(table.get());
        uint32_t needed = 77;
        EXPECT_EQ(nlsIsSortNeeded(made.get(), nullptr, &needed), row.status) << int{row.kind};
        EXPECT_EQ(needed, row.needed) << int{row.kind};
        const std::string text = "ap,";
        cursor = bytesOf(text);
        EXPECT_EQ(next(made.get(), 9), NLS_OK);
        EXPECT_EQ(word(9), row.firstWord) << int{row.kind};
    }
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    nlsWbTable empty[40] = {};
    for (nlsWbTable* const table : {static_cast<nlsWbTable*>(nullptr), empty}) {
        made.get()->wordBreak = table;
        uint32_t needed = 77;
        EXPECT_EQ(nlsIsSortNeeded(made.get(), nullptr, &needed), NLS_NO_WB_TABLE);
        EXPECT_EQ(next(made.get(), 9), NLS_NO_WB_TABLE);
    }
}

}  // namespace
