// Door: the character functions.
#include "nls/chars.h"

#include "chars/char_class.hpp"
#include "chars/find_char.hpp"
#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "chars/trim.hpp"
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

// ---- Find and trim ----

namespace {

nlsStatus checkFind(const nlsLocale* locale, const nlsLChar* lcharPtr, const unsigned char* str, uint32_t* pos,
                    const unsigned char** found) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *pos = 0;
    if (found == nullptr) return NLS_BAD_ARG;
    const bool given = lcharPtr != nullptr && str != nullptr;
    if (given && locale->attrib != nullptr) return NLS_OK;
    *found = nullptr;
    return given ? NLS_NO_ATTRIB : NLS_BAD_ARG;
}

nlsStatus checkTrim(const nlsLocale* locale, const unsigned char* str, uint32_t* pos, const unsigned char** found) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *pos = 0;
    if (found == nullptr || str == nullptr) return NLS_BAD_ARG;
    if (locale->attrib != nullptr) return NLS_OK;
    *found = nullptr;
    return NLS_NO_ATTRIB;
}

void handOut(const unsigned char* place, const unsigned char* str, uint32_t* pos, const unsigned char** found) {
    *found = place;
    if (place != nullptr) *pos = static_cast<uint32_t>(place - str) + 1;
}

}  // namespace

nlsStatus nlsFindCharForw(const nlsLocale* locale, nlsTlsBlock* tls, const nlsLChar* lcharPtr, const unsigned char* str,
                          uint16_t compareMode, uint32_t* pos, const unsigned char** found) {
    if (const nlsStatus bad = checkFind(locale, lcharPtr, str, pos, found)) return bad;
    const nls::FoundChar answer = nls::findCharForward(*locale, tls, *lcharPtr, str, compareMode);
    if (answer.status == NLS_OK) handOut(answer.place, str, pos, found);
    return answer.status;
}

nlsStatus nlsFindCharBack(const nlsLocale* locale, nlsTlsBlock* tls, const nlsLChar* lcharPtr, const unsigned char* str,
                          int32_t len, uint16_t compareMode, uint32_t* pos, const unsigned char** found) {
    if (const nlsStatus bad = checkFind(locale, lcharPtr, str, pos, found)) return bad;
    const std::size_t length = nls::firstBytes(str, len).size();
    const nls::FoundChar answer = nls::findCharBackward(*locale, tls, *lcharPtr, str, length, compareMode);
    if (answer.status == NLS_OK) {
        handOut(answer.place, str, pos, found);
    } else {
        *found = answer.place;
    }
    return answer.status;
}

nlsStatus nlsFindLtrimPtrForw(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* trimSet,
                              const unsigned char* str, uint16_t compareMode, uint32_t* pos,
                              const unsigned char** found) {
    if (const nlsStatus bad = checkTrim(locale, str, pos, found)) return bad;
    const nls::TrimPlace answer = nls::trimLeft(*locale, tls, trimSet, str, compareMode);
    if (answer.status == NLS_OK) handOut(answer.place, str, pos, found);
    return answer.status;
}

nlsStatus nlsFindRtrimPtrBack(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* trimSet,
                              const unsigned char* str, int32_t len, uint16_t compareMode, uint32_t* pos,
                              const unsigned char** found) {
    if (const nlsStatus bad = checkTrim(locale, str, pos, found)) return bad;
    const nls::ByteView text = len > 0 ? nls::firstBytes(str, len) : nls::ByteView{str, std::size_t{0}};
    const nls::TrimPlace answer = nls::trimRight(*locale, trimSet, text, compareMode);
    if (answer.status == NLS_OK) handOut(answer.place, str, pos, found);
    return answer.status;
}
