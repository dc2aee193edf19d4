#include <gtest/gtest.h>

#include <array>
#include <random>

#include "collation/thai_clusters.hpp"
#include "collation/thai_compare.hpp"
#include "collation/thai_key.hpp"
#include "nls/collation_routes.h"
#include "nls/compare.h"
#include "nls/status.h"
#include "tests/reference/thai.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace {

using nls::test::bytesOf;
using nls::test::GuardedBuffer;
using Map = std::array<unsigned char, 256>;

// Weights as a Thai table holds them: vowels in bits 0x78, tones in bits 0x07. `wild`: any weights, zero among them.
Map weights(bool wild) {
    Map map{};
    std::mt19937 random{7};
    for (unsigned c = 0; c < 256; ++c) {
        const int kind = nls::test::thaiClassOf(static_cast<unsigned char>(c));
        const unsigned weight = kind == 2 ? (c & 15) << 3 : kind == 4 ? (c & 3) + 3 : c;
        map[c] = static_cast<unsigned char>(wild ? random() : weight);
    }
    return map;
}

// Two of each class with different weights, and the blank.
const std::string kAlphabet = " a\xA1\xA2\xD4\xD5\xE0\xE1\xE8\xE9";

std::string randomText(std::mt19937& random, std::size_t longest) {
    std::string text(random() % (longest + 1), ' ');
    for (char& byte : text)
        byte = random() % 4 != 0 ? kAlphabet[random() % kAlphabet.size()] : static_cast<char>(1 + random() % 255);
    return text;
}

// Every text of up to six bytes over the five classes, in every key size, in front of a faulting page.
TEST(Thai, RanksAndKeysOfAllShortTexts) {
    const Map usual = weights(false), wild = weights(true);
    GuardedBuffer source{16}, room{64};
    nls::test::forAllStrings("a\xA1\xD4\xE0\xE8", 6, [&](const std::string& text) {
        const unsigned char* const src = source.atEnd(text.c_str(), text.size() + 1);
        for (const Map* const map : {&usual, &wild}) {
            const unsigned char* cursor = src;
            for (std::size_t pos = 0;;) {
                ASSERT_EQ(GetLetterClusterRank(map->data(), &cursor), nls::test::slowRank(map->data(), text, pos));
                ASSERT_EQ(cursor, src + pos);
                if (*cursor == 0) break;
            }
            for (std::size_t size = 0; size < 26; size += size < text.size() * 2 + 3 ? 1 : 40) {
                unsigned char* const key = room.atEnd(size);
                std::memset(key, 0xEE, size);
                thaiSortcop(key, src, static_cast<int32_t>(size), map->data(), nullptr, 0);
                if (size == 0) continue;
                const std::string want = nls::test::slowThaiKey(map->data(), text, size - 1);
                ASSERT_EQ(std::memcmp(key, want.c_str(), want.size() + 1), 0) << testing::PrintToString(text) << size;
                for (std::size_t i = want.size() + 1; i < size; ++i) ASSERT_EQ(key[i], 0xEE);
            }
        }
    });
}

TEST(Thai, ComparesAsRanksTell) {
    const Map usual = weights(false), wild = weights(true);
    std::vector<std::string> texts;
    nls::test::forAllStrings(kAlphabet, 2, [&](const std::string& text) { texts.push_back(text); });
    for (const std::string& a : texts)
        for (const std::string& b : texts) {
            const int want = nls::test::slowThaiCompare(usual.data(), a, b);
            ASSERT_EQ(thaiCompare(bytesOf(a), bytesOf(b), usual.data(), wild.data(), 0), want)
                << testing::PrintToString(a) << testing::PrintToString(b);
            ASSERT_EQ(thaiCompare(bytesOf(a), bytesOf(b), wild.data(), usual.data(), 2), want);
        }
}

// A limit is an end like the NUL, wherever it cuts a cluster, and nothing behind it is looked at.
TEST(Thai, LimitsAreEnds) {
    const Map map = weights(false);
    GuardedBuffer pageOfA{16}, pageOfB{16};
    std::mt19937 random{5};
    for (int i = 0; i < 4000; ++i) {
        const std::string a = randomText(random, 10), b = randomText(random, 10);
        const nls::Text first = nls::Text::of(pageOfA.atEnd(a.data(), a.size()), static_cast<int32_t>(a.size()));
        const nls::Text second = nls::Text::of(pageOfB.atEnd(b.data(), b.size()), static_cast<int32_t>(b.size()));
        ASSERT_EQ(nls::compareThai(map.data(), first, second), nls::test::slowThaiCompare(map.data(), a, b));
        unsigned char key[32];
        nls::thaiKey(map.data(), first.place, a.size(), key);
        ASSERT_EQ(reinterpret_cast<const char*>(key), nls::test::slowThaiKey(map.data(), a, 31));
    }
}

TEST(Thai, KeysWithoutRoom) {
    const Map map = weights(false);
    const struct {
        const char* why;
        const char *text, *key;
        int32_t keySize;
    } rows[] = {
        {"a tone without room is given up", "\xE8\xA1", "\x80", 2},
        {"no room", "\xA1", "\xEE", 0},
        {"less than none", "\xA1", "\xEE", INT32_MIN},
    };
    for (const auto& row : rows) {
        unsigned char key[32] = {0xEE};
        thaiSortcop(key, reinterpret_cast<const unsigned char*>(row.text), row.keySize, nullptr, map.data(), 1);
        EXPECT_STREQ(reinterpret_cast<const char*>(key), row.key) << row.why;
    }
}

// A locale of this kind compares and makes its keys so, folded with mode 0 and exactly with any other.
TEST(Thai, UnderALocale) {
    nlsCollStruct coll{};
    coll.collKind = 4;
    const Map exact = weights(false), fold = weights(true);
    std::copy(exact.begin(), exact.end(), coll.exactMap);
    std::copy(fold.begin(), fold.end(), coll.foldMap);
    nls::test::HandLocale locale{nls::test::singleByteCharset()};
    locale.get()->coll = &coll;
    unsigned char a[] = "\xE0\xA1  ", b[] = "\xA1\xA2", key[16];
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}, uint16_t{9}}) {
        const unsigned char* const map = mode == 0 ? coll.foldMap : coll.exactMap;
        uint16_t result = 77, length = 77;
        EXPECT_EQ(nlsCompare(locale.get(), nullptr, a, b, mode, &result), NLS_OK);
        EXPECT_EQ(static_cast<int16_t>(result), nls::test::slowThaiCompare(map, "\xE0\xA1  ", "\xA1\xA2"));
        EXPECT_EQ(nlsCompareN(locale.get(), nullptr, a, b, 0, 0, mode, &result), NLS_OK);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(nlsSortKey(locale.get(), nullptr, a, 16, mode, 1, key, &length), NLS_OK);
        EXPECT_EQ(std::string(key, key + length), nls::test::slowThaiKey(map, "\xE0\xA1", 15));
        EXPECT_STREQ(reinterpret_cast<char*>(a), "\xE0\xA1  ");
    }
}

}  // namespace
