// The first 64 bytes of a text that ends at a NUL.
#pragma once

#include "collation/equal_run.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

inline constexpr std::size_t kTextBlock = 64;

struct TextBlock {
    __m512i bytes;
    std::size_t length;  // up to the NUL
    bool ended;          // else all bytes belong to the text
};

// What stands behind the end of a text isn't read unless it lies in the same page.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS inline TextBlock textBlockAt(const unsigned char* text) {
    const std::size_t inPage = leftInPage(text);
    __m512i bytes;
    if (inPage < kTextBlock) {
        const __mmask64 all = firstLanes(inPage);
        bytes = _mm512_maskz_loadu_epi8(all, text);
        const __mmask64 ends = _mm512_mask_testn_epi8_mask(all, bytes, bytes);
        if (ends != 0) return {bytes, _tzcnt_u64(ends), true};
    }
    bytes = _mm512_loadu_si512(text);
    const __mmask64 ends = _mm512_testn_epi8_mask(bytes, bytes);
    return {bytes, _tzcnt_u64(ends), ends != 0};
}

// A map of 256 bytes applied to a block, with rows that no register is kept for.
NLS_TARGET_AVX512 inline __m512i lookUpOnce(const unsigned char* map, __m512i bytes) {
    const __m512i low = _mm512_permutex2var_epi8(_mm512_loadu_si512(map), bytes, _mm512_loadu_si512(map + kTextBlock));
    const __m512i high = _mm512_permutex2var_epi8(_mm512_loadu_si512(map + 2 * kTextBlock), bytes,
                                                  _mm512_loadu_si512(map + 3 * kTextBlock));
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
}

NLS_TARGET_AVX512 inline std::uint64_t lanesOf(__m512i bytes, unsigned char byte) {
    return _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(byte)));
}

}  // namespace nls
