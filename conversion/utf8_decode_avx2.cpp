// UTF-8 to UTF-16 and UCS4, 32 bytes at a time.
//
// A character is known by the byte that ends it: from that byte and the ones in front of it, every place computes what
// its character would be if it ended there, split into planes (the low, high and top eight bits of the value).
// Squeezing the planes down to the places that do end a character leaves the values in order, whatever mix of lengths
// the text has. A character of four bytes becomes a surrogate pair by its last two places: the third byte already knows
// the high surrogate.
//
// A block is taken when each announced trail byte is one and no other byte is: then the fields of the bytes are what
// the accumulating reader gets, overlong forms and surrogates included. Values of four bytes that need a decision
// (above U+10FFFF, or so overlong that one unit holds them) leave the block to the exact walk.
//
// The first and the last blocks of a text stand alone: they end with a whole character, and their output passes through
// a buffer where a wide store could reach too far. The blocks between take the places in front from the text.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include <algorithm>

#include "conversion/avx2_basics.hpp"
#include "conversion/text_blocks.hpp"
#include "conversion/unicode_wide.hpp"
#include "conversion/utf_codec.hpp"

namespace nls {

namespace {

constexpr std::size_t kBlock = 32;

NLS_TARGET_AVX2 inline __m256i bytes(int value) {
    return _mm256_set1_epi8(static_cast<char>(value));
}
NLS_TARGET_AVX2 inline __m256i atLeast(__m256i v, int value) {
    return _mm256_cmpeq_epi8(_mm256_max_epu8(v, bytes(value)), v);
}
NLS_TARGET_AVX2 inline __m256i isTrail(__m256i v) {
    return _mm256_cmpgt_epi8(bytes(-0x40), v);
}
// Bits moved within each byte. `kept` are those that then count.
NLS_TARGET_AVX2 inline __m256i shiftUp(__m256i v, int bits, int kept) {
    return _mm256_and_si256(_mm256_slli_epi16(v, bits), bytes(kept));
}
NLS_TARGET_AVX2 inline __m256i shiftDown(__m256i v, int bits, int kept) {
    return _mm256_and_si256(_mm256_srli_epi16(v, bits), bytes(kept));
}

// The bytes of a block, and for each place those one to three in front of it.
struct Bytes {
    __m256i text, before, before2, before3;
};

NLS_TARGET_AVX2 inline Bytes bytesInside(const unsigned char* place) {
    return {load32(place), load32(place - 1), load32(place - 2), load32(place - 3)};
}
// Zero in front of the block.
NLS_TARGET_AVX2 inline Bytes bytesAlone(__m256i text) {
    return {text, bytesInFront<1>(text), bytesInFront<2>(text), bytesInFront<3>(text)};
}

// The places at which a trail byte is missing, or stands unannounced.
NLS_TARGET_AVX2 inline uint32_t irregularPlaces(const Bytes& block) {
    const __m256i ofTwo = _mm256_subs_epu8(block.before, bytes(0xBF));
    const __m256i ofThree = _mm256_subs_epu8(block.before2, bytes(0xDF));
    const __m256i ofFour = _mm256_subs_epu8(block.before3, bytes(0xEF));
    const __m256i announced = _mm256_or_si256(_mm256_or_si256(ofTwo, ofThree), ofFour);
    const __m256i unannounced = _mm256_cmpeq_epi8(announced, _mm256_setzero_si256());
    return signBits(_mm256_cmpeq_epi8(unannounced, isTrail(block.text)));
}

// The value's low, high and top eight bits at the place of its last byte; surrogates instead once they are split.
struct Planes {
    __m256i low, high, top;
    uint32_t wanted;  // the places at which a unit stands
};

NLS_TARGET_AVX2 inline Planes planesOf(const Bytes& block, uint32_t ends) {
    const __m256i before = _mm256_and_si256(block.before, isTrail(block.text));
    const __m256i ofThree = shiftUp(_mm256_subs_epu8(block.before2, bytes(0xE0)), 4, 0xF0);
    return {_mm256_or_si256(_mm256_and_si256(block.text, bytes(0x7F)), shiftUp(before, 6, 0xC0)),
            _mm256_or_si256(shiftDown(before, 2, 0x0F), ofThree), _mm256_setzero_si256(), ends};
}

NLS_TARGET_AVX2 inline bool hasFours(const Bytes& block) {
    const __m256i fours = _mm256_max_epu8(block.text, block.before3);
    return signBits(atLeast(fours, 0xF0)) != 0;
}

// The high surrogate at the third byte, the low one at the fourth. `used`: the places that count. False: some value
// isn't between U+10000 and U+10FFFF.
NLS_TARGET_AVX2 inline bool splitIntoSurrogates(const Bytes& block, uint32_t used, Planes& planes) {
    const __m256i third = atLeast(block.before2, 0xF0), fourth = atLeast(block.before3, 0xF0);
    // The high surrogate is 0xD800 - 0x40 plus the eleven bits above the low ten: three of the first byte, six of the
    // second, two of the third.
    const __m256i eight = _mm256_or_si256(shiftUp(block.before, 2, 0xFC), shiftDown(block.text, 4, 0x03));
    const __m256i borrow = _mm256_cmpeq_epi8(_mm256_min_epu8(eight, bytes(0x3F)), eight);
    const __m256i three = _mm256_add_epi8(_mm256_sub_epi8(block.before2, bytes(0xF0)), borrow);
    const uint32_t thirds = signBits(third) & used;
    if ((signBits(atLeast(three, 4)) & thirds) != 0) return false;
    planes.low = _mm256_blendv_epi8(planes.low, _mm256_sub_epi8(eight, bytes(0x40)), third);
    const __m256i lowSurrogate = _mm256_or_si256(_mm256_and_si256(planes.high, bytes(0x03)), bytes(0xDC));
    planes.high = _mm256_blendv_epi8(planes.high, lowSurrogate, fourth);
    planes.high = _mm256_blendv_epi8(planes.high, _mm256_add_epi8(three, bytes(0xD8)), third);
    planes.wanted |= thirds;
    return true;
}

// Completes the values of four bytes. False: some value is above U+10FFFF.
NLS_TARGET_AVX2 inline bool addTopPlane(const Bytes& block, uint32_t used, Planes& planes) {
    const __m256i fourth = atLeast(block.before3, 0xF0);
    const __m256i three = shiftUp(_mm256_sub_epi8(block.before3, bytes(0xF0)), 2, 0xFC);
    planes.top = _mm256_and_si256(_mm256_or_si256(three, shiftDown(block.before2, 4, 0x03)), fourth);
    const __m256i fourBits = _mm256_and_si256(shiftUp(block.before2, 4, 0xF0), fourth);
    planes.high = _mm256_or_si256(planes.high, fourBits);
    return (signBits(atLeast(planes.top, 0x11)) & used) == 0;
}

// --- output: units of kUnit bytes, 2 or 4

template <int kUnit>
constexpr std::size_t kBlockRoom = kBlock* kUnit;
// With as much left to read, what follows a block covers the overhang of its stores: a character has at most six bytes,
// so it comes to eight units more, unless the room ends, which leaves no more than one unit unwritten.
constexpr std::size_t kSourceForDirect = 96;
template <int kUnit>
constexpr std::size_t kRoomForDirect = kBlockRoom<kUnit> + kUnit;

// The planes in the order in which their bytes stand in a unit.
struct Output {
    __m256i first, second, third, fourth;
};
template <int kUnit>
NLS_TARGET_AVX2 inline Output inOrder(const Planes& planes, bool swap) {
    const __m256i zero = _mm256_setzero_si256();
    if (!swap) return {planes.low, planes.high, planes.top, zero};
    if (kUnit == 2) return {planes.high, planes.low, zero, zero};
    return {zero, planes.top, planes.high, planes.low};
}

template <int kUnit>
NLS_TARGET_AVX2 inline unsigned char* storePlanes(unsigned char* target, const Output& out, uint64_t wanted) {
    const __m256i even = _mm256_unpacklo_epi8(out.first, out.second), odd = _mm256_unpackhi_epi8(out.first, out.second);
    const __m256i even2 = _mm256_unpacklo_epi8(out.third, out.fourth);
    const __m256i odd2 = _mm256_unpackhi_epi8(out.third, out.fourth);
    target = storeSqueezed<kUnit>(target, lowHalf(even), lowHalf(even2), wanted << 4 & 0xFF0);
    target = storeSqueezed<kUnit>(target, lowHalf(odd), lowHalf(odd2), wanted >> 4 & 0xFF0);
    target = storeSqueezed<kUnit>(target, highHalf(even), highHalf(even2), wanted >> 12 & 0xFF0);
    return storeSqueezed<kUnit>(target, highHalf(odd), highHalf(odd2), wanted >> 20 & 0xFF0);
}

// --- the walk

// False: the exact walk has to take this block.
template <int kUnit>
NLS_TARGET_AVX2 inline bool completeFours(const Bytes& block, uint32_t used, Planes& planes) {
    if (!hasFours(block)) return true;
    return kUnit == 2 ? splitIntoSurrogates(block, used, planes) : addTopPlane(block, used, planes);
}

template <int kUnit>
NLS_TARGET_AVX2 inline bool hasRoomForDirect(const UnicodeWalk& walk) {
    return walk.source.left() >= kSourceForDirect && walk.target.room() >= kRoomForDirect<kUnit>;
}

// A block that starts and ends with a whole character. False, and nothing taken, if it isn't one or doesn't fit.
template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline bool takeAlone(UnicodeWalk& walk) {
    const std::size_t size = std::min(walk.source.left(), kBlock);
    const std::size_t taken = size - std::min(cutOffBytes(walk.source.place(), size), size);
    const uint32_t present = static_cast<uint32_t>(_bzhi_u64(~uint64_t{0}, static_cast<unsigned>(size)));
    const uint32_t used = static_cast<uint32_t>(_bzhi_u64(~uint64_t{0}, static_cast<unsigned>(taken)));
    const Bytes block = bytesAlone(loadUpTo32(walk.source.place(), size));
    if (taken == 0 || (irregularPlaces(block) & present) != 0) return false;
    Planes planes = planesOf(block, used & ~(signBits(isTrail(block.text)) >> 1));
    if (!completeFours<kUnit>(block, used, planes)) return false;
    const std::size_t written = kUnit * static_cast<std::size_t>(_mm_popcnt_u32(planes.wanted));
    if (written > walk.target.room()) return false;
    const Output out = inOrder<kUnit>(planes, walk.order.swapTarget);
    const bool direct = hasRoomForDirect<kUnit>(walk);
    alignas(32) unsigned char buffer[kBlockRoom<kUnit>];
    storePlanes<kUnit>(direct ? walk.target.place() : buffer, out, planes.wanted);
    if (!direct) copySmall(walk.target.place(), buffer, written);
    walk.move(taken, written);
    return true;
}

// A block of ASCII, each byte widened to a unit.
template <int kUnit, bool kSwap>
NLS_TARGET_AVX2 inline void storeAscii(unsigned char* target, __m256i text) {
    const __m256i zero = _mm256_setzero_si256();
    // The lanes of the unpacked halves are a quarter of the block each, 0 and 2, 1 and 3.
    const __m256i even = kSwap ? _mm256_unpacklo_epi8(zero, text) : _mm256_unpacklo_epi8(text, zero);
    const __m256i odd = kSwap ? _mm256_unpackhi_epi8(zero, text) : _mm256_unpackhi_epi8(text, zero);
    const __m256i halves[2] = {_mm256_permute2x128_si256(even, odd, 0x20), _mm256_permute2x128_si256(even, odd, 0x31)};
    for (int half = 0; half < 2; ++half) {
        if constexpr (kUnit == 2) {
            store32(target + 32 * half, halves[half]);
        } else {
            const __m256i a =
                kSwap ? _mm256_unpacklo_epi16(zero, halves[half]) : _mm256_unpacklo_epi16(halves[half], zero);
            const __m256i b =
                kSwap ? _mm256_unpackhi_epi16(zero, halves[half]) : _mm256_unpackhi_epi16(halves[half], zero);
            store32(target + 64 * half, _mm256_permute2x128_si256(a, b, 0x20));
            store32(target + 64 * half + 32, _mm256_permute2x128_si256(a, b, 0x31));
        }
    }
}

// What the blocks in front of a place took too much of, if the next block isn't taken: the bytes of a last character,
// and what it has left in the target.
struct Surplus {
    std::size_t bytes, written;
};

// A block sees a character end where no trail byte follows. So it has left a unit for one that isn't complete if none
// follows, and none for one that is complete if a trail byte too many does. A high surrogate is left by the third of
// four bytes. REQUIRES: the blocks in front were regular.
template <int kUnit>
inline Surplus surplusOf(const unsigned char* place) {
    const bool trailFollows = isUtf8Trail(*place);
    std::size_t bytes = cutOffBytes(place - 3, 3);
    const bool complete = bytes == 0;
    if (complete && !trailFollows) return {0, 0};
    if (complete) {
        bytes = 1;
        while (isUtf8Trail(*(place - bytes))) ++bytes;
    }
    const bool highSurrogate = kUnit == 2 && bytes >= 3 && *(place - bytes) >= 0xF0;
    return {bytes, highSurrogate || !trailFollows ? kUnit : 0U};
}

// Blocks in the middle of a text, each of 32 bytes wherever its characters begin. REQUIRES: three bytes in front of the
// place are regular text that was taken already; hasRoomForDirect.
template <int kUnit, bool kSwap>
[[gnu::always_inline]] NLS_TARGET_AVX2 inline void takeInside(UnicodeWalk& walk) {
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const unsigned char* const lastPlace = place + walk.source.left() - kSourceForDirect;
    unsigned char* const lastTarget = target + walk.target.room() - kRoomForDirect<kUnit>;
    while (place <= lastPlace && target <= lastTarget) {
        const Bytes block = bytesInside(place);
        if (signBits(block.text) == 0 && cutOffBytes(place - 3, 3) == 0 && !isUtf8Trail(place[kBlock])) {
            storeAscii<kUnit, kSwap>(target, block.text);
            target += kBlockRoom<kUnit>;
            place += kBlock;
            continue;
        }
        if (irregularPlaces(block) != 0) break;
        Planes planes = planesOf(block, ~signBits(isTrail(load32(place + 1))));
        if (!completeFours<kUnit>(block, ~0U, planes)) break;
        target = storePlanes<kUnit>(target, inOrder<kUnit>(planes, kSwap), planes.wanted);
        place += kBlock;
    }
    if (place == walk.source.place()) return;
    const Surplus surplus = surplusOf<kUnit>(place);
    walk.move(static_cast<std::size_t>(place - walk.source.place()) - surplus.bytes,
              static_cast<std::size_t>(target - walk.target.place()) - surplus.written);
}

template <int kUnit>
NLS_TARGET_AVX2 inline WideTaken decode(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (!walk.source.atEnd() && takeAlone<kUnit>(walk)) {
        if (!hasRoomForDirect<kUnit>(walk)) continue;
        if (walk.order.swapTarget) {
            takeInside<kUnit, true>(walk);
        } else {
            takeInside<kUnit, false>(walk);
        }
    }
    return takenBy(walk, source);
}

}  // namespace

NLS_TARGET_AVX2 WideTaken utf8ToUtf16Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    return decode<2>(source, target, order);
}

NLS_TARGET_AVX2 WideTaken utf8ToUcs4Avx2(ByteView source, ByteSpan target, ByteOrder order) {
    return decode<4>(source, target, order);
}

}  // namespace nls
