#include "chars/trim.hpp"

#include <gtest/gtest.h>
#include <strings.h>

#include <ctime>

#include "nls/chars.h"
#include "nls/strings.h"
#include "nls/usersort.h"
#include "tests/chars/finding_locales.hpp"
#include "tests/reference/find_char.hpp"
#include "tests/support/guarded_buffer.hpp"

// The site's sort of this program: it goes by the C library, and an answer of 65536 has the low bits of "equal".
int32_t UserSortInit(const char*, uint64_t*) {
    return 0;
}
void UserSortCopy(unsigned char*, const unsigned char*, int32_t, const unsigned char*, const unsigned char*, uint16_t,
                  uint64_t) {}
int32_t UserSortComp(const unsigned char* s1, const unsigned char* s2, const unsigned char*, const unsigned char*,
                     uint16_t, uint64_t) {
    return strcasecmp(reinterpret_cast<const char*>(s1), reinterpret_cast<const char*>(s2)) == 0 ? 0x10000 : 1;
}
void UserSortTerm(uint64_t) {}

namespace nls::test {
namespace {

using reference::FoundPlace;

constexpr unsigned char kBefore[] = "before";

FoundPlace trimLeft(const nlsLocale* locale, const unsigned char* set, const unsigned char* str, uint16_t mode) {
    FoundPlace answer{NLS_OK, 99, kBefore};
    answer.status = nlsFindLtrimPtrForw(locale, nullptr, set, str, mode, &answer.pos, &answer.found);
    return answer;
}
FoundPlace trimRight(const nlsLocale* locale, const unsigned char* set, const unsigned char* str, int32_t len,
                     uint16_t mode) {
    FoundPlace answer{NLS_OK, 99, kBefore};
    answer.status = nlsFindRtrimPtrBack(locale, nullptr, set, str, len, mode, &answer.pos, &answer.found);
    return answer;
}
const unsigned char* bytesOf(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

// None, empty, of one and of many characters, and one that ends in a cut-short character.
const char* const kSets[] = {nullptr,      "",     " ", "aS", "\xDF", "?\x81\x40", "\xC3\xA1 \xE0\x80\xA1",
                             "ss\x81\xA1", "a\x8F"};

// The text to trim at its right ends where its page does; the twin writes into a copy of it.
class Twins {
public:
    void expectAlike(const HandRoute& route, const std::string& text, uint16_t mode) {
        for (const char* const set : kSets) {
            const auto members = bytesOf(set);
            const unsigned char* const closed = page_.atEnd(text.c_str(), text.size() + 1);
            ASSERT_EQ(trimLeft(route.get(), members, closed, mode),
                      reference::findLtrim(route.get(), members, closed, mode, kBefore))
                << (set == nullptr ? "none" : set);
            expectRightAlike(route, members, text, mode);
        }
    }
    void expectRightAlike(const HandRoute& route, const unsigned char* members, const std::string& text,
                          uint16_t mode) {
        const auto length = static_cast<int32_t>(text.size());
        const unsigned char* const open = page_.atEnd(text.data(), text.size());
        const FoundPlace got = trimRight(route.get(), members, open, length, mode);
        std::string copy = text;
        auto* const str = reinterpret_cast<unsigned char*>(copy.data());
        FoundPlace want = reference::findRtrim(route.get(), members, str, length, mode, kBefore);
        if (want.found != kBefore) want.found = open + (want.found - str);
        ASSERT_EQ(got, want) << text;
        ASSERT_EQ(std::memcmp(open, text.data(), text.size()), 0);
    }

private:
    GuardedBuffer page_{1024};
};

TEST(Trim, EveryShortStringAsBySlowTwinInsideItsPage) {
    Twins twins;
    for (const HandRoute& route : findingLocales()) {
        SCOPED_TRACE(route.name);
        forAllStrings(findingBytes, 3, [&](const std::string& text) {
            const uint16_t lastMode = text.size() < 2 ? 2 : 1;
            for (uint16_t mode = 0; mode <= lastMode; ++mode) twins.expectAlike(route, text, mode);
        });
    }
}

// A step back over UTF-8 goes over any number of trailing bytes; the set of that many finds them all together.
TEST(Trim, LongTextAsBySlowTwin) {
    std::mt19937 random{5};
    Twins twins;
    const auto piece = [&] { return std::string(random() % 40, findingBytes[random() % findingBytes.size()]); };
    for (const HandRoute& route : findingLocales()) {
        SCOPED_TRACE(route.name);
        for (unsigned round = 0; round < 60; ++round) {
            const std::string text = piece() + "x" + piece() + piece();
            twins.expectAlike(route, text, round % 2);
            const std::string set = (piece() + "x" + piece()).c_str();
            twins.expectRightAlike(route, nls::test::bytesOf(set), text, round % 2);
        }
    }
}

TEST(Trim, TellsPlacesFromOne) {
    CollatedLocale single{singleByteCharset(), plainCollation()}, utf8{utf8Charset(), plainCollation()};
    const auto blanks = bytesOf("   "), text = bytesOf("  a b  ");
    EXPECT_EQ(trimRight(single.get(), nullptr, blanks, 3, 1), (FoundPlace{NLS_OK, 1, blanks}));
    EXPECT_EQ(trimRight(single.get(), nullptr, blanks, 0, 1), (FoundPlace{NLS_OK, 1, blanks}));
    EXPECT_EQ(trimRight(single.get(), nullptr, blanks, INT32_MIN, 1), (FoundPlace{NLS_OK, 1, blanks}));
    EXPECT_EQ(trimLeft(single.get(), nullptr, blanks, 1), (FoundPlace{NLS_OK, 4, blanks + 3}));
    EXPECT_EQ(trimLeft(single.get(), nullptr, blanks + 3, 1), (FoundPlace{NLS_OK, 1, blanks + 3}));
    EXPECT_EQ(trimLeft(single.get(), nullptr, text, 1), (FoundPlace{NLS_OK, 3, text + 2}));
    EXPECT_EQ(trimRight(utf8.get(), nullptr, text, 7, 1), (FoundPlace{NLS_OK, 6, text + 5}));
    EXPECT_EQ(trimRight(utf8.get(), bytesOf("B "), text, 7, 0), (FoundPlace{NLS_OK, 4, text + 3}));
    // A character that lacks a byte, and a NUL, which no set has but which is trimmed.
    EXPECT_EQ(trimRight(utf8.get(), nullptr, bytesOf("a\xC3"), 2, 1), (FoundPlace{NLS_PARTIAL_CHAR, 0, kBefore}));
    EXPECT_EQ(trimRight(utf8.get(), bytesOf("\xC3"), text, 7, 1), (FoundPlace{NLS_PARTIAL_CHAR, 0, kBefore}));
    EXPECT_EQ(trimRight(utf8.get(), bytesOf(""), bytesOf("a\0\0"), 3, 1).pos, 2U);
    // What no set can fail: no character is compared.
    EXPECT_EQ(trimRight(utf8.get(), bytesOf(""), text, 7, 2).pos, 8U);
    EXPECT_EQ(trimRight(utf8.get(), bytesOf("x"), text, 7, 2), (FoundPlace{NLS_BAD_COMPARE_MODE, 0, kBefore}));
    EXPECT_EQ(trimLeft(utf8.get(), bytesOf("x"), text, 2), (FoundPlace{NLS_BAD_COMPARE_MODE, 0, kBefore}));
    utf8.get()->coll = nullptr;
    EXPECT_EQ(trimRight(utf8.get(), nullptr, text, 7, 1), (FoundPlace{NLS_BAD_COLLATION, 0, kBefore}));
    EXPECT_EQ(trimLeft(utf8.get(), nullptr, text, 1), (FoundPlace{NLS_BAD_COLLATION, 0, kBefore}));
}

// Literals lie in memory that can't be written.
TEST(Trim, WritesNothingUnderAnyOrder) {
    for (const HandRoute& route : findingLocales())
        EXPECT_EQ(trimRight(route.get(), nullptr, bytesOf("x    "), 4, 1).status, NLS_OK) << route.name;
}

// A step back from a place looks at the run of first bytes in front of it.
TEST(Trim, WalksBackCostNoMoreThanTheText) {
    CollatedLocale locale{sjisCharset(), plainCollation()};
    const std::string text(1 << 19, '\xE0'), set(2, '\xE0'), brokenPattern{"\x81\x20"};
    const auto length = static_cast<int32_t>(text.size());
    const nlsLChar letter = 'x';
    uint32_t pos = 0;
    const unsigned char* found = nullptr;
    const std::clock_t start = std::clock();
    EXPECT_EQ(nlsFindRtrimPtrBack(locale.get(), nullptr, bytesOf(set.c_str()), bytesOf(text.c_str()), length, 1, &pos,
                                  &found),
              NLS_OK);
    EXPECT_EQ(found, bytesOf(text.c_str()));
    EXPECT_EQ(nlsFindCharBack(locale.get(), nullptr, &letter, bytesOf(text.c_str()), length, 1, &pos, &found), NLS_OK);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(nlsSearchBack(locale.get(), nullptr, bytesOf(brokenPattern.c_str()), bytesOf(text.c_str()), length, 1,
                            &pos, &found),
              0);
    EXPECT_EQ(found, nullptr);
    EXPECT_LT(std::clock() - start, 10 * CLOCKS_PER_SEC);
}

TEST(Trim, ChecksInOrder) {
    HandLocale locale{utf8Charset()};
    const auto told = [&](nlsStatus status, uint32_t pos, const unsigned char* found, const unsigned char* str) {
        EXPECT_EQ(trimLeft(locale.get(), nullptr, str, 1), (FoundPlace{status, pos, found}));
        EXPECT_EQ(trimRight(locale.get(), nullptr, str, 1, 1), (FoundPlace{status, pos, found}));
        const nlsStatus without = status == NLS_NO_ATTRIB ? NLS_BAD_ARG : status;
        uint32_t left = 99, right = 99;
        EXPECT_EQ(nlsFindLtrimPtrForw(locale.get(), nullptr, nullptr, str, 1, &left, nullptr), without);
        EXPECT_EQ(nlsFindRtrimPtrBack(locale.get(), nullptr, nullptr, str, 1, 1, &right, nullptr), without);
        EXPECT_EQ(left, pos);
        EXPECT_EQ(right, pos);
    };
    told(NLS_BAD_ARG, 0, kBefore, nullptr);
    locale.get()->attrib = nullptr;
    told(NLS_BAD_ARG, 0, kBefore, nullptr);
    told(NLS_NO_ATTRIB, 0, nullptr, kBefore);
    locale.get()->hdr.typeTag = NLS_TAG_CONVERSION;
    told(NLS_BAD_LOCALE, 99, kBefore, nullptr);
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    told(NLS_BAD_HANDLE, 99, kBefore, nullptr);
}

}  // namespace
}  // namespace nls::test
