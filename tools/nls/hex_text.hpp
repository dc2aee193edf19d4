// Byte values and words in hex, for people.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "core/base/views.hpp"

namespace nls::tool {

template <typename... Values>
std::string formatted(const char* form, Values... values) {
    char text[160];
    std::snprintf(text, sizeof text, form, values...);
    return text;
}

// "0xE282AC"; of long pieces the first eight bytes.
inline std::string hexOf(ByteView bytes) {
    std::string text = "0x";
    for (std::size_t i = 0; i < bytes.size() && i < 8; ++i) text += formatted("%02X", static_cast<unsigned>(bytes[i]));
    return bytes.size() > 8 ? text + "..." : text;
}

// "41-5A 61-7A": the byte values for which `test` holds.
template <typename Test>
std::string byteRanges(Test test) {
    std::string text;
    for (unsigned first = 0; first < 256; ++first) {
        if (!test(first)) continue;
        unsigned last = first;
        while (last + 1 < 256 && test(last + 1)) ++last;
        if (!text.empty()) text += ' ';
        text += first == last ? formatted("%02X", first) : formatted("%02X-%02X", first, last);
        first = last;
    }
    return text;
}

// Lines of sixteen bytes or 16-bit words (in this machine's order), each line with the number of its first.
inline std::string byteRows(ByteView bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % 16 == 0) text += formatted("%s      %02zX:", i == 0 ? "" : "\n", i);
        text += formatted(" %02X", static_cast<unsigned>(bytes[i]));
    }
    return bytes.empty() ? "" : text + "\n";
}
inline std::string wordRows(ByteView words) {
    std::string text;
    for (std::size_t i = 0; i < words.size() / 2; ++i) {
        if (i % 16 == 0) text += formatted("%s      %04zX:", i == 0 ? "" : "\n", i);
        text += formatted(" %04X", static_cast<unsigned>(loadWord<uint16_t>(words.data() + 2 * i)));
    }
    return words.size() < 2 ? "" : text + "\n";
}

}  // namespace nls::tool
