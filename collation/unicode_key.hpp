// Sort keys of the order of characters' own values: the text itself, or the text in lower case.
// Tested by tests/collation/unicode_compare_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Writes the key of `text`, which holds no NUL, and a NUL behind it. Mode 1 takes the text as it is, mode 0 in lower
// case.
//
// An empty text has the empty key whatever the mode. NLS_BUF_SMALL where the text and its NUL have no room, before
// anything is written, or where the lower-case text hasn't; NLS_BAD_COMPARE_MODE; in mode 0 the failures of the checks
// of a locale, with an empty key.
nlsStatus unicodeKey(const nlsLocale& locale, ByteView text, ByteSpan key, uint16_t mode);

}  // namespace nls
