#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/base/cpu.hpp"
#include "nls/compare.h"
#include "nls/status.h"
#include "nls/usersort.h"
#include "tests/reference/compare.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

std::string seenByHook;                   // both texts, with a bar between
const unsigned char* lastSeen = nullptr;  // where the second stood

}  // namespace

// The site's sort of this program: kind 2 calls it.
int32_t UserSortInit(const char*, uint64_t*) {
    return 0;
}
void UserSortCopy(unsigned char*, const unsigned char*, int32_t, const unsigned char*, const unsigned char*, uint16_t,
                  uint64_t) {}
int32_t UserSortComp(const unsigned char* s1, const unsigned char* s2, const unsigned char*, const unsigned char*,
                     uint16_t mode, uint64_t value) {
    lastSeen = s2;
    seenByHook = std::string(reinterpret_cast<const char*>(s1)) + '|' + reinterpret_cast<const char*>(s2);
    return static_cast<int32_t>(0x50000 + mode + value);
}
void UserSortTerm(uint64_t) {}

namespace {

using nls::CpuLevel;
using nls::reference::ByteOrder;
using nls::test::bytesOf;
using nls::test::CollatedLocale;
using nls::test::GuardedBuffer;
using nls::test::HandRoute;
using nls::test::MadeTable;
using nls::test::plainCollation;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};

int compare(const HandRoute& route, const unsigned char* s1, const unsigned char* s2, uint16_t mode) {
    uint16_t result = 77;
    EXPECT_EQ(nlsCompare(route.get(), nullptr, s1, s2, mode, &result), NLS_OK);
    return static_cast<int16_t>(result);
}
int compareN(const HandRoute& route, const unsigned char* s1, int32_t len1, const unsigned char* s2, int32_t len2,
             uint16_t mode) {
    uint16_t result = 77;
    EXPECT_EQ(nlsCompareN(route.get(), nullptr, s1, s2, len1, len2, mode, &result), NLS_OK);
    return static_cast<int16_t>(result);
}

class Walks : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }

    std::vector<HandRoute> routes = nls::test::handRoutes();
};
INSTANTIATE_TEST_SUITE_P(Levels, Walks, testing::ValuesIn(kLevels));

TEST_P(Walks, AllShortTextsAgainstEachOther) {
    std::vector<std::string> texts;
    nls::test::forAllStrings(
        "\xDF"
        "sSt \x01\x81\x8E\xB1",
        3, [&](const std::string& text) { texts.push_back(text); });
    for (const HandRoute& route : routes)
        for (const uint16_t mode : {uint16_t{0}, uint16_t{1}})
            for (std::size_t i = 0; i < texts.size(); ++i)
                for (std::size_t j = i % 5; j < texts.size(); j += 5) {
                    const unsigned char *a = bytesOf(texts[i]), *b = bytesOf(texts[j]);
                    const int want = nls::reference::compare(route.order(mode), a, -1, b, -1);
                    ASSERT_EQ(compare(route, a, b, mode), want) << route.name << " '" << texts[i] << "' '" << texts[j];
                }
}

