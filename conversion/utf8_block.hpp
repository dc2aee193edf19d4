// How the wide decoders of UTF-8 cut a text into blocks.
#pragma once

#include <cstddef>

namespace nls {

// How many of the last of `size` bytes begin a character that they don't end, provided that the bytes are regular: 0 to
// 3. Looking at three bytes alone lets the next block start before this one is understood. Irregular bytes give some
// number up to 3 as well.
inline std::size_t cutOffBytes(const unsigned char* text, std::size_t size) {
    const auto atLeast = [&](std::size_t fromEnd, unsigned char first) -> std::size_t {
        return size >= fromEnd && text[size - fromEnd] >= first ? fromEnd : 0;
    };
    return atLeast(1, 0xC0) | atLeast(2, 0xE0) | atLeast(3, 0xF0);
}

}  // namespace nls
