// Decimal fields of fixed width, as the data file holds them.
// Tested by tests/core/base_test.cpp.
#pragma once

#include <cstdint>

namespace nls {

// Leading blanks, tabs and line feeds are skipped, one sign is taken, and digits are read until `width` characters are
// used up or a byte is no digit. 0 where there is no digit. The value wraps at 32 bits.
int32_t readDecimal(const char* text, int32_t width);

}  // namespace nls
