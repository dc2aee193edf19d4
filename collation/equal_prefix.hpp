// How far two texts are the same, in steps of 16 bytes.
//
// A limit is never passed. A NUL ends a text just as well, and where it stands isn't known before, so a load may pass it
// inside its memory page, which can't fault; what stands there doesn't count. Tested by
// tests/collation/unicode_compare_test.cpp.
#pragma once

#include <cstddef>

#include "collation/text.hpp"

namespace nls {

// Bytes from the front that are equal in both and neither NUL nor behind a limit.
std::size_t equalPrefix(Text a, Text b);

// The same for ASCII bytes that are equal but for the case of A to Z. Stops at the first byte from 0x80 on.
std::size_t equalAsciiPrefix(Text a, Text b);

}  // namespace nls
