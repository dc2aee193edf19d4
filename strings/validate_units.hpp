// Is text of 16-bit or 32-bit units well-formed, and how many characters does it hold?
//
// A block of 64 bytes is taken at once where all of it is in order; else its units are looked at one by one, which
// finds the fault. Bytes behind the last whole unit are a character that is cut off. Tested by
// tests/strings/validate_test.cpp against tests/reference/validate.hpp.
#pragma once

#include "core/base/views.hpp"
#include "strings/validated.hpp"

namespace nls {

// NLS_END_OF_STRING at a unit of zeros, NLS_INVALID_STRING at a surrogate without its partner, NLS_PARTIAL_CHAR.
Validated validateUtf16(ByteView text, HighByte highByte);

// NLS_END_OF_STRING at a unit of zeros, NLS_BAD_ARG at one above 0x10FFFF, NLS_PARTIAL_CHAR. Surrogates pass.
Validated validateUtf32(ByteView text, HighByte highByte);

}  // namespace nls
