// A short text, searched at once: what a search in a column comes to. The pattern is taken as it is, since there is no
// time to prepare it.
//
// These have the arguments of nlsSearchForw in their places, so that jumps hand them on and nothing is saved on the
// way; what isn't short after all goes on to searchAndTell. Tested by tests/strings/search_test.cpp.
#pragma once

#include "collation/compare.hpp"
#include "collation/weights.hpp"
#include "core/base/charset.hpp"
#include "strings/match.hpp"

namespace nls {

// By what a short text may be searched: in charsets of single bytes by their entries, elsewhere as
// strings/short_chars.cpp and strings/short_chars_avx512.cpp do it.
enum class ShortWay { none, entries, bytes, lowerForms, weights };

// In line with the call: a few questions.
inline ShortWay shortWayOf(const nlsLocale& locale, uint16_t mode) {
    if (locale.attrib == nullptr || locale.coll == nullptr) return ShortWay::none;
    const Charset charset{*locale.attrib};
    const bool weighs = isByteMode(mode) && WeightMap::of(*locale.coll, mode).entry(' ') != 0;
    if (comparesSingleBytes(locale)) return weighs ? ShortWay::entries : ShortWay::none;
    if (!charset.isMultiByte()) return ShortWay::none;
    if (kindOf(*locale.coll) == CollKind::unicode) {
        if (mode != 0) return ShortWay::bytes;
        return locale.caseTable != nullptr && charset.isUtf8() ? ShortWay::lowerForms : ShortWay::none;
    }
    const bool asTheyAre = comparesByTables(*locale.coll) && !charset.comparesViaSjis();
    return weighs && asTheyAre ? ShortWay::weights : ShortWay::none;
}

// By entries. REQUIRES: no argument but `tls` is null.
nlsStatus searchShortPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                           const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                           const unsigned char** found);
// REQUIRES: the processor has AVX-512, too.
nlsStatus searchShortAvx512(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                            const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                            const unsigned char** found);

// In the other ways. REQUIRES: the same.
nlsStatus searchShortByBytes(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                             const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                             const unsigned char** found);
nlsStatus searchShortByForms(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                             const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                             const unsigned char** found);
nlsStatus searchShortByWeights(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                               const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                               const unsigned char** found);

// The same on any processor.
nlsStatus searchShortByBytesPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                  const unsigned char** found);
nlsStatus searchShortByFormsPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                  const unsigned char** found);
nlsStatus searchShortByWeightsPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                    const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                    const unsigned char** found);

}  // namespace nls
