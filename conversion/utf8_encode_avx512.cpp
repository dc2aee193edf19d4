// UTF-16 and UCS4 to UTF-8, 64 bytes of source at a time.
//
// A character is spread over the four bytes of a double word, its last byte always in the last of them, and the bytes
// that its length doesn't need are squeezed out of the whole register. Where all is below U+0800, two bytes a character
// do. A pair of surrogates is folded in the place of the low one, and the place of the high one is dropped.
//
// What has no such form leaves the block to the exact walk: surrogates that are no pair, and in UCS4 any surrogate and
// values from 0x200000 on.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include "conversion/avx512_basics.hpp"
#include "conversion/text_blocks.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

NLS_TARGET_AVX512 inline void storeBytes(unsigned char* target, __m512i bytes, std::size_t count) {
    _mm512_mask_storeu_epi8(target, firstBits(count), bytes);
}

// Encoded characters before the squeeze: `kept` are the bytes that count.
struct Spread {
    __m512i bytes;
    uint64_t kept;

    NLS_TARGET_AVX512 std::size_t size() const { return static_cast<std::size_t>(_mm_popcnt_u64(kept)); }
};

NLS_TARGET_AVX512 inline unsigned char* squeezeInto(unsigned char* target, const Spread& spread) {
    storeBytes(target, _mm512_maskz_compress_epi8(spread.kept, spread.bytes), spread.size());
    return target + spread.size();
}

// Sixteen values below 0x200000, of which those of `wanted` count. kLongest is the most bytes that one takes, 3 or 4.
template <int kLongest>
NLS_TARGET_AVX512 inline Spread spreadValues(__m512i values, __mmask16 wanted) {
    const __mmask16 ofOne = _mm512_cmplt_epu32_mask(values, _mm512_set1_epi32(0x80));
    const __mmask16 fromThree = _mm512_cmpge_epu32_mask(values, _mm512_set1_epi32(0x800));
    // The byte places take the bits from 18, 12, 6 and 0 on of their double word, and of these the low six.
    const __m512i firstBit = _mm512_set1_epi64(0x20262C32'00060C12);
    const __m512i sixBits = _mm512_maskz_multishift_epi64_epi8(~uint64_t{0}, firstBit, values);
    __m512i marks = _mm512_set1_epi32(static_cast<int32_t>(0x80C00000));
    marks = _mm512_mask_mov_epi32(marks, fromThree, _mm512_set1_epi32(static_cast<int32_t>(0x8080E000)));
    const uint64_t others = static_cast<uint64_t>(wanted & ~ofOne);
    uint64_t kept = _pdep_u64(wanted, 0x8888888888888888) | _pdep_u64(others, 0x4444444444444444) |
                    _pdep_u64(static_cast<uint64_t>(wanted & fromThree), 0x2222222222222222);
    if constexpr (kLongest == 4) {
        const __mmask16 ofFour = _mm512_cmpge_epu32_mask(values, _mm512_set1_epi32(0x10000));
        marks = _mm512_mask_mov_epi32(marks, ofFour, _mm512_set1_epi32(static_cast<int32_t>(0x808080F0)));
        kept |= _pdep_u64(static_cast<uint64_t>(wanted & ofFour), 0x1111111111111111);
    }
    const __m512i spread = _mm512_ternarylogic_epi32(sixBits, _mm512_set1_epi8(0x3F), marks, 0xEA);
    return {_mm512_mask_slli_epi32(spread, ofOne, values, 24), kept};
}

// --- UTF-16

constexpr std::size_t kUnits = 32;

// Thirty-two units below 0x800, two bytes each: a lead byte or ASCII, then a trail byte.
NLS_TARGET_AVX512 inline Spread spreadShortUnits(__m512i units, __mmask32 wanted) {
    const __mmask32 ofTwo = _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(0x80));
    const __m512i lead = _mm512_srli_epi16(units, 6), trail = _mm512_slli_epi16(units, 8);
    const __m512i both = _mm512_ternarylogic_epi32(_mm512_set1_epi16(0x3F00), trail, lead, 0xCA);
    const __m512i marked = _mm512_or_si512(both, _mm512_set1_epi16(static_cast<int16_t>(0x80C0)));
    const uint64_t kept = _pdep_u64(wanted, 0x5555555555555555) | _pdep_u64(wanted & ofTwo, 0xAAAAAAAAAAAAAAAA);
    return {_mm512_mask_mov_epi16(units, ofTwo, marked), kept};
}

