// Search and replace step by step, as they are told, out of the exported operations on one character: the slow twins of
// strings/search and strings/replace.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>

#include "nls/chars.h"
#include "nls/compare.h"
#include "nls/status.h"
#include "nls/strings.h"

namespace nls::reference {

// What a caller's variables hold. They begin as `unwritten` says.
struct Found {
    nlsStatus status = NLS_OK;
    uint32_t pos = 0, end = unwritten;
    const unsigned char* found = nullptr;
    bool foundWritten = false;

    static constexpr uint32_t unwritten = 0xDEAD;
    bool operator==(const Found&) const = default;
};

class Search {
public:
    Search(const nlsLocale* locale, uint16_t mode) : locale_(locale), mode_(mode) {}

    Found forward(const unsigned char* pattern, const unsigned char* text, bool wildcards, int32_t escape) const {
        uint32_t patternChars = 0, textChars = 0;
        if (const nlsStatus bad = count(pattern, patternChars)) return failed(bad);
        if (const nlsStatus bad = count(text, textChars)) return failed(bad);
        const uint32_t length = nlsStrlen(text);
        if (*pattern == 0) return {NLS_OK, length + 1, length + 1, text + length, true};
        const unsigned char* cur = text;
        for (int64_t n = textChars;; --n, cur = step(cur).place) {
            if (n <= 0) return {NLS_OK, 0, Found::unwritten, nullptr, true};
            if (!wildcards && n < patternChars) return {NLS_OK, 0, Found::unwritten, nullptr, true};
            const unsigned char *p = pattern, *t = cur;
            if (wildcards) {
                while (*p != escape && *p == '_') {
                    p = step(p).place;
                    t = step(t).place;
                }
                if (escape != 0 && *p == escape) p = step(p).place;
            }
            bool matched = false;
            for (;;) {
                bool same = false;
                if (const nlsStatus bad = compare(p, t, same)) return failed(bad);
                if (!same) break;
                bool again;
                do {
                    again = false;
                    const Step next = step(p);
                    p = next.place;
                    if (next.atEnd) {
                        matched = true;
                        break;
                    }
                    t = step(t).place;
                    if (wildcards && escape != 0 && *p == escape)
                        p = step(p).place;
                    else if (wildcards && *p == '_')
                        again = true;
                } while (again);
                if (matched) break;
            }
            if (!matched) continue;
            t = step(t).place;
            return {NLS_OK, static_cast<uint32_t>(cur - text + 1), static_cast<uint32_t>(t - text), cur, true};
        }
    }

    // A character that the end of the span cuts short is compared as far as it goes.
    Found backward(const unsigned char* pattern, const unsigned char* text, int32_t textLen) const {
        uint32_t patternChars = 0, textChars = 0;
        if (const nlsStatus bad = count(pattern, patternChars)) return failed(bad);
        if (const nlsStatus bad = nlsCountChars(locale_, nullptr, text, textLen, &textChars)) return failed(bad);
        const unsigned char *const end = text + textLen, *const patternEnd = pattern + nlsStrlen(pattern);
        if (*pattern == 0) return {NLS_OK, static_cast<uint32_t>(textLen + 1), Found::unwritten, end, true};
        const unsigned char *cur = nullptr, *last = nullptr;
        if (const nlsStatus bad = nlsGetPrevChar(locale_, nullptr, end, text, &cur)) return failed(bad);
        if (const nlsStatus bad = nlsGetPrevChar(locale_, nullptr, patternEnd, pattern, &last)) return failed(bad);
        for (int64_t n = textChars;; --n, (void)nlsGetPrevChar(locale_, nullptr, cur, text, &cur)) {
            if (n < patternChars) return {NLS_OK, 0, Found::unwritten, nullptr, true};
            for (const unsigned char *p = last, *t = cur;;) {
                bool same = false;
                if (const nlsStatus bad = compare(p, t, same, end)) return failed(bad);
                if (!same) break;
                const unsigned char* const before = p;
                (void)nlsGetPrevChar(locale_, nullptr, p, pattern, &p);
                if (p == before) return {NLS_OK, static_cast<uint32_t>(t - text + 1), Found::unwritten, t, true};
                (void)nlsGetPrevChar(locale_, nullptr, t, text, &t);
            }
        }
    }

