#include "collation/equal_prefix.hpp"

#include <emmintrin.h>

#include <cstdint>

namespace nls {
namespace {

constexpr std::size_t kBlock = 16;

// A load of a block at `place` stays inside one page; 4096 is the smallest there is.
bool blockInPage(const unsigned char* place) {
    return (reinterpret_cast<std::uintptr_t>(place) & 4095) <= 4096 - kBlock;
}

// Bytes left to both. Without limits: more than there can be.
std::size_t roomOfBoth(Text a, Text b) {
    const std::size_t ofA = a.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(a.limit - a.place);
    const std::size_t ofB = b.limit == nullptr ? SIZE_MAX : static_cast<std::size_t>(b.limit - b.place);
    return ofA < ofB ? ofA : ofB;
}

struct Same {
    // One bit for each byte at which a block ends the prefix.
    static unsigned stops(__m128i a, __m128i b) {
        // The lower of both bytes, where they are equal, and 0 where they aren't: NUL and difference at once.
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

// Passes NULs, see above, so the sanitizer must not watch the loads. Out of line: it watches its callers.
template <typename Rule>
__attribute__((no_sanitize("address"), noinline)) std::size_t prefix(const unsigned char* a, const unsigned char* b,
                                                                     std::size_t room) {
    std::size_t done = 0;
    const auto stopsAt = [&](std::size_t place) {
        return Rule::stops(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + place)),
                           _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + place)));
    };
    while (done != room) {
        if (blockInPage(a + done) && blockInPage(b + done) && (room - done >= kBlock || done >= kBlock)) {
            // The last block of a limited text overlaps the one before it.
            const std::size_t place = room - done >= kBlock ? done : room - kBlock;
            if (const unsigned stops = stopsAt(place)) return place + static_cast<unsigned>(__builtin_ctz(stops));
            done = place + kBlock;
            continue;
        }
        if (Rule::stops(a[done], b[done])) break;
        ++done;
    }
    return done;
}

}  // namespace

std::size_t equalPrefix(Text a, Text b) {
    return prefix<Same>(a.place, b.place, roomOfBoth(a, b));
}

std::size_t equalAsciiPrefix(Text a, Text b) {
    return prefix<SameButForAsciiCase>(a.place, b.place, roomOfBoth(a, b));
}

}  // namespace nls
