// What kind of character a first byte begins.
// Tested by tests/chars/char_class_test.cpp.
#pragma once

#include <cstdint>

#include "core/base/charset.hpp"

namespace nls {

enum class CharKind : int32_t { other = 0, word = -1, digit = -2 };

struct CharClass {
    CharKind kind;
    uint32_t value;  // word: length in bytes; digit: 0 to 9; other: the byte
};

// A letter of the charset comes first: such a byte is a whole character, whatever its trail count.
inline CharClass classify(const Charset& charset, unsigned char first) {
    if (charset.isLetter(first)) return {CharKind::word, 1};
    if (const unsigned trail = charset.trailCount(first)) return {CharKind::word, trail + 1};
    if (first >= '0' && first <= '9') return {CharKind::digit, first & 0x0FU};
    return {CharKind::other, first};
}

}  // namespace nls
