// The keys of short texts under byte tables: text, weights and key each in one register.
//
// Nearly all texts in a column end within 64 bytes. Those that need more care are left to ByteKey: longer ones, such as
// go on behind their page, half-width kana on the bridge, first bytes that weigh nothing.
// Tested by tests/collation/sort_key_test.cpp against tests/reference/compare.hpp.
#pragma once

#include <cstddef>

#include "collation/weights.hpp"
#include "nls/records.h"

namespace nls {

inline constexpr std::size_t kShortKeyRoom = 64;

struct ShortKey {
    WeightMap weights;
    const nlsAttribStruct& attrib;  // of the charset whose bytes are weighed: behind the bridge Shift-JIS
    unsigned char expansion;        // an expansion comes out as this byte twice
    bool fromEuc;                   // the text is taken from EUC to Shift-JIS before
    bool trimsText, trimsKey;       // blanks at the end of the one or the other are left out
};

// Writes the key with its NUL, and answers its length; kNoShortKey, and nothing that counts is written, if this way is
// none for the text. REQUIRES: `key` has kShortKeyRoom bytes; the processor has AVX-512.
inline constexpr std::size_t kNoShortKey = SIZE_MAX;
std::size_t shortKeyAvx512(const ShortKey& by, const unsigned char* src, unsigned char* key);

}  // namespace nls
