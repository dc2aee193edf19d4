// SQL LIKE: does a text match a pattern with wildcards, under the collation of a locale?
//
// A pattern is a row of elements. A wildcard `single` and a literal take one character each; a wildcard `multi` takes
// any number of them and cuts the pattern into segments.
//
// In front of the first `multi` each element stands at its place of the text, and the first that doesn't fit decides.
// Behind it a segment may begin anywhere. All its elements take one character, so the first place where it fits leaves
// most of the text to those behind it: no other place needs to be tried, and nothing is ever taken back. The work is at
// most the length of the text times that of the pattern, on a stack of a fixed size.
//
// Tested by tests/strings/like_test.cpp against tests/reference/like.hpp.
#pragma once

#include <cstdint>

#include "collation/compare.hpp"
#include "strings/like_opening.hpp"

namespace nls {

// All answer 1: it matches; 0: it doesn't; -1: the pattern is bad; or a status of the comparison of two characters.

// REQUIRES: the locale has an attribute table.
int32_t matchLikeUnderAny(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern,
                          const unsigned char* text, uint16_t mode, const LikeSigns& signs);

// REQUIRES: firstPairMayDecide; `weights` is one of the locale's maps.
int32_t matchLikeByTables(const nlsLocale& locale, WeightMap weights, const unsigned char* pattern,
                          const unsigned char* text, const LikeSigns& signs);

// In line with the call where the first bytes decide. The signs come singly, as at the door, and what isn't needed any
// more isn't handed on: until then nothing has to be put into memory. REQUIRES: the locale has an attribute table.
inline int32_t matchLike(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern,
                         const unsigned char* text, uint16_t mode, nlsLChar escape, nlsLChar single, nlsLChar multi) {
    if (locale.coll == nullptr || !isByteMode(mode) || !firstPairMayDecide(locale))
        return matchLikeUnderAny(locale, tls, pattern, text, mode, {escape, single, multi});
    const WeightMap weights = WeightMap::of(*locale.coll, mode);
    if (differAtOnce(weights, Charset{*locale.attrib}, {escape, single, multi}, *pattern, *text)) return kLikeNoMatch;
    return matchLikeByTables(locale, weights, pattern, text, {escape, single, multi});
}

}  // namespace nls
