// Well-formed text and cuts step by step, as they are told: the slow twins of strings/validate and strings/substr.
#pragma once

#include <cstdint>
#include <string>

#include "nls/chars.h"
#include "nls/records.h"

namespace nls::reference {

struct Judged {
    int32_t status;
    uint32_t chars;
    bool operator==(const Judged&) const = default;
};

inline Judged validateUnits16(const unsigned char* s, int32_t byteLen, bool bigEndian) {
    uint32_t chars = 0;
    bool pending = false;
    for (int32_t i = 0; i < byteLen; i += 2) {
        if (byteLen - i < 2) return {pending ? 33 : -4, chars};
        const unsigned high = bigEndian ? s[i] : s[i + 1], low = bigEndian ? s[i + 1] : s[i];
        if (high == 0 && low == 0) return {pending ? 33 : 20, chars};
        if (pending) {
            if (high < 0xDC || high > 0xDF) return {33, chars};
            ++chars;
            pending = false;
        } else if (high >= 0xD8 && high <= 0xDB) {
            pending = true;
        } else if (high >= 0xDC && high <= 0xDF) {
            return {33, chars};
        } else {
            ++chars;
        }
    }
    return {pending ? 33 : 0, chars};
}

inline Judged validateUnits32(const unsigned char* s, int32_t byteLen, bool bigEndian) {
    uint32_t chars = 0;
    for (int32_t i = 0; i < byteLen; i += 4) {
        if (byteLen - i < 4) return {-4, chars};
        const unsigned top = bigEndian ? s[i] : s[i + 3], next = bigEndian ? s[i + 1] : s[i + 2];
        if ((s[i] | s[i + 1] | s[i + 2] | s[i + 3]) == 0) return {20, chars};
        if (top != 0 || next > 0x10) return {16, chars};
        ++chars;
    }
    return {0, chars};
}

inline Judged validateBytes(const nlsAttribStruct& attrib, const unsigned char* s, int32_t byteLen) {
    if ((attrib.flags & 8) != 0 && (s[0] & 0xC0) == 0x80) return {16, 0};
    if (byteLen <= 0) return {0, 0};
    uint32_t chars = 0;
    for (int32_t start = 0;;) {
        if (s[start] == 0) return {20, chars};
        const int32_t last = start + (attrib.lengthMap[s[start]] & 7);
        if (last >= byteLen) return {-4, chars};
        for (int32_t i = start + 1; i <= last; ++i)
            if (attrib.trailMap[s[i]] == 0) return {16, chars};
        ++chars;
        start = last + 1;
        if (start >= byteLen) return {0, chars};
    }
}

inline Judged validate(const nlsAttribStruct& attrib, const unsigned char* s, int32_t byteLen, bool bigEndian) {
    if ((attrib.flags & 2) == 0) {
        int32_t length = 0;
        while (s[length] != 0) ++length;
        return {length == byteLen ? 0 : 20, static_cast<uint32_t>(length)};
    }
    if ((attrib.flags & 0x10) != 0) return validateUnits16(s, byteLen, bigEndian);
    if ((attrib.flags & 0x40) != 0) return validateUnits32(s, byteLen, bigEndian);
    return validateBytes(attrib, s, byteLen);
}

struct SlowCut {
    int32_t status;
    uint32_t chars;
    std::string bytes;
};

inline SlowCut cut(const nlsAttribStruct& attrib, const std::string& text, int32_t start, int32_t byteCount) {
    const auto length = static_cast<int64_t>(text.size());
    if (start <= 0 || start > length || byteCount > length) return {16, 0, {}};
    const auto* const s = reinterpret_cast<const unsigned char*>(text.c_str());
    int64_t first = start - 1;
    const int64_t last = first + byteCount - 1;
    const auto inside = [&] {
        return (attrib.flags & 8) != 0 ? (s[first] & 0xC0) == 0x80 : nlsFirstByte(&attrib, s + first, s) == 0;
    };
    while (s[first] != 0 && inside()) ++first;
    SlowCut taken{0, 0, {}};
    for (;;) {
        const int64_t end = first + (attrib.lengthMap[s[first]] & 7);
        if (s[first] == 0 || end > last || end >= length) return taken;
        taken.bytes += text.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(end - first + 1));
        ++taken.chars;
        first = end + 1;
    }
}

}  // namespace nls::reference
