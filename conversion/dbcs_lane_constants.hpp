// Constants of the lanes of dbcs_runs_avx512, in memory that the compiler doesn't see through: it would build them from
// immediates, in each turn of a loop, on the port that the shuffles and comparisons need.
#pragma once

#include <cstdint>

#include "convmap/dbcs_index.hpp"

namespace nls {

struct LaneConstants {
    uint32_t minusOne = 0xFFFFFFFF, byte = 0xFF, word = 0xFFFF, evenBytes = 0x00FF00FF;
    uint32_t toSecond =
        0x00010000;  // a character's first byte in the low half of its lane, its second in the high half
    uint32_t toFormer = 0x00FEFF00;  // its last byte, the one before, the one before that
    uint32_t replacement = 0xFFFD, end2 = 0x800;
    uint32_t bits3 = 0x003F3F0F, marks3 = 0x008080E0, bits2 = 0x00003F1F, marks2 = 0x000080C0;
    uint32_t trailEnd = 0xC0C0C0C0, threes = 0xE0E0E0E0, fours = 0xF0F0F0F0;
    uint32_t oneSpelled = 0x0000007F, twoSpelled = 0x00001F3F, threeSpelled = 0x000F3F3F;
    uint32_t pairWeights = 0x00014001, halfWeights = 0x10000001;
    uint32_t pageSize = DbcsIndex::kPageSize, twoPages = 2 * DbcsIndex::kPageSize;
};
extern const LaneConstants kLane;

}  // namespace nls
