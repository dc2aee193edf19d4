// How far two texts are the same, in steps of 16 bytes.
//
// A limit is never passed. A NUL ends a text just as well, and where it stands isn't known before, so a load may pass
// it inside its memory page, which can't fault; what stands there doesn't count. Tested by
// tests/collation/unicode_compare_test.cpp.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "collation/text.hpp"

// Marks what loads behind a NUL: the sanitizers must not watch it, and so it can't be inlined there.
#ifdef __has_feature
#define NLS_WATCHED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define NLS_WATCHED 1
#else
#define NLS_WATCHED 0
#endif
#if NLS_WATCHED
#define NLS_PASSES_NUL __attribute__((no_sanitize("address", "thread"), noinline))
#else
#define NLS_PASSES_NUL __attribute__((always_inline))
#endif

namespace nls {

namespace prefix {

inline constexpr std::size_t kBlock = 16;

// A load of a block at `place` stays inside one page; 4096 is the smallest there is.
inline bool blockInPage(const unsigned char* place) {
    return (reinterpret_cast<std::uintptr_t>(place) & 4095) <= 4096 - kBlock;
}

// Bytes left to both. Without limits: more than there can be.
inline std::size_t roomOfBoth(Text a, Text b) {
    const std::size_t ofA = a.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(a.limit - a.place);
    const std::size_t ofB = b.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(b.limit - b.place);
    return ofA < ofB ? ofA : ofB;
}

struct Same {
    // One bit for each byte at which a block ends the prefix.
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

NLS_PASSES_NUL inline __m128i load(const unsigned char* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
NLS_PASSES_NUL inline __m128i loadHalf(const unsigned char* place) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(place));
}

// The last bytes in front of a limit, or those at the edge of a page: one after the other.
template <typename Rule>
NLS_PASSES_NUL inline std::size_t lengthByBytes(const unsigned char* a, const unsigned char* b, std::size_t done,
                                                std::size_t end) {
    while (done != end && !Rule::stops(a[done], b[done])) ++done;
    return done;
}

template <typename Rule>
NLS_PASSES_NUL inline std::size_t length(const unsigned char* a, const unsigned char* b, std::size_t room) {
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

}  // namespace prefix

// Bytes from the front that are equal in both and neither NUL nor behind a limit.
NLS_PASSES_NUL inline std::size_t equalPrefix(Text a, Text b) {
    return prefix::length<prefix::Same>(a.place, b.place, prefix::roomOfBoth(a, b));
}

// The same for ASCII bytes that are equal but for the case of A to Z. Stops at the first byte from 0x80 on.
NLS_PASSES_NUL inline std::size_t equalAsciiPrefix(Text a, Text b) {
    return prefix::length<prefix::SameButForAsciiCase>(a.place, b.place, prefix::roomOfBoth(a, b));
}

}  // namespace nls
