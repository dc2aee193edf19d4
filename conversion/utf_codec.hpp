// One character of each form of Unicode, read and written, side by side.
//
// The readers are lenient. A first byte of UTF-8 announces how many bytes follow, and only that count counts: the form
// of the bytes that follow isn't tested, overlong forms and encoded surrogates are taken, and what doesn't have the
// form is added up all the same, in 32 bits that wrap. A byte 10xxxxxx that stands first is a character of its own
// value. A surrogate without its partner is read as the value that it is.
//
// Values below are code points, or what a lenient reader made of wrong text: any 32 bits. Units of 16 and 32 bits may
// stand at any address; `swap` says that their bytes stand in the order opposite to the host's.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "conversion/byte_order.hpp"
#include "core/base/views.hpp"

namespace nls {

inline constexpr uint32_t kReplacementCharacter = 0xFFFD;
inline constexpr uint32_t kLastBmpValue = 0xFFFF;
inline constexpr uint32_t kLastCodePoint = 0x10FFFF;
inline constexpr uint32_t kUtf8ValueEnd = 0x4000000;  // from here on a value has no form of at most five bytes

// --- surrogates

constexpr bool isHighSurrogate(uint32_t value) {
    return value - 0xD800 < 0x400;
}
constexpr bool isLowSurrogate(uint32_t value) {
    return value - 0xDC00 < 0x400;
}
constexpr bool isSurrogate(uint32_t value) {
    return value - 0xD800 < 0x800;
}

// REQUIRES: isHighSurrogate(high), isLowSurrogate(low).
constexpr uint32_t foldSurrogates(uint32_t high, uint32_t low) {
    return ((high - 0xD800) << 10) + (low - 0xDC00) + 0x10000;
}
// REQUIRES: kLastBmpValue < value <= kLastCodePoint.
constexpr uint16_t highSurrogateOf(uint32_t value) {
    return static_cast<uint16_t>(((value - 0x10000) >> 10) + 0xD800);
}
constexpr uint16_t lowSurrogateOf(uint32_t value) {
    return static_cast<uint16_t>((value & 0x3FF) + 0xDC00);
}

// --- UTF-8

// The bytes that follow a first byte; 0 for a byte 10xxxxxx too.
inline constexpr std::array<uint8_t, 256> kTrailBytes = [] {
    std::array<uint8_t, 256> counts{};
    for (unsigned first = 0xC0; first < 256; ++first)
        counts[first] = first < 0xE0 ? 1 : first < 0xF0 ? 2 : first < 0xF8 ? 3 : first < 0xFC ? 4 : 5;
    return counts;
}();
constexpr unsigned bytesFromUtf8(unsigned char first) {
    return kTrailBytes[first];
}

constexpr bool isUtf8Trail(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// What the marks of the first byte and of `trails` following bytes add to the accumulated value.
inline constexpr std::array<uint32_t, 6> kUtf8Offsets = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};

// The mark of the first byte, by the length of the whole form.
inline constexpr std::array<uint8_t, 7> kUtf8FirstMarks = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

// The value of a first byte and the `trails` bytes behind it. REQUIRES: trails is bytesFromUtf8 of the first byte, and
// all those bytes may be read. The short forms stand for themselves: they are what text is made of.
constexpr uint32_t decodeUtf8(const unsigned char* bytes, unsigned trails) {
    const uint32_t first = bytes[0];
    if (trails == 0) return first;
    if (trails == 1) return (first << 6) + bytes[1] - kUtf8Offsets[1];
    if (trails == 2) return (first << 12) + (uint32_t{bytes[1]} << 6) + bytes[2] - kUtf8Offsets[2];
    uint32_t value = first;
    for (unsigned i = 1; i <= trails; ++i) value = (value << 6) + bytes[i];
    return value - kUtf8Offsets[trails];
}

// A character read off the front of some bytes. A length of 0: the end of the bytes cuts it off.
struct DecodedUtf8 {
    uint32_t value;
    uint32_t length;
};

// REQUIRES: left is not 0.
constexpr DecodedUtf8 decodeUtf8(const unsigned char* bytes, std::size_t left, unsigned trails) {
    return trails < left ? DecodedUtf8{decodeUtf8(bytes, trails), trails + 1} : DecodedUtf8{0, 0};
}
constexpr DecodedUtf8 frontUtf8(ByteView bytes) {
    if (bytes[0] < 0x80) return {bytes[0], 1};
    return decodeUtf8(bytes.data(), bytes.size(), bytesFromUtf8(bytes[0]));
}

// REQUIRES: value < kUtf8ValueEnd.
constexpr unsigned utf8Length(uint32_t value) {
    return value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : value < 0x200000 ? 4 : 5;
}

// Writes `length` bytes. REQUIRES: length is utf8Length(value), and there is room for it.
constexpr void encodeUtf8(uint32_t value, unsigned length, unsigned char* out) {
    if (length == 1) {
        out[0] = static_cast<unsigned char>(value);
        return;
    }
    for (unsigned i = length - 1; i > 0; --i) {
        out[i] = static_cast<unsigned char>((value & 0x3F) | 0x80);
        value >>= 6;
    }
    out[0] = static_cast<unsigned char>(kUtf8FirstMarks[length] | value);
}
// The bytes written, 1 to 5; surrogates are encoded like any other value. REQUIRES: value < kUtf8ValueEnd, room for it.
constexpr unsigned encodeUtf8(uint32_t value, unsigned char* out) {
    const unsigned length = utf8Length(value);
    encodeUtf8(value, length, out);
    return length;
}

// --- units of 16 bits

// The next character: a high surrogate and a low one behind it are one, any other surrogate stays what it is.
// REQUIRES: at least one whole unit is left.
inline uint32_t readUtf16(ByteReader& source, bool swap) {
    const uint32_t unit = loadUnit<uint16_t>(source.place(), swap);
    source.skip(2);
    if (!isHighSurrogate(unit) || source.left() < 2) return unit;
    const uint32_t next = loadUnit<uint16_t>(source.place(), swap);
    if (!isLowSurrogate(next)) return unit;
    source.skip(2);
    return foldSurrogates(unit, next);
}

// Any value: a surrogate as it is, U+FFFD for what lies above U+10FFFF. False, and nothing written, when the units of
// the character don't all fit.
inline bool putUtf16(ByteWriter& target, uint32_t value, bool swap) {
    const bool pair = value > kLastBmpValue && value <= kLastCodePoint;
    if (target.room() < (pair ? 4U : 2U)) return false;
    if (pair) {
        storeUnit(target.place(), highSurrogateOf(value), swap);
        storeUnit(target.place() + 2, lowSurrogateOf(value), swap);
    } else {
        const uint32_t unit = value > kLastBmpValue ? kReplacementCharacter : value;
        storeUnit(target.place(), static_cast<uint16_t>(unit), swap);
    }
    target.advance(pair ? 4 : 2);
    return true;
}

// --- units of 32 bits

// The next character, with two surrogates in a row folded as in UTF-16. REQUIRES: at least one whole unit is left.
inline uint32_t readUcs4Folding(ByteReader& source, bool swap) {
    const uint32_t unit = loadUnit<uint32_t>(source.place(), swap);
    source.skip(4);
    if (!isHighSurrogate(unit) || source.left() < 4) return unit;
    const uint32_t next = loadUnit<uint32_t>(source.place(), swap);
    if (!isLowSurrogate(next)) return unit;
    source.skip(4);
    return foldSurrogates(unit, next);
}

// The value as it is. False, and nothing written, when there is no room for a unit.
inline bool putUcs4(ByteWriter& target, uint32_t value, bool swap) {
    if (target.room() < 4) return false;
    storeUnit(target.place(), value, swap);
    target.advance(4);
    return true;
}

// --- UTF-8 into room that may end

// False, and nothing written, when the form doesn't fit. REQUIRES: value < kUtf8ValueEnd.
inline bool putUtf8(ByteWriter& target, uint32_t value) {
    const unsigned length = utf8Length(value);
    if (length > target.room()) return false;
    encodeUtf8(value, length, target.place());
    target.advance(length);
    return true;
}

}  // namespace nls