NLS_TARGET_AVX512 inline __m512i widenWords(__m256i words) {
    return _mm512_maskz_cvtepu16_epi32(0xFFFF, words);
}
// Sixteen units; at those of `lows` they are folded with the unit in front.
NLS_TARGET_AVX512 inline __m512i foldPairs(__m512i units, __m512i before, __mmask16 lows) {
    constexpr int32_t kFold = 0x10000 - (0xD800 << 10) - 0xDC00;
    const __m512i high = _mm512_maskz_slli_epi32(0xFFFF, before, 10);
    const __m512i low = _mm512_add_epi32(units, _mm512_set1_epi32(kFold));
    return _mm512_mask_add_epi32(units, lows, high, low);
}

// Thirty-two values in two registers; writes those of `wanted` if they fit. The bytes written, or 0.
template <int kLongest>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline std::size_t storeValues(UnicodeWalk& walk, __m512i values,
                                                                        __m512i values16, uint64_t wanted) {
    const Spread first = spreadValues<kLongest>(values, static_cast<__mmask16>(wanted));
    if (wanted >> 16 == 0) {
        if (first.size() > walk.target.room()) return 0;
        squeezeInto(walk.target.place(), first);
        return first.size();
    }
    const Spread second = spreadValues<kLongest>(values16, static_cast<__mmask16>(wanted >> 16));
    const std::size_t size = first.size() + second.size();
    if (size > walk.target.room()) return 0;
    squeezeInto(squeezeInto(walk.target.place(), first), second);
    return size;
}

[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeShort(UnicodeWalk& walk, __m512i units, std::size_t count) {
    const Spread spread = spreadShortUnits(units, static_cast<__mmask32>(firstBits(count)));
    if (spread.size() > walk.target.room()) return false;
    walk.target.advance(static_cast<std::size_t>(squeezeInto(walk.target.place(), spread) - walk.target.place()));
    walk.source.skip(2 * count);
    return true;
}

[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeBmp(UnicodeWalk& walk, __m512i units, std::size_t count) {
    const std::size_t written =
        storeValues<3>(walk, widenWords(lowHalf(units)), widenWords(highHalf(units)), firstBits(count));
    walk.target.advance(written);
    walk.source.skip(written == 0 ? 0 : 2 * count);
    return written != 0;
}

NLS_TARGET_AVX512 inline __mmask32 unitsBetween(__m512i units, int first, int count) {
    const __m512i offset = _mm512_sub_epi16(units, _mm512_set1_epi16(static_cast<int16_t>(first)));
    return _mm512_cmplt_epu16_mask(offset, _mm512_set1_epi16(static_cast<int16_t>(count)));
}

// A high surrogate in the last place waits for the next block.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takePairs(UnicodeWalk& walk, __m512i units, std::size_t count) {
    const uint64_t highs = unitsBetween(units, 0xD800, 0x400), lows = unitsBetween(units, 0xDC00, 0x400);
    const bool waits = endsInHighSurrogate(walk.source.place(), 2 * count, walk.order.swapSource);
    const std::size_t taken = count - (waits ? 1 : 0);
    const uint64_t wanted = firstBits(taken) & ~highs;
    if (((highs << 1) & firstBits(count)) != lows || taken == 0) return false;
    const __m512i places = _mm512_set_epi32(14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 0);
    const __m512i first = widenWords(lowHalf(units)), second = widenWords(highHalf(units));
    const __m512i beforeFirst = permuteDwords(first, places);
    const __m512i beforeSecond = _mm512_mask_permutexvar_epi32(
        _mm512_maskz_permutexvar_epi32(1, _mm512_set1_epi32(15), first), 0xFFFE, places, second);
    const __m512i values = foldPairs(first, beforeFirst, static_cast<__mmask16>(lows));
    const __m512i values16 = foldPairs(second, beforeSecond, static_cast<__mmask16>(lows >> 16));
    const std::size_t written = storeValues<4>(walk, values, values16, wanted);
    walk.target.advance(written);
    walk.source.skip(written == 0 ? 0 : 2 * taken);
    return written != 0;
}

NLS_TARGET_AVX512 inline bool anyFrom(__m512i units, int first) {
    return _mm512_cmpge_epu16_mask(units, _mm512_set1_epi16(static_cast<int16_t>(first))) != 0;
}

[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeAscii(UnicodeWalk& walk, __m512i units, std::size_t count) {
    if (count > walk.target.room()) return false;
    const __mmask32 stored = static_cast<__mmask32>(firstBits(count));
    _mm512_mask_cvtepi16_storeu_epi8(walk.target.place(), stored, units);
    walk.move(2 * count, count);
    return true;
}

// Whole runs of ASCII, sixty-four units at a time.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline void takeAsciiRun(UnicodeWalk& walk) {
    const bool swap = walk.order.swapSource;
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const __m512i beyond = _mm512_set1_epi16(static_cast<int16_t>(swap ? 0x80FF : 0xFF80));
    for (std::size_t runs = std::min(walk.source.left() / 128, walk.target.room() / 64); runs != 0; --runs) {
        const __m512i first = _mm512_loadu_si512(place), second = _mm512_loadu_si512(place + 64);
        if (_mm512_test_epi16_mask(_mm512_or_si512(first, second), beyond) != 0) break;
        const __m512i low = swap ? _mm512_srli_epi16(first, 8) : first,
                      high = swap ? _mm512_srli_epi16(second, 8) : second;
        const __m512i inOrder = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);  // packing takes its quarters in turns
        _mm512_storeu_si512(target, permuteQwords(_mm512_packus_epi16(low, high), inOrder));
        place += 128;
        target += 64;
    }
    walk.moveTo(place, target);
}

