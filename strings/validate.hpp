// Is text well-formed in its charset, and how many characters does it hold?
//
// The charset chooses the walk: bytes alone, units of 16 or of 32 bits, or characters by trail counts. Nothing is read
// at or behind the end of the text, but where told. Tested by tests/strings/validate_test.cpp against
// tests/reference/validate.hpp.
#pragma once

#include <cstdint>

#include "core/base/charset.hpp"
#include "strings/validated.hpp"

namespace nls {

// Text of `byteLen` bytes; none for a length at or below 0. In a charset that isn't multi-byte it ends at its NUL
// instead, wherever that stands. In one of UTF-8 the first byte is read whatever the length.
Validated validateText(const Charset& charset, const unsigned char* text, int32_t byteLen, HighByte highByte);

}  // namespace nls
