// SQL LIKE: does a text match a pattern with wildcards, under the collation of a locale?
//
// A pattern is a row of elements. A wildcard `single` and a literal take one character each; a wildcard `multi` takes
// any number of them and cuts the pattern into segments.
//
// In front of the first `multi` each element stands at its place of the text, and the first that doesn't fit decides.
// Behind it a segment may begin anywhere. All its elements take one character, so the first place where it fits leaves
// most of the text to those behind it: no other place needs to be tried, and nothing is ever taken back. The work is at
// most the length of the text times that of the pattern, on a stack of a fixed size.
//
// Tested by tests/strings/like_test.cpp against tests/reference/like.hpp.
#pragma once

#include <cstdint>

#include "nls/records.h"
#include "strings/like_pattern.hpp"

namespace nls {

// 1: it matches; 0: it doesn't; -1: the pattern is bad; or a status of the comparison of two characters. REQUIRES: the locale has an attribute table.
int32_t matchLike(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern, const unsigned char* text,
                  uint16_t mode, LikeSigns signs);

}  // namespace nls
