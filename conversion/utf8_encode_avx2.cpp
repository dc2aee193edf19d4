// UTF-16 and UCS4 to UTF-8, sixteen units at a time.
//
// A character is spread over four bytes, its last byte always in the last of them, and a shuffle from a table squeezes
// out what its length doesn't need, four characters at a time; where all is below U+0800, over two bytes, and eight at
// a time. The two surrogates of a pair make two bytes each: the high one knows the first two of the four, and the low
// one the others with two bits of the high one.
//
// What has no such form leaves the block to the exact walk: surrogates that are no pair, and in UCS4 any surrogate and
// values from 0x200000 on.
//
// A store writes 16 bytes, of which 4 count at least. Where more than a block of source follows, its output covers the
// rest, since each unit makes a byte at least; otherwise a buffer comes between.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include <algorithm>

#include "conversion/avx2_basics.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

constexpr std::size_t kUnits = 16;
// What a block can reach into: four bytes for each unit, or three and the rest of the last store. The four bytes more
// are what a character that doesn't fit may leave unwritten at the end of the room.
constexpr std::size_t kBlockRoom = 4 * kUnits;
constexpr std::size_t kRoomForDirect = kBlockRoom + 4;
constexpr std::size_t kUnitsForDirect = 2 * kUnits;

NLS_TARGET_AVX2 inline __m256i words(int value) {
    return _mm256_set1_epi16(static_cast<int16_t>(value));
}
NLS_TARGET_AVX2 inline bool any(__m256i bits) {
    return _mm256_testz_si256(bits, bits) == 0;
}
// Words of the field `mask` that have the value `value` there.
NLS_TARGET_AVX2 inline __m256i matching(__m256i units, int mask, int value) {
    return _mm256_cmpeq_epi16(_mm256_and_si256(units, words(mask)), words(value));
}
// Words that are at most `last`, unsigned.
NLS_TARGET_AVX2 inline __m256i atMost(__m256i units, int last) {
    return _mm256_cmpeq_epi16(_mm256_min_epu16(units, words(last)), units);
}

// --- sixteen units, already in the host's order, into at most 48 bytes; the place behind

// All below 0x800.
NLS_TARGET_AVX2 inline unsigned char* storeShort(unsigned char* target, __m256i units) {
    const __m256i ascii = atMost(units, 0x7F);
    const __m256i trail = _mm256_and_si256(_mm256_slli_epi16(units, 8), words(0x3F00));
    const __m256i both = _mm256_or_si256(_mm256_or_si256(trail, _mm256_srli_epi16(units, 6)), words(0x80C0));
    const __m256i spread = _mm256_blendv_epi8(both, units, ascii);
    const uint64_t trails = _pext_u32(~signBits(ascii), 0x55555555);
    const uint64_t row16 = trails << 4 & 0xFF0, nextRow16 = trails >> 4 & 0xFF0;
    store16(target, squeeze(kTwoByteSqueeze, lowHalf(spread), row16));
    target += 8 + _mm_popcnt_u64(row16);
    store16(target, squeeze(kTwoByteSqueeze, highHalf(spread), nextRow16));
    return target + 8 + _mm_popcnt_u64(nextRow16);
}

NLS_TARGET_AVX2 inline unsigned char* storeFour(unsigned char* target, __m128i spread, uint64_t row16) {
    store16(target, squeeze(kFourByteSqueeze, spread, row16));
    return target + 4 + _mm_popcnt_u64(row16);
}

// The last two bytes of each character as a word, and whether there are two and three of them.
struct Spread {
    __m256i lastTwo, fromTwo, fromThree;
};

// Units of up to three bytes each: no surrogates, unless their place is written over.
NLS_TARGET_AVX2 inline Spread spreadBmp(__m256i units) {
    const __m256i ascii = atMost(units, 0x7F), short_ = atMost(units, 0x7FF);
    const __m256i last = _mm256_and_si256(_mm256_slli_epi16(units, 8), words(0x3F00));
    const __m256i middle = _mm256_and_si256(_mm256_srli_epi16(units, 6), words(0x003F));
    const __m256i marks = _mm256_or_si256(words(0x8080), _mm256_and_si256(short_, words(0x0040)));
    const __m256i lastTwo = _mm256_or_si256(_mm256_or_si256(last, middle), marks);
    return {_mm256_blendv_epi8(lastTwo, _mm256_slli_epi16(units, 8), ascii), _mm256_andnot_si256(ascii, words(-1)),
            _mm256_andnot_si256(short_, words(-1))};
}

