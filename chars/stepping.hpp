// Where a character begins and ends, in NUL-terminated text and against a given start.
// Tested by tests/chars/stepping_test.cpp.
#pragma once

#include "core/base/charset.hpp"

namespace nls {

// The place behind the character at `p`: behind its last trailing byte, or the NUL that cuts it short.
inline const unsigned char* characterEnd(const Charset& charset, const unsigned char* p) {
    if (*p == 0) return p;
    const unsigned char* const full = p + charset.trailCount(*p) + 1;
    do ++p;
    while (p != full && *p != 0);
    return p;
}

// Whether `p` is a first byte, by the parity of the run of possible first bytes in front of it. A place at or before
// `start` counts as one.
bool isFirstByte(const Charset& charset, const unsigned char* p, const unsigned char* start);

// The first byte of the character in front of `p`. REQUIRES: p != start.
const unsigned char* previousCharacter(const Charset& charset, const unsigned char* p, const unsigned char* start);

}  // namespace nls
