#include "strings/stride.hpp"

namespace nls {
namespace {

template <unsigned first, unsigned last>
bool alwaysTrail(const Charset& charset, unsigned count) {
    unsigned other = 0;
    for (unsigned byte = first; byte <= last; ++byte) {
        other |= charset.trailCount(static_cast<unsigned char>(byte)) ^ count;
    }
    return other == 0;
}

bool countsAsUtf8(const Charset& charset) {
    return alwaysTrail<0xC2, 0xDF>(charset, 1) && alwaysTrail<0xE0, 0xEF>(charset, 2) &&
           alwaysTrail<0xF0, 0xF4>(charset, 3);
}

}  // namespace

Stride strideOf(const Charset& charset, std::size_t length) {
    if (length < blockSize || !charset.hasSingleByteAscii()) return Stride::character;
    if (charset.hasOnlySingleBytes()) return Stride::byte;
    return charset.isUtf8() && countsAsUtf8(charset) ? Stride::utf8 : Stride::ascii;
}

}  // namespace nls
