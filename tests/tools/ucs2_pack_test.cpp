// The layout of multi-byte maps: what is packed reads back.
#include "tools/mkconvmap/ucs2_pack.hpp"

#include <gtest/gtest.h>

#include <random>

#include "tools/mkconvmap/ucs2_reader.hpp"

namespace nls::mkconvmap {
namespace {

constexpr std::size_t kFirst = 0;

// A small world: a grid of two lead and two trail ranges in the first map, random characters in two far blocks.
struct World {
    Ucs2Source source;
    CodeMapping mapping;
};

World randomWorld(std::mt19937& random, unsigned rowShift, unsigned valueShift, unsigned percent) {
    const Place place{"world", 1};
    World world;
    const Grid grid(place, {{0x81, 0x83}, {0xE0, 0xE1}}, {{0x40, 0x4F}, {0x60, 0x77}});
    MapPlan& map = world.source.maps[kFirst];
    map.place = place;
    map.grid = grid;
    map.holdsForth = true;
    map.rows = RowsPlan{place, rowShift, valueShift, {{0x3A1, 0x5FF}, {0x6041, 0x62A7}}};
    std::vector<uint32_t> codePoints;
    for (const CodePointBlock& block : map.rows->blocks) {
        for (uint32_t at = block.first; at <= block.last; ++at) {
            if (random() % 100 < percent) codePoints.push_back(at);
        }
    }
    std::shuffle(codePoints.begin(), codePoints.end(), random);
    for (unsigned code = 0x8100; code < 0xFFFF && !codePoints.empty(); ++code) {
        const auto number = grid.number(static_cast<Code>(code));
        if (!number || (*number << valueShift) > 0xFFFF || random() % 4 == 0) continue;
        world.mapping.forth.emplace(static_cast<Code>(code), codePoints.back());
        world.mapping.back.emplace(codePoints.back(), static_cast<Code>(code));
        codePoints.pop_back();
    }
    return world;
}

// Column 0 of every row has a cell of its own, and a row holds a cell for each of its characters besides.
void expectSoundRows(const PackedMap& map, const CodeMapping& mapping) {
    const nlsUcs2Map& record = map.record;
    for (const nlsUcs2Range& range : record.ranges) {
        if (range.rangeEnd == 0) break;
        for (uint32_t at = range.rangeStart; at <= range.rangeEnd; at += record.colMask + 1U) {
            const uint32_t place = at - range.rangeDelta - record.ucsMin;
            ASSERT_EQ(place & record.colMask, 0U);
            const uint16_t cell = map.ucsCells.at(map.ucsRows.at(place >> record.rowShift));
            ASSERT_EQ(cell >> record.valueShift != 0, mapping.back.contains(at)) << codePointText(at);
        }
    }
}

TEST(Ucs2Pack, ReadsBackForEveryShiftAndDensity) {
    std::mt19937 random{20240611};
    for (unsigned rowShift = 0; rowShift <= 8; rowShift += 2) {
        for (unsigned valueShift = 0; valueShift <= 6; valueShift += 2) {
            for (const unsigned percent : {3U, 60U}) {
                const World world = randomWorld(random, rowShift, valueShift, percent);
                const PackedMaps maps = packMaps(world.source, world.mapping);
                EXPECT_EQ(differenceOf(maps, world.mapping), "") << rowShift << "/" << valueShift << " " << percent;
                expectSoundRows(maps[kFirst], world.mapping);
            }
        }
    }
}

// A change of any word of any array has to show, or the check of the finished maps is no check. Distances are left out:
// one that passes the end of its row may grow.
TEST(Ucs2Pack, TheCheckSeesEveryChangedWord) {
    std::mt19937 random{7};
    World world = randomWorld(random, 3, 2, 8);
    PackedMaps maps = packMaps(world.source, world.mapping);
    ASSERT_EQ(differenceOf(maps, world.mapping), "");
    for (std::vector<uint16_t>* array : {&maps[kFirst].cjisToUcs, &maps[kFirst].ucsRows, &maps[kFirst].ucsCells}) {
        const std::size_t step = array->size() / 40 + 1;
        for (std::size_t at = 0; at < array->size(); at += step) {
            if (array == &maps[kFirst].ucsCells && (*array)[at] <= 8) continue;
            (*array)[at] ^= 0x0101;
            EXPECT_NE(differenceOf(maps, world.mapping), "") << "word " << at << " of " << array->size();
            (*array)[at] ^= 0x0101;
        }
    }
    maps[kFirst].ucsCells.pop_back();
    EXPECT_EQ(differenceOf(maps, world.mapping), "a walk leaves ucsCells");
}

}  // namespace
}  // namespace nls::mkconvmap
