#include "strings/validate.hpp"

#include <algorithm>

#include "core/base/views.hpp"
#include "nls/status.h"
#include "strings/stride.hpp"
#include "strings/validate_units.hpp"

namespace nls {
namespace {

bool isUtf8Trail(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

Validated validateSingleBytes(const unsigned char* text, int32_t byteLen) {
    const std::size_t length = untilNul(text).size();
    const bool asTold = byteLen >= 0 && length == static_cast<std::size_t>(byteLen);
    return {asTold ? NLS_OK : NLS_END_OF_STRING, static_cast<uint32_t>(length)};
}

// The steps that a walk may take over text that is to be judged: a block of UTF-8 can be trusted only if every byte
// that trails there may trail by the charset's table.
Stride judgingStride(const Charset& charset, std::size_t length) {
    const Stride stride = strideOf(charset, length);
    if (stride != Stride::utf8) return stride;
    unsigned refused = 0;
    for (unsigned byte = 0x80; byte < 0xC0; ++byte)
        refused += charset.mayTrail(static_cast<unsigned char>(byte)) ? 0 : 1;
    return refused == 0 ? Stride::utf8 : Stride::ascii;
}

// The character at `place`, which is in front of `end`.
inline nlsStatus judgeCharacter(const Charset& charset, const unsigned char* place, const unsigned char* end) {
    if (*place == 0) return NLS_END_OF_STRING;
    const unsigned trails = charset.trailCount(*place);
    if (end - place <= static_cast<std::ptrdiff_t>(trails)) return NLS_PARTIAL_CHAR;
    for (unsigned i = 1; i <= trails; ++i) {
        if (!charset.mayTrail(place[i])) return NLS_BAD_ARG;
    }
    return NLS_OK;
}

// The next block, or what is left of the text; plain if it is whole characters alone, and none of them a NUL.
Utf8Block soundBlock(Stride stride, const unsigned char* place, std::size_t left) {
    if (left >= blockSize) {
        const ByteBlock bytes{place};
        Utf8Block block = blockAt(stride, bytes);
        block.plain = block.plain && bytes.equal(0) == 0;
        return block;
    }
    const ByteBlock bytes = ByteBlock::padded(place, left);
    Utf8Block block = lastBlock(stride, bytes, left);
    block.plain = block.plain && (bytes.equal(0) << (blockSize - left)) == 0;
    return block;
}

Validated validateCharacters(const Charset& charset, ByteView text) {
    const Stride stride = judgingStride(charset, text.size());
    const unsigned char* place = text.data();
    const unsigned char* const end = place + text.size();
    uint32_t chars = 0;
    while (place != end) {
        if (stride != Stride::character) {
            const Utf8Block block = soundBlock(stride, place, static_cast<std::size_t>(end - place));
            if (block.plain) {
                chars += bitCount(block.starts);
                place += block.bytes;
                continue;
            }
        }
        const unsigned char* const pause = place + std::min<std::ptrdiff_t>(end - place, blockSize);
        for (; place < pause; place += charset.trailCount(*place) + 1) {
            if (const nlsStatus bad = judgeCharacter(charset, place, end)) return {bad, chars};
            ++chars;
        }
    }
    return {NLS_OK, chars};
}

}  // namespace

Validated validateText(const Charset& charset, const unsigned char* text, int32_t byteLen, HighByte highByte) {
    if (!charset.isMultiByte()) return validateSingleBytes(text, byteLen);
    const ByteView bytes = firstBytes(text, byteLen);
    if (charset.hasUnits16()) return validateUtf16(bytes, highByte);
    if (charset.hasUnits32()) return validateUtf32(bytes, highByte);
    if (charset.isUtf8() && isUtf8Trail(*text)) return {NLS_BAD_ARG, 0};
    return validateCharacters(charset, bytes);
}

}  // namespace nls
