// The bytes that two texts have in common at their beginning, found in blocks: of 16 on any processor, of 64 with AVX-512.
//
// No limit is passed. But a text may end at a NUL before its limit, and what lies behind that NUL may belong to nobody.
// So a block is read as far as it lies in one page with its first byte, which can be read. The sanitizers, which know of
// objects and not of pages, must leave the functions that do this alone.
// Tested by tests/collation/compare_test.cpp.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "collation/equal_prefix.hpp"
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
    return prefix::roomOfBoth(a, b);
}

// How many bytes are equal and not NUL, at most `most`.
inline std::size_t equalRun(const unsigned char* a, const unsigned char* b, std::size_t most) {
    return prefix::length<prefix::Same>(a, b, most);
}

// The same in blocks of 64. REQUIRES: the processor has AVX-512.
std::size_t equalRunAvx512(const unsigned char* a, const unsigned char* b, std::size_t most);

}  // namespace nls
