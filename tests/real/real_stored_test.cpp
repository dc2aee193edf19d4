// Every collation of the real data file as a database keeps it: written in both forms and as a kind that brings its own
// tables, stored as bytes, opened in another handle, and compared with the original over pairs of characters and random
// texts: the same signs, keys, case and words.
#include <gtest/gtest.h>

#include <random>

#include "tests/real/order_alphabet.hpp"
#include "tests/support/stored_world.hpp"

namespace nls::real {
namespace {

constexpr int32_t kOwnTables = 7;

Bytes wordBreaks(unsigned char kind) {
    Bytes table(256 + 62);
    table[0] = kind;
    table[3] = 1;  // a body of 256 bytes
    table[4] = 62;
    return table;
}

struct Answers {
    std::vector<int> signs;
    std::vector<Bytes> texts;

    bool operator==(const Answers&) const = default;
};

int signOf(const nlsLocale* locale, const Bytes& a, const Bytes& b, uint16_t mode) {
    constexpr unsigned char kEmpty[1] = {};
    const auto placeOf = [&](const Bytes& text) { return text.empty() ? kEmpty : text.data(); };
    uint16_t result = 0x5555;
    EXPECT_EQ(nlsCompareN(locale, nullptr, placeOf(a), placeOf(b), static_cast<int32_t>(a.size()),
                          static_cast<int32_t>(b.size()), mode, &result),
              NLS_OK);
    return static_cast<int16_t>(result);
}

Bytes keyOf(const nlsLocale* locale, Bytes text, uint16_t mode) {
    text.push_back(0);
    Bytes key(4 * text.size() + 64);
    uint16_t length = 0;
    EXPECT_EQ(nlsSortKey(locale, nullptr, text.data(), static_cast<int16_t>(key.size()), mode, 0, key.data(), &length),
              NLS_OK);
    key.resize(length);
    return key;
}

Bytes inCase(const nlsLocale* locale, Bytes text, bool upper) {
    Bytes target(text.size() * 2 + 8);
    const auto length = static_cast<uint32_t>(text.size());
    text.push_back(0);
    const nlsStr from{text.data(), static_cast<int32_t>(text.size()), length};
    nlsStr to{target.data(), static_cast<int32_t>(target.size()), 0};
    EXPECT_EQ((upper ? nlsUpperCase : nlsLowerCase)(locale, nullptr, &from, &to), NLS_OK);
    target.resize(to.strLength);
    return target;
}

Bytes wordsOf(const nlsLocale* locale, Bytes text) {
    text.resize(text.size() + 4, 0);
    Bytes words;
    const unsigned char* place = text.data();
    for (;;) {
        unsigned char word[800];
        uint32_t length = 0;
        const nlsStatus status = nlsGetNextWord(locale, nullptr, &place, 0, word, sizeof word, &length);
        if (status == NLS_END_OF_STRING) return words;
        EXPECT_TRUE(status == NLS_OK || status == NLS_WORD_TRUNCATED) << status;
        if (status != NLS_OK && status != NLS_WORD_TRUNCATED) return words;
        words.insert(words.end(), word, word + length);
        words.push_back(' ');
    }
}

struct Sample {
    std::vector<std::pair<Bytes, Bytes>> pairs;
    std::vector<Bytes> texts;

    // All pairs of characters where they are few, else as many of them, and texts of up to 24 characters.
    explicit Sample(const Alphabet& alphabet) {
        std::mt19937 random{24};
        const auto& all = alphabet.plain();
        if (all.size() <= 260)
            for (const Character& a : all)
                for (const Character& b : all) pairs.emplace_back(a.bytes, b.bytes);
        else
            for (unsigned i = 0; i < 20000; ++i)
                pairs.emplace_back(all[random() % all.size()].bytes, all[random() % all.size()].bytes);
        for (unsigned i = 0; i < 200; ++i) {
            Bytes text;
            for (auto left = 1 + random() % 24; left > 0; --left) {
                const Bytes& next = alphabet.any(random, left % 8 == 7).bytes;
                text.insert(text.end(), next.begin(), next.end());
            }
            texts.push_back(text);
            if (i % 2 == 1) pairs.emplace_back(texts[i - 1], text);
        }
    }
};

Answers answersOf(const nlsLocale* locale, const Sample& sample) {
    Answers answers;
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
        for (const auto& [a, b] : sample.pairs) answers.signs.push_back(signOf(locale, a, b, mode));
        for (const Bytes& text : sample.texts) answers.texts.push_back(keyOf(locale, text, mode));
    }
    for (const Bytes& text : sample.texts) {
        for (const bool upper : {false, true}) answers.texts.push_back(inCase(locale, text, upper));
        answers.texts.push_back(wordsOf(locale, text));
    }
    return answers;
}

// The original with the words of a database, as getWbTable completes them.
class WithWords {
public:
    WithWords(const nlsLocale& original, const Bytes& words) : locale(original), room_(words) {
        locale.wordBreak = reinterpret_cast<nlsWbTable*>(room_.data());
        EXPECT_EQ(getWbTable(&locale, words.data(), static_cast<uint32_t>(words.size()), nullptr), NLS_OK);
    }
    nlsLocale locale;

private:
    Bytes room_;
};

TEST(StoredCollations, AnswerAsTheOriginal) {
    RealFile& file = RealFile::shared();
    test::OpenHandle same{dataFile(), 4 << 20}, empty{test::ConvmapBuilder{}.build()};
    std::size_t collations = 0, own = 0;
    for (const auto& [charset, name] : file.collations()) {
        const auto known = [&, of = charset](const Name& one) { return one.text == of; };
        if (std::none_of(file.charsets().begin(), file.charsets().end(), known)) continue;
        const nlsLocale* const locale = file.find(charset, name.c_str(), "basic");
        ASSERT_NE(locale, nullptr) << charset << " " << name;
        const Sample sample{Alphabet{charset, *locale}};
        ASSERT_GT(sample.pairs.size(), 90U) << charset;
        const Bytes words = wordBreaks((locale->attrib->flags & NLS_CHARSET_MULTI_BYTE) != 0 ? 9 : 7);
        const WithWords original{*locale, words};
        const Answers want = answersOf(&original.locale, sample);
        const bool alone = (locale->attrib->flags & NLS_CHARSET_VIA_SJIS) == 0;
        const struct {
            int32_t format, kind;
            nlsHandle* handle;
        } forms[] = {{5, 0, same.handle}, {6, 0, same.handle}, {6, kOwnTables, (alone ? empty : same).handle}};
        for (const auto& form : forms) {
            test::StoredBytes stored = test::storedOf(*locale, form.format, form.kind);
            stored.words = words;
            const test::StoredLocale opened{form.handle, stored};
            ASSERT_EQ(opened.status, NLS_OK);
            EXPECT_TRUE(answersOf(opened.locale, sample) == want) << charset << " " << name << " " << form.kind;
        }
        ++collations;
        own += alone ? 1 : 0;
    }
    EXPECT_GT(collations, 150U);
    EXPECT_GT(own, 140U);
}

}  // namespace
}  // namespace nls::real
