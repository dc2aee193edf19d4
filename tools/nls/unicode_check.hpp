// Strict well-formedness of Unicode text, stricter than the library's conversions, which go by lengths alone. Whole
// pieces of 16-bit and 32-bit units are left to the library's nlsValidateString.
// Tested by tests/tools/nls_names_test.cpp.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/base/views.hpp"

namespace nls::tool {

// One character at the start of some text, or the longest piece there that no character begins with.
struct Unit {
    std::size_t length;      // bytes of the character or of the piece
    std::string_view fault;  // why the piece is no character; empty for a character
};

// REQUIRES of each: a text that isn't empty. A piece at the end of the text that more bytes could complete has the
// fault `cutOff`.
inline constexpr std::string_view cutOff = "cut off by the end of the text";
Unit firstUtf8(ByteView text);
Unit firstUtf16(ByteView text, bool swapped);
Unit firstUtf32(ByteView text, bool swapped);

bool validUtf8(ByteView text);
// Whether a unit of 32 bits is a surrogate, which the library lets pass.
bool holdsWideSurrogate(ByteView text, bool swapped);

// The code point of valid UTF-8, and how many stand in a text.
uint32_t codePointOf(ByteView character);
std::size_t countCodePoints(ByteView text);

}  // namespace nls::tool
