// Door: the character functions.
#include "nls/chars.h"

#include "chars/char_class.hpp"
#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "core/base/checks.hpp"

namespace {

// The terminator at the place reached is told together with the step that reached it.
nlsStatus endOr(const unsigned char* place) {
    return *place == 0 ? NLS_END_OF_STRING : NLS_OK;
}

}  // namespace

nlsStatus nlsGetNextChar(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* p, const unsigned char** next) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (next == nullptr || p == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) {
        *next = nullptr;
        return NLS_NO_ATTRIB;
    }
    *next = nls::characterEnd(nls::Charset{*locale->attrib}, p);
    return endOr(*next);
}

nlsStatus nlsGetPrevChar(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* p, const unsigned char* start,
                         const unsigned char** prev) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (prev == nullptr || start == nullptr || p == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) {
        *prev = nullptr;
        return NLS_NO_ATTRIB;
    }
    if (p == start) {
        *prev = start;
        return NLS_END_OF_STRING;
    }
    *prev = nls::previousCharacter(nls::Charset{*locale->attrib}, p, start);
    return NLS_OK;
}

nlsStatus nlsCharToLChar(const nlsLocale* locale, nlsTlsBlock*, const unsigned char** pp, nlsLChar* lchar) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (locale->attrib == nullptr) {
        *lchar = 0;
        return NLS_NO_ATTRIB;
    }
    if (*pp == nullptr) return NLS_BAD_ARG;
    const nls::LCharRead read = nls::readLChar(nls::Charset{*locale->attrib}, *pp);
    *lchar = read.value;
    *pp = read.next;
    return endOr(read.next);
}

nlsStatus nlsLCharToChar(const nlsLocale* locale, nlsTlsBlock*, nlsLChar lchar, unsigned char** pp,
                         uint16_t* byteCount) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *byteCount = 0;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (*pp == nullptr) return NLS_BAD_ARG;
    const nls::LCharWritten written = nls::writeLChar(nls::Charset{*locale->attrib}, lchar, *pp);
    *byteCount = written.byteCount;
    if (written.status == NLS_OK) *pp += written.byteCount;
    return written.status;
}

nlsStatus nlsGetCharProperty(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* p, const void*,
                             uint32_t* value) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (p == nullptr) return NLS_BAD_ARG;
    const nls::CharClass found = nls::classify(nls::Charset{*locale->attrib}, *p);
    *value = found.value;
    return static_cast<nlsStatus>(found.kind);
}

uint32_t nlsFirstByte(const nlsAttribStruct* attrib, const unsigned char* p, const unsigned char* start) {
    return attrib == nullptr || nls::isFirstByte(nls::Charset{*attrib}, p, start) ? 1 : 0;
}