// Texts that share a beginning of every length, end at every limit, and stand directly in front of a faulting page.
TEST_P(Walks, CommonBeginningsLimitsAndAlignments) {
    std::mt19937 random{7};
    GuardedBuffer first{512}, second{512};
    const std::string alphabet{"aAbBsS \xDF\x81\x40\x8E\xB1\xB2\xC1\xFE\x01z"};
    for (const HandRoute& route : routes)
        for (unsigned round = 0; round < 4000; ++round) {
            const auto any = [&](std::size_t count) {
                std::string text;
                while (text.size() < count) text.push_back(alphabet[random() % alphabet.size()]);
                return text;
            };
            const std::string start = any(random() % 71);
            std::string a = start + any(random() % 3) + any(random() % 40), b = start + any(random() % 3);
            if (random() % 2 != 0) {  // from the same beginning on, but for the case of letters
                b = a;
                for (char& byte : b)
                    if (std::isalpha(static_cast<unsigned char>(byte)) && random() % 2) byte ^= 0x20;
                if (random() % 2) b += any(random() % 4);
            }
            const std::size_t shiftA = random() % 64, shiftB = random() % 64;  // bytes of something else behind
            const auto mode = static_cast<uint16_t>(random() % 2);
            const auto la = static_cast<int32_t>(a.size()), lb = static_cast<int32_t>(b.size());
            const unsigned char* pa = first.atEnd((a + '\0' + any(shiftA)).data(), a.size() + 1 + shiftA);
            const unsigned char* pb = second.atEnd((b + '\0' + any(shiftB)).data(), b.size() + 1 + shiftB);
            const ByteOrder order = route.order(mode, route.singleByte());
            const int want = nls::reference::compare(order, pa, -1, pb, -1);
            ASSERT_EQ(compare(route, pa, pb, mode), want) << route.name << ' ' << round;
            ASSERT_EQ(compareN(route, pa, la, pb, lb, mode), want) << route.name << ' ' << round;
            ASSERT_EQ(compareN(route, pa, la + 9999, pb, lb, mode), want) << route.name << ' ' << round;
            const auto cutA = static_cast<int32_t>(random() % (a.size() + 1));
            const auto cutB = std::min(lb, random() % 3 == 0 ? static_cast<int32_t>(random() % (b.size() + 1)) : cutA);
            pa = first.atEnd(a.data(), static_cast<std::size_t>(cutA));
            pb = second.atEnd(b.data(), static_cast<std::size_t>(cutB));
            ASSERT_EQ(compareN(route, pa, cutA, pb, cutB, mode), nls::reference::compare(order, pa, cutA, pb, cutB))
                << route.name << ' ' << round << ' ' << cutA << ' ' << cutB;
        }
}

// On their way to Shift-JIS, each against its neighbours in the row and in the grid, and against a few from anywhere.
TEST_P(Walks, AllPairsOfEuc) {
    constexpr int kRow = 94, kGrid = kRow * kRow;
    std::mt19937 random{8};
    const auto spelled = [](int cell) {
        const int in = (cell + kGrid) % kGrid;
        return std::string{static_cast<char>(0xA1 + in / kRow), static_cast<char>(0xA1 + in % kRow), 'x'};
    };
    for (const HandRoute& route : routes) {
        if (route.bridge == nullptr) continue;
        for (int cell = 0; cell < kGrid; ++cell)
            for (const int other : {cell + 1, cell + kRow, cell - kRow + 1, static_cast<int>(random() % kGrid)}) {
                const std::string start(random() % 3, 'a'), a = start + spelled(cell), b = start + spelled(other);
                const auto la = static_cast<int32_t>(a.size()), lb = static_cast<int32_t>(b.size());
                const auto mode = static_cast<uint16_t>(cell % 2);
                const int want = nls::reference::compare(route.order(mode), bytesOf(a), la, bytesOf(b), lb);
                ASSERT_EQ(compareN(route, bytesOf(a), la, bytesOf(b), lb, mode), want) << route.name << ' ' << cell;
            }
    }
}

TEST(Compare, PeculiarTexts) {
    CollatedLocale single{nls::test::singleByteCharset(), plainCollation()};
    CollatedLocale pairs{nls::test::sjisCharset(), plainCollation()};
    const struct {
        const char* why;
        CollatedLocale& locale;
        const char *s1, *s2;
        int32_t len1, len2;
        int want;
    } rows[] = {
        {"sharp s", single, "\xDF", "ss", 1, 2, 0},
        {"no bytes at all", single, "x", "y", 0, 0, 0},
        {"a blank at the limit", single, "ab  x", "ab", 4, 2, 0},
        {"a negative length, one byte a character", single, "", "x", 0, -1, 0},
        {"a negative length, longer characters", pairs, "", "x", 0, -1, -1},
        {"a limit between first and second byte", pairs, "\x81\x41", "\x81\x40", 1, 1, 0},
    };
    for (const auto& row : rows) {
        uint16_t result = 77;
        const auto *s1 = reinterpret_cast<const unsigned char*>(row.s1),
                   *s2 = reinterpret_cast<const unsigned char*>(row.s2);
        ASSERT_EQ(nlsCompareN(row.locale.get(), nullptr, s1, s2, row.len1, row.len2, 0, &result), NLS_OK) << row.why;
        EXPECT_EQ(static_cast<int16_t>(result), row.want) << row.why;
    }
}

