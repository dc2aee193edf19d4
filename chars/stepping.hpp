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

// The same for a walk back through a text: each run of possible first bytes is looked at once.
class StepsBack {
public:
    StepsBack(const Charset& charset, const unsigned char* start, const unsigned char* end)
        : charset_(charset), start_(start), run_(end) {}

    // REQUIRES: p != start, and no place asked for before was in front of it.
    const unsigned char* from(const unsigned char* p) {
        if (charset_.isUtf8()) return previousCharacter(charset_, p, start_);
        --p;
        if (p < run_)
            for (run_ = p; run_ != start_ && charset_.trailCount(run_[-1]) != 0;) --run_;
        return (p - run_) % 2 == 0 ? p : p - 1;
    }

private:
    Charset charset_;
    const unsigned char* start_;
    const unsigned char* run_;  // where the run begins that goes on to the place asked for last, at least
};

}  // namespace nls
