// Where the wide walks cut a text into blocks of whole characters. Looking at the last bytes alone lets the next block
// start before this one is understood.
#pragma once

#include <cstddef>

#include "conversion/utf_codec.hpp"

namespace nls {

// How many of the last of `size` bytes of UTF-8 begin a character that they don't end, provided that the bytes are
// regular: 0 to 3. Irregular bytes give some number up to 3 as well.
inline std::size_t cutOffBytes(const unsigned char* text, std::size_t size) {
    const auto atLeast = [&](std::size_t fromEnd, unsigned char first) -> std::size_t {
        return size >= fromEnd && text[size - fromEnd] >= first ? fromEnd : 0;
    };
    return atLeast(1, 0xC0) | atLeast(2, 0xE0) | atLeast(3, 0xF0);
}

// Whether a block of UTF-16 ends with a high surrogate, whose partner may follow. REQUIRES: size is even and not 0.
inline bool endsInHighSurrogate(const unsigned char* text, std::size_t size, bool swap) {
    return isHighSurrogate(loadUnit<uint16_t>(text + size - 2, swap));
}

// Whether to leave the loop that can do all for one that takes plain blocks alone. Text with pairs here and there, as
// emoji are, stays where it is: a guess that fails costs more than it saves.
class PlainBlocks {
public:
    // True once several blocks in a row have been plain.
    bool count(bool plain) {
        inRow_ = plain ? inRow_ + 1 : 0;
        return inRow_ >= kEnough;
    }

private:
    static constexpr int kEnough = 4;
    int inRow_ = 0;
};

}  // namespace nls
