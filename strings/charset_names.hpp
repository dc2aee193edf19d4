// The library's canonical names of charsets.
// Tested by tests/strings/charset_names_test.cpp.
#pragma once

#include "nls/base.h"

namespace nls {

// All of them, closed by a null entry.
extern const char* const zelCharset[];

// The canonical name that is `name` but for case and trailing blanks; null if there is none.
const char* canonicalCharsetName(const char* name);

}  // namespace nls
