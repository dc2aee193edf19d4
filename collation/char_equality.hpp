// Whether two characters are equal under a collation, each compared alone: what search, trim and LIKE decide by.
//
// A place at a NUL counts as the end of a text, which equals a blank.
// Tested by tests/chars/find_char_test.cpp, whose twin compares each character.
#pragma once

#include "collation/compare.hpp"

namespace nls {

// REQUIRES: the locale has an attribute table.
class CharacterEquality {
public:
    CharacterEquality(const nlsLocale& locale, nlsTlsBlock* tls, uint16_t mode)
        : locale_(&locale), tls_(tls), mode_(mode) {}

    // The comparison of the character at `a` with the one at `b`: sign 0 for equal. NLS_BAD_COLLATION for a locale
    // without a collation, NLS_BAD_COMPARE_MODE for a mode that byte tables don't know, and what else a route answers.
    Compared operator()(const unsigned char* a, const unsigned char* b) const;

private:
    const nlsLocale* locale_;
    nlsTlsBlock* tls_;
    uint16_t mode_;
};

// Has every character one byte, and are two bytes that aren't NUL equal exactly when the map has the same entry for
// both? Then no comparison fails, and WeightMap::of(*locale.coll, mode) decides alone. REQUIRES: as above.
bool equalByEntries(const nlsLocale& locale, uint16_t mode);

}  // namespace nls
