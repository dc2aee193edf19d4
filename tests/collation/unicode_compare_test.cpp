#include "collation/unicode_compare.hpp"

#include <gtest/gtest.h>

#include <random>

#include "collation/unicode_key.hpp"
#include "core/base/cpu.hpp"
#include "nls/collation_routes.h"
#include "nls/compare.h"
#include "nls/strings.h"
#include "tests/reference/unicode_order.hpp"
#include "tests/support/case_locale.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace {

using nls::CaseForm;
using nls::test::bytesOf;
using nls::test::GuardedBuffer;
using nls::test::HandLocale;
using nls::test::MadeCaseTable;

constexpr nls::CpuLevel kLevels[] = {nls::CpuLevel::baseline, nls::CpuLevel::avx512};
constexpr uint16_t kModes[] = {0, 1, 2};

// Texts that are told apart late or not at all: the second is the first with little changed.
std::pair<std::string, std::string> nearPair(std::mt19937& random, unsigned kind) {
    std::string a = nls::test::randomUtf8(random, random() % 70, kind), b = a;
    for (unsigned changes = random() % 4; changes != 0 && !b.empty(); --changes) {
        const std::size_t place = random() % b.size();
        switch (random() % 5) {
            case 0:
                b[place] = static_cast<char>(b[place] ^ 0x20);
                break;
            case 1:
                b[place] = static_cast<char>(1 + random() % 255);
                break;
            case 2:
                b.resize(place);
                break;
            case 3:
                b += std::string(random() % 40, ' ');
                break;
            default:
                for (char& byte : b)
                    if (byte >= 'a' && byte <= 'z') byte = static_cast<char>(byte - 0x20);
        }
        if (b.find('\0') != std::string::npos) b.resize(b.find('\0'));
    }
    return {a, b};
}

// A text as a caller hands it over, in front of a faulting page.
struct Given {
    const unsigned char* text;
    int32_t length;
};
enum class End { nul, limit, nulBeforeLimit, nulBeforePage };
constexpr End kEnds[] = {End::nul, End::limit, End::nulBeforeLimit, End::nulBeforePage};

Given give(GuardedBuffer& page, const std::string& text, End end, char behind) {
    const auto length = static_cast<int32_t>(text.size());
    switch (end) {
        case End::nul:
            return {page.atEnd(text.c_str(), text.size() + 1), -1};
        case End::limit:
            return {page.atEnd(text.c_str(), text.size()), length};
        case End::nulBeforePage:
            return {page.atEnd(text.c_str(), text.size() + 1), length + 100};
        default:
            const std::string longer = text + '\0' + std::string(9, behind);
            return {page.atEnd(longer.c_str(), longer.size()), static_cast<int32_t>(longer.size())};
    }
}

class UnicodeOrder : public testing::Test {
protected:
    void SetUp() override {
        coll_.collKind = 3;
        table_.fillFromLibrary();
        locale_.get()->caseTable = table_.get();
    }
    void TearDown() override { nls::limitCpuLevel(nls::CpuLevel::avx512); }

    // With every end of either text.
    void expect(HandLocale& locale, const uint16_t* const (*pages)[256], const std::string& a, const std::string& b) {
        locale.get()->coll = &coll_;
        for (const uint16_t mode : kModes) {
            const int want = nls::test::slowUnicodeCompare(locale.attrib(), pages, mode == 0, a, b);
            for (const End endOfA : kEnds)
                for (const End endOfB : kEnds) {
                    const Given first = give(pageOfA_, a, endOfA, 'A'), second = give(pageOfB_, b, endOfB, 'z');
                    ASSERT_NO_FATAL_FAILURE(expectGiven(*locale.get(), first, second, mode, want))
                        << testing::PrintToString(a) << testing::PrintToString(b) << static_cast<int>(endOfA)
                        << static_cast<int>(endOfB);
                }
        }
    }

