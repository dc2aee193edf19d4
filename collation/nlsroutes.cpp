// Door: the routes of collations of Thai and of characters by their own values.
#include "collation/text.hpp"
#include "collation/thai_clusters.hpp"
#include "collation/thai_compare.hpp"
#include "collation/thai_key.hpp"
#include "collation/unicode_compare.hpp"
#include "collation/unicode_key.hpp"
#include "core/base/views.hpp"
#include "nls/collation_routes.h"

namespace {

constexpr int32_t kToNul = -1;

const unsigned char* mapFor(uint16_t mode, const unsigned char* foldMap, const unsigned char* exactMap) {
    return mode == 0 ? foldMap : exactMap;
}

const nlsLocale& orNone(const nlsLocale* locale) {
    static constexpr nlsLocale kNone{};
    return locale != nullptr ? *locale : kNone;
}

}  // namespace

// ---- Thai ----

uint32_t GetLetterClusterRank(const unsigned char* map, const unsigned char** cursor) {
    nls::Text text = nls::Text::of(*cursor, kToNul);
    const uint32_t rank = nls::clusterRank(map, text);
    *cursor = text.place;
    return rank;
}

int32_t thaiCompare(const unsigned char* s1, const unsigned char* s2, const unsigned char* foldMap,
                    const unsigned char* exactMap, uint16_t compareMode) {
    return nls::compareThai(mapFor(compareMode, foldMap, exactMap), nls::Text::of(s1, kToNul),
                            nls::Text::of(s2, kToNul));
}

void thaiSortcop(unsigned char* key, const unsigned char* src, int32_t keySize, const unsigned char* foldMap,
                 const unsigned char* exactMap, uint16_t compareMode) {
    nls::thaiKey(mapFor(compareMode, foldMap, exactMap), src, nls::untilNul(src).size(), nls::firstBytes(key, keySize));
}

void buildComposableUnit(const unsigned char* map, unsigned char** keyCursor, const unsigned char** srcCursor,
                         unsigned char* keyEnd, const unsigned char* srcStart) {
    const nls::ThaiClass kind = nls::thaiClass(**srcCursor);
    if (kind != nls::ThaiClass::vowel && kind != nls::ThaiClass::tone) return;
    if (*keyCursor >= keyEnd) return;
    nls::ThaiKeyWalk walk{map, srcStart, *srcCursor, *keyCursor, keyEnd};
    nls::addToUnit(walk);
    *srcCursor = walk.place;
    *keyCursor = walk.key;
}

// ---- Characters by their own values ----

nlsStatus nlsUnicodeCompare(const nlsLocale* locale, const unsigned char* s1, const unsigned char* s2,
                            const unsigned char*, uint16_t compareMode, int32_t len1, int32_t len2, uint16_t* result) {
    const nls::Text a = nls::Text::of(s1, len1), b = nls::Text::of(s2, len2);
    *result = static_cast<uint16_t>(nls::compareUnicode(orNone(locale), a, b, compareMode));
    return NLS_OK;
}

int32_t loccmp(const unsigned char* s1, const unsigned char* s2, int32_t len1, int32_t len2) {
    return nls::compareBytes(nls::Text::of(s1, len1), nls::Text::of(s2, len2));
}

nlsStatus nlsUnicodeSort(const nlsLocale* locale, unsigned char* key, const unsigned char* src, int16_t keySize,
                         const unsigned char*, uint16_t mode) {
    const nls::ByteSpan room = nls::firstBytes(key, int32_t{keySize});
    return nls::unicodeKey(orNone(locale), nls::untilNul(src), room, mode);
}
