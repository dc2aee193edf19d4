// Door: search and replace.
#include "core/base/checks.hpp"
#include "nls/strings.h"
#include "strings/like.hpp"
#include "strings/replace.hpp"
#include "strings/search.hpp"

// ---- Search and replace ----

namespace {

// The places where a caller wants to have a match.
struct MatchOut {
    uint32_t* pos;
    uint32_t* end;
    const unsigned char** found;
};

nlsStatus checkSearch(const nlsLocale* locale, const unsigned char* pattern, const unsigned char* text, uint32_t* pos,
                      const unsigned char** found) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *pos = 0;
    if (pattern == nullptr || text == nullptr || found == nullptr) return NLS_BAD_ARG;
    if (locale->attrib != nullptr) return NLS_OK;
    *found = nullptr;
    return NLS_NO_ATTRIB;
}

// REQUIRES: the search went without a failure.
void handOut(const nls::Match& match, const unsigned char* text, uint32_t* pos, const unsigned char** found) {
    *found = match.found ? text + match.start : nullptr;
    if (match.found) *pos = static_cast<uint32_t>(match.start + 1);
}

nls::Match searchAndTell(const nls::Comparing& by, const unsigned char* pattern, nls::ByteView text,
                         nls::Wildcards wildcards, const MatchOut& out) {
    const nls::Match match = nls::searchForward(by, nls::untilNul(pattern), text, wildcards);
    if (match.status != NLS_OK) return match;
    handOut(match, text.data(), out.pos, out.found);
    if (match.found) *out.end = static_cast<uint32_t>(match.end);
    return match;
}

}  // namespace

nlsStatus nlsSearchForwBase(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                            const unsigned char* text, uint16_t compareMode, uint16_t wildcards, int32_t escape,
                            uint32_t* pos, uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    return searchAndTell({*locale, tls, compareMode}, pattern, nls::untilNul(text), {wildcards != 0, escape},
                         {pos, end, found})
        .status;
}

nlsStatus nlsSearchForw(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t compareMode, uint32_t* pos, uint32_t* end,
                        const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    return searchAndTell({*locale, tls, compareMode}, pattern, nls::untilNul(text), nls::kNoWildcards,
                         {pos, end, found})
        .status;
}

nlsStatus nlsSearchForwWithEscape(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t compareMode, int32_t escape, uint32_t* pos,
                                  uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    return searchAndTell({*locale, tls, compareMode}, pattern, nls::untilNul(text), {true, escape}, {pos, end, found})
        .status;
}

nlsStatus nlsSearchBack(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, int32_t textLen, uint16_t compareMode, uint32_t* pos,
                        const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    const nls::Match match = nls::searchBackward({*locale, tls, compareMode}, nls::untilNul(pattern), text, textLen);
    if (match.status == NLS_OK) handOut(match, text, pos, found);
    return match.status;
}

nlsStatus nlsReplace(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                     const unsigned char* replacement, const unsigned char* text, uint16_t compareMode, nlsStr* rec,
                     uint32_t* pos, uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    const nls::ByteView whole = nls::untilNul(text);
    const nls::Match match =
        searchAndTell({*locale, tls, compareMode}, pattern, whole, nls::kNoWildcards, {pos, end, found});
    if (match.status != NLS_OK) return match.status;
    return rec == nullptr ? NLS_BAD_ARG : nls::replaceMatch(*rec, whole, match, replacement);
}

nlsStatus nlsReplaceAll(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* replacement, const unsigned char* text, uint16_t compareMode, nlsStr* rec,
                        uint32_t* replaced) {
    *replaced = 0;
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (pattern == nullptr || text == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    const nls::Replaced done =
        nls::replaceAll({*locale, tls, compareMode}, nls::untilNul(pattern), replacement, nls::untilNul(text), rec);
    *replaced = done.count;
    return done.status;
}

// ---- LIKE ----

int32_t nlsSqlLike(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern, const unsigned char* text,
                   uint16_t compareMode, nlsLChar escape, nlsLChar single, nlsLChar multi) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (pattern == nullptr || text == nullptr) return NLS_BAD_ARG;
    return nls::matchLike(*locale, tls, pattern, text, compareMode, escape, single, multi);
}
