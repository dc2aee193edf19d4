// Names of charsets, collations and case tables.
// Tested by tests/core/base_test.cpp.
#pragma once

#include <cstddef>

namespace nls {

// Order of two NUL-terminated names: -1, 0 or 1. Case is folded by the C library's upper-casing table of the process's
// locale, and blanks at the end of either name don't count.
int compareNames(const char* a, const char* b);

inline bool sameName(const char* a, const char* b) {
    return compareNames(a, b) == 0;
}

// Does `name` begin with `prefix`, case folded as above? Blanks count.
bool beginsWith(const char* name, const char* prefix);

// Copies `name` up to its NUL and at most `room` - 1 bytes of it, and closes the copy with a NUL. REQUIRES: room > 0.
void copyName(char* target, std::size_t room, const char* name);

}  // namespace nls
