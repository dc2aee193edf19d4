// Door: comparison, keys and words.
#include <algorithm>
#include <cstring>

#include "collation/byte_step.hpp"
#include "collation/byte_walk.hpp"
#include "collation/compare.hpp"
#include "collation/sjis_bridge.hpp"
#include "collation/sort_key.hpp"
#include "collation/unicode_compare.hpp"
#include "collation/words.hpp"
#include "core/base/charset.hpp"
#include "core/base/checks.hpp"
#include "core/base/cpu.hpp"
#include "icu/icu_compare.hpp"
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
    if (compared.answered()) *result = static_cast<uint16_t>(compared.sign);
    return compared.status;
}

// Keeps unused arguments in their places; clang does so by itself.
#ifdef __clang__
#define NLS_ARGUMENTS_STAY [[gnu::noinline]]
#else
#define NLS_ARGUMENTS_STAY [[gnu::noipa]]
#endif

NLS_ARGUMENTS_STAY nlsStatus compareInFull(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                                           const unsigned char* s2, int32_t len1, int32_t len2, uint16_t compareMode,
                                           uint16_t* result) {
    if (const nlsStatus bad = checkLocaleAlone(locale)) return bad;
    if (s1 == nullptr || s2 == nullptr || result == nullptr) return NLS_BAD_ARG;
    return handOut(nls::compareLimited(*locale, tls, s1, s2, len1, len2, compareMode), result);
}

nls::SortKey keyOf(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* src, nls::ByteSpan key,
                   uint16_t options, uint16_t trim) {
    return nls::makeSortKey(nls::collationOf(locale), tls, src, key, nls::KeyOptions::of(options, trim));
}

// Texts with characters of two bytes. REQUIRES: what nlsCompareN has found out.
NLS_ARGUMENTS_STAY nlsStatus comparePairs(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                                          const unsigned char* s2, int32_t len1, int32_t len2, uint16_t compareMode,
                                          uint16_t* result) {
    const nls::WeightMap weights = nls::WeightMap::of(*locale->coll, compareMode);
    const nls::FirstPair pair = nls::firstPair(weights, s1, s2);
    if (pair.decides()) {
        *result = static_cast<uint16_t>(pair.sign());
        return NLS_OK;
    }
    if (nls::knownCpuLevel() < nls::CpuLevel::avx512)
        return compareInFull(locale, tls, s1, s2, len1, len2, compareMode, result);
    const nls::Charset charset{*locale->attrib};
    *result = static_cast<uint16_t>(nls::comparePairsAvx512(weights, charset, s1, s2, len1, len2));
    return NLS_OK;
}

// The same on their way through Shift-JIS.
NLS_ARGUMENTS_STAY nlsStatus compareBridged(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                                            const unsigned char* s2, int32_t len1, int32_t len2, uint16_t compareMode,
                                            uint16_t* result) {
    const nls::SjisMemo memo{*locale->attrib};
    const bool wide = nls::knownCpuLevel() >= nls::CpuLevel::avx512;
    if (!wide || !memo.isComplete() || !nls::SjisBridge{memo.conversion->table}.isFromEuc())
        return compareInFull(locale, tls, s1, s2, len1, len2, compareMode, result);
    const nls::WeightMap weights = nls::WeightMap::of(*locale->coll, compareMode);
    const nls::Charset charset{*locale->attrib};
    int decided = 0;
    if (((len1 - 2) | (len2 - 2)) >= 0 && s1[0] != 0 && s2[0] != 0 && (s1[0] != s2[0] || s1[1] != s2[1]))
        decided = nls::decidedByEucCharacters(weights, charset, s1, s2);
    if (decided == 0) decided = nls::compareEucAvx512(weights, charset, s1, s2, len1, len2);
    *result = static_cast<uint16_t>(decided);
    return NLS_OK;
}

