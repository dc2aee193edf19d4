// The walks of single-byte charsets in their plainest form: the slow twins of conversion/byte_map and
// conversion/sbcs_bridge. Each takes the target as it is, and gives it back as it is to be afterwards.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "convmap/conv_table.hpp"
#include "nls/status.h"

namespace nls::test {

using Bytes = std::vector<unsigned char>;

struct Twin {
    nlsStatus status;
    uint32_t length;
};

inline Twin twinSbcsToUtf8(const SbcsWords& words, const Bytes& source, Bytes& target) {
    if (source.empty()) return {NLS_OK, 0};
    if (target.empty()) return {NLS_BUF_SMALL, 0};
    std::size_t place = 0;
    const auto overflow = [&] {
        while (place + 1 < target.size()) target[place++] = ' ';
        target.back() = 0;
        return Twin{NLS_BUF_SMALL, static_cast<uint32_t>(target.size())};
    };
    for (const unsigned char c : source) {
        unsigned char form[4];
        std::memcpy(form, &words.utf8[c], 4);
        std::size_t length = 1;
        if (form[0] >= 0xC0) length = 2;
        if (form[0] >= 0xE0) length = 3;
        if (form[0] >= 0xF0) length = 4;
        const std::size_t spare = length > 1 ? 1 : 0;
        if (place + length + spare > target.size()) return overflow();
        for (std::size_t i = 0; i < length; ++i) target[place++] = form[i];
    }
    if (source.back() == 0 && target[place - 1] != 0) return overflow();
    return {NLS_OK, static_cast<uint32_t>(place)};
}

inline Twin twinUtf8ToSbcs(const SbcsPages& pages, const Bytes& source, Bytes& target) {
    nlsStatus status = NLS_OK;
    uint32_t length = 0;
    for (std::size_t i = 0; i < source.size();) {
        const unsigned c = source[i];
        std::size_t taken = 1;
        if (c >= 0xC0 && c <= 0xDF) taken = 2;
        if (c >= 0xE0 && c <= 0xEF) taken = 3;
        if (c >= 0xF0 && c <= 0xF4) taken = 4;
        if (i + taken > source.size()) return {NLS_BAD_ARG, length};
        unsigned char t = 0;
        if (c <= 0x7F) t = pages.page[0][c];
        if (taken == 2) t = pages.page[c][source[i + 1] & 0x3F];
        if (taken == 3) t = pages.page[source[i + 1]][source[i + 2] & 0x3F];
        if (t == 0 && c != 0) {
            t = '?';
            status = NLS_CONV_SUBST;
        }
        if (length == target.size()) return {NLS_BUF_SMALL, length};
        target[length++] = t;
        i += taken;
    }
    return {status, length};
}

}  // namespace nls::test
