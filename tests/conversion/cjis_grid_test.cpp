// Grid places of double-byte codes: every code of every kind of grid, and grids that hold anything.
#include "conversion/cjis_grid.hpp"

#include "nls/dbcs_transforms.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/dbcs.hpp"

namespace nls {
namespace {

using namespace test;

void expectTwin(const nlsUcs2Map& map, const std::string& which) {
    for (uint32_t code = 0; code < 0x10000; ++code) {
        ASSERT_EQ(nlsSjisToCjis(&map, static_cast<uint16_t>(code)), reference::sjisToCjis(map, code)) << which << code;
        ASSERT_EQ(nlsCjisToSjis(&map, static_cast<uint16_t>(code)), reference::cjisToSjis(map, code)) << which << code;
    }
}

TEST(CjisGrid, ReciprocalsDivideExactly) {
    for (uint32_t d = 1; d < 256; ++d)
        for (uint32_t n = 0; n < 0x10000; ++n)
            ASSERT_EQ(divideBy(kReciprocals[d], static_cast<uint16_t>(n)), n / d) << n << " / " << d;
}

// Each code of a real charset has a place of its own, and its place leads back to it; what no character has is refused.
TEST(CjisGrid, RealGridsInvert) {
    for (const std::string& name : dbcsRecipeNames()) {
        const PackedDbcs& packed = packedDbcs(name);
        const nlsUcs2Map& map = packed.block.table.maps[2];
        expectTwin(map, name);
        uint32_t places = 0;
        for (uint32_t code = 0x8000; code < 0xFFFF; ++code) {
            const uint32_t cjis = nlsSjisToCjis(&map, static_cast<uint16_t>(code));
            if (cjis == kNoMapping) continue;
            ASSERT_EQ(nlsCjisToSjis(&map, static_cast<uint16_t>(cjis)), code) << name;
            ++places;
        }
        ASSERT_EQ(places % map.trailsPerRow, 0U) << name;
        for (const auto& [code, ucs] : packed.toUnicode) {
            if (code > 0xFF) {
                ASSERT_NE(nlsSjisToCjis(&map, code), kNoMapping) << name << code;
            }
        }
        EXPECT_EQ(nlsSjisToCjis(&map, map.sjisZero), 0U);
        EXPECT_EQ(nlsCjisToSjis(&map, 0), map.sjisZero);
    }
}

TEST(CjisGrid, AnyRecord) {
    Random random{11};
    for (int i = 0; i < 60; ++i) {
        nlsUcs2Map map = packedDbcs(i % 2 == 0 ? "SHIFT-JIS" : "BIG-5").table().maps[2];
        mutate(map, random);
        if (i % 10 == 0) map.trailsPerRow = 0;
        expectTwin(map, std::to_string(i) + ": ");
        if (HasFatalFailure()) return;
    }
}

// Absent ranges as the data file writes them, FF-00, and as it mustn't, with what comes of it.
TEST(CjisGrid, AbsentRanges) {
    nlsUcs2Map map = packedDbcs("KSC5601").table().maps[2];
    EXPECT_EQ(gridNumber(map, 0xA1A1), 1U);
    EXPECT_EQ(gridNumber(map, 0xFEFE), 94U * 94U);
    EXPECT_EQ(gridNumber(map, 0xB0FF), kNoMapping) << "a trail byte behind the last one isn't the next row's first";
    map.leadFirst2 = map.leadLast2 = 0;
    EXPECT_EQ(gridNumber(map, 0xA1A1), kNoMapping) << "00-00 is a range, and every lead byte lies above it";
    map.leadFirst2 = 1;
    EXPECT_EQ(gridNumber(map, 0xFFA1), 94U * 94U + 1) << "01-00 is none, but every lead byte passes its first value";
}

}  // namespace
}  // namespace nls
