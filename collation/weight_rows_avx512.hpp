// A weight map in registers: 64 bytes are weighed at once.
#pragma once

#include <immintrin.h>

#include "collation/pair_off.hpp"
#include "collation/weights.hpp"
#include "core/base/cpu.hpp"

namespace nls {

struct WeightRows {
    __m512i row[4];
};

// `map` has 256 bytes.
NLS_TARGET_AVX512 inline WeightRows rowsOf(const unsigned char* map) {
    const auto row = [map](int i) NLS_TARGET_AVX512 { return _mm512_loadu_si512(map + 64 * i); };
    return {{row(0), row(1), row(2), row(3)}};
}
NLS_TARGET_AVX512 inline WeightRows rowsOf(WeightMap weights) {
    return rowsOf(weights.entries());
}

// Each half of the map is looked up by the low seven bits of a byte; bit 7 chooses the half.
NLS_TARGET_AVX512 inline __m512i weigh(const WeightRows& rows, __m512i bytes) {
    const __m512i low = _mm512_permutex2var_epi8(rows.row[0], bytes, rows.row[1]);
    const __m512i high = _mm512_permutex2var_epi8(rows.row[2], bytes, rows.row[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
}

// The first `count` of 64 lanes.
NLS_TARGET_AVX512 inline __mmask64 firstLanes(std::size_t count) {
    return _bzhi_u64(~std::uint64_t{0}, static_cast<unsigned>(count));
}

}  // namespace nls