// Characters by their own values. REQUIRES: what nlsCompareN has found out.
NLS_ARGUMENTS_STAY nlsStatus compareByValue(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                                            const unsigned char* s2, int32_t len1, int32_t len2, uint16_t compareMode,
                                            uint16_t* result) {
    if (nls::knownCpuLevel() < nls::CpuLevel::avx512)
        return compareInFull(locale, tls, s1, s2, len1, len2, compareMode, result);
    const nls::Text a{s1, s1 + len1}, b{s2, s2 + len2};
    *result = static_cast<uint16_t>(compareMode == 0 ? nls::compareFoldedUtf8Avx512(*locale, a, b)
                                                     : nls::compareBytesAvx512(a, b));
    return NLS_OK;
}

// Through ICU. REQUIRES: what nlsCompareN has found out.
NLS_ARGUMENTS_STAY nlsStatus compareThroughIcu(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* s1,
                                               const unsigned char* s2, int32_t len1, int32_t len2,
                                               uint16_t compareMode, uint16_t* result) {
    const unsigned char* const map = compareMode == 0 ? locale->coll->foldMap : locale->coll->exactMap;
    const nls::IcuCompared done = nls::compareByIcu(s1, s2, tls, map, compareMode, len1, len2);
    return handOut({done.status, done.sign}, result);
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
    // Most pairs are decided by their first bytes: they are looked at here, and all else is left to functions that take
    // over the arguments of this one in registers, as they are.
    const bool given = s1 != nullptr && s2 != nullptr && result != nullptr;
    const bool plain = given && compareMode <= 1 && ((len1 - 1) | (len2 - 1)) >= 0;
    if (!plain || checkLocaleAlone(locale) != NLS_OK) [[unlikely]]
        return compareInFull(locale, tls, s1, s2, len1, len2, compareMode, result);
    if (nls::kindOf(*locale->coll) == nls::CollKind::unicode)
        return compareByValue(locale, tls, s1, s2, len1, len2, compareMode, result);
    if (nls::kindOf(*locale->coll) == nls::CollKind::icu)
        return compareThroughIcu(locale, tls, s1, s2, len1, len2, compareMode, result);
    if (nls::kindOf(*locale->coll) != nls::CollKind::byteTables)
        return compareInFull(locale, tls, s1, s2, len1, len2, compareMode, result);
    if (const nls::Charset charset{*locale->attrib}; !charset.isSingleByte()) {
        if (charset.comparesViaSjis()) return compareBridged(locale, tls, s1, s2, len1, len2, compareMode, result);
        return comparePairs(locale, tls, s1, s2, len1, len2, compareMode, result);
    }
    const nls::WeightMap weights = nls::WeightMap::of(*locale->coll, compareMode);
    const nls::FirstPair pair = nls::firstPair(weights, s1, s2);
    if (pair.decides()) {
        *result = static_cast<uint16_t>(pair.sign());
        return NLS_OK;
    }
    return nls::compareLimited(weights, result, s1, s2, len1, len2);
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

// ---- Sort keys ----

nlsStatus nlsSortKey(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* src, int16_t keySize,
                     uint16_t options, uint16_t trim, unsigned char* key, uint16_t* keyLen) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (const nlsStatus bad = checkTables(*locale)) return bad;
    if (src == nullptr || key == nullptr || keyLen == nullptr) return NLS_BAD_ARG;
    const nls::SortKey made = keyOf(*locale, tls, src, nls::firstBytes(key, keySize), options, trim);
    if (made.status != NLS_OK) return made.status;
    *keyLen = static_cast<uint16_t>(made.length);
    return *keyLen < keySize ? NLS_OK : NLS_BUF_SMALL;
}

nlsStatus getSortKey(const nlsLocale* locale, nlsTlsBlock* tls, unsigned char* key, const unsigned char* src,
                     int16_t keySize, uint16_t options, uint16_t trim) {
    if (const nlsStatus bad = checkLocaleAlone(locale)) return bad;
    if (src == nullptr || key == nullptr) return NLS_BAD_ARG;
    return keyOf(*locale, tls, src, nls::firstBytes(key, keySize), options, trim).status;
}

// ---- Words ----

