// Door: records of text, byte copies, counters, well-formed text, cuts, case, names of charsets.
#include <cstring>

#include "core/base/checks.hpp"
#include "nls/strings.h"
#include "strings/case_mapping.hpp"
#include "strings/charset_names.hpp"
#include "strings/counting.hpp"
#include "strings/str_record.hpp"
#include "strings/substr.hpp"
#include "strings/validate.hpp"

// ---- Records ----

nlsStatus nlsInitString(unsigned char* buf, int32_t bufSize, nlsStr* rec) {
    if (rec == nullptr || (buf == nullptr && bufSize > 0)) return NLS_BAD_ARG;
    *rec = nlsStr{buf, bufSize, 0};
    if (bufSize > 0) *buf = 0;
    return NLS_OK;
}

nlsStatus nlsSetString(unsigned char* buf, int32_t bufSize, uint32_t strLength, nlsStr* rec) {
    if (rec == nullptr) return NLS_BAD_ARG;
    *rec = nlsStr{buf, bufSize, strLength};
    return NLS_OK;
}

nlsStatus nlsAppendString(const unsigned char* src, int32_t count, nlsStr* rec) {
    if (src == nullptr || rec == nullptr) return NLS_BAD_ARG;
    return nls::appendText(*rec, src, count);
}

nlsStatus nlsCopyString(const unsigned char* src, int32_t count, nlsStr* rec) {
    if (src == nullptr || rec == nullptr) return NLS_BAD_ARG;
    return nls::replaceText(*rec, src, count);
}

nlsStatus nlsCopynlsStr(const nlsStr* from, nlsStr* to) {
    return nls::replaceText(*to, from->buf, int64_t{from->strLength});
}

nlsStatus nlsGetBufOfnlsStr(const nlsStr* rec, unsigned char** buf) {
    if (rec == nullptr) return NLS_BAD_ARG;
    *buf = rec->buf;
    return NLS_OK;
}

nlsStatus nlsGetBufSizeOfnlsStr(const nlsStr* rec, uint32_t* bufSize) {
    if (rec == nullptr) return NLS_BAD_ARG;
    *bufSize = static_cast<uint32_t>(rec->bufSize);
    return NLS_OK;
}

nlsStatus nlsGetStrLengthOfnlsStr(const nlsStr* rec, uint32_t* strLength) {
    if (rec == nullptr) return NLS_BAD_ARG;
    *strLength = rec->strLength;
    return NLS_OK;
}

// ---- Bytes ----

uint32_t nlsStrlen(const unsigned char* s) {
    return static_cast<uint32_t>(nls::untilNul(s).size());
}

uint32_t nlsStrcpy(const unsigned char* src, unsigned char* dst) {
    return nls::copyClosed(src, INT64_MAX, dst);
}

uint32_t nlsStrncpy(const unsigned char* src, unsigned char* dst, int32_t max) {
    return nls::copyClosed(src, max, dst);
}

// ---- Counters ----

namespace {

nlsStatus checkCount(const nlsLocale* locale, const unsigned char* s, int32_t count) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    return s == nullptr || count < 0 ? NLS_BAD_ARG : NLS_OK;
}

// The bytes of the first `charCount` characters, checked as the counters are.
nls::Counted bytesOfChars(const nlsLocale* locale, const unsigned char* s, int32_t charCount) {
    if (const nlsStatus bad = checkCount(locale, s, charCount)) return {bad, 0};
    return nls::countBytes(nls::Charset{*locale->attrib}, s, charCount);
}

}  // namespace

nlsStatus nlsCountColumns(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t byteLen,
                          uint32_t* columns) {
    *columns = 0;
    if (const nlsStatus bad = checkCount(locale, s, byteLen)) return bad;
    const nls::ByteView span{s, nls::boundedLength(s, byteLen)};
    if (span.size() < static_cast<std::size_t>(byteLen)) return NLS_BAD_ARG;
    *columns = nls::countColumns(nls::Charset{*locale->attrib}, span);
    return NLS_OK;
}

nlsStatus nlsCountBytes(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t charCount,
                        uint32_t* bytes) {
    const nls::Counted counted = bytesOfChars(locale, s, charCount);
    *bytes = counted.count;
    return counted.status;
}

