// Slow twins of the Shift-JIS and EUC rule: one byte after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/base/views.hpp"

namespace nls::reference {

inline void sjisToJis(uint32_t& first, uint32_t& second) {
    const uint32_t s1 = first, s2 = second;
    first = s1 < 0xA0 ? (s1 - 0x70) * 2 : (s1 - 0xB0) * 2;
    if (s2 <= 0x9E) first = first - 1;
    if (s2 > 0x9E)
        second = s2 - 0x7E;
    else if (s2 >= 0x80)
        second = s2 - 0x20;
    else
        second = s2 - 0x1F;
    first &= 0xFF, second &= 0xFF;
}

inline void jisToSjis(uint32_t& first, uint32_t& second) {
    const uint32_t j1 = first, j2 = second;
    first = j1 < 0x5F ? (j1 + 1) / 2 + 0x70 : (j1 + 1) / 2 + 0xB0;
    if (j1 % 2 == 0)
        second = j2 + 0x7E;
    else if (j2 < 0x60)
        second = j2 + 0x1F;
    else
        second = j2 + 0x20;
    first &= 0xFF, second &= 0xFF;
}

struct ByRule {
    int status;
    std::vector<unsigned char> bytes;
};

inline ByRule sjisToEuc(ByteView source, std::size_t room) {
    ByRule result{0, {}};
    for (std::size_t pos = 0; pos < source.size();) {
        const uint32_t c = source[pos++];
        std::vector<uint32_t> out = {c};
        if ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xEF)) {
            if (pos == source.size()) return {16, result.bytes};
            const uint32_t s = source[pos++];
            out = {c, s};
            if (s >= 0x40 && s <= 0xFC) {
                sjisToJis(out[0], out[1]);
                out[0] += 0x80, out[1] += 0x80;
            }
        } else if (c >= 0xA1 && c <= 0xDF) {
            out = {0x8E, c};
        }
        if (result.bytes.size() + out.size() > room) return {2, result.bytes};
        for (const uint32_t byte : out) result.bytes.push_back(static_cast<unsigned char>(byte));
    }
    return result;
}

inline ByRule eucToSjis(ByteView source, std::size_t room) {
    ByRule result{0, {}};
    for (std::size_t pos = 0; pos < source.size();) {
        const uint32_t c = source[pos++];
        std::vector<uint32_t> out = {c};
        if ((c >= 0xA1 && c <= 0xFE) || c == 0x8E) {
            if (pos == source.size()) return {16, result.bytes};
            const uint32_t e = source[pos++];
            out = {c, e};
            if (c == 0x8E) {
                if (e >= 0xA1 && e <= 0xDF) out = {e};
            } else if (e >= 0xA1 && e <= 0xFE) {
                out[0] -= 0x80, out[1] -= 0x80;
                jisToSjis(out[0], out[1]);
            }
        }
        if (result.bytes.size() + out.size() > room) return {2, result.bytes};
        for (const uint32_t byte : out) result.bytes.push_back(static_cast<unsigned char>(byte));
    }
    return result;
}

}  // namespace nls::reference
