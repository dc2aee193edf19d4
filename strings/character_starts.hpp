// Which character does a byte in the middle of a text belong to? Found from the bytes in front of it, as far as needed,
// and not from the start of the text.
//
// A place is surely the first byte of a character where no byte in front of it announces that many trailing bytes,
// whether it is a first byte or not. From the nearest such place on characters are walked. Places are asked for from
// left to right, and what has been walked once isn't walked again: all answers together cost no more than one walk
// forward and one back. Tested by tests/strings/search_test.cpp.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cstddef>

#include "core/base/charset.hpp"
#include "core/base/views.hpp"

namespace nls {

struct CharsetLengths {
    Charset charset;
    unsigned longestTrail;  // the most trailing bytes that any byte announces
};

inline CharsetLengths lengthsOf(const Charset& charset) {
    constexpr unsigned kByteValues = 256, kLanes = 16;
    __m128i most = _mm_setzero_si128();
    for (unsigned i = 0; i < kByteValues; i += kLanes) {
        const __m128i entries = _mm_loadu_si128(reinterpret_cast<const __m128i*>(charset.lengths() + i));
        most = _mm_max_epu8(most, _mm_and_si128(entries, _mm_set1_epi8(Charset::kTrailCountBits)));
    }
    unsigned char lanes[kLanes];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), most);
    return {charset, *std::max_element(lanes, lanes + kLanes)};
}

class CharacterStarts {
public:
    // `start`: the first byte of a character.
    CharacterStarts(const CharsetLengths& lengths, const unsigned char* start)
        : charset_(lengths.charset), longest_(static_cast<std::ptrdiff_t>(lengths.longestTrail)), known_(start) {}

    // The first byte of the character that `place` belongs to; `place` itself isn't read. REQUIRES: no place asked for
    // before was farther on.
    const unsigned char* of(const unsigned char* place) {
        const unsigned char* first = place;
        while (!isSure(first)) --first;
        while (first != place) {
            const unsigned char* const next = first + charset_.trailCount(*first) + 1;
            if (next > place) break;
            first = next;
        }
        known_ = first;
        return first;
    }

private:
    bool isSure(const unsigned char* place) const {
        const std::ptrdiff_t back = place - known_ < longest_ ? place - known_ : longest_;
        for (std::ptrdiff_t i = 1; i <= back; ++i)
            if (static_cast<std::ptrdiff_t>(charset_.trailCount(place[-i])) >= i) return false;
        return true;
    }

    Charset charset_;
    std::ptrdiff_t longest_;
    const unsigned char* known_;
};

// Does the last character end with the text?
inline bool endsWhole(const CharsetLengths& lengths, ByteView text) {
    const unsigned char* const end = text.data() + text.size();
    return lengths.longestTrail == 0 || CharacterStarts{lengths, text.data()}.of(end) == end;
}

}  // namespace nls