nlsStatus nlsCountChars(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t byteLen,
                        uint32_t* chars) {
    *chars = 0;
    if (const nlsStatus bad = checkCount(locale, s, byteLen)) return bad;
    if (byteLen == 0) return NLS_OK;
    const nls::Counted counted =
        nls::countChars(nls::Charset{*locale->attrib}, nls::ByteView{s, nls::boundedLength(s, byteLen)});
    *chars = counted.count;
    return counted.status;
}

nlsStatus nlsExtract(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t charCount, nlsStr* rec) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (s == nullptr || rec == nullptr) return NLS_BAD_ARG;
    const nls::Counted counted = bytesOfChars(locale, s, charCount);
    if (counted.status != NLS_OK) return counted.status;
    return nls::replaceText(*rec, s, counted.count);
}

// ---- Well-formed text, and cuts ----

nlsStatus nlsValidateString(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t byteLen,
                            uint32_t bigEndian, uint32_t* chars) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *chars = 0;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (s == nullptr) return NLS_BAD_ARG;
    const nls::HighByte highByte = bigEndian != 0 ? nls::HighByte::first : nls::HighByte::second;
    const nls::Validated text = nls::validateText(nls::Charset{*locale->attrib}, s, byteLen, highByte);
    *chars = text.chars;
    return text.status;
}

nlsStatus nlsSubstr(const nlsLocale* locale, nlsTlsBlock*, const unsigned char* s, int32_t start, int32_t byteCount,
                    uint32_t* chars, nlsStr* rec) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    *chars = 0;
    if (s == nullptr || rec == nullptr) return NLS_BAD_ARG;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    const nls::Cut cut = nls::cutCharacters(nls::Charset{*locale->attrib}, s, start, byteCount);
    if (cut.status != NLS_OK) return cut.status;
    *chars = cut.chars;
    return nls::replaceText(*rec, cut.bytes.data(), static_cast<int64_t>(cut.bytes.size()));
}

// ---- Case ----

namespace {

nlsStatus changeCase(const nlsLocale* locale, const nlsStr* from, nlsStr* to, nls::CaseForm form) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (to == nullptr || to->buf == nullptr || from == nullptr || from->buf == nullptr) return NLS_BAD_ARG;
    const nls::CaseMapped mapped =
        nls::mapCase(*locale, nls::untilNul(from->buf), nls::firstBytes(to->buf, to->bufSize), form);
    if (mapped.status == NLS_OK) to->strLength = mapped.length;
    return mapped.status;
}

}  // namespace

nlsStatus nlsLowerCase(const nlsLocale* locale, nlsTlsBlock*, const nlsStr* from, nlsStr* to) {
    return changeCase(locale, from, to, nls::CaseForm::lower);
}

nlsStatus nlsUpperCase(const nlsLocale* locale, nlsTlsBlock*, const nlsStr* from, nlsStr* to) {
    return changeCase(locale, from, to, nls::CaseForm::upper);
}

// ---- Names of charsets ----

namespace {

nls::FoundName findCanonical(const nlsLocale* locale, const char* name) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return {bad, nullptr};
    if (locale->attrib == nullptr) return {NLS_NO_ATTRIB, nullptr};
    if (locale->coll == nullptr) return {NLS_BAD_COLLATION, nullptr};
    return nls::canonicalCharsetNameUnder(*locale, name);
}
nls::FoundName findCanonical(const char* name) {
    const char* const found = nls::canonicalCharsetName(name);
    return {found == nullptr ? NLS_END_OF_STRING : NLS_OK, found};
}

}  // namespace

nlsStatus nlsGetOSCharset(char* name) {
    if (name == nullptr) return NLS_BAD_ARG;
    std::strcpy(name, "ISO8859-1");
    return NLS_OK;
}

nlsStatus nlsGetZelCharset(const void* useLocale, const nlsLocale* locale, const char* name, char* canonical) {
    if (name == nullptr || canonical == nullptr) return NLS_BAD_ARG;
    const nls::FoundName found = useLocale != nullptr ? findCanonical(locale, name) : findCanonical(name);
    if (found.status == NLS_OK) std::strcpy(canonical, found.canonical);
    return found.status;
}