    static void expectGiven(const nlsLocale& locale, Given a, Given b, uint16_t mode, int want) {
        uint16_t result = 77, ofDoor = 77;
        ASSERT_EQ(nlsUnicodeCompare(&locale, a.text, b.text, nullptr, mode, a.length, b.length, &result), NLS_OK);
        ASSERT_EQ(static_cast<int16_t>(result), want) << mode;
        ASSERT_EQ(nlsCompareN(&locale, nullptr, a.text, b.text, a.length, b.length, mode, &ofDoor), NLS_OK);
        ASSERT_EQ(ofDoor, result) << mode;
        if (mode == 1) {
            ASSERT_EQ(loccmp(a.text, b.text, a.length, b.length), want);
        }
    }

    nlsCollStruct coll_{};
    MadeCaseTable table_;
    HandLocale locale_{nls::test::utf8Charset()};
    GuardedBuffer pageOfA_{8192}, pageOfB_{8192};
};

TEST_F(UnicodeOrder, AsTheSlowTwin) {
    std::mt19937 random{21};
    nlsAttribStruct oddLengths = nls::test::oddCharset();
    oddLengths.flags |= NLS_CHARSET_UTF8;
    for (unsigned variant = 0; variant < 6; ++variant) {
        MadeCaseTable table;
        table.fillFromLibrary();
        if (variant == 1 || variant == 5) table.fillWild(1, variant == 1);
        if (variant == 2) table.set('I', CaseForm::lower, 0xC4B1);
        HandLocale locale{variant == 3 ? oddLengths : nls::test::utf8Charset()};
        if (variant != 4) locale.get()->caseTable = table.get();
        for (const nls::CpuLevel level : kLevels) {
            nls::limitCpuLevel(level);
            for (unsigned i = 0; i < 2000; ++i) {
                const auto [a, b] = nearPair(random, i % 4);
                ASSERT_NO_FATAL_FAILURE(expect(locale, variant == 4 ? nullptr : &table.pages(), a, b));
            }
        }
    }
}

// Common prefixes of every length at every place in a block, ended by every kind of difference.
TEST_F(UnicodeOrder, PrefixesOfEveryLength) {
    const std::string ends[][2] = {{"", ""},
                                   {"", "  "},
                                   {"a", "A"},
                                   {"a", "b"},
                                   {"\x01", ""},
                                   {"\xD0\x90", "\xD0\xB0"},
                                   {"\xD0\x90", "\xD0\x91"},
                                   {"\xE1\xBA\xA0", "\xE1\xBA\xA1"},
                                   {"\xC3", "\xC3\xA9"},
                                   {"\xC3", "\xC3 "},
                                   {"a\xD1", "A\xD1 "},
                                   {"\xD0\xAF"
                                    "b\xC3\xA9",
                                    "\xD1\x8F"
                                    "B\xC3\xAA"}};
    for (const nls::CpuLevel level : kLevels) {
        nls::limitCpuLevel(level);
        for (const std::string unit : {"x", "\xC3\xA9", "\xE3\x81\x82"})
            for (std::size_t length = 0; length <= 70; ++length) {
                std::string prefix;
                while (prefix.size() < length) prefix += unit;
                for (const auto& [a, b] : ends)
                    for (const auto* const tail : {"", "q", "qqqqqqqqqqqqqqqq"}) {
                        ASSERT_NO_FATAL_FAILURE(expect(locale_, &table_.pages(), prefix + a + tail, prefix + b + tail));
                        ASSERT_NO_FATAL_FAILURE(expect(locale_, &table_.pages(), prefix + b + tail, prefix + a + tail));
                    }
            }
    }
}

