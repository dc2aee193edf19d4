// The record of a collation: two maps of weights by byte, which are all that a comparison knows.
//
// A map has one level: the first weights that differ decide, and nothing is passed over. So it agrees with a language's
// order letter by letter. The blank weighs less than every other byte, in both maps and alone: a comparison passes over
// blanks at the end of a text, a sort key has none, and the two say the same of a text that goes on only then.
// Tested by tests/real/real_orders_test.cpp and tests/tools/collation_refusals_test.cpp.
#pragma once

#include <optional>

#include "tools/mkconvmap/case_writer.hpp"
#include "tools/mkconvmap/collation_source.hpp"
#include "tools/mkconvmap/conv_writer.hpp"
#include "tools/mkconvmap/data_record.hpp"

namespace nls::mkconvmap {

inline constexpr uint8_t kNoWeight = 0;         // a byte that counts as two letters s
inline constexpr uint8_t kSmallS = 0x73;        // whose weight, by this byte in every charset, is the weight of each s
inline constexpr uint8_t kTrimmedBlank = 0x20;  // the blank that comparison and keys know, in every charset

// The tables of `collation` for a charset. `indexed` is the charset whose bytes the maps are asked for: Shift-JIS where
// the charset compares through it, else the charset itself. `basic` has the upper-case map of order bytes. Fails where
// the order doesn't fit the charset.
DataRecord collationRecord(const Place& place, const CollationSource& collation, const CompiledCharset& charset,
                           const CompiledCharset& indexed);

// A letter of the language, or its capital, that the charset lacks.
std::optional<char32_t> missingLetter(const CollationSource& collation, const CharsetSource& charset);

// Whether a byte of the record counts as two letters s.
bool hasDoubleS(const DataRecord& collation);

}  // namespace nls::mkconvmap
