#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "core/base/cpu.hpp"
#include "nls/compare.h"
#include "nls/status.h"
#include "nls/usersort.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

std::string seenByHook;
const unsigned char* lastSeen = nullptr;
std::string keyOfHook;

}  // namespace

// The site's sort of this program: kind 2 calls it.
int32_t UserSortInit(const char*, uint64_t*) {
    return 0;
}
void UserSortCopy(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char*,
                  const unsigned char*, uint16_t mode, uint64_t value) {
    lastSeen = src;
    seenByHook = reinterpret_cast<const char*>(src);
    EXPECT_EQ(mode, 0x9F01);
    EXPECT_EQ(value, 3U);
    std::memcpy(key, keyOfHook.data(), std::min(keyOfHook.size(), static_cast<std::size_t>(keySize)));
}
int32_t UserSortComp(const unsigned char*, const unsigned char*, const unsigned char*, const unsigned char*, uint16_t,
                     uint64_t) {
    return 0;
}
void UserSortTerm(uint64_t) {}

namespace {

using nls::CpuLevel;
using nls::test::bytesOf;
using nls::test::CollatedLocale;
using nls::test::GuardedBuffer;
using nls::test::HandRoute;
using nls::test::plainCollation;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};

class Keys : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }

    // The key in a buffer of just that size, at the edge of memory; the text stands at the edge too, or with something
    // behind it, and is the same afterwards.
    std::string keyOf(const HandRoute& route, const std::string& text, std::size_t keySize, uint16_t options,
                      bool trim) {
        unsigned char* const key = keys_.atEnd(keySize);
        std::memset(key, 0xEE, keySize);
        const std::string placed = text + '\0' + std::string(keySize * 7 % 80, 's');
        unsigned char* const src = texts_.atEnd(placed.data(), placed.size());
        uint16_t length = 7777;
        EXPECT_EQ(nlsSortKey(route.get(), nullptr, src, static_cast<int16_t>(keySize), options, trim, key, &length),
                  NLS_OK);
        EXPECT_EQ(std::memcmp(src, placed.data(), placed.size()), 0);
        const std::string made{reinterpret_cast<const char*>(key), strnlen(reinterpret_cast<char*>(key), keySize)};
        EXPECT_EQ(made.size(), length);
        return made;
    }

    std::vector<HandRoute> routes = nls::test::handRoutes();

private:
    GuardedBuffer keys_{8192}, texts_{8192};
};
INSTANTIATE_TEST_SUITE_P(Levels, Keys, testing::ValuesIn(kLevels));

TEST_P(Keys, AllShortTextsInBuffersOfEverySize) {
    for (const HandRoute& route : routes)
        for (const bool basic : {false, true}) {
            route.locale->coll().collSubKind = basic ? 0 : 1;
            nls::test::forAllStrings(
                "\xDF"
                "sA \x81\x8E\xB1\x42",
                3, [&](const std::string& text) {
                    const uint16_t mode = text.size() % 2 == 0;
                    for (const bool trim : {false, true})
                        for (const std::size_t room : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 62U, 63U, 79U})
                            ASSERT_EQ(keyOf(route, text, room + 1, mode, trim),
                                      nls::reference::key(route.order(mode), basic, trim, text, room))
                                << route.name << " '" << text << "' " << room << trim << basic;
                });
        }
}

// Long texts with expansions in every place, through the bridge too.
TEST_P(Keys, LongTextsInBuffersOfManySizes) {
    std::mt19937 random{5};
    const std::string alphabet{"aAbBsS \xDF\x81\x40\x8E\xB1\xC1\xFE\x01zqwertyuiop\xA4\xA2\xA4\xA4"};
    for (const HandRoute& route : routes)
        for (unsigned round = 0; round < 400; ++round) {
            std::string text;
            const std::size_t size = round < 200 ? round : random() % 1500;
            while (text.size() < size) text.push_back(alphabet[random() % alphabet.size()]);
            const std::string want = nls::reference::key(route.order(0), false, true, text, 5000);
            for (const std::size_t room :
                 {want.size() + 9, want.size() + 99, want.size(), std::size_t{random() % (want.size() + 1)}})
                ASSERT_EQ(keyOf(route, text, room + 1, 0, true),
                          nls::reference::key(route.order(0), false, true, text, room))
                    << route.name << ' ' << round << ' ' << room;
        }
}