TEST_F(UnicodeOrder, ByHand) {
    constexpr struct {
        const char *why, *a, *b;
        uint16_t mode;
        int32_t lengthA, lengthB;
        int sign;
    } rows[] = {
        {"no expansions",
         "Stra\xC3\x9F"
         "e",
         "STRASSE", 0, -1, -1, 1},
        {"the limited text ends first", "abcd", "abce", 0, 3, -1, -1},
        {"code points, not units", "\xF0\x90\x80\x80", "\xEF\xBF\xBD", 0, -1, -1, 1},
    };
    for (const auto& row : rows) {
        uint16_t result = 77;
        EXPECT_EQ(nlsUnicodeCompare(locale_.get(), bytesOf(row.a), bytesOf(row.b), nullptr, row.mode, row.lengthA,
                                    row.lengthB, &result),
                  NLS_OK);
        EXPECT_EQ(static_cast<int16_t>(result), row.sign) << row.why;
    }
    uint16_t result = 77;
    const nlsLocale bare{};
    EXPECT_EQ(nlsUnicodeCompare(nullptr, bytesOf("a"), bytesOf("A"), nullptr, 0, -1, -1, &result), NLS_OK);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(nlsUnicodeCompare(&bare, bytesOf("A"), bytesOf("a"), nullptr, 0, -1, -1, &result), NLS_OK);
    EXPECT_EQ(result, 0xFFFF);
}

// Every character differs in case, so that blocks end inside some of them.
TEST_F(UnicodeOrder, CaseAllAlong) {
    const std::string units[][2] = {
        {"x", "X"}, {"\xC3\xA9", "\xC3\x89"}, {"\xD1\x8F", "\xD0\xAF"}, {"\xE1\xBA\xA1", "\xE1\xBA\xA0"}};
    for (const auto& [lower, upper] : units)
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::string a(shift, 'q'), b(shift, 'Q');
            for (std::size_t count = 0; count < 48; ++count) {
                a += lower;
                b += upper;
                ASSERT_NO_FATAL_FAILURE(expect(locale_, &table_.pages(), a, b));
                ASSERT_NO_FATAL_FAILURE(expect(locale_, &table_.pages(), a + "a", b + "B"));
            }
        }
}

// A form of two bytes that spells two characters is one character all the same.
TEST_F(UnicodeOrder, FormsThatSpellOtherCharacters) {
    table_.set(0xC389, CaseForm::lower, 0x6162);
    for (const std::string tail : {"", "q", "qqqqqqqqqqqqqqqq"})
        ASSERT_NO_FATAL_FAILURE(expect(locale_, &table_.pages(), "x\xC3\x89" + tail, "Xab" + tail));
}

// A case table of bytes under a collation of Unicode is never read as pages.
TEST_F(UnicodeOrder, ByteTablesDoNotFold) {
    const nlsCaseStruct table{};
    HandLocale locale{nls::test::singleByteCharset()};
    locale.get()->caseTable = const_cast<nlsCaseStruct*>(&table);
    ASSERT_NO_FATAL_FAILURE(expect(locale, nullptr, "a\xE9", "a\xC9"));
    ASSERT_NO_FATAL_FAILURE(expect(locale, nullptr, "a", "A"));
}

TEST_F(UnicodeOrder, KeysInEveryRoom) {
    const std::string text =
                          "\xC3\x84"
                          "B\xC4\xB0",
                      lower =
                          "\xC3\xA4"
                          "bi";
    for (int16_t keySize = -2; keySize < 9; ++keySize)
        for (const uint16_t mode : kModes)
            for (const std::string& src : {text, std::string{}}) {
                unsigned char* const key = pageOfA_.atEnd(keySize < 0 ? 0 : static_cast<std::size_t>(keySize));
                if (keySize > 0) *key = 0xEE;
                const bool fits = keySize > static_cast<int>(src.size()), empty = src.empty();
                const nlsStatus want = !fits ? NLS_BUF_SMALL : !empty && mode > 1 ? NLS_BAD_COMPARE_MODE : NLS_OK;
                ASSERT_EQ(nlsUnicodeSort(locale_.get(), key, bytesOf(src), keySize, nullptr, mode), want) << keySize;
                const std::string& form = mode == 0 && !empty ? lower : src;
                if (want == NLS_OK) {
                    ASSERT_STREQ(reinterpret_cast<char*>(key), form.c_str());
                }
                if (want != NLS_OK && keySize > 0) {
                    ASSERT_EQ(*key, 0xEE);
                }
            }
    unsigned char key[8] = {0xEE};
    EXPECT_EQ(nlsUnicodeSort(nullptr, key, bytesOf("aB"), 8, nullptr, 0), NLS_BAD_HANDLE);
    EXPECT_EQ(key[0], 0);
}

}  // namespace
