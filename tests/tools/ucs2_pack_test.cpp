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

TEST(Ucs2Pack, EmptyRowsAreOneAndFarCellsTakeTwo) {
    std::mt19937 random{1};
    World world = randomWorld(random, 3, 2, 0);
    // Three rows of eight columns: 1 and 7 mapped; nothing; 0 mapped. Two empty rows more.
    world.source.maps[kFirst].rows->blocks = {{0x400, 0x427}};
    const Code codes[] = {0x8140, 0x8141, 0x8142};
    const uint32_t codePoints[] = {0x401, 0x407, 0x410};
    for (int at = 0; at < 3; ++at) {
        world.mapping.forth.emplace(codes[at], codePoints[at]);
        world.mapping.back.emplace(codePoints[at], codes[at]);
    }
    const PackedMap map = packMaps(world.source, world.mapping)[kFirst];
    const std::vector<uint16_t> cells{0 << 2 | 1, 1 << 2 | 0, 6, 2 << 2 | 1,  // column 0, 1 and six on, 7
                                      0,          8,                          // the empty row
                                      3 << 2 | 0, 8};                         // column 0 alone
    EXPECT_EQ(map.ucsCells, cells);
    EXPECT_EQ(map.ucsRows, (std::vector<uint16_t>{0, 4, 6, 4, 4}));
    EXPECT_EQ(map.record.ranges[0].rangeEnd, 0U) << "one block of the first plane needs no triple";
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

// Codes just outside a grid are misses, whatever ranges it lacks.
TEST(Ucs2Grid, RefusesEveryCodeOutside) {
    const Place place{"grid", 1};
    const Grid grids[] = {
        Grid(place, {{0xA1, 0xF7}}, {{0xA1, 0xFE}}),
        Grid(place, {{0x81, 0x9F}, {0xE0, 0xFC}}, {{0x40, 0x7E}, {0x80, 0xFC}}),
        Grid(place, {{0x00, 0x00}, {0xC1, 0xCF}}, {{0x20, 0xFF}}),
        Grid(place, {{0x00, 0x00}}, {{0x5C, 0xDF}}),
    };
    for (const Grid& grid : grids) {
        nlsUcs2Map record{};
        grid.describe(record);
        for (uint32_t code = 1; code < 0xFFFF; ++code) {
            const auto number = grid.number(static_cast<Code>(code));
            const uint32_t have = cjisOfCode(record, code);
            if (number) {
                ASSERT_EQ(have, *number) << hexText(code, 4);
                ASSERT_EQ(codeOfCjis(record, *number), code);
            } else {
                // The lead byte FF passes where there is one range of leads: it counts as a row behind the last.
                ASSERT_TRUE(have == kMiss || (code >> 8) > record.leadLast1) << hexText(code, 4);
            }
        }
    }
}

}  // namespace
}  // namespace nls::mkconvmap
