// A short text of single bytes, searched at once: what a search in a column comes to. The pattern is taken as it is,
// since there is no time to prepare it.
//
// These have the arguments of nlsSearchForw in their places, so that jumps hand them on and nothing is saved on the
// way; what isn't short after all goes on to searchAndTell. Tested by tests/strings/search_test.cpp.
#pragma once

#include "collation/compare.hpp"
#include "collation/weights.hpp"
#include "core/base/charset.hpp"
#include "strings/match.hpp"

namespace nls {

// Do entries decide, where characters have one byte? In line with the call: a few questions.
inline bool maySearchShort(const nlsLocale& locale, uint16_t mode) {
    return locale.attrib != nullptr && locale.coll != nullptr && isByteMode(mode) && comparesSingleBytes(locale) &&
           WeightMap::of(*locale.coll, mode).entry(' ') != 0;
}

// May characters be equal to those of their own length alone, each by its first byte's entry, or as its bytes?
inline bool maySearchShortChars(const nlsLocale& locale, uint16_t mode) {
    if (locale.attrib == nullptr || locale.coll == nullptr || !Charset{*locale.attrib}.isMultiByte()) return false;
    if (kindOf(*locale.coll) == CollKind::unicode) return mode != 0;
    return comparesByTables(*locale.coll) && isByteMode(mode) && !comparesSingleBytes(locale) &&
           !Charset{*locale.attrib}.comparesViaSjis() && WeightMap::of(*locale.coll, mode).entry(' ') != 0;
}

// REQUIRES: maySearchShort, and no argument but `tls` is null.
nlsStatus searchShortPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                           const unsigned char** found);
// REQUIRES: the processor has AVX-512, too.
nlsStatus searchShortAvx512(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                            const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                            const unsigned char** found);

// The same, for longer characters. REQUIRES: maySearchShortChars, no argument but `tls` is null, and the processor has
// AVX-512.
nlsStatus searchShortChars(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                           const unsigned char** found);

}  // namespace nls
