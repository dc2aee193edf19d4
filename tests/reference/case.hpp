// Slow twin of case mapping: one character after the other, each rule from the tables.
#pragma once

#include <cctype>
#include <string>

#include "nls/records.h"
#include "nls/status.h"

namespace nls::test {

struct SlowLChar {
    uint32_t value;
    std::size_t length;
};

// A character of NUL-terminated text whose first byte stands at `pos`.
inline SlowLChar slowLChar(const nlsAttribStruct& attrib, const std::string& text, std::size_t pos) {
    const std::size_t trails = attrib.lengthMap[static_cast<unsigned char>(text[pos])] & 7U;
    SlowLChar read{0, 0};
    while (read.length <= trails && pos + read.length < text.size())
        read.value = read.value << 8 | static_cast<unsigned char>(text[pos + read.length++]);
    if (trails > 3) read.value = 63;
    return read;
}

inline uint32_t slowForm(const uint16_t* const (&pages)[256], uint32_t value, bool lower) {
    const uint32_t top = value & 0xFF0000;
    uint32_t k = value;
    if (value > 0xFFFFFF) return value;
    if (top == 0xE10000)
        k = value - 0xE17F80;
    else if (top == 0xE20000)
        k = value - 0xE23F80;
    else if (top == 0xEF0000)
        k = value - 0xEEFF80;
    else if (top != 0)
        return value;
    const uint32_t row = k >> 8 & 0xFF, column = k & 0x7F;
    const uint32_t index = column + (!lower ? 0 : row == 0 ? 128 : 64);
    if (row != 0 && index >= 128) return value;  // behind the page
    const uint32_t entry = pages[row][index];
    return entry == 0 ? value : entry + top;
}

struct SlowCase {
    nlsStatus status;
    std::string written;  // with the NUL, if one was written
};

// `byteForms` null: by `pages`. `twoBytes`: of a longer character two bytes are copied, not all.
inline SlowCase slowCase(const nlsAttribStruct& attrib, const unsigned char* byteForms, bool twoBytes,
                         const uint16_t* const (*pages)[256], const std::string& text, std::size_t bufSize,
                         bool lower) {
    SlowCase out{NLS_OK, {}};
    for (std::size_t pos = 0; pos < text.size();) {
        if (out.written.size() == bufSize) return {NLS_BUF_SMALL, out.written};
        const SlowLChar read = slowLChar(attrib, text, pos);
        std::size_t length = read.length;
        std::string form;
        if (byteForms == nullptr) {
            for (uint32_t v = slowForm(*pages, read.value, lower); v != 0; v >>= 8)
                form.insert(0, 1, static_cast<char>(v));
        } else if ((attrib.lengthMap[static_cast<unsigned char>(text[pos])] & 7U) == 0) {
            form = std::string(1, static_cast<char>(byteForms[static_cast<unsigned char>(text[pos])]));
        } else {
            form = text.substr(pos, twoBytes ? 2 : (attrib.lengthMap[static_cast<unsigned char>(text[pos])] & 7U) + 1);
            length = form.size();
        }
        if (form.size() > bufSize - out.written.size()) return {NLS_BUF_SMALL, out.written + '\0'};
        out.written += form;
        pos += length;
    }
    if (out.written.size() == bufSize) return {NLS_BUF_SMALL, out.written};
    out.written += '\0';
    return out;
}

}  // namespace nls::test
