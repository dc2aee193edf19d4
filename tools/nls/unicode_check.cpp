#include "tools/nls/unicode_check.hpp"

#include <algorithm>

namespace nls::tool {
namespace {

// The bytes that may come second, by first byte: this is where overlong forms, surrogates and values above U+10FFFF
// show.
struct SecondByte {
    unsigned char from, to;
    std::string_view fault;  // of another trail byte there
};

SecondByte secondByteAfter(unsigned char first) {
    switch (first) {
        case 0xE0:
            return {0xA0, 0xBF, "not valid UTF-8: an overlong form"};
        case 0xED:
            return {0x80, 0x9F, "not valid UTF-8: a surrogate"};
        case 0xF0:
            return {0x90, 0xBF, "not valid UTF-8: an overlong form"};
        case 0xF4:
            return {0x80, 0x8F, "not valid UTF-8: a value above U+10FFFF"};
        default:
            return {0x80, 0xBF, ""};
    }
}

bool isTrail(unsigned char byte) {
    return (byte & 0xC0U) == 0x80;
}

std::size_t utf8Length(unsigned char first) {
    if (first < 0x80) return 1;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

uint16_t unit16(const unsigned char* place, bool swapped) {
    const auto unit = loadWord<uint16_t>(place);
    return swapped ? __builtin_bswap16(unit) : unit;
}

uint32_t unit32(const unsigned char* place, bool swapped) {
    const auto unit = loadWord<uint32_t>(place);
    return swapped ? __builtin_bswap32(unit) : unit;
}

bool isSurrogate(uint32_t value) {
    return (value & 0xFFFFF800U) == 0xD800;
}
bool isLow(uint32_t unit) {
    return (unit & 0xFC00U) == 0xDC00;
}

}  // namespace

Unit firstUtf8(ByteView text) {
    const unsigned char first = text[0];
    if (first < 0x80) return {1, {}};
    if (first < 0xC0) return {1, "not valid UTF-8: a trail byte without a first byte"};
    if (first < 0xC2) return {1, "not valid UTF-8: an overlong form"};
    if (first > 0xF4) return {1, "not valid UTF-8: a byte that begins no character"};
    const std::size_t length = utf8Length(first);
    if (text.size() < 2) return {1, cutOff};
    const SecondByte second = secondByteAfter(first);
    if (!isTrail(text[1])) return {1, "not valid UTF-8: a character cut short"};
    if (text[1] < second.from || text[1] > second.to) return {1, second.fault};
    for (std::size_t i = 2; i < length; ++i) {
        if (i == text.size()) return {i, cutOff};
        if (!isTrail(text[i])) return {i, "not valid UTF-8: a character cut short"};
    }
    return {length, {}};
}

Unit firstUtf16(ByteView text, bool swapped) {
    if (text.size() < 2) return {text.size(), cutOff};
    const uint16_t unit = unit16(text.data(), swapped);
    if (!isSurrogate(unit)) return {2, {}};
    if (isLow(unit)) return {2, "a low surrogate without a high one in front"};
    if (text.size() < 4) return {text.size(), cutOff};
    if (!isLow(unit16(text.data() + 2, swapped))) return {2, "a high surrogate without a low one behind"};
    return {4, {}};
}

Unit firstUtf32(ByteView text, bool swapped) {
    if (text.size() < 4) return {text.size(), cutOff};
    const uint32_t value = unit32(text.data(), swapped);
    if (isSurrogate(value)) return {4, "a surrogate, which is no character"};
    if (value > 0x10FFFF) return {4, "a value above U+10FFFF"};
    return {4, {}};
}

bool validUtf8(ByteView text) {
    const unsigned char* p = text.data();
    const unsigned char* const end = p + text.size();
    while (p != end) {
        while (end - p >= 8 && (loadWord<uint64_t>(p) & 0x8080808080808080U) == 0) p += 8;
        if (p == end) break;
        // What most text is made of goes without the closer look.
        if (*p < 0x80) {
            ++p;
        } else if (end - p >= 3 && *p > 0xE0 && *p < 0xF0 && *p != 0xED && isTrail(p[1]) && isTrail(p[2])) {
            p += 3;
        } else if (end - p >= 2 && *p > 0xC1 && *p < 0xE0 && isTrail(p[1])) {
            p += 2;
        } else {
            const Unit unit = firstUtf8({p, end});
            if (!unit.fault.empty()) return false;
            p += unit.length;
        }
    }
    return true;
}

bool holdsWideSurrogate(ByteView text, bool swapped) {
    for (; text.size() >= 4; text = text.subspan(4)) {
        if (isSurrogate(unit32(text.data(), swapped))) return true;
    }
    return false;
}

uint32_t codePointOf(ByteView character) {
    const unsigned char first = character[0];
    if (first < 0x80) return first;
    uint32_t value = first & (0x7FU >> character.size());
    for (const unsigned char trail : character.subspan(1)) value = value << 6 | (trail & 0x3FU);
    return value;
}

std::size_t countCodePoints(ByteView text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](unsigned char b) { return !isTrail(b); }));
}

}  // namespace nls::tool