TEST(SortKey, ChecksInTheirOrder) {
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    nlsLocale locale = *made.get();
    nlsHandle closed{};
    uint16_t length = 77;
    unsigned char key[8] = {0xEE};
    const auto both = [&](const nlsLocale* object, int16_t size, uint16_t mode, nlsStatus status, nlsStatus inner) {
        EXPECT_EQ(nlsSortKey(object, nullptr, bytesOf("x"), size, mode, 1, key, &length), status);
        EXPECT_EQ(getSortKey(object, nullptr, key, bytesOf("x"), size, mode, 1), inner);
        EXPECT_EQ(length, 77);
        EXPECT_EQ(key[0], 0xEE);
    };
    both(&locale, 0, 2, NLS_BUF_SMALL, NLS_BUF_SMALL);
    both(&locale, -4, 0, NLS_BUF_SMALL, NLS_BUF_SMALL);
    both(&locale, 8, 2, NLS_BAD_COMPARE_MODE, NLS_BAD_COMPARE_MODE);
    locale.coll = nullptr;
    both(&locale, 8, 0, NLS_BAD_COLLATION, NLS_BAD_COLLATION);
    locale.attrib = nullptr;
    both(&locale, 8, 0, NLS_NO_ATTRIB, NLS_NO_ATTRIB);
    locale.hdr.typeTag = NLS_TAG_CONVERSION;
    both(&locale, 8, 0, NLS_BAD_LOCALE, NLS_NO_ATTRIB);
    locale.owner = &closed;
    both(&locale, 8, 0, NLS_BAD_HANDLE, NLS_NO_ATTRIB);
    CollatedLocale euc{nls::test::eucCharset(), plainCollation()};
    both(euc.get(), 8, 2, NLS_NO_SJIS, NLS_NO_SJIS);
    const nls::test::MadeTable twoSteps = nls::test::MadeTable::twoStep(nullptr, nullptr);
    euc.bridgeTo(twoSteps);
    both(euc.get(), 8, 2, NLS_BAD_COMPARE_MODE, NLS_BAD_COMPARE_MODE);
    both(euc.get(), 8, 0, NLS_NO_CONV_TABLE, NLS_NO_CONV_TABLE);
}

TEST(SortKey, ASitesSortSeesTheTrimmedText) {
    CollatedLocale made{nls::test::singleByteCharset(), plainCollation()};
    made.coll().collKind = 2;
    made.get()->owner->userSortHandle = 3;
    for (const std::size_t length : {0U, 3U, 4095U, 4096U}) {
        const std::string bare(length, 'q'), text = bare + "   ";
        unsigned char key[8];
        const auto sort = [&](const std::string& src, uint16_t trim, uint16_t& keyLen) {
            return nlsSortKey(made.get(), nullptr, bytesOf(src), sizeof key, 0xFF01, trim, key, &keyLen);
        };
        uint16_t keyLen = 0;
        keyOfHook = std::string("key\0", 4);
        EXPECT_EQ(sort(text, 1, keyLen), NLS_OK);
        EXPECT_EQ(keyLen, 3);
        EXPECT_EQ(seenByHook, bare);
        EXPECT_EQ(text, bare + "   ");
        EXPECT_EQ(lastSeen == bytesOf(text), length >= 4096);
        EXPECT_EQ(sort(text, 0, keyLen), NLS_OK);
        EXPECT_EQ(seenByHook, text);
        keyOfHook = "without a NUL";
        EXPECT_EQ(sort(bare, 1, keyLen), NLS_BUF_SMALL);
        EXPECT_EQ(keyLen, 8);
        EXPECT_EQ(lastSeen, bytesOf(bare));
    }
}

}  // namespace
