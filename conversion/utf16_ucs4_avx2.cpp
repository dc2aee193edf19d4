// Between UTF-16 and UCS4, sixteen characters or units at a time. Without surrogates each unit is widened or narrowed;
// pairs are folded in the place of the low surrogate, or split over the halves of a double word, and shuffles from a
// table squeeze the places left over out.
//
// Such a shuffle stores more than counts: never more than eight units. Where more than a block of source follows, its
// output covers the rest, since two units of source make a unit at least; otherwise a buffer comes between.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include <algorithm>

#include "conversion/avx2_basics.hpp"
#include "conversion/text_blocks.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

constexpr std::size_t kUnits = 16;
constexpr std::size_t kUnitsForDirect = 3 * kUnits;

NLS_TARGET_AVX2 inline __m256i words(int value) {
    return _mm256_set1_epi16(static_cast<int16_t>(value));
}
NLS_TARGET_AVX2 inline __m256i dwords(int value) {
    return _mm256_set1_epi32(value);
}
NLS_TARGET_AVX2 inline __m256i matching(__m256i units, int mask, int value) {
    return _mm256_cmpeq_epi16(_mm256_and_si256(units, words(mask)), words(value));
}

// --- UTF-16 to UCS4

constexpr std::size_t kWideRoom = 4 * kUnits;

// Sixteen double words, from low and high halves, where `wanted` has the bit.
NLS_TARGET_AVX2 inline unsigned char* storeValues(unsigned char* target, __m256i low, __m256i high, bool swap,
                                                  uint64_t wanted) {
    const __m256i first = swap ? swapWords(high) : low, second = swap ? swapWords(low) : high;
    target = storeSqueezed<4>(target, lowHalf(first), lowHalf(second), wanted << 4 & 0xFF0);
    return storeSqueezed<4>(target, highHalf(first), highHalf(second), wanted >> 4 & 0xFF0);
}

// Whole blocks without surrogates as far as they go.
[[gnu::always_inline]] NLS_TARGET_AVX2 inline void widenUnits(UnicodeWalk& walk) {
    const ByteOrder order = walk.order;
    std::size_t blocks = std::min(walk.source.left() / (2 * kUnits), walk.target.room() / (4 * kUnits));
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const __m256i zero = _mm256_setzero_si256();
    for (; blocks != 0; --blocks, place += 2 * kUnits, target += 4 * kUnits) {
        const __m256i units = order.swapSource ? swapWords(load32(place)) : load32(place);
        if (signBits(matching(units, 0xF800, 0xD800)) != 0) break;
        const __m256i spread = _mm256_permute4x64_epi64(units, 0xD8);
        const __m256i first = _mm256_unpacklo_epi16(spread, zero), second = _mm256_unpackhi_epi16(spread, zero);
        store32(target, order.swapTarget ? swapDwords(first) : first);
        store32(target + 32, order.swapTarget ? swapDwords(second) : second);
    }
    walk.moveTo(place, target);
}

// Any block, the last one too, and after some without pairs the next such. False, and nothing taken, if it doesn't fit.
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool foldUnits(UnicodeWalk& walk, PlainBlocks& plainBlocks) {
    const std::size_t left = walk.source.left() / 2, count = std::min(left, kUnits);
    const __m256i loaded = loadUpTo32(walk.source.place(), 2 * count);
    const __m256i units = walk.order.swapSource ? swapWords(loaded) : loaded;
    const uint32_t highs = _pext_u32(signBits(matching(units, 0xFC00, 0xD800)), 0x55555555);
    const uint32_t lows = _pext_u32(signBits(matching(units, 0xFC00, 0xDC00)), 0x55555555);
    // A high surrogate in the last place waits for the next block, unless the text ends with it.
    const std::size_t taken = count - (left > count ? highs >> (kUnits - 1) : 0);
    const uint32_t pairs = highs & (lows >> 1);
    const uint64_t wanted = _bzhi_u64(~uint64_t{pairs}, static_cast<unsigned>(taken));
    // In the place of the low surrogate: 0x10000 plus ten bits of each.
    const __m256i before = bytesInFront<2>(units);
    const __m256i isPair = _mm256_and_si256(matching(units, 0xFC00, 0xDC00), matching(before, 0xFC00, 0xD800));
    const __m256i sixBits = _mm256_slli_epi16(before, 10), tenBits = _mm256_and_si256(units, words(0x3FF));
    const __m256i low = _mm256_blendv_epi8(units, _mm256_or_si256(sixBits, tenBits), isPair);
    const __m256i fourBits = _mm256_and_si256(_mm256_srli_epi16(before, 6), words(0x0F));
    const __m256i high = _mm256_and_si256(_mm256_add_epi16(fourBits, words(1)), isPair);
    const std::size_t written = 4 * static_cast<std::size_t>(_mm_popcnt_u64(wanted));
    if (written > walk.target.room()) return false;
    const bool direct = left >= kUnitsForDirect && walk.target.room() >= kWideRoom;
    alignas(32) unsigned char buffer[kWideRoom];
    storeValues(direct ? walk.target.place() : buffer, low, high, walk.order.swapTarget, wanted);
    if (!direct) copySmall(walk.target.place(), buffer, written);
    walk.move(2 * taken, written);
    if (plainBlocks.count(pairs == 0)) widenUnits(walk);
    return true;
}