TEST(Compare, ChecksInTheirOrder) {
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    nlsLocale locale = *made.get();
    nlsHandle closed{};
    uint16_t result = 77;
    const unsigned char text[] = "x";
    const auto both = [&](const nlsLocale* object, nlsStatus status, nlsStatus statusN, uint16_t mode = 0) {
        EXPECT_EQ(nlsCompare(object, nullptr, text, text, mode, &result), status);
        EXPECT_EQ(nlsCompareN(object, nullptr, text, text, 1, 1, mode, &result), statusN);
        EXPECT_EQ(result, 77);
    };
    both(&locale, NLS_BAD_COMPARE_MODE, NLS_BAD_COMPARE_MODE, 2);
    locale.coll = nullptr;
    both(&locale, NLS_BAD_COLLATION, NLS_BAD_COLLATION);
    locale.attrib = nullptr;
    both(&locale, NLS_NO_ATTRIB, NLS_NO_ATTRIB);
    locale.hdr.typeTag = NLS_TAG_CONVERSION;
    both(&locale, NLS_BAD_LOCALE, NLS_NO_ATTRIB);
    locale.owner = &closed;
    both(&locale, NLS_BAD_HANDLE, NLS_NO_ATTRIB);
    both(nullptr, NLS_BAD_HANDLE, NLS_NO_ATTRIB);
    made.coll().collKind = 5;
    std::memset(made.coll().foldMap, 0, sizeof(nlsIcuInfo*));  // no record of ICU's
    both(made.get(), NLS_BAD_TABLE, NLS_BAD_TABLE);
}

TEST(Compare, TheBridgeIsLookedForOnceAndKept) {
    MadeTable table{4};
    CollatedLocale euc{nls::test::eucCharset(), plainCollation()};
    uint16_t result = 77;
    const auto compare = [&](uint16_t mode) {
        return nlsCompare(euc.get(), nullptr, bytesOf("\xB0\xA1"), bytesOf("\x8E\xB1"), mode, &result);
    };
    EXPECT_EQ(compare(2), NLS_BAD_COMPARE_MODE);
    EXPECT_EQ(compare(0), NLS_NO_SJIS);
    EXPECT_EQ(result, 77);
    euc.bridgeTo(table);
    euc.get()->attrib->sjisAttrib = nullptr;
    std::strcpy(euc.get()->charsetName, "other");
    const nlsLocale* const source = euc.get();
    nlsLocale copy = *source;
    std::strcpy(copy.charsetName, "stranger");
    EXPECT_EQ(getSjisHandles(&copy), NLS_NO_CONV_TABLE);
    EXPECT_EQ(compare(0), NLS_OK);
    EXPECT_EQ(static_cast<int16_t>(result), -1);  // 88 9F in front of the kana B1; in EUC it is behind
    EXPECT_EQ(euc.get()->attrib->sjisAttrib, &euc.sjisAttrib());
    EXPECT_EQ(getSjisHandles(&copy), NLS_OK);  // the same attribute table
}

TEST(Compare, ASitesSortSeesTextsThatEndAtANul) {
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    made.coll().collKind = 2;
    made.get()->owner->userSortHandle = 3;
    for (const std::size_t length : {3U, 4095U, 4096U, 10000U}) {
        std::string text(length + 5, 'q');
        const std::string before = text;
        uint16_t result = 77;
        ASSERT_EQ(nlsCompareN(made.get(), nullptr, bytesOf("abcd"), bytesOf(text), 2, static_cast<int32_t>(length), 9,
                              &result),
                  NLS_OK);
        EXPECT_EQ(result, 12);
        EXPECT_EQ(seenByHook, "ab|" + std::string(length, 'q'));
        EXPECT_EQ(text, before);
        EXPECT_EQ(lastSeen == bytesOf(text), length >= 4096);
        ASSERT_EQ(nlsCompareN(made.get(), nullptr, bytesOf("ab"), bytesOf(text), 9, -1, 9, &result), NLS_OK);
        EXPECT_EQ(seenByHook, "ab|" + before);
    }
}

}  // namespace
