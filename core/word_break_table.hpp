// A database's word-break table, completed for the locale that it belongs to.
//
//   0 kind | 1 unread | 2 body size | 4 class offset | 6 flags | … | 256 classes, by byte value, at that offset | …
//
// The database gives classes to the bytes that it cares for and leaves the others 0; these get a class by what they
// are in the charset. Classes that would stand behind the table's end aren't there, and the first six bytes stay as
// they are, whatever classes would stand there.
//
// Tested by tests/core/word_break_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Copies `data` to the place that the locale's wordBreak points to, and completes the copy. `target` may be null; with
// it the conversion from the locale to it is made first. NLS_OK, and what making the conversion and comparing under the
// locale answer. REQUIRES: room for the data there, an attribute table in the locale and in the target; with a target
// both are locales of open handles.
nlsStatus completeWordBreakTable(nlsLocale& locale, ByteView data, nlsLocale* target);

}  // namespace nls
