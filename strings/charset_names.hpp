// The library's canonical names of charsets.
// Tested by tests/strings/charset_names_test.cpp.
#pragma once

#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// All of them, closed by a null entry.
extern const char* const zelCharset[];

// The canonical name that is `name` but for case and trailing blanks; null if there is none.
const char* canonicalCharsetName(const char* name);

struct FoundName {
    nlsStatus status;
    const char* canonical;  // null with any status but NLS_OK
};
// The first canonical name that equals `name` under the folding map of a locale's collation. NLS_END_OF_STRING if there
// is none, and what comparing under the locale answers. REQUIRES: the locale has an attribute table and a collation.
FoundName canonicalCharsetNameUnder(const nlsLocale& locale, const char* name);

}  // namespace nls
