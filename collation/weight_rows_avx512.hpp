// A weight map in registers: 64 bytes are weighed at once.
#pragma once

#include <immintrin.h>

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

struct Seconds {
    __mmask64 lanes;  // second bytes
    bool next;        // the last lane is a first byte
};

// Which bytes are second ones. In a run of bytes that could all be first ones they pair off from the left: the carry of
// an addition at the start of each run that begins in an even lane tells those runs from the others. `leads` are the
// bytes that could be first ones; where `second` holds, the first lane is a second byte.
NLS_TARGET_AVX512 inline Seconds pairOff(__mmask64 leads, bool second, std::size_t count) {
    constexpr std::uint64_t kEven = 0x5555555555555555;
    leads &= ~std::uint64_t{second};
    const std::uint64_t starts = leads & ~(leads << 1);
    const std::uint64_t fromEven = leads & ~(leads + (starts & kEven));
    const std::uint64_t first = (fromEven & kEven) | (leads & ~fromEven & ~kEven);
    return {first << 1 | std::uint64_t{second}, (first >> (count - 1) & 1) != 0};
}

}  // namespace nls
