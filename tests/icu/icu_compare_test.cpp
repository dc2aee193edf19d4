// Comparison through ICU: real orders beside ICU called directly, and what the call adds, lengths, blanks, failures.
#include "icu/icu_compare.hpp"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "icu/builds.hpp"
#include "icu/image.hpp"
#include "icu/loader.hpp"
#include "nls/icu.h"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/peer.hpp"
#include "tests/icu/words.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls {
namespace {

using test::bytesOf;

TEST(IcuCompare, SortsAsALanguageDoes) {
    const struct {
        const char* name;
        std::vector<std::string> sorted;
    } rows[] = {
        {"ICU-UCA", {"Muelle", "Mufti", "Muller", "Müller", "o", "ö", "z", "日"}},
        {"ICU-de__PHONEBOOK", {"Muelle", "Müller", "Mufti", "Muller"}},
        {"ICU_48-de@phonebook", {"Muelle", "Müller", "Mufti", "Muller"}},
        {"ICU_48-sv", {"a", "o", "z", "å", "ä", "ö"}},
        {"ICU-cs", {"cena", "čas", "had", "chata", "ihned", "řeka"}},
        {"ICU-es__TRADITIONAL", {"cuna", "chico", "dedo", "luz", "llave", "mano"}},
        {"ICU-es", {"chico", "cuna", "dedo", "llave", "luz", "mano", "nube", "ñu"}},
        {"ICU_48-da", {"zebra", "ærlig", "øl", "ål", "aas"}},
        {"ICU-ja", {"あ", "か", "が", "き", "亜", "一"}},
        {"ICU_48-zh", {"八", "大", "一", "中"}},
        {"ICU-zh__PINYIN", {"八", "大", "一", "中"}},
        {"ICU_48-zh@stroke", {"一", "八", "大", "中"}},
        {"ICU-zh_TW", {"一", "八", "大", "中"}},
        {"ICU-th", {"กา", "เก", "ขา", "แข"}},
    };
    test::IcuWorld world;
    for (const auto& row : rows) {
        const nlsLocale* const locale = world.locale(row.name);
        test::ThreadBlock block;
        for (std::size_t i = 1; i < row.sorted.size(); ++i)
            EXPECT_EQ(test::compare(locale, block.get(), row.sorted[i - 1], row.sorted[i], 1), -1)
                << row.name << " " << row.sorted[i];
    }
}

TEST(IcuCompare, IsIcusComparison) {
    const struct {
        const char* name;
        const char* icuLocale;
    } rows[] = {
        {"ICU-UCA", ""},          {"ICU_48-DUCET", ""},
        {"ICU-sv", "sv"},         {"ICU_48-de@phonebook", "de@collation=phonebook"},
        {"ICU_48-cs", "cs"},      {"ICU-da", "da"},
        {"ICU_48-ja", "ja"},      {"ICU_48-zh@stroke", "zh@collation=stroke"},
        {"ICU-zh__PINYIN", "zh"}, {"ICU-th", "th"},
        {"ICU_48-hu", "hu"},      {"ICU-ko", "ko"},
    };
    constexpr struct {
        uint16_t mode;
        int strength;
    } modes[] = {{0, 1}, {1, 2}, {4, 0}, {5, 1}, {6, 2}, {7, 3}, {8, 3}};
    const std::vector<std::string> words = test::words();
    std::vector<std::u16string> units;
    for (const std::string& word : words) units.push_back(test::peer::unitsOf(word));
    test::IcuWorld world;
    for (const auto& row : rows) {
        const nlsLocale* const locale = world.locale(row.name);
        test::ThreadBlock block;
        for (const auto& [mode, strength] : modes) {
            const test::peer::Collator peer{row.icuLocale, strength};
            for (std::size_t a = 0; a < words.size(); ++a) {
                for (std::size_t b = 0; b < words.size(); ++b)
                    ASSERT_EQ(test::compare(locale, block.get(), words[a], words[b], mode),
                              peer.compare(units[a], units[b]))
                        << row.name << " mode " << mode << " " << words[a] << " " << words[b];
            }
        }
    }
}

// Whichever collation asks.
TEST(IcuCompare, ABlocksCollatorGoesToTheBuildThatOpenedIt) {
    test::IcuWorld world;
    const nlsLocale *const swedish = world.locale("ICU-sv"), *const german = world.locale("ICU_48-de");
    test::ThreadBlock block;
    const std::string key = test::keyOf(swedish, block.get(), "ö", 1);
    nlsIcuFuncs& newer = *icuarray[1].entryPoints;
    const nlsIcuFuncs saved = newer;
    for (const unsigned slot : {22U, 23U, 24U}) newer.slots[slot] = reinterpret_cast<void*>(+[] { std::abort(); });
    EXPECT_EQ(test::compare(german, block.get(), "z", "ö", 1), -1);
    EXPECT_EQ(test::keyOf(german, block.get(), "ö", 1), key);
    newer = saved;
}

// Answers of the door for one text beside another; without a block.
class Door : public testing::Test {
protected:
    static constexpr uint16_t kUnwritten = 0x5555;

