// UTF-8 to UTF-16 and UCS4 in blocks of 64 bytes, by the idea that utf8_decode_avx2.cpp tells: planes of the value at
// the place of each character's last byte, squeezed down to those places. Here masks in registers do the squeezing, and
// loads and stores are masked to the bytes that are there, so that the last block is a block like any other.
//
// Every block starts and ends with a whole character.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include "conversion/avx512_basics.hpp"
#include "conversion/text_blocks.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

constexpr std::size_t kBlock = 64;

NLS_TARGET_AVX512 inline __m512i bytes(int value) {
    return _mm512_set1_epi8(static_cast<char>(value));
}

// The bits of `from` where `mask` has ones, else those of `other`.
NLS_TARGET_AVX512 inline __m512i select(__m512i mask, __m512i from, __m512i other) {
    return _mm512_ternarylogic_epi32(mask, from, other, 0xCA);
}

// Up to 64 bytes of text and where its characters stand.
struct Block {
    __m512i text;
    const unsigned char* place;
    uint64_t trails, leads, threes, fours;  // bytes 10xxxxxx; first bytes from C0, from E0, from F0 on
    uint64_t used;                          // the bytes of the characters that end in the block
    bool regular;

    uint64_t ends() const { return used & ~(trails >> 1); }
};

// Bit 7 - kBit of each byte.
template <int kBit>
NLS_TARGET_AVX512 inline uint64_t bitsOf(__m512i text) {
    return _mm512_movepi8_mask(_mm512_slli_epi16(text, kBit));
}

// All but `used`. The bits are taken one by one, since compares would meet the squeezes at the one port that has both.
NLS_TARGET_AVX512 inline Block classify(const unsigned char* place, __m512i text, uint64_t present) {
    const uint64_t beyondAscii = bitsOf<0>(text), second = bitsOf<1>(text);
    Block block;
    block.place = place;
    block.text = text;
    block.trails = beyondAscii & ~second;
    block.leads = beyondAscii & second;
    block.threes = block.leads & bitsOf<2>(text);
    block.fours = block.threes & bitsOf<3>(text);
    const uint64_t announced = (block.leads << 1) | (block.threes << 2) | (block.fours << 3);
    block.regular = ((announced ^ block.trails) & present) == 0;
    return block;
}

// The bytes that stand `distance` in front of those of the block, zero where `wanted` has no bit. REQUIRES: what is
// wanted stands in the block.
NLS_TARGET_AVX512 inline __m512i bytesBefore(const unsigned char* place, int distance, uint64_t wanted) {
    return _mm512_maskz_loadu_epi8(wanted, place - distance);
}

// The value's low, high and top eight bits at the place of its last byte; surrogates instead once they are split.
struct Planes {
    __m512i low, high, top;
    __m512i before, before2;  // the bytes one and two places in front; 0 where they belong to another character
    uint64_t wanted;          // the places at which a unit stands
};

NLS_TARGET_AVX512 inline Planes planesOf(const Block& block) {
    Planes planes;
    planes.before = bytesBefore(block.place, 1, block.trails);
    planes.before2 = bytesBefore(block.place, 2, ((block.threes << 2) | (block.fours << 3)) & block.used);
    const __m512i lowTwo = _mm512_and_si512(_mm512_slli_epi16(planes.before, 6), bytes(0xC0));
    planes.low = _mm512_or_si512(_mm512_and_si512(block.text, bytes(0x7F)), lowTwo);
    const __m512i fourBits = _mm512_srli_epi16(planes.before, 2);
    planes.high = select(bytes(0x0F), fourBits, _mm512_slli_epi16(planes.before2, 4));
    planes.top = _mm512_setzero_si512();
    planes.wanted = block.ends();
    return planes;
}

// Turns the values of four bytes into surrogates, the high one at the third byte and the low one at the fourth. False:
// some value isn't between U+10000 and U+10FFFF.
NLS_TARGET_AVX512 inline bool splitIntoSurrogates(const Block& block, Planes& planes) {
    const uint64_t thirds = (block.fours << 2) & block.used, fourths = block.fours << 3;
    // The high surrogate is 0xD800 - 0x40 plus the eleven bits above the low ten: three of the first byte, six of the
    // second, two of the third.
    const __m512i twoBits = _mm512_srli_epi16(block.text, 4);
    const __m512i eight = select(bytes(0x03), twoBits, _mm512_slli_epi16(planes.before, 2));
    const uint64_t borrows = _mm512_mask_cmplt_epu8_mask(thirds, eight, bytes(0x40));
    __m512i three = _mm512_sub_epi8(planes.before2, bytes(0xF0));
    three = _mm512_mask_sub_epi8(three, borrows, three, bytes(1));
    if (_mm512_mask_cmpgt_epu8_mask(thirds, three, bytes(3)) != 0) return false;
    planes.low = _mm512_mask_sub_epi8(planes.low, thirds, eight, bytes(0x40));
    planes.high = _mm512_mask_mov_epi8(planes.high, fourths, select(bytes(0x03), planes.high, bytes(0xDC)));
    planes.high = _mm512_mask_add_epi8(planes.high, thirds, three, bytes(0xD8));
    planes.wanted |= thirds;
    return true;
}

