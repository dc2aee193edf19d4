// Codes of a charset, grid numbers and Unicode: every code, every number, every code point of the BMP and plane 2, on
// records of real charsets and on records that hold anything. All arrays end at pages that fault.
#include "conversion/ucs2_lookup.hpp"

#include "conversion/cjis_grid.hpp"
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
        if (i >= 0x10000) continue;
        const auto code = static_cast<uint16_t>(i);
        ASSERT_EQ(CjisToUnicode(&map, code), reference::cjisToUnicode(map, code)) << which << code;
        ASSERT_EQ(nlsSjisToCjis(&map, code), reference::sjisToCjis(map, code)) << which << code;
        ASSERT_EQ(nlsCjisToSjis(&map, code), reference::cjisToSjis(map, code)) << which << code;
    }
    for (const uint32_t ucs : {0x10FFFFU, 0x3FFFFFFU, 0x80000000U, 0xFFFFFFFFU}) expectTwinAt(map, ucs, which);
}

TEST(CjisGrid, ReciprocalsDivideExactly) {
    for (uint32_t d = 1; d < 256; ++d)
        for (uint32_t n = 0; n < 0x10000; ++n)
            ASSERT_EQ(divideBy(kReciprocals[d], static_cast<uint16_t>(n)), n / d) << n << " / " << d;
}

TEST(Ucs2Lookup, RealRecords) {
    for (const char* const name : kMultiByte)
        for (int i = 0; i < 3; ++i) expectTwin(RealDbcs::of(name).table().maps[i], name + std::to_string(i) + ": ");
}

TEST(Ucs2Lookup, AnyRecord) {
    Random random{12};
    for (int i = 0; i < 80 && !testing::Test::HasFatalFailure(); ++i) {
        nlsUcs2Map map = RealDbcs::of(i % 2 == 0 ? "SHIFT-JIS" : "CP950-HKSCS").table().maps[i % 3];
        mutate(map, random);
        if (i % 10 == 0) map.trailsPerRow = 0;
        expectTwin(map, std::to_string(i) + ": ");
    }
}

// Absent ranges as the data file writes them, FF-00, and as it mustn't, with what comes of it.
TEST(CjisGrid, AbsentRanges) {
    nlsUcs2Map map = RealDbcs::of("KSC5601").table().maps[2];
    EXPECT_EQ(gridNumber(map, 0xA1A1), 1U);
    EXPECT_EQ(gridNumber(map, 0xB0FF), kNoMapping) << "a trail byte behind the last one isn't the next row's first";
    map.leadFirst2 = map.leadLast2 = 0;
    EXPECT_EQ(gridNumber(map, 0xA1A1), kNoMapping) << "00-00 is a range, and every lead byte lies above it";
    map.leadFirst2 = 1;
    EXPECT_NE(gridNumber(map, 0xFFA1), kNoMapping) << "01-00 is none, but every lead byte passes its first value";
}

// One row of eight columns: 0 and 3 mapped near each other, 7 behind a distance that has a cell of its own.
TEST(Ucs2Lookup, CellsOfOneRow) {
    uint16_t rows[] = {0};
    uint16_t cells[] = {10 << 2 | 3, 13 << 2 | 0, 4, 17 << 2 | 1};
    nlsUcs2Map map{};
    map.ucsRows = rows, map.ucsRowCount = 1, map.ucsCells = cells, map.ucsCellCount = 4;
    map.ucsMin = 0x100, map.ucsMax = 0x107;
    map.rowShift = 32 + 3, map.colMask = 7, map.valueShift = 32 + 2, map.skipMask = 3;  // shifts count modulo 32
    const uint32_t want[] = {kNoMapping, 10,         kNoMapping, kNoMapping, 13,
                             kNoMapping, kNoMapping, kNoMapping, 17,         kNoMapping};
    for (uint32_t c = 0; c < 10; ++c) EXPECT_EQ(UnicodeToCjis(&map, 0xFF + c), want[c]) << c;
    map.ranges[0] = {0x4FF, 0x400, 0x300};
    EXPECT_EQ(UnicodeToCjis(&map, 0x403), 13U);
    EXPECT_EQ(UnicodeToCjis(&map, 0x103), kNoMapping) << "in none of the triples";
    cells[2] = 0xFFF0;  // takes the column past zero and round to a positive number: the walk goes on behind the array
    EXPECT_EQ(UnicodeToCjis(&map, 0x407), kNoMapping);
}

}  // namespace
}  // namespace nls