    Found replace(const unsigned char* pattern, const unsigned char* with, const unsigned char* text,
                  nlsStr& rec) const {
        Found found = forward(pattern, text, false, 0);
        if (found.status != NLS_OK) return found;
        const uint32_t length = nlsStrlen(text);
        if (found.pos == 0) {
            found.status = nlsCopyString(text, static_cast<int32_t>(length), &rec);
            return found;
        }
        found.status = nlsCopyString(text, static_cast<int32_t>(found.pos - 1), &rec);
        if (found.status != NLS_OK) return found;
        found.status = appendAll(with, rec);
        if (found.status == NLS_OK) found.status = appendAll(text + std::min(found.end, length), rec);
        if (found.status != NLS_OK) empty(rec);
        return found;
    }

    nlsStatus replaceAll(const unsigned char* pattern, const unsigned char* with, const unsigned char* text,
                         nlsStr& rec, uint32_t& replaced) const {
        replaced = 0;
        Found found = forward(pattern, text, false, 0);
        if (found.status != NLS_OK) return found.status;
        if (found.found == nullptr) return nlsCopyString(text, static_cast<int32_t>(nlsStrlen(text)), &rec);
        const unsigned char* rest = text;
        nlsStatus status = nlsCopyString(rest, static_cast<int32_t>(found.pos - 1), &rec);
        while (status == NLS_OK && (status = appendAll(with, rec)) == NLS_OK) {
            ++replaced;
            rest += std::min(found.end, nlsStrlen(rest));
            if (*rest == 0) break;
            found = forward(pattern, rest, false, 0);
            if (found.found == nullptr) break;
            status = nlsAppendString(rest, static_cast<int32_t>(found.pos - 1), &rec);
        }
        if (status == NLS_OK) status = appendAll(rest, rec);
        if (status != NLS_OK) empty(rec);
        return status;
    }

private:
    struct Step {
        const unsigned char* place;
        bool atEnd;
    };
    Step step(const unsigned char* place) const {
        const unsigned char* next = nullptr;
        const nlsStatus status = nlsGetNextChar(locale_, nullptr, place, &next);
        return {next, status == NLS_END_OF_STRING};
    }
    nlsStatus count(const unsigned char* text, uint32_t& chars) const {
        return nlsCountChars(locale_, nullptr, text, static_cast<int32_t>(nlsStrlen(text)), &chars);
    }
    nlsStatus compare(const unsigned char* p, const unsigned char* t, bool& same,
                      const unsigned char* end = nullptr) const {
        const auto length = [&](const unsigned char* place) { return (locale_->attrib->lengthMap[*place] & 7) + 1; };
        uint16_t result = 1;
        const auto left = end == nullptr ? length(t) : static_cast<int>(std::min<std::ptrdiff_t>(length(t), end - t));
        const nlsStatus status = nlsCompareN(locale_, nullptr, p, t, length(p), left, mode_, &result);
        same = result == 0;
        return status;
    }
    static nlsStatus appendAll(const unsigned char* text, nlsStr& rec) {
        return nlsAppendString(text, text == nullptr ? 0 : static_cast<int32_t>(nlsStrlen(text)), &rec);
    }
    static void empty(nlsStr& rec) {
        for (uint32_t i = 0; i < rec.strLength; ++i) rec.buf[i] = ' ';
        rec.strLength = 0;
        rec.buf[0] = 0;
    }
    static Found failed(nlsStatus status) { return {status, 0, Found::unwritten, nullptr, false}; }

    const nlsLocale* locale_;
    uint16_t mode_;
};

}  // namespace nls::reference
