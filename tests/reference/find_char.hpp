// One character found and sets trimmed, step by step as they are told: the slow twins of chars/find_char and
// chars/trim, but for the checks of their arguments. They go by the doors of stepping, comparison and search, which
// have tests of their own, and write a NUL into the text where they need one.
#pragma once

#include <string>

#include "nls/chars.h"
#include "nls/compare.h"
#include "nls/status.h"
#include "nls/strings.h"

namespace nls::reference {

struct FoundPlace {
    nlsStatus status;
    uint32_t pos;
    const unsigned char* found;  // as before the call where it stays unwritten
    bool operator==(const FoundPlace&) const = default;
};

namespace detail {

// The LChar as a string.
struct Spelled {
    unsigned char bytes[5] = {};
    explicit Spelled(nlsLChar value) {
        unsigned count = 0;
        if (value >= 0x1000000) bytes[count++] = static_cast<unsigned char>(value >> 24 & 0xFF);
        if (value > 0xFFFF) bytes[count++] = static_cast<unsigned char>(value >> 16 & 0xFF);
        if (value > 0xFF) bytes[count++] = static_cast<unsigned char>(value >> 8 & 0xFF);
        bytes[count] = static_cast<unsigned char>(value & 0xFF);
    }
};

inline int32_t sizeAt(const nlsLocale* locale, const unsigned char* place) {
    return (locale->attrib->lengthMap[*place] & 7) + 1;
}
inline uint32_t offset(const unsigned char* place, const unsigned char* start) {
    return static_cast<uint32_t>(place - start);
}

}  // namespace detail

inline FoundPlace findCharForw(const nlsLocale* locale, nlsLChar lchar, const unsigned char* str, uint16_t mode,
                               const unsigned char* before) {
    if (lchar == 0) return {NLS_OK, nlsStrlen(str) + 1, str + nlsStrlen(str)};
    const detail::Spelled spelled{lchar};
    const auto length = static_cast<int32_t>(nlsStrlen(spelled.bytes));
    for (const unsigned char* c = str; *c != 0;) {
        uint16_t result = 7;
        const nlsStatus status =
            nlsCompareN(locale, nullptr, spelled.bytes, c, length, detail::sizeAt(locale, c), mode, &result);
        if (status != NLS_OK) return {status, 0, before};
        if (result == 0) return {NLS_OK, detail::offset(c, str) + 1, c};
        (void)nlsGetNextChar(locale, nullptr, c, &c);
    }
    return {NLS_OK, 0, nullptr};
}

inline FoundPlace findCharBack(const nlsLocale* locale, nlsLChar lchar, const unsigned char* str, int32_t len,
                               uint16_t mode) {
    if (lchar == 0) return {NLS_OK, nlsStrlen(str) + 1, str + nlsStrlen(str)};
    const detail::Spelled spelled{lchar};
    const auto length = static_cast<int32_t>(nlsStrlen(spelled.bytes));
    const unsigned char* c = str + len;
    while (nlsGetPrevChar(locale, nullptr, c, str, &c) == NLS_OK) {
        uint16_t result = 7;
        const nlsStatus status =
            nlsCompareN(locale, nullptr, spelled.bytes, c, length, detail::sizeAt(locale, c), mode, &result);
        if (status != NLS_OK) return {status, 0, c};
        if (result == 0) return {NLS_OK, detail::offset(c, str) + 1, c};
    }
    return {NLS_OK, 0, nullptr};
}

inline FoundPlace findLtrim(const nlsLocale* locale, const unsigned char* set, const unsigned char* str, uint16_t mode,
                            const unsigned char* before) {
    if (set == nullptr) set = reinterpret_cast<const unsigned char*>(" ");
    const unsigned char* cursor = str;
    for (;;) {
        const unsigned char* const remembered = cursor;
        nlsLChar lchar = 0;
        if (nlsCharToLChar(locale, nullptr, &cursor, &lchar) == NLS_END_OF_STRING && lchar == 0)
            return {NLS_OK, detail::offset(remembered, str) + 1, remembered};
        const FoundPlace member = findCharForw(locale, lchar, set, mode, nullptr);
        if (member.status != NLS_OK) return {member.status, 0, before};
        if (member.pos == 0) return {NLS_OK, detail::offset(remembered, str) + 1, remembered};
    }
}

// `str` can be written, and has a byte behind its `len`.
inline FoundPlace findRtrim(const nlsLocale* locale, const unsigned char* set, unsigned char* str, int32_t len,
                            uint16_t mode, const unsigned char* before) {
    if (set == nullptr) set = reinterpret_cast<const unsigned char*>(" ");
    unsigned char* cur = str + len;
    const unsigned char* previous = nullptr;
    while (nlsGetPrevChar(locale, nullptr, cur, str, &previous) == NLS_OK) {
        const unsigned char saved = *cur;
        *cur = 0;
        uint32_t pos = 0, end = 0;
        const unsigned char* member = nullptr;
        const nlsStatus status = nlsSearchForw(locale, nullptr, previous, set, mode, &pos, &end, &member);
        *cur = saved;
        if (status != NLS_OK) return {status, 0, before};
        if (pos == 0 || member == nullptr) break;
        cur = str + (previous - str);
    }
    return {NLS_OK, detail::offset(cur, str) + 1, cur};
}

}  // namespace nls::reference
