// Tables of a single-byte charset to and from UTF-8, computed from one UTF-16 unit for each byte value.
//
// The way forth is a word for each byte value, the UTF-8 form of its character. The way back is two stages of bytes: a
// page and a place on it, by the form of the character.
//
//   1 byte    page 0                place: the byte itself, 256 places
//   2 bytes   page of the first     place: low six bits of the second
//   3 bytes   page of the second    place: low six bits of the third; the first byte plays no part
//
// A place holds the byte value, 0 for none. So two characters of three bytes that differ in the first byte alone can't
// stand in one charset. A page without a character is the default page.
//
// Tested by tests/convmap/utf8_tables_test.cpp.
#pragma once

#include "convmap/conv_table.hpp"
#include "convmap/load_context.hpp"

namespace nls {

// Builds both tables. `pair` goes from the charset to UTF-8, and `typeWord` is its type; the way back goes into the
// entry of the opposite direction. `units` are 256 units of 16 bits at any address, in the order of the machine; the
// unit of byte value 0 counts as 0, and a surrogate as "?".
//
// NLS_BAD_TABLE where two byte values meet in one place, and for a type word of another family; NLS_NO_MEM also without
// a fitting entry for the opposite direction.
Loaded<nlsConvTable> buildSbcsTables(const LoadContext& context, NamePair pair, int64_t typeWord, ByteView units);

}  // namespace nls