NLS_TARGET_AVX2 inline unsigned char* storeSpread(unsigned char* target, __m256i units, const Spread& spread) {
    const __m256i lead = _mm256_and_si256(_mm256_srli_epi16(units, 4), words(0x0F00));
    const __m256i firstTwo = _mm256_or_si256(lead, words(0xE000 - 0x10000));
    const __m256i even = _mm256_unpacklo_epi16(firstTwo, spread.lastTwo);
    const __m256i odd = _mm256_unpackhi_epi16(firstTwo, spread.lastTwo);
    // Two bits for each unit: it has two bytes or more; it has three.
    const __m256i second = _mm256_and_si256(spread.fromTwo, words(0x00FF));
    const __m256i third = _mm256_and_si256(spread.fromThree, words(0xFF00 - 0x10000));
    const uint64_t rows = signBits(_mm256_or_si256(second, third));
    target = storeFour(target, lowHalf(even), rows << 4 & 0xFF0);
    target = storeFour(target, lowHalf(odd), rows >> 4 & 0xFF0);
    target = storeFour(target, highHalf(even), rows >> 12 & 0xFF0);
    return storeFour(target, highHalf(odd), rows >> 20 & 0xFF0);
}

// Puts the two bytes of each surrogate into its place. REQUIRES: each high one has its low one behind it, or is last.
NLS_TARGET_AVX2 inline void spreadSurrogates(__m256i units, __m256i highs, __m256i lows, Spread& spread) {
    // 0x10000 on the whole is 0x40 on the ten bits of the high one.
    const __m256i high = _mm256_add_epi16(_mm256_and_si256(units, words(0x3FF)), words(0x40));
    const __m256i second = _mm256_and_si256(_mm256_slli_epi16(high, 6), words(0x3F00));
    const __m256i firstTwo = _mm256_or_si256(_mm256_or_si256(second, _mm256_srli_epi16(high, 8)), words(0x80F0));
    const __m256i carried = _mm256_slli_epi16(_mm256_and_si256(bytesInFront<2>(units), words(0x03)), 4);
    const __m256i fourBits = _mm256_and_si256(_mm256_srli_epi16(units, 6), words(0x000F));
    const __m256i last = _mm256_and_si256(_mm256_slli_epi16(units, 8), words(0x3F00));
    const __m256i lastTwo = _mm256_or_si256(_mm256_or_si256(last, words(0x8080)), _mm256_or_si256(fourBits, carried));
    spread.lastTwo = _mm256_blendv_epi8(spread.lastTwo, firstTwo, highs);
    spread.lastTwo = _mm256_blendv_epi8(spread.lastTwo, lastTwo, lows);
    spread.fromThree = _mm256_andnot_si256(_mm256_or_si256(highs, lows), spread.fromThree);
}

// --- UTF-16

// What a block came to: how much of it was taken, in units, and the bytes that this made.
struct Stored {
    std::size_t taken;
    unsigned char* end;
};

// Units with surrogates among them; `count` are there, and the rest is zero. A high surrogate in the last place waits
// for the next block. Nothing is taken, and nothing stored, if some surrogate is no half of a pair.
NLS_TARGET_AVX2 inline Stored storePairs(unsigned char* target, __m256i units, std::size_t count) {
    const __m256i highs = matching(units, 0xFC00, 0xD800), lows = matching(units, 0xFC00, 0xDC00);
    const uint64_t highBits = signBits(highs), lowBits = signBits(lows);
    const uint64_t present = _bzhi_u64(~uint64_t{0}, static_cast<unsigned>(2 * count));
    if (((highBits << 2) & present) != lowBits) return {0, target};
    Spread spread = spreadBmp(units);
    spreadSurrogates(units, highs, lows, spread);
    target = storeSpread(target, units, spread);
    const bool waits = (highBits >> (2 * count - 1) & 1) != 0;
    return waits ? Stored{count - 1, target - 2} : Stored{count, target};
}

// The missing units of a last block are zero, and have made one byte each behind the rest.
NLS_TARGET_AVX2 inline Stored storeUnits(unsigned char* target, __m256i units, std::size_t count) {
    Stored stored{count, nullptr};
    if (!any(_mm256_and_si256(units, words(0xF800 - 0x10000)))) {
        stored.end = storeShort(target, units);
    } else if (!any(matching(units, 0xF800, 0xD800))) {
        stored.end = storeSpread(target, units, spreadBmp(units));
    } else {
        stored = storePairs(target, units, count);
    }
    if (stored.taken != 0) stored.end -= kUnits - count;
    return stored;
}

