// The bytes that two texts have in common at their beginning, found in blocks: of 16 on any processor, of 64 with
// AVX-512.
//
// No limit is passed. But a text may end at a NUL before its limit, and what lies behind that NUL may belong to nobody.
// So a block is read as far as it lies in one page with its first byte, which can be read; what it holds behind the NUL
// doesn't count. The sanitizers, which know of objects and not of pages, must leave the functions that do this alone.
// Tested by tests/collation/compare_test.cpp and tests/collation/unicode_compare_test.cpp.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "collation/text.hpp"

// For functions that read whole blocks behind the end of a text, within its page. No sanitizer may watch them, so they
// can't be inlined into what it watches.
#define NLS_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address", "thread")))

// The same for the small ones here, which do belong into their callers when nobody watches.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define NLS_BLOCKS_INLINE NLS_READS_WHOLE_BLOCKS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define NLS_BLOCKS_INLINE NLS_READS_WHOLE_BLOCKS
#endif
#endif
#ifndef NLS_BLOCKS_INLINE
#define NLS_BLOCKS_INLINE __attribute__((always_inline))
#endif

namespace nls {

inline constexpr std::uintptr_t kSmallestPage = 4096;

// Bytes from `place` to the end of its page: at least 1.
inline std::size_t leftInPage(const unsigned char* place) {
    return kSmallestPage - (reinterpret_cast<std::uintptr_t>(place) & (kSmallestPage - 1));
}

// Bytes from both places that lie in one page each: at least 1.
inline std::size_t leftInBothPages(const unsigned char* a, const unsigned char* b) {
    return std::min(leftInPage(a), leftInPage(b));
}

// Do `count` bytes lie in one page? They are at most a block.
inline bool staysInPage(const unsigned char* place, std::size_t count) {
    return (reinterpret_cast<std::uintptr_t>(place) & (kSmallestPage - 1)) + count <= kSmallestPage;
}

// Bytes up to the nearer limit; as good as endless without limits.
inline std::size_t leftInBoth(Text a, Text b) {
    const auto left = [](Text text) {
        return text.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(text.limit - text.place);
    };
    return std::min(left(a), left(b));
}

namespace run {

inline constexpr std::size_t kBlock = 16;

// A load of a block at `place` stays inside one page.
inline bool blockInPage(const unsigned char* place) {
    return leftInPage(place) >= kBlock;
}

// What counts as the same, block by block and byte by byte.
struct Same {
    // One bit for each byte at which a block ends the run: a difference or a NUL.
    static unsigned stops(__m128i a, __m128i b) {
        // A byte where both are equal, and 0 where they aren't: NUL and difference at once.
        const __m128i kept = _mm_and_si128(_mm_cmpeq_epi8(a, b), a);
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(kept, _mm_setzero_si128())));
    }
    static bool stops(unsigned char a, unsigned char b) { return a != b || a == 0; }
};

struct SameButForAsciiCase {
    static __m128i folded(__m128i bytes) {
        // A to Z are moved to the lowest of the signed bytes.
        const __m128i moved = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(0x80 - 'A')));
        const __m128i upper = _mm_cmplt_epi8(moved, _mm_set1_epi8(-128 + 26));
        return _mm_or_si128(bytes, _mm_and_si128(upper, _mm_set1_epi8(0x20)));
    }
    static unsigned stops(__m128i a, __m128i b) {
        return Same::stops(folded(a), folded(b)) | static_cast<unsigned>(_mm_movemask_epi8(a));
    }
    static unsigned folded(unsigned char byte) { return byte - unsigned{'A'} < 26 ? byte | 0x20U : byte; }
    static bool stops(unsigned char a, unsigned char b) { return folded(a) != folded(b) || a == 0 || a >= 0x80; }
};

NLS_BLOCKS_INLINE inline __m128i load(const unsigned char* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
NLS_BLOCKS_INLINE inline __m128i loadHalf(const unsigned char* place) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
}

// The last bytes in front of a limit, or those at the edge of a page: one after the other.
template <typename Rule>
NLS_BLOCKS_INLINE inline std::size_t lengthByBytes(const unsigned char* a, const unsigned char* b, std::size_t done,
                                                   std::size_t end) {
    while (done != end && !Rule::stops(a[done], b[done])) ++done;
    return done;
}

template <typename Rule>
NLS_BLOCKS_INLINE inline std::size_t length(const unsigned char* a, const unsigned char* b, std::size_t room) {
    std::size_t done = 0;
    while (room - done >= kBlock) {
        if (!blockInPage(a + done) || !blockInPage(b + done)) {
            const std::size_t end = done + kBlock;
            done = lengthByBytes<Rule>(a, b, done, end);
            if (done != end) return done;
            continue;
        }
        const unsigned stops = Rule::stops(load(a + done), load(b + done));
        if (stops != 0) return done + static_cast<unsigned>(__builtin_ctz(stops));
        done += kBlock;
    }
    // What is left in front of a limit: a block that overlaps the one before it, or two halves of one that overlap.
    constexpr std::size_t kHalf = kBlock / 2;
    if (room < kHalf || !blockInPage(a + done) || !blockInPage(b + done)) return lengthByBytes<Rule>(a, b, done, room);
    if (room >= kBlock) {
        const unsigned stops = Rule::stops(load(a + room - kBlock), load(b + room - kBlock));
        return stops == 0 ? room : room - kBlock + static_cast<unsigned>(__builtin_ctz(stops));
    }
    constexpr unsigned kLowBits = 0xFF;
    const unsigned first = Rule::stops(loadHalf(a), loadHalf(b)) & kLowBits;
    if (first != 0) return static_cast<unsigned>(__builtin_ctz(first));
    const unsigned second = Rule::stops(loadHalf(a + room - kHalf), loadHalf(b + room - kHalf)) & kLowBits;
    return second == 0 ? room : room - kHalf + static_cast<unsigned>(__builtin_ctz(second));
}

}  // namespace run

// How many bytes are equal and not NUL, at most `most`.
inline std::size_t equalRun(const unsigned char* a, const unsigned char* b, std::size_t most) {
    return run::length<run::Same>(a, b, most);
}

// The same for ASCII bytes that are equal but for the case of A to Z. Stops at the first byte from 0x80 on.
inline std::size_t equalAsciiRun(const unsigned char* a, const unsigned char* b, std::size_t most) {
    return run::length<run::SameButForAsciiCase>(a, b, most);
}

// equalRun in blocks of 64. REQUIRES: the processor has AVX-512.
std::size_t equalRunAvx512(const unsigned char* a, const unsigned char* b, std::size_t most);

}  // namespace nls
