// The order of characters' own values, which in UTF-8 is that of code points: exactly, byte by byte, or with letters
// folded to lower case by the locale's case table.
//
// No weights, no expansions: a character is never worth two. Blanks at the end of a text don't count. A limit is never
// passed: a character that it cuts short is the bytes in front of it. Tested by
// tests/collation/unicode_compare_test.cpp.
#pragma once

#include <cstdint>

#include "collation/text.hpp"
#include "nls/records.h"

namespace nls {

// -1, 0 or 1: the first bytes that differ decide.
int compareBytes(Text a, Text b);

// -1, 0 or 1: the first characters that differ when they are folded decide. Where the locale has no case table of
// UTF-8, characters stand for themselves. REQUIRES: the locale has an attribute table.
int compareFoldedUtf8(const nlsLocale& locale, Text a, Text b);

// The same, decided in one block of AVX-512 as a rule. REQUIRES: both texts have limits and begin in front of them; the
// processor has AVX-512.
int compareBytesAvx512(Text a, Text b);
int compareFoldedUtf8Avx512(const nlsLocale& locale, Text a, Text b);

// As the mode says: 0 folds, any other is exact. So is a locale without an attribute table.
int compareUnicode(const nlsLocale& locale, Text a, Text b, uint16_t mode);

}  // namespace nls
