// The fingerprint of an order: a digest of everything that decides it. Two hosts with the same print sort alike.
//
// What goes in, in this order; numbers are 32 bits, the lowest byte first:
//   1. the text "nls order" and the version of the library's walks, NLS_ORDER_VERSION
//   2. the collation's kind and second kind, its exact and its folding map, 256 bytes each
//   3. of the charset: its flags for a single byte, for Shift-JIS and for UTF-8, and the trail counts by first byte
//   4. kind 3: 1 and the entries of the case table, page by page; 0 if there is none
//   5. a charset that compares through Shift-JIS: the trail counts of Shift-JIS by first byte; then for each byte that
//      is a character alone, and for each first byte with each other byte behind it, how many bytes it converts to (0
//      for none) and the two bytes
// Names are no part of it: the same tables under another name have the same print.
//
// ICU's order is in no table of ours. There the maps give way to what identifies it: for each of them the versions of
// collator and UCA and the words of the strength, as they stand in it; then the build's key and the locale, each with a
// NUL.
#pragma once

#include <string>

#include "tools/nls/order.hpp"

namespace nls::tool {

// Throws for a site's own sort, whose order is in nobody's tables.
std::string fingerprintOf(const Order& order);

}  // namespace nls::tool