// Thirty-two units of ASCII as bytes.
NLS_TARGET_AVX2 inline __m256i narrowWords(__m256i first, __m256i second) {
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(first, second), 0xD8);  // from lanes 0, 2, 1, 3
}

template <bool kSwap>
NLS_TARGET_AVX2 inline __m256i loadUnits(const unsigned char* place) {
    return kSwap ? swapWords(load32(place)) : load32(place);
}

// Blocks with enough source and room behind them. False if one is odd. Text that is mostly ASCII stays with the block
// that takes more than ASCII too: only two blocks of pure ASCII in a row are worth a step of their own.
template <bool kSwap>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool takeDirect(UnicodeWalk& walk) {
    if (walk.source.left() < 2 * kUnitsForDirect || walk.target.room() < kRoomForDirect) return true;
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const unsigned char* const lastPlace = place + walk.source.left() - 2 * kUnitsForDirect;
    unsigned char* const lastTarget = target + walk.target.room() - kRoomForDirect;
    std::size_t taken = kUnits;
    while (taken != 0 && place <= lastPlace && target <= lastTarget) {
        const __m256i units = loadUnits<kSwap>(place), next = loadUnits<kSwap>(place + 32);
        if (!any(_mm256_and_si256(_mm256_or_si256(units, next), words(~0x7F)))) {
            store32(target, narrowWords(units, next));
            place += 64;
            target += 32;
            continue;
        }
        const Stored stored = storeUnits(target, units, kUnits);
        taken = stored.taken;
        place += 2 * taken;
        target = stored.end;
    }
    walk.moveTo(place, target);
    return taken != 0;
}

// The last blocks, and those in front of a full target. False, and nothing taken, if the block is odd or doesn't fit.
template <bool kSwap>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool takeBuffered(UnicodeWalk& walk) {
    const std::size_t count = std::min(walk.source.left() / 2, kUnits);
    const __m256i loaded = loadUpTo32(walk.source.place(), 2 * count);
    unsigned char buffer[kBlockRoom];
    const Stored stored = storeUnits(buffer, kSwap ? swapWords(loaded) : loaded, count);
    if (stored.taken == 0) return false;
    const std::size_t written = static_cast<std::size_t>(stored.end - buffer);
    if (written > walk.target.room()) return false;
    copySmall(walk.target.place(), buffer, written);
    walk.move(2 * stored.taken, written);
    return true;
}

template <bool kSwap>
NLS_TARGET_AVX2 inline WideTaken encodeUnits(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    bool going = takeDirect<kSwap>(walk);
    while (going && !walk.source.atEnd()) going = takeBuffered<kSwap>(walk);
    return takenBy(walk, source);
}

// --- UCS4

NLS_TARGET_AVX2 inline __m256i dwords(uint32_t value) {
    return _mm256_set1_epi32(static_cast<int32_t>(value));
}
NLS_TARGET_AVX2 inline uint64_t dwordBits(__m256i flags) {
    return static_cast<uint64_t>(_mm256_movemask_ps(_mm256_castsi256_ps(flags)));
}

// Eight values below 0x200000 that are no surrogates.
NLS_TARGET_AVX2 inline unsigned char* storeValues(unsigned char* target, __m256i values) {
    const __m256i fromTwo = _mm256_cmpgt_epi32(values, dwords(0x7F));
    const __m256i fromThree = _mm256_cmpgt_epi32(values, dwords(0x7FF));
    const __m256i ofFour = _mm256_cmpgt_epi32(values, dwords(0xFFFF));
    __m256i spread = _mm256_and_si256(_mm256_slli_epi32(values, 24), dwords(0x3F000000));
    spread = _mm256_or_si256(spread, _mm256_and_si256(_mm256_slli_epi32(values, 10), dwords(0x003F0000)));
    spread = _mm256_or_si256(spread, _mm256_and_si256(_mm256_srli_epi32(values, 4), dwords(0x00003F00)));
    spread = _mm256_or_si256(spread, _mm256_srli_epi32(values, 18));
    __m256i marks = _mm256_blendv_epi8(dwords(0x80C00000), dwords(0x8080E000), fromThree);
    marks = _mm256_blendv_epi8(marks, dwords(0x808080F0), ofFour);
    spread = _mm256_blendv_epi8(_mm256_slli_epi32(values, 24), _mm256_or_si256(spread, marks), fromTwo);
    // The two bits of the table for each value: 0, 1, 3 and 2 for one to four bytes.
    const uint64_t two = dwordBits(fromTwo), three = dwordBits(fromThree), four = dwordBits(ofFour);
    const uint64_t rows = _pdep_u64(two ^ four, 0x5555) | _pdep_u64(three, 0xAAAA);
    store16(target, squeeze(kFourByteSqueeze, lowHalf(spread), rows << 4 & 0xFF0));
    target += 4 + _mm_popcnt_u64((two & 0x0F) | (three & 0x0F) << 8 | (four & 0x0F) << 16);
    store16(target, squeeze(kFourByteSqueeze, highHalf(spread), rows >> 4 & 0xFF0));
    return target + 4 + _mm_popcnt_u64((two & 0xF0) | (three & 0xF0) << 8 | (four & 0xF0) << 16);
}

