// Characters alone: the answer is that of the comparison, and where entries decide, they decide alike.
#include "collation/char_equality.hpp"

#include <gtest/gtest.h>

#include "nls/compare.h"
#include "tests/support/hand_collations.hpp"

namespace nls::test {
namespace {

TEST(CharEquality, BytesOfOneEntryAreEqualWhereEntriesDecide) {
    unsigned decided = 0;
    for (const HandRoute& route : handRoutes()) {
        const nlsLocale& locale = *route.get();
        for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
            if (!equalByEntries(locale, mode)) continue;
            ++decided;
            const unsigned char* const map = mode == 0 ? locale.coll->foldMap : locale.coll->exactMap;
            for (unsigned a = 1; a < 256; ++a) {
                for (unsigned b = 1; b < 256; ++b) {
                    const unsigned char first[] = {static_cast<unsigned char>(a), 0xFF};
                    const unsigned char second[] = {static_cast<unsigned char>(b), 0xFE};
                    uint16_t result = 7;
                    ASSERT_EQ(nlsCompareN(&locale, nullptr, first, second, 1, 1, mode, &result), NLS_OK);
                    ASSERT_EQ(result == 0, map[a] == map[b]) << route.name << " " << mode << " " << a << " " << b;
                }
            }
        }
    }
    EXPECT_GE(decided, 2U);  // those of the plain collation
}

TEST(CharEquality, EntriesDontDecideElsewhere) {
    CollatedLocale made{singleByteCharset(), plainCollation()};
    nlsLocale& locale = *made.get();
    EXPECT_TRUE(equalByEntries(locale, 0) && equalByEntries(locale, 1));
    EXPECT_FALSE(equalByEntries(locale, 2));
    for (const int32_t kind : {2, 3, 4, 5}) {
        made.coll().collKind = kind;
        EXPECT_FALSE(equalByEntries(locale, 0)) << kind;
    }
    made.coll().collKind = 1;
    made.coll().foldMap[unsigned{' '}] = 0;
    EXPECT_FALSE(equalByEntries(locale, 0));
    locale.coll = nullptr;
    EXPECT_FALSE(equalByEntries(locale, 1));
    for (const NamedCharset& charset : handCharsets()) {
        CollatedLocale other{charset.attrib, plainCollation()};
        EXPECT_EQ(equalByEntries(*other.get(), 0), charset.name == std::string{"single"}) << charset.name;
    }
}

TEST(CharEquality, ComparesOneCharacterOfEachText) {
    CollatedLocale sjis{sjisCharset(), plainCollation()};
    const CharacterEquality exact{*sjis.get(), nullptr, 1}, folded{*sjis.get(), nullptr, 0};
    const auto sign = [](const CharacterEquality& equality, const char* a, const char* b) {
        return equality(reinterpret_cast<const unsigned char*>(a), reinterpret_cast<const unsigned char*>(b)).sign;
    };
    EXPECT_EQ(sign(exact, "\x81\x40x", "\x81\x40y"), 0);
    EXPECT_EQ(sign(exact, "\x81\x40", "\x81\x41"), -1);
    EXPECT_EQ(sign(folded, "Ab", "ac"), 0);
    EXPECT_EQ(sign(exact, "", " x"), 0);
    EXPECT_EQ(sign(exact, "", "x"), -1);
    EXPECT_EQ((CharacterEquality{*sjis.get(), nullptr, 2}(bytesOf("a"), bytesOf("a")).status), NLS_BAD_COMPARE_MODE);
    sjis.get()->coll = nullptr;
    EXPECT_EQ(exact(bytesOf("a"), bytesOf("a")).status, NLS_BAD_COLLATION);
}

}  // namespace
}  // namespace nls::test
