// Door: search and replace.
#include "core/base/checks.hpp"
#include "core/base/cpu.hpp"
#include "nls/strings.h"
#include "strings/like.hpp"
#include "strings/replace.hpp"
#include "strings/search.hpp"
#include "strings/short_search.hpp"

// ---- Search and replace ----

namespace {

nlsStatus checkSearch(const nlsLocale* locale, const unsigned char* pattern, const unsigned char* text, uint32_t* pos,
                      const unsigned char** found) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *pos = 0;
    if (pattern == nullptr || text == nullptr || found == nullptr) return NLS_BAD_ARG;
    if (locale->attrib != nullptr) return NLS_OK;
    *found = nullptr;
    return NLS_NO_ATTRIB;
}

// With the arguments of nlsSearchForw in their places.
[[gnu::noinline]] nlsStatus searchInFull(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                         const unsigned char* text, uint16_t compareMode, uint32_t* pos, uint32_t* end,
                                         const unsigned char** found) {
    (void)nls::cpuLevel();
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    return nls::searchAndTell(locale, tls, pattern, text, compareMode, pos, end, found);
}

}  // namespace

nlsStatus nlsSearchForwBase(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                            const unsigned char* text, uint16_t compareMode, uint16_t wildcards, int32_t escape,
                            uint32_t* pos, uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    if (wildcards == 0) return nls::searchAndTell(locale, tls, pattern, text, compareMode, pos, end, found);
    return nls::searchAndTell(locale, tls, pattern, text, compareMode, escape, pos, end, found);
}

// Most searches are short. What they need is asked here, and all else is left to functions that take over the arguments
// of this one as they are: one that doesn't know the processor yet, too, so that nothing has to be called from here.
nlsStatus nlsSearchForw(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t compareMode, uint32_t* pos, uint32_t* end,
                        const unsigned char** found) {
    const bool given = pattern != nullptr && text != nullptr && found != nullptr;
    const nls::CpuLevel level = nls::knownCpuLevel();
    if (!given || nls::checkLocale(locale) != NLS_OK || level < nls::CpuLevel::baseline)
        return searchInFull(locale, tls, pattern, text, compareMode, pos, end, found);
    const bool wide = level >= nls::CpuLevel::avx512;
    const nls::ShortWay way = nls::shortWayOf(*locale, compareMode);
    if (way == nls::ShortWay::entries) {
        if (wide) return nls::searchShortAvx512(locale, tls, pattern, text, compareMode, pos, end, found);
        return nls::searchShortPlain(locale, tls, pattern, text, compareMode, pos, end, found);
    }
    if (wide && way == nls::ShortWay::bytes)
        return nls::searchShortByBytes(locale, tls, pattern, text, compareMode, pos, end, found);
    if (wide && way == nls::ShortWay::lowerForms)
        return nls::searchShortByForms(locale, tls, pattern, text, compareMode, pos, end, found);
    if (wide && way == nls::ShortWay::weights)
        return nls::searchShortByWeights(locale, tls, pattern, text, compareMode, pos, end, found);
    if (way == nls::ShortWay::bytes)
        return nls::searchShortByBytesPlain(locale, tls, pattern, text, compareMode, pos, end, found);
    if (way == nls::ShortWay::lowerForms)
        return nls::searchShortByFormsPlain(locale, tls, pattern, text, compareMode, pos, end, found);
    if (way == nls::ShortWay::weights)
        return nls::searchShortByWeightsPlain(locale, tls, pattern, text, compareMode, pos, end, found);
    return searchInFull(locale, tls, pattern, text, compareMode, pos, end, found);
}

nlsStatus nlsSearchForwWithEscape(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t compareMode, int32_t escape, uint32_t* pos,
                                  uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    return nls::searchAndTell(locale, tls, pattern, text, compareMode, escape, pos, end, found);
}

nlsStatus nlsSearchBack(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, int32_t textLen, uint16_t compareMode, uint32_t* pos,
                        const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    const nls::Match match = nls::searchBackward({*locale, tls, compareMode}, nls::untilNul(pattern), text, textLen);
    if (match.status != NLS_OK) return match.status;
    *found = match.span.start;
    if (match.span.start != nullptr) *pos = static_cast<uint32_t>(match.span.start - text + 1);
    return NLS_OK;
}

nlsStatus nlsReplace(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                     const unsigned char* replacement, const unsigned char* text, uint16_t compareMode, nlsStr* rec,
                     uint32_t* pos, uint32_t* end, const unsigned char** found) {
    if (const nlsStatus bad = checkSearch(locale, pattern, text, pos, found)) return bad;
    if (const nlsStatus bad = nls::searchAndTell(locale, tls, pattern, text, compareMode, pos, end, found)) return bad;
    if (rec == nullptr) return NLS_BAD_ARG;
    const unsigned char* const behind = *found == nullptr ? nullptr : *pattern == 0 ? *found : text + *end;
    return nls::replaceMatch(*rec, text, {*found, behind}, replacement);
}

nlsStatus nlsReplaceAll(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* replacement, const unsigned char* text, uint16_t compareMode, nlsStr* rec,
                        uint32_t* replaced) {
    *replaced = 0;
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (pattern == nullptr || text == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    const nls::Replaced done =
        nls::replaceAll({*locale, tls, compareMode}, nls::untilNul(pattern), replacement, text, rec);
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
