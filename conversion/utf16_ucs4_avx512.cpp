// Between UTF-16 and UCS4, sixteen characters or units at a time. Without surrogates each unit is widened or narrowed;
// pairs are folded in the place of the high surrogate, or split over the halves of a double word, and the places left
// over are squeezed out.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include "conversion/avx512_basics.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

constexpr std::size_t kUnits = 16;

NLS_TARGET_AVX512 inline __mmask16 valuesBetween(__m512i values, int first, int count) {
    return _mm512_cmplt_epu32_mask(_mm512_sub_epi32(values, _mm512_set1_epi32(first)), _mm512_set1_epi32(count));
}

// Up to sixteen units of 16 bits, widened; zero behind `count`.
NLS_TARGET_AVX512 inline __m512i loadUnits(const unsigned char* place, std::size_t count, bool swap) {
    const __m512i words = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(firstBits(count)), place);
    const __m512i units = swap ? swapUnits<2>(words) : words;
    return _mm512_maskz_cvtepu16_epi32(0xFFFF, lowHalf(units));
}

// The units that open a pair, among those in front of the last.
NLS_TARGET_AVX512 inline __mmask16 pairsOf(__m512i units) {
    const uint32_t highs = valuesBetween(units, 0xD800, 0x400), lows = valuesBetween(units, 0xDC00, 0x400);
    return static_cast<__mmask16>(highs & (lows >> 1));
}

NLS_TARGET_AVX512 inline __m512i foldPairs(__m512i units, __mmask16 pairs) {
    constexpr int32_t kFold = 0x10000 - (0xD800 << 10) - 0xDC00;
    const __m512i places = _mm512_set_epi32(15, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1);
    const __m512i next = _mm512_add_epi32(permuteDwords(units, places), _mm512_set1_epi32(kFold));
    return _mm512_mask_add_epi32(units, pairs, _mm512_maskz_slli_epi32(0xFFFF, units, 10), next);
}

// Double words with one unit in the low half, or the two of a pair. `kept`: the halves that count.
struct Halves {
    __m512i units;
    __mmask32 kept;
};

NLS_TARGET_AVX512 inline Halves splitPairs(__m512i values, __mmask16 wanted) {
    const __m512i last = _mm512_set1_epi32(0x10FFFF), replacement = _mm512_set1_epi32(0xFFFD);
    values = _mm512_mask_mov_epi32(values, _mm512_cmpgt_epu32_mask(values, last), replacement);
    const __mmask16 pairs = _mm512_cmpgt_epu32_mask(values, _mm512_set1_epi32(0xFFFF));
    // 0xD800 - 0x40 plus all but the low ten bits, and 0xDC00 with these.
    const __m512i high = _mm512_add_epi32(_mm512_maskz_srli_epi32(0xFFFF, values, 10), _mm512_set1_epi32(0xD7C0));
    const __m512i low = _mm512_or_si512(_mm512_and_si512(values, _mm512_set1_epi32(0x3FF)), _mm512_set1_epi32(0xDC00));
    const __m512i both = _mm512_or_si512(high, _mm512_maskz_slli_epi32(0xFFFF, low, 16));
    const uint32_t kept = _pdep_u32(wanted, 0x55555555) | _pdep_u32(wanted & pairs, 0xAAAAAAAA);
    return {_mm512_mask_mov_epi32(values, pairs, both), kept};
}

}  // namespace

NLS_TARGET_AVX512 WideTaken utf16ToUcs4Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (!walk.source.atEnd()) {
        const std::size_t left = walk.source.left() / 2, count = std::min(left, kUnits);
        __m512i units = loadUnits(walk.source.place(), count, order.swapSource);
        std::size_t taken = count, written = count;
        if (valuesBetween(units, 0xD800, 0x800) != 0) {
            const __mmask16 pairs = pairsOf(units);
            // A high surrogate in the last place waits for the next block, unless the text ends with it.
            if (left > count && valuesBetween(units, 0xD800, 0x400) >> (kUnits - 1) != 0) --taken;
            const uint64_t wanted = firstBits(taken) & ~(uint64_t{pairs} << 1);
            units = _mm512_maskz_compress_epi32(static_cast<__mmask16>(wanted), foldPairs(units, pairs));
            written = static_cast<std::size_t>(_mm_popcnt_u64(wanted));
        }
        if (4 * written > walk.target.room()) break;
        storeDwords(walk.target.place(), order.swapTarget ? swapUnits<4>(units) : units, written);
        walk.source.skip(2 * taken);
        walk.target.advance(4 * written);
    }
    return takenBy(walk, source);
}

NLS_TARGET_AVX512 WideTaken ucs4ToUtf16Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (!walk.source.atEnd()) {
        const std::size_t count = std::min(walk.source.left() / 4, kUnits);
        const __mmask16 wanted = static_cast<__mmask16>(firstBits(count));
        __m512i values = _mm512_maskz_loadu_epi32(wanted, walk.source.place());
        if (order.swapSource) values = swapUnits<4>(values);
        const Halves halves = splitPairs(values, wanted);
        const std::size_t written = static_cast<std::size_t>(_mm_popcnt_u32(halves.kept));
        if (2 * written > walk.target.room()) break;
        const __m512i units = _mm512_maskz_compress_epi16(halves.kept, halves.units);
        const __m512i ordered = order.swapTarget ? swapUnits<2>(units) : units;
        _mm512_mask_storeu_epi16(walk.target.place(), static_cast<__mmask32>(firstBits(written)), ordered);
        walk.source.skip(4 * count);
        walk.target.advance(2 * written);
    }
    return takenBy(walk, source);
}

}  // namespace nls
