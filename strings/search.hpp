// A text searched for a pattern under a locale: forwards, with or without wildcards, and backwards.
// Tested by tests/strings/search_test.cpp against tests/reference/search.hpp.
#pragma once

#include <cstdint>

#include "core/base/views.hpp"
#include "strings/match.hpp"

namespace nls {

// The first match. REQUIRES: a NUL behind both texts, and none in them.
Match searchForward(const Comparing& by, ByteView pattern, ByteView text, Wildcards wildcards);

// The last match that ends at or in front of `length`, whose `end` means nothing. REQUIRES: a NUL behind the pattern,
// and none in it.
Match searchBackward(const Comparing& by, ByteView pattern, const unsigned char* text, int32_t length);

}  // namespace nls
