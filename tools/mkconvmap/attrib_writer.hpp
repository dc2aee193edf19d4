// The attribute table of a charset: which bytes are letters, how long a character is, what may trail.
// Tested by tests/real/real_charsets_test.cpp.
#pragma once

#include <cstdint>

#include "tools/mkconvmap/conv_writer.hpp"
#include "tools/mkconvmap/data_record.hpp"

namespace nls::mkconvmap {

// The flags that the table of contents holds for the charset.
uint8_t attributeFlags(const CharsetSource& charset);

// The character of a single byte; 0 where it has none, or begins a longer character.
char32_t characterOfByte(const CompiledCharset& charset, uint32_t byte);

// Letters are the single bytes whose character is alphabetic in Unicode, vowel signs among them. A byte that begins a
// longer character is no letter, whatever it would be alone.
DataRecord attributeRecord(const CompiledCharset& charset);

}  // namespace nls::mkconvmap
