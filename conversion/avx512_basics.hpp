// Small operations on 64 bytes that the AVX-512 walks share.
//
// Where the plain intrinsic of a permutation or a widening leaves its unused input uninitialised (the headers of GCC 12
// then warn), the form with a full mask stands here once for all.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "core/base/cpu.hpp"

namespace nls {

// The lowest `count` bits, all of them from 64 on.
NLS_TARGET_AVX512 inline uint64_t firstBits(std::size_t count) {
    return _bzhi_u64(~uint64_t{0}, static_cast<unsigned>(count));
}

NLS_TARGET_AVX512 inline __m512i permuteQwords(__m512i from, __m512i places) {
    return _mm512_maskz_permutexvar_epi64(0xFF, places, from);
}
NLS_TARGET_AVX512 inline __m512i permuteDwords(__m512i from, __m512i places) {
    return _mm512_maskz_permutexvar_epi32(0xFFFF, places, from);
}

// The unpacking instructions interleave in each quarter of a register on its own. Before they do, this deals 64 bytes
// out to the quarters: eight bytes to each, and then eight again.
NLS_TARGET_AVX512 inline __m512i dealOutQwords(__m512i bytes) {
    return permuteQwords(bytes, _mm512_set_epi64(7, 3, 6, 2, 5, 1, 4, 0));
}

NLS_TARGET_AVX512 inline __m256i lowHalf(__m512i v) {
    return __builtin_shufflevector(v, v, 0, 1, 2, 3);
}
NLS_TARGET_AVX512 inline __m256i highHalf(__m512i v) {
    return __builtin_shufflevector(v, v, 4, 5, 6, 7);
}

// 32 bytes to words, 16 bytes to double words.
NLS_TARGET_AVX512 inline __m512i widenBytesToWords(const unsigned char* place) {
    return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(place)));
}
NLS_TARGET_AVX512 inline __m512i widenBytesToDwords(const unsigned char* place) {
    return _mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(place)));
}

// The first `count` double words, 16 at most.
NLS_TARGET_AVX512 inline void storeDwords(unsigned char* target, __m512i dwords, std::size_t count) {
    _mm512_mask_storeu_epi32(target, static_cast<__mmask16>(firstBits(count)), dwords);
}

// Units of kUnit bytes, 2 or 4, to the other byte order.
template <int kUnit>
NLS_TARGET_AVX512 inline __m512i swapUnits(__m512i units) {
    const __m512i places = kUnit == 2 ? _mm512_set4_epi32(0x0E0F0C0D, 0x0A0B0809, 0x06070405, 0x02030001)
                                      : _mm512_set4_epi32(0x0C0D0E0F, 0x08090A0B, 0x04050607, 0x00010203);
    return _mm512_shuffle_epi8(units, places);
}

}  // namespace nls