    nlsStatus compare(std::string_view a, std::string_view b, uint16_t mode = 1) {
        return compare(a, b, mode, static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()));
    }
    nlsStatus compare(std::string_view a, std::string_view b, uint16_t mode, int32_t lengthA, int32_t lengthB) {
        result = kUnwritten;
        return nlsIcuCompare(bytesOf(a), bytesOf(b), nullptr, map, mode, lengthA, lengthB, &result);
    }
    void expect(int sign, std::string_view a, std::string_view b, uint16_t mode = 1) {
        EXPECT_EQ(compare(a, b, mode), NLS_OK);
        EXPECT_EQ(result, static_cast<uint16_t>(sign)) << a << " " << b;
    }
    void expectUnanswered(nlsStatus status, uint16_t mode = 1) {
        EXPECT_EQ(compare("a", "b", mode), status);
        EXPECT_EQ(result, kUnwritten);
    }

    test::IcuWorld world;
    const nlsLocale* locale = world.locale("ICU_48-sv");
    unsigned char* map = locale->coll->exactMap;
    nlsIcuInfo* info = IcuImage::infoOf(map);
    uint16_t result = 0;
};

TEST_F(Door, BlanksAtTheEndsDontCount) {
    expect(0, "abc", "abc   ");
    expect(-1, "   ", "a");
    expect(1, "a", "  ");
    expect(0, "   ", "");
    expect(0, "", "");
    expect(-1, " a", "a");
    expect(1, "a\t", "a ");            // a tab counts: ICU passes over it, yet it isn't cut
    std::memset(map, 0, sizeof info);  // ICU isn't touched where a text is empty
    expect(-1, "   ", "a");
    expect(0, "   ", "", 9);
}

TEST_F(Door, LengthsCountNulsAndMinusOneEndsAtOne) {
    using namespace std::string_view_literals;
    expect(-1, "a\0b"sv, "a\0c"sv);
    EXPECT_EQ(compare("a\0b"sv, "a\0c"sv, 1, -1, -1), NLS_OK);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(compare("a\0b"sv, "ac"sv, 1, -7, 1), NLS_OK);
    EXPECT_EQ(result, 0);
    expect(0, "a\0 "sv, "a\0"sv);
    // Neither is read past its length.
    test::GuardedBuffer a{3}, b{4};
    EXPECT_EQ(nlsIcuCompare(a.atEnd("z\xC3\xB6", 3), b.atEnd("z\xC3\xB6 ", 4), nullptr, map, 1, 3, 4, &result), NLS_OK);
    EXPECT_EQ(result, 0);
}

