// Door: comparison, keys and words.
#include "collation/compare.hpp"
#include "collation/sjis_bridge.hpp"
#include "core/base/checks.hpp"
#include "nls/compare.h"

namespace {

nlsStatus checkTables(const nlsLocale& locale) {
    if (locale.attrib == nullptr) return NLS_NO_ATTRIB;
    return locale.coll != nullptr ? NLS_OK : NLS_BAD_COLLATION;
}

// The handle isn't looked at, and an object of another type counts as a locale without tables.
nlsStatus checkLocaleAlone(const nlsLocale* locale) {
    if (locale == nullptr || locale->hdr.typeTag != NLS_TAG_LOCALE) return NLS_NO_ATTRIB;
    return checkTables(*locale);
}

nlsStatus handOut(const nls::Compared& compared, uint16_t* result) {
    if (compared.status == NLS_OK) *result = static_cast<uint16_t>(compared.sign);
    return compared.status;
}

}  // namespace

// ---- Comparison ----

nlsStatus nlsCompare(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1, const unsigned char* s2,
                     uint16_t compareMode, uint16_t* result) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (const nlsStatus bad = checkTables(*locale)) return bad;
    if (s1 == nullptr || s2 == nullptr || result == nullptr) return NLS_BAD_ARG;
    return handOut(nls::compareTexts(*locale, tls, nls::Text::of(s1, -1), nls::Text::of(s2, -1), compareMode), result);
}

nlsStatus nlsCompareN(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1, const unsigned char* s2,
                      int32_t len1, int32_t len2, uint16_t compareMode, uint16_t* result) {
    if (const nlsStatus bad = checkLocaleAlone(locale)) return bad;
    if (s1 == nullptr || s2 == nullptr || result == nullptr) return NLS_BAD_ARG;
    return handOut(nls::compareLimited(*locale, tls, s1, s2, len1, len2, compareMode), result);
}

nlsStatus locCompare(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1, const unsigned char* s2,
                     const nlsAttribStruct* attrib, const nlsCollStruct* coll, uint16_t compareMode, int32_t len1,
                     int32_t len2, uint16_t* result) {
    if (locale == nullptr || s1 == nullptr || s2 == nullptr || attrib == nullptr || coll == nullptr ||
        result == nullptr)
        return NLS_BAD_ARG;
    const nls::Collation by{*locale, *attrib, *coll};
    return handOut(nls::compareTexts(by, tls, nls::Text::of(s1, len1), nls::Text::of(s2, len2), compareMode), result);
}

nlsStatus getSjisHandles(const nlsLocale* locale) {
    if (locale == nullptr || locale->attrib == nullptr) return NLS_NO_SJIS;
    return nls::findSjisHandles(*locale).status;
}