namespace {

enum WbKind : uint8_t { kPlainWords = 7, kFirstKindWithKeys = 8, kWordsOfPairs = 9, kOpenWords = 128 };

bool isUtf8(const nlsLocale& locale) {
    return locale.attrib != nullptr && nls::Charset{*locale.attrib}.isUtf8();
}

uint32_t breakOptionsOf(const nls::WordBreaks& breaks, int32_t flags) {
    constexpr int32_t kFamilies = NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UTF8 | NLS_CHARSET_UNITS16 | NLS_CHARSET_UNITS32;
    uint32_t options = (flags & NLS_CHARSET_UTF8) != 0 ? nls::kBreakFours : 0U;
    if (breaks.kind() == kWordsOfPairs && (flags & kFamilies) == NLS_CHARSET_MULTI_BYTE) options |= nls::kBreakPairs;
    return options;
}

// The word as it stands, or its key. REQUIRES: the word with its NUL fits.
nlsStatus deliverWord(const nlsLocale& locale, nlsTlsBlock* tls, bool asKey, uint16_t options,
                      const unsigned char* word, nls::ByteSpan buffer, uint32_t* wordLen) {
    if (!asKey) {
        std::memcpy(buffer.data(), word, *wordLen + std::size_t{1});
        return NLS_OK;
    }
    if (const nlsStatus bad = checkLocaleAlone(&locale)) return bad;
    constexpr std::size_t kLargestKey = INT16_MAX;
    const nls::ByteSpan room = buffer.first(std::min(buffer.size(), kLargestKey));
    const nls::SortKey made = keyOf(locale, tls, word, room, options, 0);
    if (made.status == NLS_OK) *wordLen = static_cast<uint32_t>(made.length);
    return made.status;
}

}  // namespace

nlsStatus nlsIsSortNeeded(const nlsLocale* locale, nlsTlsBlock*, uint32_t* needed) {
    if (locale == nullptr) return NLS_NO_WB_TABLE;
    const nls::WordBreaks breaks{locale->wordBreak};
    if (breaks.isMissing()) return NLS_NO_WB_TABLE;
    if (needed == nullptr) return NLS_BAD_ARG;
    const bool keys = isUtf8(*locale) || breaks.kind() == kWordsOfPairs || breaks.kind() == kOpenWords;
    if (!keys && breaks.kind() != kPlainWords) return NLS_BAD_VERSION;
    *needed = keys ? 0 : 1;
    return NLS_OK;
}

nlsStatus nlsGetNextWord(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char** cursor, uint16_t options,
                         unsigned char* buffer, int32_t bufferSize, uint32_t* wordLen) {
    if (locale == nullptr) return NLS_NO_WB_TABLE;
    const nls::WordBreaks breaks{locale->wordBreak};
    if (breaks.isMissing()) return NLS_NO_WB_TABLE;
    if (locale->attrib == nullptr) return NLS_NO_ATTRIB;
    if (cursor == nullptr || *cursor == nullptr || buffer == nullptr || wordLen == nullptr) return NLS_BAD_ARG;
    unsigned char work[nls::kWordRoom];
    const nls::Word word = nls::cutWord(*cursor, breaks, breakOptionsOf(breaks, locale->attrib->flags), work);
    *wordLen = word.length;
    if (word.length == 0) return NLS_END_OF_STRING;
    if (bufferSize <= 0 || word.length >= static_cast<uint32_t>(bufferSize)) return NLS_BUF_SMALL;
    *cursor = word.next;
    const bool asKey = breaks.kind() >= kFirstKindWithKeys || isUtf8(*locale);
    const nls::ByteSpan room = nls::firstBytes(buffer, bufferSize);
    if (const nlsStatus bad = deliverWord(*locale, tls, asKey, options, work, room, wordLen)) return bad;
    return word.truncated ? NLS_WORD_TRUNCATED : NLS_OK;
}

const unsigned char* nextword(const unsigned char* text, uint32_t* wordLen, unsigned char* dest,
                              const nlsWbTable* table, uint32_t* truncated, uint32_t breakOptions) {
    unsigned char work[nls::kWordRoom];
    const nls::Word word = nls::cutWord(text, nls::WordBreaks{table}, breakOptions, work);
    std::memcpy(dest, work, word.length + std::size_t{1});
    *wordLen = word.length;
    if (word.truncated) *truncated = 1;
    return word.next != nullptr ? word.next : reinterpret_cast<const unsigned char*>(UINTPTR_MAX);
}
