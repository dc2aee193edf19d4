// The grid of a double-byte charset: a DBCS code and its running number, the Cjis code, and back.
//
// Rows are the lead bytes, columns the trail bytes, the holes in both squeezed out. A DBCS code is the character's
// bytes as a 16-bit value, first byte high; a one-byte character has 0 high. All constants come from the record, so the
// functions know no charset. Number 0 stands for the code `sjisZero`, which may lie outside the grid.
//
//   trail:  |-- range 1 --|  gap  |-- range 2 --|  gap  |-- range 3 --|      a range whose last value is below its
//   lead:   |-- range 1 --|  gap  |-- range 2 --|                            first is absent
//
// A record may hold anything: every answer is a number below 65536, nothing but the record is read, and a grid without
// columns has no place at all. The two ways undo each other for the grids of at most two trail ranges that the data
// file holds; with three, the way back looks at a trail byte before its gap is added, and misses some. Tested by
// tests/conversion/dbcs_bridge_test.cpp and, character by character, tests/real.
#pragma once

#include <array>
#include <cstdint>

#include "nls/records.h"

namespace nls {

// The one answer that says "no place in the grid" or "no mapping"; the caller tries its next map.
inline constexpr uint32_t kNoMapping = 0xFFFF;

// n / d as a multiplication: (n * reciprocal[d]) >> 24, exact for every 16-bit n, since the reciprocal exceeds 2^24 / d
// by at most 1, and 65535 * 255 is below 2^24.
inline constexpr std::array<uint32_t, 256> kReciprocals = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t d = 1; d < 256; ++d) table[d] = (1U << 24) / d + 1;
    return table;
}();
constexpr uint32_t divideBy(uint32_t reciprocal, uint16_t n) {
    return static_cast<uint32_t>((uint64_t{n} * reciprocal) >> 24);
}
static_assert(divideBy(kReciprocals[188], 11105) == 59 && divideBy(kReciprocals[1], 65535) == 65535);

inline bool hasSecondLead(const nlsUcs2Map& map) {
    return map.leadLast2 >= map.leadFirst2;
}
inline bool hasSecondTrail(const nlsUcs2Map& map) {
    return map.trailLast2 >= map.trailFirst2;
}
inline bool hasThirdTrail(const nlsUcs2Map& map) {
    return map.trailLast3 >= map.trailFirst3;
}

inline bool isGridLead(const nlsUcs2Map& map, uint8_t lead) {
    if (lead < map.leadFirst1) return false;
    if (lead > map.leadLast1 && lead < map.leadFirst2) return false;
    return !(hasSecondLead(map) && lead > map.leadLast2);
}

inline bool isGridTrail(const nlsUcs2Map& map, uint8_t trail) {
    if (trail < map.trailFirst1) return false;
    if (trail > map.trailLast1 && trail < map.trailFirst2) return false;
    if (hasSecondTrail(map) && trail > map.trailLast2 && trail < map.trailFirst3) return false;
    return !(hasThirdTrail(map) && trail > map.trailLast3);
}

// What is taken off a trail byte on the way to its column, and added on the way back.
inline uint8_t trailGap(const nlsUcs2Map& map, uint8_t trail) {
    if (hasSecondTrail(map) && trail > map.trailLast2) return map.trailGap3;
    return trail > map.trailLast1 ? map.trailGap2 : 0;
}

// DBCS code to Cjis code.
inline uint32_t gridNumber(const nlsUcs2Map& map, uint16_t code) {
    if (map.trailsPerRow == 0) return kNoMapping;
    if (code == map.sjisZero) return 0;
    const auto lead = static_cast<uint8_t>(code >> 8), trail = static_cast<uint8_t>(code);
    if (!isGridLead(map, lead) || !isGridTrail(map, trail)) return kNoMapping;
    const auto row = static_cast<uint8_t>(lead - (lead > map.leadLast1 ? map.leadGap : 0) - map.leadFirst1);
    const auto column = static_cast<uint8_t>(trail - trailGap(map, trail) - map.trailFirst1);
    const auto number = static_cast<uint16_t>(1 - map.cjisBase + row * map.trailsPerRow + column);
    return static_cast<uint16_t>(number > map.gapAfter ? number - map.gapSize : number);
}

// Cjis code to DBCS code. No range is tested: a number out of a map is taken to be valid.
inline uint32_t gridCode(const nlsUcs2Map& map, uint16_t cjis) {
    if (map.trailsPerRow == 0) return kNoMapping;
    if (cjis == 0) return map.sjisZero;
    const int squeezed = cjis > map.gapAfter ? cjis + map.gapSize : cjis;
    const auto place = static_cast<uint16_t>(map.cjisBase - 1 + squeezed);
    const uint32_t row = divideBy(kReciprocals[map.trailsPerRow], place);
    const auto squeezedTrail = static_cast<uint8_t>(map.trailFirst1 + place - row * map.trailsPerRow);
    const auto trail = static_cast<uint8_t>(squeezedTrail + trailGap(map, squeezedTrail));
    const auto squeezedLead = static_cast<uint8_t>(row + map.leadFirst1);
    const auto lead = static_cast<uint8_t>(squeezedLead + (squeezedLead > map.leadLast1 ? map.leadGap : 0));
    return static_cast<uint32_t>(lead << 8 | trail);
}

}  // namespace nls