// Completes the values of four bytes. False: some value is above U+10FFFF.
NLS_TARGET_AVX512 inline bool addTopPlane(const Block& block, Planes& planes) {
    const uint64_t fourths = (block.fours << 3) & block.used;
    const __m512i three = _mm512_sub_epi8(bytesBefore(block.place, 3, fourths), bytes(0xF0));
    const __m512i twoBits = _mm512_srli_epi16(planes.before2, 4);
    const __m512i top = select(bytes(0x03), twoBits, _mm512_slli_epi16(three, 2));
    planes.top = _mm512_maskz_mov_epi8(fourths, top);
    return _mm512_cmpgt_epu8_mask(planes.top, bytes(0x10)) == 0;
}

// --- output: units of kUnit bytes, 2 or 4

NLS_TARGET_AVX512 inline void storeWords(unsigned char* target, __m512i words, std::size_t count) {
    _mm512_mask_storeu_epi16(target, static_cast<__mmask32>(firstBits(count)), words);
}

// The interleaving unpacks work in each quarter of a register, so the plane is dealt out to the quarters first: eight
// bytes to each and the next eight to each again, or four times four.
template <int kUnit>
NLS_TARGET_AVX512 inline __m512i dealOut(__m512i plane) {
    if constexpr (kUnit == 2) return dealOutQwords(plane);
    return permuteDwords(plane, _mm512_set_epi32(15, 11, 7, 3, 14, 10, 6, 2, 13, 9, 5, 1, 12, 8, 4, 0));
}

template <int kUnit>
NLS_TARGET_AVX512 inline void storeInterleaved(unsigned char* target, __m512i first, __m512i second, __m512i third,
                                               __m512i fourth, std::size_t count) {
    first = dealOut<kUnit>(first), second = dealOut<kUnit>(second);
    const __m512i even = _mm512_unpacklo_epi8(first, second), odd = _mm512_unpackhi_epi8(first, second);
    if constexpr (kUnit == 2) {
        storeWords(target, even, count);
        if (count > 32) storeWords(target + 64, odd, count - 32);
    } else {
        third = dealOut<kUnit>(third), fourth = dealOut<kUnit>(fourth);
        const __m512i even2 = _mm512_unpacklo_epi8(third, fourth), odd2 = _mm512_unpackhi_epi8(third, fourth);
        storeDwords(target, _mm512_unpacklo_epi16(even, even2), count);
        if (count > 16) storeDwords(target + 64, _mm512_unpackhi_epi16(even, even2), count - 16);
        if (count > 32) storeDwords(target + 128, _mm512_unpacklo_epi16(odd, odd2), count - 32);
        if (count > 48) storeDwords(target + 192, _mm512_unpackhi_epi16(odd, odd2), count - 48);
    }
}

template <int kUnit>
NLS_TARGET_AVX512 inline void storePlanes(unsigned char* target, const Planes& planes, bool swap) {
    const std::size_t count = static_cast<std::size_t>(_mm_popcnt_u64(planes.wanted));
    const __m512i low = _mm512_maskz_compress_epi8(planes.wanted, planes.low);
    const __m512i high = _mm512_maskz_compress_epi8(planes.wanted, planes.high);
    const __m512i zero = _mm512_setzero_si512();
    if constexpr (kUnit == 2) {
        storeInterleaved<2>(target, swap ? high : low, swap ? low : high, zero, zero, count);
    } else {
        const __m512i top = _mm512_maskz_compress_epi8(planes.wanted, planes.top);
        if (swap) {
            storeInterleaved<4>(target, zero, top, high, low, count);
        } else {
            storeInterleaved<4>(target, low, high, top, zero, count);
        }
    }
}

// --- the walk

