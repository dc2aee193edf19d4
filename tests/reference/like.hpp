// LIKE step by step, as it is told, on the exported functions: the slow twin of strings/like. A `multi` tries every
// rest of the text by calling itself, so a few of them in a pattern are enough to wait for.
#pragma once

#include <cstdint>

#include "nls/chars.h"
#include "nls/compare.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls::reference {

struct Like {
    const nlsLocale* locale;
    uint16_t mode;
    nlsLChar escape, single, multi;

    int32_t operator()(const unsigned char* pattern, const unsigned char* text) const {
        if (pattern == nullptr || text == nullptr) return NLS_BAD_ARG;
        for (;;) {
            const unsigned char* behind = pattern;
            const nlsLChar value = read(behind);
            const unsigned char* literal = pattern;
            if (value == single && (escape == 0 || escape != single)) {
                if (*text == 0) return 0;
                step(text);
                if (*behind == 0 && *text != 0) return 0;
                pattern = behind;
                continue;
            }
            if (value == multi && (escape == 0 || escape != multi)) {
                if (*behind == 0) return 1;
                for (; *text != 0; step(text)) {
                    if ((*this)(behind, text) == 1) return 1;
                }
                return 0;
            }
            if (escape != 0 && value == escape) {
                const unsigned char* behindEscaped = behind;
                const nlsLChar escaped = read(behindEscaped);
                if (escaped == 0 || (escaped != single && escaped != multi && escaped != escape)) return -1;
                literal = behind;
                behind = behindEscaped;
            }
            pattern = behind;
            if (*literal == 0 && *text == 0) return 1;
            uint16_t result = 0;
            const nlsStatus status =
                nlsCompareN(locale, nullptr, literal, text, bytes(*literal), bytes(*text), mode, &result);
            if (status != 0) return status;
            if (result != 0) return 0;
            if (step(text) == NLS_END_OF_STRING) return atTextEnd(pattern);
            if (*pattern == 0) return 0;
        }
    }

private:
    int32_t atTextEnd(const unsigned char* pattern) const {
        if (*pattern == 0) return 1;
        const nlsLChar value = read(pattern);
        if (value != multi || value == escape) return 0;
        return *pattern == 0 ? 1 : 0;
    }
    nlsLChar read(const unsigned char*& place) const {
        nlsLChar value = 0;
        (void)nlsCharToLChar(locale, nullptr, &place, &value);
        return value;
    }
    nlsStatus step(const unsigned char*& place) const { return nlsGetNextChar(locale, nullptr, place, &place); }
    int32_t bytes(unsigned char first) const { return (locale->attrib->lengthMap[first] & 7) + 1; }
};

}  // namespace nls::reference
