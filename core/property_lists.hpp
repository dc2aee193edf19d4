// The lists of what a data file offers, as text and as the length of that text.
//
// Each list is one walk over the table of contents in the order of the file. The walk hands its parts to a sink that
// counts them or to one that appends them to a record, so that length and text agree. Tested by
// tests/core/properties_test.cpp and tests/real/real_properties_test.cpp.
#pragma once

#include "nls/records.h"
#include "nls/status.h"

namespace nls {

enum class ListKind { charsets, collations, caseTables, conversions };

// Bytes of the text, without its NUL. That of a handle's collations counts ICU's once, wherever the text has them.
uint32_t lengthOfList(const nlsHandle& handle, ListKind kind);
uint32_t lengthOfList(const nlsLocale& locale, ListKind kind);

// NLS_OK, or NLS_BUF_SMALL: the record then holds the parts that fitted.
nlsStatus writeList(const nlsHandle& handle, ListKind kind, nlsStr& record);
nlsStatus writeList(const nlsLocale& locale, ListKind kind, nlsStr& record);

// REQUIRES, of a locale: an attribute table, for its collations.

}  // namespace nls
