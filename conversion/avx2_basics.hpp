// Loads, stores and squeezes of 16 and 32 bytes that the AVX2 walks share, and blocks at the edge of a text, where
// exactly the bytes that are there may be touched.
//
// A wide store may write more than was asked for. That is done only where text which follows is sure to cover the rest;
// near the end a block goes into a buffer of its own, and copySmall takes over the bytes that count.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "conversion/squeeze_tables.hpp"
#include "core/base/cpu.hpp"
#include "core/base/views.hpp"

namespace nls {

NLS_TARGET_AVX2 inline __m256i load32(const unsigned char* place) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
}
NLS_TARGET_AVX2 inline void store32(unsigned char* place, __m256i bytes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(place), bytes);
}
NLS_TARGET_AVX2 inline __m128i load16(const unsigned char* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
NLS_TARGET_AVX2 inline void store16(unsigned char* place, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(place), bytes);
}

NLS_TARGET_AVX2 inline uint32_t signBits(__m256i v) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(v));
}
NLS_TARGET_AVX2 inline __m128i lowHalf(__m256i v) {
    return _mm256_castsi256_si128(v);
}
NLS_TARGET_AVX2 inline __m128i highHalf(__m256i v) {
    return _mm256_extracti128_si256(v, 1);
}

// Each half by a shuffle of a squeeze table. The rows are given as 16 times their number, the place in the table.
NLS_TARGET_AVX2 inline __m128i squeeze(const SqueezeTable& table, __m128i bytes, uint64_t row16) {
    return _mm_shuffle_epi8(bytes, load16(reinterpret_cast<const unsigned char*>(&table) + row16));
}

// Words to the other byte order, and double words.
NLS_TARGET_AVX2 inline __m256i swapWords(__m256i words) {
    return _mm256_or_si256(_mm256_slli_epi16(words, 8), _mm256_srli_epi16(words, 8));
}
NLS_TARGET_AVX2 inline __m256i swapDwords(__m256i dwords) {
    const __m128i places = _mm_set_epi32(0x0C0D0E0F, 0x08090A0B, 0x04050607, 0x00010203);
    return _mm256_shuffle_epi8(dwords, _mm256_broadcastsi128_si256(places));
}

// Byte i of the result is byte i - kDistance, or 0 in front of the first.
template <int kDistance>
NLS_TARGET_AVX2 inline __m256i bytesInFront(__m256i bytes) {
    const __m256i carried = _mm256_permute2x128_si256(bytes, bytes, 0x08);
    return _mm256_alignr_epi8(bytes, carried, 16 - kDistance);
}

// 1 to 15 bytes, the rest zero. Overlapping loads agree on the bytes that they share, so an "or" joins them.
NLS_TARGET_AVX2 inline __m128i loadUpTo15(const unsigned char* place, std::size_t size) {
    uint64_t low = 0, high = 0;
    if (size >= 8) {
        low = loadWord<uint64_t>(place);
        high = loadWord<uint64_t>(place + size - 8) >> 8 >> (8 * (15 - size));
    } else if (size >= 4) {
        low = loadWord<uint32_t>(place) | (uint64_t{loadWord<uint32_t>(place + size - 4)} << (8 * (size - 4)));
    } else {
        low = place[0] | (uint64_t{place[size / 2]} << (8 * (size / 2))) |
              (uint64_t{place[size - 1]} << (8 * (size - 1)));
    }
    return _mm_set_epi64x(static_cast<int64_t>(high), static_cast<int64_t>(low));
}

// 0 to 32 bytes, the rest zero.
NLS_TARGET_AVX2 inline __m256i loadUpTo32(const unsigned char* place, std::size_t size) {
    if (size == 0) return _mm256_setzero_si256();
    if (size < 16) return _mm256_zextsi128_si256(loadUpTo15(place, size));
    if (size == 32) return load32(place);
    // The last 16 bytes, moved down by those that the first 16 hold already.
    alignas(32) static constexpr unsigned char kDown[32] = {
        0,    1,    2,    3,    4,    5,    6,    7,    8,    9,    10,   11,   12,   13,   14,   15,
        0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
    const __m128i last = _mm_shuffle_epi8(load16(place + size - 16), load16(kDown + 32 - size));
    return _mm256_set_m128i(last, load16(place));
}

// Two moves that may overlap. REQUIRES: sizeof(Word) <= size <= 2 * sizeof(Word).
template <typename Word>
inline void copyByEnds(unsigned char* target, const unsigned char* source, std::size_t size) {
    const Word first = loadWord<Word>(source), last = loadWord<Word>(source + size - sizeof(Word));
    storeWord(target, first);
    storeWord(target + size - sizeof(Word), last);
}

// Eight words at a time squeezed by kUnitSqueeze, alone or each joined with its fellow in `seconds` to a double word.
// Returns the place behind; up to eight units more are written. `row16`: sixteen times the bits of the wanted words.
template <int kUnit>
NLS_TARGET_AVX2 inline unsigned char* storeSqueezed(unsigned char* target, __m128i words, __m128i seconds,
                                                    uint64_t row16) {
    words = squeeze(kUnitSqueeze, words, row16);
    if constexpr (kUnit == 2) {
        store16(target, words);
    } else {
        seconds = squeeze(kUnitSqueeze, seconds, row16);
        store16(target, _mm_unpacklo_epi16(words, seconds));
        store16(target + 16, _mm_unpackhi_epi16(words, seconds));
    }
    return target + kUnit * _mm_popcnt_u64(row16);
}

// A few bytes, up to some hundred.
NLS_TARGET_AVX2 inline void copySmall(unsigned char* target, const unsigned char* source, std::size_t size) {
    while (size > 32) {
        store32(target, load32(source));
        target += 32, source += 32, size -= 32;
    }
    if (size >= 16) {
        const __m128i first = load16(source), last = load16(source + size - 16);
        store16(target, first);
        store16(target + size - 16, last);
    } else if (size >= 8) {
        copyByEnds<uint64_t>(target, source, size);
    } else if (size >= 4) {
        copyByEnds<uint32_t>(target, source, size);
    } else if (size >= 2) {
        copyByEnds<uint16_t>(target, source, size);
    } else if (size == 1) {
        *target = *source;
    }
}

}  // namespace nls
