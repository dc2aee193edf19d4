// Sort keys through ICU: ICU's own bytes, cut to the room, and empty where there is none.
#include "icu/icu_key.hpp"

#include "icu/builds.hpp"
#include "icu/image.hpp"
#include "nls/icu.h"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/peer.hpp"
#include "tests/icu/words.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls {
namespace {

using test::bytesOf;
using test::keyOf;

constexpr uint16_t kPrimaryOnly = 0x4000, kUncounted = 0x2000;

TEST(IcuKey, IsIcusKey) {
    const struct {
        const char* name;
        const char* icuLocale;
    } rows[] = {
        {"ICU-UCA", ""}, {"ICU_48-de@phonebook", "de@collation=phonebook"}, {"ICU_48-ja", "ja"}, {"ICU-th", "th"}};
    constexpr struct {
        uint16_t options;
        int strength;
    } modes[] = {{0, 1},
                 {1, 2},
                 {4, 0},
                 {5, 1},
                 {6, 2},
                 {7, 3},
                 {8, 3},
                 {kUncounted | 1, 2},
                 {kUncounted, 1},
                 {kPrimaryOnly | 1, 0},
                 {kPrimaryOnly, 0},
                 {kPrimaryOnly | 9, 0}};
    test::IcuWorld world;
    for (const auto& row : rows) {
        const nlsLocale* const locale = world.locale(row.name);
        test::ThreadBlock block;
        for (const auto& [options, strength] : modes) {
            const test::peer::Collator peer{row.icuLocale, strength};
            for (const std::string& word : test::words())
                ASSERT_EQ(keyOf(locale, block.get(), word, options), peer.key(test::peer::unitsOf(word)))
                    << row.name << " options " << options << " " << word;
        }
    }
}

class Key : public testing::Test {
protected:
    std::string key(const std::string& text, uint16_t options = 1) { return keyOf(locale, nullptr, text, options); }

    test::IcuWorld world;
    const nlsLocale* locale = world.locale("ICU-sv");
    unsigned char* map = locale->coll->exactMap;
};

TEST_F(Key, IsCutToItsRoom) {
    const std::string text = "Öl och smör", whole = key(text);
    for (std::size_t room = 1; room < whole.size() + 3; ++room) {
        test::GuardedBuffer target{room};
        unsigned char* const place = target.atEnd(room);
        std::memset(place, 0xEE, room);
        nlsIcuSortKey(place, bytesOf(text), nullptr, static_cast<int16_t>(room), map, 1, 0);
        const std::size_t length = std::min(room - 1, whole.size());
        EXPECT_EQ(place[length], 0) << room;
        EXPECT_EQ((std::string{place, place + length}), whole.substr(0, length)) << room;
    }
    unsigned char untouched = 0xEE;
    for (const int16_t room : {int16_t{0}, int16_t{-1}})
        nlsIcuSortKey(&untouched, bytesOf(text), nullptr, room, map, 1, 0);
    EXPECT_EQ(untouched, 0xEE);
}

TEST_F(Key, OfFourHundredUnitsIsEmpty) {
    for (const char* const letter : {"x", "ö", "日"}) {
        std::string text;
        for (unsigned i = 0; i < 399; ++i) text += letter;
        EXPECT_EQ(key(text), (test::peer::Collator{"sv", 2}.key(test::peer::unitsOf(text)))) << letter;
        EXPECT_EQ(key(text + letter), "") << letter;
        EXPECT_EQ(key(text + "\xF0\xA0\x80\x80"), "") << letter;
    }
    std::string pairs;
    for (unsigned i = 0; i < 199; ++i) pairs += "\xF0\xA0\x80\x80";
    EXPECT_NE(key(pairs), "");
    EXPECT_EQ(key(pairs + "\xF0\xA0\x80\x80"), "");
    EXPECT_EQ(key(std::string(65536, 'x')), "");  // its length counts in 16 bits
    EXPECT_EQ(key(std::string(65537, 'x')), "");
}

TEST_F(Key, BlanksCountUnlessTrimmed) {
    EXPECT_NE(key("a "), key("a"));
    std::string text = "a  ";
    unsigned char trimmed[64];
    uint16_t length = 0;
    ASSERT_EQ(nlsSortKey(locale, nullptr, bytesOf(text), 64, 1, 1, trimmed, &length), NLS_OK);
    EXPECT_EQ((std::string{trimmed, trimmed + length}), key("a"));
    EXPECT_EQ(text, "a  ");
}

TEST_F(Key, FailuresLeaveItEmpty) {
    EXPECT_EQ(key(""), "");
    for (const uint16_t mode : {uint16_t{2}, uint16_t{3}, uint16_t{9}, uint16_t{0x1FFF}}) EXPECT_EQ(key("a", mode), "");
    std::strcpy(IcuImage{map}.strengthWord(), "NONE");
    EXPECT_EQ(key("a"), "");
    EXPECT_NE(key("a", kPrimaryOnly | 1), "");
    nlsIcuFuncs& funcs = *icuarray[0].entryPoints;
    const nlsIcuFuncs saved = funcs;
    funcs.slots[22] = reinterpret_cast<void*>(+[](void*, void*, int32_t, unsigned char* place) {
        *place = 7;
        return 0;
    });
    EXPECT_EQ(key("a", 6), "");
    funcs = saved;
    std::memset(map, 0, sizeof(nlsIcuInfo*));
    EXPECT_EQ(key("a", 6), "");
}

}  // namespace
}  // namespace nls
