// Slow twins of the counters: one character after the other, straight from the tables.
#pragma once

#include <cstdint>
#include <string>

#include "nls/records.h"

namespace nls::test {

struct SlowCount {
    int32_t status;
    uint32_t count;
};

inline uint32_t slowTrails(const nlsAttribStruct& attrib, const std::string& text, std::size_t pos) {
    return attrib.lengthMap[static_cast<unsigned char>(text.c_str()[pos])] & 7U;
}

inline SlowCount slowCountChars(const nlsAttribStruct& attrib, const std::string& text, uint32_t byteLen) {
    if (byteLen == 0) return {0, 0};
    const std::size_t n = byteLen < text.size() ? byteLen : text.size();
    if ((attrib.flags & NLS_CHARSET_MULTI_BYTE) == 0) return {0, static_cast<uint32_t>(n)};
    std::size_t start = 0;
    for (uint32_t chars = 0;; ++chars) {
        const std::size_t last = start + slowTrails(attrib, text, start);
        if (last >= n) return {-4, chars};
        start = last + 1;
        if (start >= n) return {0, chars + 1};
    }
}

inline SlowCount slowCountBytes(const nlsAttribStruct& attrib, const std::string& text, uint32_t charCount) {
    const auto length = static_cast<uint32_t>(text.size());
    if (charCount > length) return {0, length};
    uint32_t bytes = 0;
    for (uint32_t i = 0; i < charCount && bytes < length; ++i) {
        const uint32_t size = slowTrails(attrib, text, bytes) + 1;
        if (length - bytes < size) return {-4, bytes};
        bytes += size;
    }
    return {0, bytes};
}

inline uint32_t slowUtf8Columns(unsigned b0, unsigned b1, unsigned b2) {
    if (b0 == 0xEF && b1 == 0xBB && b2 == 0xBF) return 0;
    if (b0 == 0xEF && b1 == 0xBB) return 1;
    if (b0 == 0xEF && b1 <= 0xB9) return 2;
    if (b0 == 0xEF && b1 == 0xBC && b2 >= 0x80 && b2 <= 0xBF) return 2;
    if (b0 == 0xEF && b1 == 0xBD && b2 >= 0x80 && b2 <= 0x9F) return 2;
    if (b0 == 0xEF && b1 == 0xBF && b2 >= 0x9D && b2 <= 0xA7) return 2;
    if (b0 == 0xEF) return 1;
    if (b0 == 0xE0 && b1 == 0xB8 && (b2 == 0xB1 || (b2 >= 0xB4 && b2 <= 0xBA))) return 0;
    if (b0 == 0xE0 && b1 == 0xB9 && b2 >= 0x87 && b2 <= 0x8E) return 0;
    if (b0 == 0xE0) return 1;
    return b0 > 0xE2 ? 2 : 1;
}

inline uint32_t slowCountColumns(const nlsAttribStruct& attrib, const std::string& text, uint32_t byteLen) {
    uint32_t columns = 0;
    const std::string padded = text + std::string(8, '\0');
    for (std::size_t pos = 0; pos < byteLen; pos += slowTrails(attrib, padded, pos) + 1) {
        const auto at = [&](std::size_t i) { return static_cast<unsigned char>(padded[pos + i]); };
        if (slowTrails(attrib, padded, pos) == 0) {
            columns += 1;
        } else if ((attrib.flags & NLS_CHARSET_UTF8) != 0) {
            columns += slowUtf8Columns(at(0), at(1), at(2));
        } else {
            columns += (attrib.lengthMap[at(0)] & 8) != 0 ? 1 : 2;
        }
    }
    return columns;
}

}  // namespace nls::test