TEST_F(Door, LongTextsAndBadUtf8) {
    for (const std::size_t size : {1999U, 2000U, 2001U, 2002U, 5000U, 100000U}) {
        const std::string text(size - 1, 'x');
        expect(-1, text + "a", text + "b");
        expect(1, text + "b", "a");
        expect(-1, "a", text + "b");
        expect(0, text + "a", text + "a" + std::string(3000, ' '));
        expect(-1, text, text + "a");
    }
    expect(0, "a\xC3", "a\xEF\xBF\xBD");
    expect(0, "a\xC3(", "a\xEF\xBF\xBD(");
    expect(1, "\xFF\xFE", "a");
}

TEST_F(Door, ModesAndWordsWithoutAStrengthAnswerNothing) {
    for (const uint16_t mode : {uint16_t{2}, uint16_t{3}, uint16_t{9}, uint16_t{0xFFFF}}) {
        expectUnanswered(NLS_OK, mode);
        uint16_t byLocale = kUnwritten;
        EXPECT_EQ(nlsCompare(locale, nullptr, bytesOf("a"), bytesOf("b"), mode, &byLocale), NLS_OK);
        EXPECT_EQ(byLocale, kUnwritten);
    }
    std::strcpy(IcuImage{map}.strengthWord(), "NONE");
    expectUnanswered(NLS_OK, 1);
    expect(-1, "a", "b", 6);
    std::strcpy(IcuImage{map}.strengthWord(), "PRIMARY");
    expect(0, "a", "A");
    std::strcpy(IcuImage{map}.strengthWord(), "ARY");
    expect(0, "a", "Á");
}

TEST_F(Door, FailuresOfIcu) {
    // The order is: record, collator, strength, converter, memory, comparison.
    nlsIcuFuncs funcs = *info->version->entryPoints;
    nlsIcuVersion row = *info->version;
    row.entryPoints = &funcs;
    info->version = &row;
    funcs.slots[24] = reinterpret_cast<void*>(+[]() -> int32_t { return 5; });
    EXPECT_EQ(compare("a", "b"), NLS_BAD_TABLE);
    EXPECT_EQ(result, 0xFFFE);
    uint16_t byLocale = kUnwritten;
    EXPECT_EQ(nlsCompare(locale, nullptr, bytesOf("a"), bytesOf("b"), 1, &byLocale), NLS_BAD_TABLE);
    EXPECT_EQ(byLocale, 0xFFFE);
    row.loadLevel = kConverts;
    EXPECT_EQ(compare("a", "b"), NLS_BAD_TABLE);
    EXPECT_EQ(result, 0xFFFE);

    nlsIcuFuncs& base = *icuarray[0].entryPoints;
    const nlsIcuFuncs saved = base;
    static constexpr IcuStatus kTruncated = 11;
    base.slots[5] = reinterpret_cast<void*>(
        +[](void*, char16_t*, int32_t, const char*, int32_t, IcuStatus* status) { *status = kTruncated; });
    expectUnanswered(NLS_OK);
    base.slots[0] = reinterpret_cast<void*>(+[](const char*, IcuStatus* status) -> void* {
        *status = kTruncated;
        return nullptr;
    });
    expectUnanswered(NLS_BAD_ARG);
    expectUnanswered(NLS_OK, 2);
    base = saved;
    std::memset(map, 0, sizeof info);
    expectUnanswered(NLS_BAD_TABLE);
    expectUnanswered(NLS_BAD_TABLE, 2);
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(Door, NoMemoryForALongText) {
    const std::string text(std::size_t{64} << 20, 'x');
    const pid_t child = fork();
    if (child == 0) {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_AS, &none);
        setrlimit(RLIMIT_DATA, &none);
        const nlsStatus statuses[] = {compare(text, "a"), compare("a", text)};
        _exit(std::ranges::all_of(statuses, [](nlsStatus s) { return s == NLS_BUF_SMALL; }) && result == kUnwritten
                  ? 0
                  : 1);
    }
    int state = 0;
    ASSERT_EQ(waitpid(child, &state, 0), child);
    EXPECT_EQ(state, 0);
}
#endif

}  // namespace
}  // namespace nls
