// A copy of a short text, as a search in it needs it. Tested by tests/strings/search_test.cpp.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "collation/equal_run.hpp"
#include "core/base/views.hpp"
#include "strings/str_record.hpp"
#include "strings/utf8_block.hpp"

namespace nls {

inline constexpr unsigned kShortLanes = 16, kShortParts = blockSize / kShortLanes;

// One bit for each byte, the lowest for the first.
constexpr std::uint64_t firstBits(std::size_t count) {
    return (std::uint64_t{1} << count) - 1;
}

// A copy, with zeros behind it, and what its keys need beside.
struct ShortText {
    alignas(kShortLanes) unsigned char bytes[blockSize];
    std::size_t length;    // blockSize: the text is longer, and the copy isn't closed
    std::uint64_t starts;  // where a match may begin
    std::uint64_t longer;  // first bytes of two whose keys don't tell them from single ones

    bool isWhole() const { return length != blockSize; }
    ByteView view() const { return {bytes, length}; }
    __m128i* part(unsigned i) { return reinterpret_cast<__m128i*>(bytes) + i; }
};

// From place 64 - n on: n bytes to keep, and zeros.
alignas(kShortLanes) inline constexpr std::array<unsigned char, 2 * blockSize> kKeptBytes = [] {
    std::array<unsigned char, 2 * blockSize> kept{};
    std::fill_n(kept.begin(), blockSize, static_cast<unsigned char>(0xFF));
    return kept;
}();

// Of a text whose first 64 bytes lie in one page.
NLS_READS_WHOLE_BLOCKS inline void copyFromPage(const unsigned char* text, ShortText& copy) {
    __m128i parts[kShortParts];
    std::uint64_t nuls = 0;
#pragma GCC unroll 4
    for (unsigned i = kShortParts; i-- != 0;) {
        parts[i] = run::load(text + i * kShortLanes);
        const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi8(parts[i], _mm_setzero_si128()));
        nuls = nuls << kShortLanes | static_cast<unsigned>(zeros);
    }
    copy.length = nuls == 0 ? blockSize : static_cast<std::size_t>(__builtin_ctzll(nuls));
    const unsigned char* const kept = kKeptBytes.data() + blockSize - copy.length;
#pragma GCC unroll 4
    for (unsigned i = 0; i != kShortParts; ++i)
        _mm_store_si128(copy.part(i), _mm_and_si128(parts[i], run::load(kept + i * kShortLanes)));
}

inline void copyShort(const unsigned char* text, ShortText& copy) {
    if (leftInPage(text) >= blockSize) return copyFromPage(text, copy);
    copy.length = boundedLength(text, blockSize);
    std::memset(copy.bytes, 0, blockSize);
    std::memcpy(copy.bytes, text, copy.length);
}

}  // namespace nls
