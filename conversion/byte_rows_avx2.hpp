// A table of 128 bytes in registers, looked up for 32 bytes at once (AVX2).
//
// A byte shuffle answers from one row of 16 and yields 0 where bit 7 of the index is set. Row k is looked up with the
// index less 16 * k: in all rows up to its own the index stays at 0 or above, and in those behind it is negative. So
// each row holds the difference (exclusive or) to the row before it, and the answers of all rows together are the
// entry. An index with bit 7 set yields 0 in every row: the subtraction is signed and stops at -128.
#pragma once

#include <immintrin.h>

#include "core/base/cpu.hpp"

namespace nls {

struct ByteRows {
    __m256i row[8];
};

NLS_TARGET_AVX2 inline ByteRows byteRows(const unsigned char* first64, const unsigned char* second64) {
    ByteRows rows;
    __m128i before = _mm_setzero_si128();
    for (int k = 0; k < 8; ++k) {
        const unsigned char* const part = k < 4 ? first64 + 16 * k : second64 + 16 * (k - 4);
        const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(part));
        rows.row[k] = _mm256_broadcastsi128_si256(_mm_xor_si128(row, before));
        before = row;
    }
    return rows;
}

// The entries at the indices 0 to 127; 0 where bit 7 of an index is set.
NLS_TARGET_AVX2 inline __m256i lookUp(const ByteRows& rows, __m256i index) {
    const __m256i sixteen = _mm256_set1_epi8(16);
    __m256i entries = _mm256_shuffle_epi8(rows.row[0], index);
#pragma GCC unroll 8
    for (int k = 1; k < 8; ++k) {
        index = _mm256_subs_epi8(index, sixteen);
        entries = _mm256_xor_si256(entries, _mm256_shuffle_epi8(rows.row[k], index));
    }
    return entries;
}

}  // namespace nls
