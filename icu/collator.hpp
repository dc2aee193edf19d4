// ICU's collators: opened by a locale's name, one for each thread that brings a block, and of the strength that a call
// asks for. Tested by tests/icu/collator_test.cpp.
#pragma once

#include <cstring>

#include "icu/builds.hpp"
#include "icu/image.hpp"
#include "icu/loader.hpp"
#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

struct OpenedCollator {
    IcuStatus status;  // 0 beside a collator; ICU's error, NLS_ICU_LOAD, or kIcuUsedDefault for a locale unknown to ICU
    IcuCollator* collator;
};
// `locale` as ICU spells it; empty for the root. Loads the build when it is the first. Where ICU knows nothing of a
// locale, its root order is refused, but for English, which has no other.
OpenedCollator openCollator(nlsIcuVersion& row, const char* locale);

// Completes a collation whose record fillIcuInfo has made: opens the collator that callers without a block share, and
// writes versions, locale and strength words into both images. Words that stand there already stay. NLS_OK, or
// NLS_NO_MEM if ICU can't be loaded or refuses the locale.
nlsStatus makeIcuCollation(const char* name, nlsCollStruct& coll);

// The collator for this call: the thread's own, opened on first use, or the shared one without a block. The block holds
// one collator, whichever collation asks.
struct ChosenCollator {
    nlsStatus status;  // NLS_OK, or NLS_NO_COLL_TABLE beside the shared collator; the block then tells ICU's error
    IcuCollator* collator;
    const nlsIcuVersion* row;  // the build that opened it, and alone may be handed it
};
ChosenCollator openForThread(nlsIcuInfo& info, nlsTlsBlock& tls);
inline ChosenCollator collatorOf(nlsIcuInfo& info, nlsTlsBlock* tls) {
    if (tls == nullptr) return {NLS_OK, static_cast<IcuCollator*>(info.sharedCollator), info.version};
    if (tls->collator == 0) [[unlikely]]
        return openForThread(info, *tls);
    const nlsIcuInfo& opener = tls->icuColl != nullptr ? *tls->icuColl : info;
    return {NLS_OK, reinterpret_cast<IcuCollator*>(tls->collator), opener.version};
}

void closeCollator(nlsTlsBlock& tls);

// ICU's number of a strength, for a compare mode under a map; below 0 where there is none. Modes 0 and 1 go by the word
// in the map, 4 to 8 tell the strength themselves.
int32_t strengthOfWord(const char* word);
inline int32_t strengthOf(const unsigned char* map, unsigned mode) {
    constexpr unsigned kFirstExplicitMode = 4, kLastExplicitMode = 8;     // of the first strength, and the last
    constexpr char kTertiary[] = "TERTIARY", kSecondary[] = "SECONDARY";  // what nearly every map has
    if (mode >= kFirstExplicitMode && mode <= kLastExplicitMode) return static_cast<int32_t>(mode - kFirstExplicitMode);
    if (mode > 1) return -1;
    const char* const word = IcuImage::strengthWordOf(map);
    if (std::memcmp(word, kTertiary, sizeof kTertiary) == 0) return 2;
    if (std::memcmp(word, kSecondary, sizeof kSecondary) == 0) return 1;
    return strengthOfWord(word);
}
inline constexpr int32_t kPrimaryStrength = 0;

// What stands between the library and ICU: of a build that isn't loaded for collation they do nothing, and answer that
// nothing was done.
inline constexpr int32_t kNotCompared = -2;
inline void setStrength(const nlsIcuVersion& row, IcuCollator* collator, int32_t strength) {
    if (loadLevel(row) >= kCollates) row.entryPoints->ucol_setStrength(collator, strength);
}
inline int32_t compareUnits(const nlsIcuVersion& row, const IcuCollator* collator, const IcuUnit* a, int32_t lengthA,
                            const IcuUnit* b, int32_t lengthB) {
    if (loadLevel(row) < kCollates) return kNotCompared;
    const int32_t sign = row.entryPoints->ucol_strcoll(collator, a, lengthA, b, lengthB);
    return sign >= -1 && sign <= 1 ? sign : kNotCompared;
}
inline int32_t keyOfUnits(const nlsIcuVersion& row, const IcuCollator* collator, const IcuUnit* text, int32_t length,
                          unsigned char* key, int32_t keySize) {
    if (loadLevel(row) < kCollates) return 0;
    return row.entryPoints->ucol_getSortKey(collator, text, length, key, keySize);
}

}  // namespace nls
