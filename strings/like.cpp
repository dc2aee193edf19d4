#include "strings/like.hpp"

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/cpu.hpp"
#include "strings/like_bytes.hpp"
#include "strings/like_characters.hpp"
#include "strings/like_lanes.hpp"
#include "strings/like_walk.hpp"

namespace nls {
namespace {

// Of any charset, under any collation.
struct AnyCharacters {
    Charset charset;
    CharacterEquality equality;

    LCharRead read(const unsigned char* place) const { return readLChar(charset, place); }
    const unsigned char* next(const unsigned char* place) const { return characterEnd(charset, place); }
    Compared compare(const unsigned char* a, const unsigned char* b) const { return equality(a, b); }
};

// The table that folds UTF-8 where characters are compared by their own values; null where they aren't folded.
const nlsUnicodeCaseStruct* foldingTable(const nlsLocale& locale, uint16_t mode) {
    const bool folds = mode == 0 && locale.caseTable != nullptr && Charset{*locale.attrib}.isUtf8();
    return folds ? &unicodeCaseTable(*locale.caseTable) : nullptr;
}

int32_t walkAny(const Charset& charset, const CharacterEquality& equality, const LikeSigns& signs,
                const unsigned char* pattern, const unsigned char* text) {
    const AnyCharacters characters{charset, equality};
    return LikeWalk{characters, signs}(pattern, text);
}

template <typename Rule>
int32_t walk(const Rule& rule, const CharacterEquality& equality, const LikeSigns& signs, const unsigned char* pattern,
             const unsigned char* text) {
    const LikeCharacters<Rule> characters{rule, equality};
    return LikeWalk{characters, signs}(pattern, text);
}

// REQUIRES: characters are compared by their own values.
int32_t matchByValues(const nlsLocale& locale, uint16_t mode, const unsigned char* pattern, const unsigned char* text,
                      const LikeSigns& signs) {
    const Charset charset{*locale.attrib};
    const CharacterEquality equality{locale, nullptr, mode};
    const nlsUnicodeCaseStruct* const table = foldingTable(locale, mode);
    passSingles(charset, signs, pattern, text);
    // Folded without a table, different characters of five bytes and more are equal.
    const bool byBytes = mode != 0;
    if ((byBytes || table != nullptr) && differAtOnce(table, charset, signs, pattern, text)) return kLikeNoMatch;
    if (cpuLevel() >= CpuLevel::avx512) {
        const LikeAnswer answer = matchUtf8Avx512(*locale.attrib, table, signs, pattern, text);
        if (answer != LikeAnswer::unknown) return verdictOf(answer);
    }
    if (table != nullptr) return walk(LowerFormRule{charset, table}, equality, signs, pattern, text);
    if (byBytes) return walk(ValueRule{charset}, equality, signs, pattern, text);
    return walkAny(charset, equality, signs, pattern, text);
}

}  // namespace

int32_t matchLikeUnderAny(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern,
                          const unsigned char* text, uint16_t mode, const LikeSigns& signs) {
    if (locale.coll != nullptr && kindOf(*locale.coll) == CollKind::unicode)
        return matchByValues(locale, mode, pattern, text, signs);
    return walkAny(Charset{*locale.attrib}, CharacterEquality{locale, tls, mode}, signs, pattern, text);
}

int32_t matchLikeByTables(const nlsLocale& locale, WeightMap weights, const unsigned char* pattern,
                          const unsigned char* text, const LikeSigns& signs) {
    const Charset charset{*locale.attrib};
    if (charset.hasOnlySingleBytes() && weights.entry(' ') != 0) return matchLikeOfBytes(weights, pattern, text, signs);
    passSingles(charset, signs, pattern, text);
    if (differAtOnce(weights, charset, signs, *pattern, *text)) return kLikeNoMatch;
    const auto mode = static_cast<uint16_t>(weights.entries() != locale.coll->foldMap);
    const CharacterEquality equality{locale, nullptr, mode};
    if (comparesSingleBytes(locale)) return walkAny(charset, equality, signs, pattern, text);  // whatever it has
    if (cpuLevel() >= CpuLevel::avx512) {
        const LikeAnswer answer = matchPairsAvx512(charset, weights, signs, pattern, text);
        if (answer != LikeAnswer::unknown) return verdictOf(answer);
    }
    return walk(TableRule{charset, weights}, equality, signs, pattern, text);
}

}  // namespace nls
