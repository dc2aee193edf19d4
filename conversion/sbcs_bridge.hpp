// The bridges between a single-byte charset and UTF-8.
//
// To UTF-8: each byte has a word that holds its UTF-8 bytes; the lead byte tells how many. From UTF-8: the last byte of
// a character is the index, the byte before it chooses the page. Tested by tests/conversion/sbcs_bridge_test.cpp.
#pragma once

#include "conversion/converted.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"

namespace nls {

// A character of several bytes needs room for one byte more than it has. Without room the target is filled with blanks
// and closed with a NUL, length = its size, NLS_BUF_SMALL; likewise where the source ends with a NUL and the text
// written doesn't. Results: NLS_OK, NLS_BUF_SMALL.
Converted sbcsToUtf8(const SbcsWords& words, ByteView source, ByteSpan target);

// Results: NLS_OK, NLS_CONV_SUBST ("?" for what has no mapping), NLS_BUF_SMALL, NLS_BAD_ARG (cut off inside a
// character); the length always tells what was written.
Converted utf8ToSbcs(const SbcsPages& pages, ByteView source, ByteSpan target);

}  // namespace nls
