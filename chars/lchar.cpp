#include "chars/lchar.hpp"

#include "chars/stepping.hpp"
#include "nls/status.h"

namespace nls {
namespace {

constexpr unsigned longestTrail = 3;  // four bytes fill the word

constexpr LCharWritten noCharacter{NLS_BAD_CHAR, 0};

// Two-byte characters, without the value that marks "no counterpart" elsewhere, and the three-byte range of UTF-8.
constexpr bool inRange(nlsLChar value) {
    return (value >= 0x100 && value <= 0xFFFE) || (value >= 0xE08080 && value <= 0xEFBFC0);
}

LCharWritten writeSingleByte(const Charset& charset, nlsLChar value, unsigned char* target) {
    if (value >= 0x80 && charset.isUtf8()) return noCharacter;
    target[0] = static_cast<unsigned char>(value);
    return {NLS_OK, 1};
}

}  // namespace

LCharRead readLChar(const Charset& charset, const unsigned char* p) {
    if (*p == 0) return {0, p};
    const unsigned char* const end = characterEnd(charset, p);
    if (charset.trailCount(*p) > longestTrail) return {'?', end};
    nlsLChar value = 0;
    for (; p != end; ++p) value = value << 8 | *p;
    return {value, end};
}

LCharWritten writeLChar(const Charset& charset, nlsLChar value, unsigned char* target) {
    if (value < 0x100) return writeSingleByte(charset, value, target);
    if (!inRange(value) || !(charset.isMultiByte() || charset.isUtf8())) return noCharacter;
    const unsigned count = value > 0xFFFF ? 3 : 2;
    for (unsigned i = 0; i < count; ++i) target[i] = static_cast<unsigned char>(value >> 8 * (count - 1 - i));
    if (charset.trailCount(target[0]) + 1 != count) return noCharacter;
    for (unsigned i = 1; i < count; ++i) {
        if (!charset.mayTrail(target[i])) return {NLS_BAD_CHAR, static_cast<uint16_t>(count)};
    }
    return {NLS_OK, static_cast<uint16_t>(count)};
}

}  // namespace nls
