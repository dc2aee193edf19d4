// LIKE where every character has one byte and two are equal exactly when they have the same entry in a weight map.
// Tested by tests/strings/like_test.cpp.
#pragma once

#include "collation/weights.hpp"
#include "strings/like_pattern.hpp"

namespace nls {

// Another entry than 0 for the blank is required, so that it isn't longer than a byte.
int32_t matchLikeOfBytes(WeightMap weights, const unsigned char* pattern, const unsigned char* text,
                         const LikeSigns& signs);

// Blocks of 64 weights. REQUIRES: the processor has AVX-512.

// A pattern behind a `multi` and a text; neither is empty. The answer is unknown for a text of 64 bytes and more, and
// for a pattern that may fit the end of a text by a blank.
LikeAnswer matchShortAvx512(WeightMap weights, const LikeSigns& signs, const unsigned char* pattern,
                            const unsigned char* text);

// The NUL of a text.
const unsigned char* endOfTextAvx512(const unsigned char* text);

// The first place of a text where the first literals of a segment fit, or one in front of it.
const unsigned char* passOverAvx512(WeightMap weights, const LikeSigns& signs, const LikeSegment& segment,
                                    const unsigned char* text);

}  // namespace nls
