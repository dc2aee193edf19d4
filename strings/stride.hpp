// How far a walk over characters may step at once: 64 bytes where the charset's table and the text allow it.
//
// Any table is legal, so it is looked through first; that costs as much as some ten characters, and text of less than a
// block goes character by character. Tested by tests/strings/counting_test.cpp.
#pragma once

#include <cstddef>

#include "core/base/charset.hpp"
#include "strings/utf8_block.hpp"

namespace nls {

enum class Stride {
    character,  // one character
    ascii,      // a block without a byte above 0x7F
    utf8,       // a block of plain UTF-8
    byte,       // all of the text: every character is one byte
};

// For a text of `length` bytes.
Stride strideOf(const Charset& charset, std::size_t length);

// The next 64 bytes as the stride takes them; not plain where it can't.
inline Utf8Block blockAt(Stride stride, const ByteBlock& bytes) {
    if (stride == Stride::utf8) return readUtf8Block(bytes);
    return {bytes.high() == 0, blockSize, ~uint64_t{0}};
}

// The same with the last `count` bytes of a text, which stand in front of zeros: a character that lacks bytes isn't
// plain. REQUIRES: count < 64.
inline Utf8Block lastBlock(Stride stride, const ByteBlock& bytes, std::size_t count) {
    const Utf8Block block = blockAt(stride, bytes);
    return {block.plain, static_cast<unsigned>(count), block.starts & ((uint64_t{1} << count) - 1)};
}

}  // namespace nls
