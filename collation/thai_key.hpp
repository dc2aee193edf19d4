// Sort keys of Thai text: the bytes of two keys stand in the order of what the texts are made of, base before leading
// vowel before the vowel above or below before tone.
//
// A base is its weight and a unit: one byte that holds the weights of vowel and tone, in whatever order they stand in
// the text. A leading vowel changes places with the base behind it and comes out as a marker, its weight and the unit
// that closes the group. A mark that finds no base, or finds its place in the unit taken, stands behind a marker of its
// own. Tested by tests/collation/thai_test.cpp.
#pragma once

#include <cstddef>

#include "core/base/views.hpp"

namespace nls {

// The key of the first `length` bytes of `src`, which hold no NUL. It is cut where `key` ends, and closed by a NUL in
// any case; of a `key` without bytes nothing is written.
void thaiKey(const unsigned char* map, const unsigned char* src, std::size_t length, ByteSpan key);

// What is read and written while a key is made. `keyEnd` is the byte for the closing NUL.
struct ThaiKeyWalk {
    const unsigned char* map;
    const unsigned char* src;    // the start of the text
    const unsigned char* place;  // the byte to treat next
    unsigned char* key;          // the byte to write next
    unsigned char* keyEnd;
};

// Treats a vowel above or below, or a tone, at `place`. REQUIRES: key is below keyEnd; unless the byte is the first of
// the text or follows a byte that stands alone, a byte of the key stands in front of `key`.
void addToUnit(ThaiKeyWalk& walk);

}  // namespace nls
