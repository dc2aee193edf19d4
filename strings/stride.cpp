#include "strings/stride.hpp"

namespace nls {
namespace {

unsigned anyTrail(const Charset& charset, unsigned first, unsigned last) {
    unsigned any = 0;
    for (unsigned byte = first; byte <= last; ++byte) any |= charset.trailCount(static_cast<unsigned char>(byte));
    return any;
}

bool alwaysTrail(const Charset& charset, unsigned first, unsigned last, unsigned count) {
    unsigned other = 0;
    for (unsigned byte = first; byte <= last; ++byte) {
        other |= charset.trailCount(static_cast<unsigned char>(byte)) ^ count;
    }
    return other == 0;
}

bool countsAsUtf8(const Charset& charset) {
    return alwaysTrail(charset, 0xC2, 0xDF, 1) && alwaysTrail(charset, 0xE0, 0xEF, 2) &&
           alwaysTrail(charset, 0xF0, 0xF4, 3);
}

}  // namespace

Stride strideOf(const Charset& charset, std::size_t length) {
    if (length < blockSize || anyTrail(charset, 0, 0x7F) != 0) return Stride::character;
    if (anyTrail(charset, 0x80, 0xFF) == 0) return Stride::byte;
    return charset.isUtf8() && countsAsUtf8(charset) ? Stride::utf8 : Stride::ascii;
}

}  // namespace nls
