// Characters of a text that ends at a NUL or at a limit, as the words of chars/lchar.hpp. A character that the end cuts
// short is the bytes in front of it; one of five bytes and more, cut short or not, is "?".
#pragma once

#include "collation/text.hpp"
#include "core/base/charset.hpp"
#include "nls/base.h"

namespace nls {

// REQUIRES: the text isn't at its end. Moves behind the character.
inline nlsLChar nextLChar(const Charset& charset, Text& text) {
    constexpr unsigned kLongestTrail = 3;  // four bytes fill the word
    nlsLChar value = *text.place++;
    const unsigned trails = charset.trailCount(static_cast<unsigned char>(value));
    if (trails == 0 || text.atEnd()) return trails > kLongestTrail ? nlsLChar{'?'} : value;
    if (trails == 1) return value << 8 | *text.place++;
    for (unsigned left = trails; left != 0 && !text.atEnd(); --left) value = value << 8 | *text.place++;
    return trails > kLongestTrail ? nlsLChar{'?'} : value;
}

}  // namespace nls