// --- UCS4 to UTF-16

constexpr std::size_t kNarrowRoom = 4 * kUnits + 2;  // a pair that doesn't fit leaves one unit unwritten

// Eight values of at most 0x10FFFF, each in one word or two.
NLS_TARGET_AVX2 inline unsigned char* storePairs(unsigned char* target, __m256i values, bool swap) {
    const __m256i isPair = _mm256_cmpgt_epi32(values, dwords(0xFFFF));
    // 0xD800 - 0x40 plus all but the low ten bits, and 0xDC00 with these.
    const __m256i high = _mm256_add_epi32(_mm256_srli_epi32(values, 10), dwords(0xD7C0));
    const __m256i low = _mm256_or_si256(_mm256_and_si256(values, dwords(0x3FF)), dwords(0xDC00));
    const __m256i both = _mm256_or_si256(high, _mm256_slli_epi32(low, 16));
    const __m256i units = _mm256_blendv_epi8(values, both, isPair);
    const __m256i ordered = swap ? swapWords(units) : units;
    const uint32_t pairs = static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(isPair)));
    const uint64_t wanted = 0x5555 | _pdep_u32(pairs, 0xAAAA);
    target = storeSqueezed<2>(target, lowHalf(ordered), lowHalf(ordered), wanted << 4 & 0xFF0);
    return storeSqueezed<2>(target, highHalf(ordered), highHalf(ordered), wanted >> 4 & 0xFF0);
}

NLS_TARGET_AVX2 inline __m256i replaceBeyondLast(__m256i values) {
    const __m256i sound = _mm256_cmpeq_epi32(_mm256_min_epu32(values, dwords(0x10FFFF)), values);
    return _mm256_blendv_epi8(dwords(0xFFFD), values, sound);
}

NLS_TARGET_AVX2 inline __m256i loadValues(const unsigned char* place, std::size_t size, bool swap) {
    const __m256i loaded = loadUpTo32(place, size);
    return swap ? swapDwords(loaded) : loaded;
}

// Whole blocks of the BMP as far as they go.
[[gnu::always_inline]] NLS_TARGET_AVX2 inline void narrowValues(UnicodeWalk& walk) {
    const ByteOrder order = walk.order;
    std::size_t blocks = std::min(walk.source.left() / (4 * kUnits), walk.target.room() / (2 * kUnits));
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    for (; blocks != 0; --blocks, place += 4 * kUnits, target += 2 * kUnits) {
        const __m256i first = loadValues(place, 32, order.swapSource);
        const __m256i second = loadValues(place + 32, 32, order.swapSource);
        const __m256i beyond = _mm256_srli_epi32(_mm256_or_si256(first, second), 16);
        if (_mm256_testz_si256(beyond, beyond) == 0) break;
        const __m256i units = _mm256_permute4x64_epi64(_mm256_packus_epi32(first, second), 0xD8);
        store32(target, order.swapTarget ? swapWords(units) : units);
    }
    walk.moveTo(place, target);
}

// Any block, the last one too, and after some without pairs the next such. Values missing from the last one make one
// unit each behind the rest. False, and nothing taken, if the block doesn't fit.
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool splitValues(UnicodeWalk& walk, PlainBlocks& plainBlocks) {
    const std::size_t size = std::min(walk.source.left(), 4 * kUnits), firstSize = std::min<std::size_t>(size, 32);
    const bool swap = walk.order.swapSource;
    const __m256i first = replaceBeyondLast(loadValues(walk.source.place(), firstSize, swap));
    const __m256i second = replaceBeyondLast(loadValues(walk.source.place() + firstSize, size - firstSize, swap));
    const bool direct = walk.source.left() >= 4 * kUnitsForDirect && walk.target.room() >= kNarrowRoom;
    alignas(32) unsigned char buffer[kNarrowRoom];
    unsigned char* const target = direct ? walk.target.place() : buffer;
    unsigned char* const middle = storePairs(target, first, walk.order.swapTarget);
    unsigned char* const end = storePairs(middle, second, walk.order.swapTarget);
    const std::size_t written = static_cast<std::size_t>(end - target) - 2 * (kUnits - size / 4);
    if (written > walk.target.room()) return false;
    if (!direct) copySmall(walk.target.place(), buffer, written);
    walk.move(size, written);
    if (plainBlocks.count(written == size / 2)) narrowValues(walk);
    return true;
}

}  // namespace

NLS_TARGET_AVX2 WideTaken utf16ToUcs4Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    PlainBlocks plainBlocks;
    bool going = true;
    while (going && !walk.source.atEnd()) {
        going = foldUnits(walk, plainBlocks);
    }
    return takenBy(walk, source);
}

NLS_TARGET_AVX2 WideTaken ucs4ToUtf16Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    PlainBlocks plainBlocks;
    bool going = true;
    while (going && !walk.source.atEnd()) {
        going = splitValues(walk, plainBlocks);
    }
    return takenBy(walk, source);
}

}  // namespace nls
