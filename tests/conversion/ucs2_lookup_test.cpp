// Grid numbers and Unicode through the arrays: every code point of the BMP and plane 2, every number, on records of
// real charsets and on records that hold anything. All arrays end at pages that fault.
#include "conversion/ucs2_lookup.hpp"

#include "nls/dbcs_transforms.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/dbcs.hpp"

namespace nls {
namespace {

using namespace test;

void expectTwinAt(const nlsUcs2Map& map, uint32_t ucs, const std::string& which) {
    ASSERT_EQ(UnicodeToCjis(&map, ucs), reference::unicodeToCjis(map, ucs)) << which << std::hex << ucs;
    ASSERT_EQ(UnicodeToDbcs(&map, ucs), reference::unicodeToDbcs(map, ucs)) << which << std::hex << ucs;
}

void expectTwin(nlsUcs2Map map, const std::string& which) {
    const GuardedArrays guard{map};
    for (uint32_t i = 0; i < 0x20000; ++i) {
        expectTwinAt(map, i < 0x10000 ? i : i + 0x10000, which);
        const auto cjis = static_cast<uint16_t>(i);
        ASSERT_EQ(CjisToUnicode(&map, cjis), reference::cjisToUnicode(map, cjis)) << which << cjis;
    }
    for (const uint32_t ucs : {0x10FFFFU, 0x3FFFFFFU, 0x80000000U, 0xFFFFFFFFU}) expectTwinAt(map, ucs, which);
}

TEST(Ucs2Lookup, RealRecords) {
    for (const std::string& name : dbcsRecipeNames()) {
        const nlsUcs2Map(&maps)[3] = packedDbcs(name).table().maps;
        for (int i = 0; i < 3; ++i) expectTwin(maps[i], name + " map " + std::to_string(i) + ": ");
        const nlsUcs2Map& third = maps[2];
        EXPECT_EQ(CjisToUnicode(&third, third.cjisCount), kNoMapping) << name;
        EXPECT_NE(CjisToUnicode(&third, static_cast<uint16_t>(third.cjisCount - 1)), kNoMapping) << name;
    }
}

TEST(Ucs2Lookup, AnyRecord) {
    Random random{12};
    for (int i = 0; i < 80; ++i) {
        nlsUcs2Map map = packedDbcs(i % 2 == 0 ? "SHIFT-JIS" : "CP950-HKSCS").table().maps[i % 3];
        mutate(map, random);
        expectTwin(map, std::to_string(i) + ": ");
        if (HasFatalFailure()) return;
    }
}

// One row of eight columns: 0 and 3 mapped near each other, 7 behind a distance that has a cell of its own.
TEST(Ucs2Lookup, CellsOfOneRow) {
    uint16_t rows[] = {0};
    uint16_t cells[] = {10 << 2 | 3, 13 << 2 | 0, 4, 17 << 2 | 1};
    nlsUcs2Map map{};
    map.ucsRows = rows, map.ucsRowCount = 1, map.ucsCells = cells, map.ucsCellCount = 4;
    map.ucsMin = 0x100, map.ucsMax = 0x107;
    map.rowShift = 3, map.colMask = 7, map.valueShift = 2, map.skipMask = 3;
    const uint32_t want[] = {10, kNoMapping, kNoMapping, 13, kNoMapping, kNoMapping, kNoMapping, 17};
    for (uint32_t c = 0; c < 8; ++c) EXPECT_EQ(UnicodeToCjis(&map, 0x100 + c), want[c]) << c;
    EXPECT_EQ(UnicodeToCjis(&map, 0xFF), kNoMapping);
    EXPECT_EQ(UnicodeToCjis(&map, 0x108), kNoMapping);
    map.rowShift = 32 + 3, map.valueShift = 32 + 2;
    EXPECT_EQ(UnicodeToCjis(&map, 0x107), 17U) << "shifts are taken modulo 32";
    map.ranges[0] = {0x4FF, 0x400, 0x300};
    EXPECT_EQ(UnicodeToCjis(&map, 0x403), 13U);
    EXPECT_EQ(UnicodeToCjis(&map, 0x103), kNoMapping) << "in none of the triples";
    cells[2] = 0xFFF0;  // takes the column past zero and round to a positive number: the walk goes on behind the array
    EXPECT_EQ(UnicodeToCjis(&map, 0x407), kNoMapping);
}

}  // namespace
}  // namespace nls
