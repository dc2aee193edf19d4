// 64 bytes of UTF-8 at once: are they plain whole characters, and where do these begin?
//
// Trailing bytes must stand exactly where the first bytes announce them. Overlong forms and surrogates pass, since only
// lengths matter here; C0, C1 and F5 to FF don't, because charsets differ in the lengths that they give them.
// Tested by tests/strings/counting_test.cpp.
#pragma once

#include <emmintrin.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace nls {

constexpr unsigned blockSize = 64;

// By first byte: the trail count. C0, C1 and F5 to FF count differently from charset to charset: blocks leave them out.
constexpr bool isRegularUtf8(unsigned byte) {
    return byte != 0xC0 && byte != 0xC1 && byte < 0xF5;
}
alignas(64) inline constexpr std::array<unsigned char, 256> kUsualTrails = [] {
    std::array<unsigned char, 256> trails{};
    for (unsigned byte = 0xC2; byte < 0xF5; ++byte)
        trails[byte] = static_cast<unsigned char>(byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3);
    return trails;
}();
alignas(64) inline constexpr std::array<unsigned char, 256> kCountedTrails = [] {
    std::array<unsigned char, 256> bits{};
    for (unsigned byte = 0; byte < 256; ++byte) bits[byte] = isRegularUtf8(byte) ? 0x07 : 0;
    return bits;
}();

inline unsigned bitCount(uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555U;
    bits = (bits & 0x3333333333333333U) + (bits >> 2 & 0x3333333333333333U);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0FU;
    return static_cast<unsigned>(bits * 0x0101010101010101U >> 56);
}

// One bit for each of 64 bytes, the lowest for the first.
class ByteBlock {
public:
    // REQUIRES: 64 readable bytes.
    explicit ByteBlock(const unsigned char* place) {
        for (int i = 0; i < 4; ++i) part_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(place) + i);
    }
    // The `count` bytes at `place` with zeros behind them. REQUIRES: count < 64.
    static ByteBlock padded(const unsigned char* place, std::size_t count) {
        unsigned char bytes[blockSize] = {};
        std::memcpy(bytes, place, count);
        return ByteBlock{bytes};
    }
    uint64_t high() const {
        return join([](__m128i part) { return part; });
    }
    uint64_t equal(unsigned char byte) const {
        return join([b = splat(byte)](__m128i part) { return _mm_cmpeq_epi8(part, b); });
    }
    // Bytes from 0x80 up to, but without, `limit`. REQUIRES: limit > 0x80.
    uint64_t highBelow(unsigned char limit) const {
        return join([b = splat(limit)](__m128i part) { return _mm_cmplt_epi8(part, b); });
    }

private:
    static __m128i splat(unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); }

    template <typename Test>
    uint64_t join(Test test) const {
        uint64_t bits = 0;
#pragma GCC unroll 4
        for (int i = 3; i >= 0; --i) bits = bits << 16 | static_cast<unsigned>(_mm_movemask_epi8(test(part_[i])));
        return bits;
    }

    __m128i part_[4];
};

struct Utf8Block {
    bool plain;       // else nothing below holds
    unsigned bytes;   // of whole characters: 61 to 64
    uint64_t starts;  // their first bytes
};

inline Utf8Block readUtf8Block(const ByteBlock& block) {
    const uint64_t high = block.high();
    if (high == 0) return {true, blockSize, ~uint64_t{0}};
    const uint64_t trails = block.highBelow(0xC0);
    const uint64_t leads = high & ~trails;
    const uint64_t leads3 = high & ~block.highBelow(0xE0);
    const uint64_t leads4 = high & ~block.highBelow(0xF0);
    const uint64_t odd = (leads & block.highBelow(0xC2)) | (leads4 & ~block.highBelow(0xF5));
    if (odd != 0 || trails != (leads << 1 | leads3 << 2 | leads4 << 3)) return {false, 0, 0};
    if ((leads >> 63 | leads3 >> 62 | leads4 >> 61) == 0) return {true, blockSize, ~trails};
    const auto cut = static_cast<unsigned>(63 - __builtin_clzll(leads));
    return {true, cut, ~trails & ((uint64_t{1} << cut) - 1)};
}

}  // namespace nls
