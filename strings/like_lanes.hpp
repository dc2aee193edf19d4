// LIKE behind a `multi` on a short text of characters of one byte and more: a bit for each byte tells where the next
// element of the pattern may stand, and every element moves all bits at once.
//
// Neither pattern nor text is empty. The answer is unknown, and the walk must find it, for a text of 64 bytes and more,
// one with characters that are cut short or broken, and for what few patterns have: a literal that equals no character
// of its own length, or a blank that may fit the end of the text. Tested by tests/strings/like_test.cpp.
#pragma once

#include "collation/weights.hpp"
#include "core/base/charset.hpp"
#include "nls/records.h"
#include "strings/like_pattern.hpp"

namespace nls {

// Under byte tables that compare the charset as it is, in characters of one and two bytes.
LikeAnswer matchPairsPlain(const Charset& charset, WeightMap weights, const LikeSigns& signs,
                           const unsigned char* pattern, const unsigned char* text);
// REQUIRES: the processor has AVX-512.
LikeAnswer matchPairsAvx512(const Charset& charset, WeightMap weights, const LikeSigns& signs,
                            const unsigned char* pattern, const unsigned char* text);

// UTF-8 by its bytes; with a case table, which must not be null then, by the lower forms of its characters.
LikeAnswer matchUtf8Plain(const Charset& charset, const nlsUnicodeCaseStruct* table, const LikeSigns& signs,
                          const unsigned char* pattern, const unsigned char* text);
// REQUIRES: the processor has AVX-512.
LikeAnswer matchUtf8Avx512(const Charset& charset, const nlsUnicodeCaseStruct* table, const LikeSigns& signs,
                           const unsigned char* pattern, const unsigned char* text);

}  // namespace nls
