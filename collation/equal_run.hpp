// The bytes that two texts have in common at their beginning, found in blocks of 16.
//
// A text may end at a NUL before its limit, and what lies behind that NUL may belong to nobody. So a block is read where
// it lies in one page with its first byte, which can be read, and near the end of a page bytes are taken singly. The
// sanitizers, which know of objects and not of pages, must leave the functions that do this alone.
// Tested by tests/collation/compare_test.cpp.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "collation/text.hpp"

// For functions that read whole blocks behind the end of a text, within its page.
#define NLS_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address", "thread")))

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

// Bytes up to the nearer limit; as good as endless without limits.
inline std::size_t leftInBoth(Text a, Text b) {
    const auto left = [](Text text) {
        return text.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(text.limit - text.place);
    };
    return std::min(left(a), left(b));
}

// How many bytes are equal and not NUL, at most `most`.
NLS_READS_WHOLE_BLOCKS inline std::size_t equalRun(const unsigned char* a, const unsigned char* b, std::size_t most) {
    constexpr std::size_t kBlock = 16;
    std::size_t done = 0;
    while (done < most) {
        if (leftInBothPages(a + done, b + done) < kBlock) {
            if (a[done] != b[done] || a[done] == 0) return done;
            ++done;
            continue;
        }
        const __m128i ofA = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + done));
        const __m128i ofB = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + done));
        // A byte where both are the same, else 0: the NUL is as good as a difference.
        const __m128i same = _mm_and_si128(_mm_cmpeq_epi8(ofA, ofB), ofA);
        const auto stops = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(same, _mm_setzero_si128())));
        if (stops != 0) return std::min(most, done + static_cast<unsigned>(__builtin_ctz(stops)));
        done += kBlock;
    }
    return most;
}

// The same in blocks of 64. REQUIRES: the processor has AVX-512.
std::size_t equalRunAvx512(const unsigned char* a, const unsigned char* b, std::size_t most);

}  // namespace nls