// --- UCS4

constexpr std::size_t kValues = 16;

[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeValues(UnicodeWalk& walk, __m512i values, std::size_t count) {
    const __mmask16 wanted = static_cast<__mmask16>(firstBits(count));
    const __m512i beyondStart = _mm512_sub_epi32(values, _mm512_set1_epi32(0xD800));
    const __mmask16 surrogates = _mm512_cmplt_epu32_mask(beyondStart, _mm512_set1_epi32(0x800));
    const __mmask16 tooBig = _mm512_cmpge_epu32_mask(values, _mm512_set1_epi32(0x200000));
    if ((surrogates | tooBig) != 0) return false;
    const Spread spread = spreadValues<4>(values, wanted);
    if (spread.size() > walk.target.room()) return false;
    walk.target.advance(static_cast<std::size_t>(squeezeInto(walk.target.place(), spread) - walk.target.place()));
    walk.source.skip(4 * count);
    return true;
}

[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeAsciiValues(UnicodeWalk& walk, __m512i values,
                                                                     std::size_t count) {
    if (count > walk.target.room()) return false;
    _mm512_mask_cvtepi32_storeu_epi8(walk.target.place(), static_cast<__mmask16>(firstBits(count)), values);
    walk.move(4 * count, count);
    return true;
}

}  // namespace

NLS_TARGET_AVX512 WideTaken utf16ToUtf8Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    const bool swap = walk.order.swapSource;
    bool going = true;
    while (going && !walk.source.atEnd()) {
        const std::size_t count = std::min(walk.source.left() / 2, kUnits);
        __m512i units = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(firstBits(count)), walk.source.place());
        if (swap) units = swapUnits<2>(units);
        if (!anyFrom(units, 0x80)) {
            going = takeAscii(walk, units, count);
            takeAsciiRun(walk);
        } else if (!anyFrom(units, 0x800)) {
            going = takeShort(walk, units, count);
        } else if (unitsBetween(units, 0xD800, 0x800) == 0) {
            going = takeBmp(walk, units, count);
        } else {
            going = takePairs(walk, units, count);
        }
    }
    return takenBy(walk, source);
}

NLS_TARGET_AVX512 WideTaken ucs4ToUtf8Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    const bool swap = walk.order.swapSource;
    bool going = true;
    while (going && !walk.source.atEnd()) {
        const std::size_t count = std::min(walk.source.left() / 4, kValues);
        __m512i values = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(firstBits(count)), walk.source.place());
        if (swap) values = swapUnits<4>(values);
        const bool ascii = _mm512_cmpge_epu32_mask(values, _mm512_set1_epi32(0x80)) == 0;
        going = ascii ? takeAsciiValues(walk, values, count) : takeValues(walk, values, count);
    }
    return takenBy(walk, source);
}

}  // namespace nls