// Whole blocks of ASCII as far as they go.
template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline void takeAscii(UnicodeWalk& walk) {
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    std::size_t blocks = std::min(walk.source.left() / kBlock, walk.target.room() / (kBlock * kUnit));
    const bool swap = walk.order.swapTarget;
    for (; blocks != 0; --blocks, place += kBlock, target += kBlock * kUnit) {
        const __m512i text = _mm512_loadu_si512(place);
        if (_mm512_movepi8_mask(text) != 0) break;
        for (std::size_t part = 0; part < kUnit; ++part) {
            const unsigned char* const quarter = place + part * kBlock / kUnit;
            const __m512i units = kUnit == 2 ? widenBytesToWords(quarter) : widenBytesToDwords(quarter);
            _mm512_storeu_si512(target + part * kBlock, swap ? swapUnits<kUnit>(units) : units);
        }
    }
    walk.moveTo(place, target);
}

// The bytes written, or kOdd for a block that the exact walk has to take. REQUIRES: block.regular.
constexpr std::size_t kOdd = ~std::size_t{0};

template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline std::size_t storeBlock(const Block& block, unsigned char* target,
                                                                       std::size_t room, bool swap) {
    Planes planes = planesOf(block);
    if (block.fours != 0 && !(kUnit == 2 ? splitIntoSurrogates(block, planes) : addTopPlane(block, planes)))
        return kOdd;
    const std::size_t written = kUnit * static_cast<std::size_t>(_mm_popcnt_u64(planes.wanted));
    if (written > room) return kOdd;
    storePlanes<kUnit>(target, planes, swap);
    return written;
}

// A whole block.
template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool takeBlock(UnicodeWalk& walk) {
    const unsigned char* const place = walk.source.place();
    const std::size_t begun = cutOffBytes(place, kBlock);
    Block block = classify(place, _mm512_loadu_si512(place), ~uint64_t{0});
    if (!block.regular) return false;
    block.used = ~uint64_t{0} >> begun;
    const std::size_t written =
        storeBlock<kUnit>(block, walk.target.place(), walk.target.room(), walk.order.swapTarget);
    if (written == kOdd) return false;
    walk.move(kBlock - begun, written);
    return true;
}

// Less than 64 bytes of ASCII.
template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline WideTaken widenShort(__m512i text, std::size_t size, ByteSpan target,
                                                                     bool swap) {
    if (kUnit * size > target.size()) return {0, 0};
    const __m512i zero = _mm512_setzero_si512();
    if (swap) {
        storeInterleaved<kUnit>(target.data(), zero, kUnit == 2 ? text : zero, zero, text, size);
    } else {
        storeInterleaved<kUnit>(target.data(), text, zero, zero, zero, size);
    }
    return {size, kUnit * size};
}

// The last block, or a short text: less than 64 bytes.
template <int kUnit>
[[gnu::always_inline]] NLS_TARGET_AVX512 inline WideTaken decodeShort(ByteView source, ByteSpan target, bool swap) {
    const uint64_t present = firstBits(source.size());
    const __m512i text = _mm512_maskz_loadu_epi8(present, source.data());
    if (bitsOf<0>(text) == 0) return widenShort<kUnit>(text, source.size(), target, swap);
    Block block = classify(source.data(), text, present);
    if (!block.regular) return {0, 0};
    const uint64_t cutOff =
        (block.leads & ~(present >> 1)) | (block.threes & ~(present >> 2)) | (block.fours & ~(present >> 3));
    block.used = cutOff == 0 ? present : _blsmsk_u64(cutOff) >> 1;
    const std::size_t written = storeBlock<kUnit>(block, target.data(), target.size(), swap);
    if (written == kOdd) return {0, 0};
    return {static_cast<std::size_t>(_mm_popcnt_u64(block.used)), written};
}

// At least one whole block, and what follows.
template <int kUnit>
[[gnu::noinline]] NLS_TARGET_AVX512 WideTaken decodeLong(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (walk.source.left() >= kBlock) {
        if (_mm512_movepi8_mask(_mm512_loadu_si512(walk.source.place())) == 0 && walk.target.room() >= kBlock * kUnit) {
            takeAscii<kUnit>(walk);
        } else if (!takeBlock<kUnit>(walk)) {
            return takenBy(walk, source);
        }
    }
    const WideTaken last = decodeShort<kUnit>({walk.source.place(), walk.source.left()},
                                              {walk.target.place(), walk.target.room()}, order.swapTarget);
    walk.move(last.read, last.written);
    return takenBy(walk, source);
}

}  // namespace

NLS_TARGET_AVX512 WideTaken utf8ToUtf16Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    return source.size() < kBlock ? decodeShort<2>(source, target, order.swapTarget)
                                  : decodeLong<2>(source, target, order);
}

NLS_TARGET_AVX512 WideTaken utf8ToUcs4Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    return source.size() < kBlock ? decodeShort<4>(source, target, order.swapTarget)
                                  : decodeLong<4>(source, target, order);
}

}  // namespace nls
