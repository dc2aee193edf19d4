// A short text of single bytes, searched at once: what a search in a column comes to. The pattern is taken as it is,
// since there is no time to prepare it.
//
// These have the arguments of nlsSearchForw in their places, so that jumps hand them on and nothing is saved on the
// way; what isn't short after all goes on to searchAndTell. Tested by tests/strings/search_test.cpp.
#pragma once

#include "collation/compare.hpp"
#include "collation/weights.hpp"
#include "strings/match.hpp"

namespace nls {

// Do entries decide, where characters have one byte? In line with the call: a few questions.
inline bool maySearchShort(const nlsLocale& locale, uint16_t mode) {
    return locale.attrib != nullptr && locale.coll != nullptr && isByteMode(mode) && comparesSingleBytes(locale) &&
           WeightMap::of(*locale.coll, mode).entry(' ') != 0;
}

// REQUIRES: maySearchShort, and no argument but `tls` is null.
nlsStatus searchShortPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                           const unsigned char** found);
// REQUIRES: the processor has AVX-512, too.
nlsStatus searchShortAvx512(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                            const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                            const unsigned char** found);

}  // namespace nls