// Sixteen values; the place behind, or null when one of them is for the exact walk.
NLS_TARGET_AVX2 inline unsigned char* storeSixteen(unsigned char* target, __m256i first, __m256i second) {
    const __m256i all = _mm256_or_si256(first, second);
    if (!any(_mm256_and_si256(all, dwords(0xFFFF0000)))) {
        const __m256i packed = _mm256_packus_epi32(first, second);  // by lanes: 0, 2, 1, 3
        const __m256i units = _mm256_permute4x64_epi64(packed, 0xD8);
        if (!any(_mm256_and_si256(units, words(0xF800 - 0x10000)))) return storeShort(target, units);
        if (any(matching(units, 0xF800, 0xD800))) return nullptr;
        return storeSpread(target, units, spreadBmp(units));
    }
    const __m256i field = dwords(0xFFFFF800), surrogate = dwords(0xD800);
    const __m256i odd = _mm256_or_si256(_mm256_cmpeq_epi32(_mm256_and_si256(first, field), surrogate),
                                        _mm256_cmpeq_epi32(_mm256_and_si256(second, field), surrogate));
    if (any(_mm256_or_si256(odd, _mm256_and_si256(all, dwords(0xFFE00000))))) return nullptr;
    return storeValues(storeValues(target, first), second);
}

template <bool kSwap>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool takeValues(UnicodeWalk& walk) {
    const std::size_t size = std::min(walk.source.left(), 4 * kUnits), firstSize = std::min<std::size_t>(size, 32);
    __m256i first = loadUpTo32(walk.source.place(), firstSize);
    __m256i second = loadUpTo32(walk.source.place() + firstSize, size - firstSize);
    if (kSwap) first = swapDwords(first), second = swapDwords(second);
    const bool direct = walk.source.left() >= 4 * kUnitsForDirect && walk.target.room() >= kRoomForDirect;
    unsigned char buffer[kBlockRoom];
    unsigned char* const target = direct ? walk.target.place() : buffer;
    unsigned char* const end = storeSixteen(target, first, second);
    if (end == nullptr) return false;
    const std::size_t written = static_cast<std::size_t>(end - target) - (kUnits - size / 4);
    if (written > walk.target.room()) return false;
    if (!direct) copySmall(walk.target.place(), buffer, written);
    walk.move(size, written);
    return true;
}

// Whole blocks of ASCII as far as they go; they make sixteen bytes each.
template <bool kSwap>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline void takeAsciiValues(UnicodeWalk& walk) {
    std::size_t blocks = std::min(walk.source.left() / (4 * kUnits), walk.target.room() / kUnits);
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    for (; blocks != 0; --blocks, place += 4 * kUnits, target += kUnits) {
        const __m256i raw = load32(place), raw8 = load32(place + 32);
        const __m256i first = kSwap ? swapDwords(raw) : raw, second = kSwap ? swapDwords(raw8) : raw8;
        if (any(_mm256_and_si256(_mm256_or_si256(first, second), dwords(~0x7FU)))) break;
        const __m256i units = _mm256_permute4x64_epi64(_mm256_packus_epi32(first, second), 0xD8);
        store16(target, lowHalf(narrowWords(units, units)));
    }
    walk.moveTo(place, target);
}

template <bool kSwap>
NLS_TARGET_AVX2 inline WideTaken encodeValues(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (!walk.source.atEnd()) {
        takeAsciiValues<kSwap>(walk);
        if (!walk.source.atEnd() && !takeValues<kSwap>(walk)) break;
    }
    return takenBy(walk, source);
}

}  // namespace

NLS_TARGET_AVX2 WideTaken utf16ToUtf8Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    return order.swapSource ? encodeUnits<true>(source, target, order) : encodeUnits<false>(source, target, order);
}

NLS_TARGET_AVX2 WideTaken ucs4ToUtf8Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    return order.swapSource ? encodeValues<true>(source, target, order) : encodeValues<false>(source, target, order);
}

}  // namespace nls
