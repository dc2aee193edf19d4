#include "chars/stepping.hpp"

namespace nls {

bool isFirstByte(const Charset& charset, const unsigned char* p, const unsigned char* start) {
    if (p <= start) return true;
    bool even = true;
    while (p != start && charset.trailCount(*--p) != 0) even = !even;
    return even;
}

namespace {

const unsigned char* previousUtf8(const unsigned char* p, const unsigned char* start) {
    do --p;
    while (p > start && (*p & 0xC0U) == 0x80U);
    return p;
}

}  // namespace

const unsigned char* previousCharacter(const Charset& charset, const unsigned char* p, const unsigned char* start) {
    if (charset.isUtf8()) return previousUtf8(p, start);
    --p;
    // An odd run in front of one place is an even run in front of the place before it, so one look is enough.
    return isFirstByte(charset, p, start) ? p : p - 1;
}

}  // namespace nls
