#include "strings/like.hpp"

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "convmap/case_pages.hpp"
#include "strings/like_bytes.hpp"
#include "strings/like_characters.hpp"
#include "strings/like_opening.hpp"
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

[[gnu::noinline]] int32_t walkAny(const nlsLocale& locale, nlsTlsBlock* tls, uint16_t mode, const LikeSigns& signs,
                                  const unsigned char* pattern, const unsigned char* text) {
    const AnyCharacters characters{Charset{*locale.attrib}, CharacterEquality{locale, tls, mode}};
    return LikeWalk{characters, signs}(pattern, text);
}

template <typename Rule>
[[gnu::noinline]] int32_t walk(const Rule rule, const nlsLocale& locale, uint16_t mode, const LikeSigns& signs,
                               const unsigned char* pattern, const unsigned char* text) {
    const LikeCharacters<Rule> characters{rule, CharacterEquality{locale, nullptr, mode}};
    return LikeWalk{characters, signs}(pattern, text);
}

template <typename Rule>
[[gnu::noinline]] int32_t match(const Rule rule, const nlsLocale& locale, uint16_t mode, const LikeSigns& signs,
                                const unsigned char* pattern, const unsigned char* text) {
    const LikeAnswer answer = openLikeAndGoOn(rule, signs, pattern, text);
    if (answer != LikeAnswer::unknown) return verdictOf(answer);
    return walk(rule, locale, mode, signs, pattern, text);
}

// REQUIRES: characters are compared by their own values.
int32_t matchByValues(const nlsLocale& locale, uint16_t mode, const unsigned char* pattern, const unsigned char* text,
                      const LikeSigns& signs) {
    const Charset charset{*locale.attrib};
    const nlsUnicodeCaseStruct* const table = foldingTable(locale, mode);
    if (mode == 0 && table == nullptr) return walkAny(locale, nullptr, mode, signs, pattern, text);
    if (differAtOnce(table, charset, signs, pattern, *text)) return kLikeNoMatch;
    if (table != nullptr) return match(LowerFormRule{charset, table}, locale, mode, signs, pattern, text);
    return match(ValueRule{charset}, locale, mode, signs, pattern, text);
}

}  // namespace

int32_t matchLikeByTables(const nlsLocale& locale, WeightMap weights, const unsigned char* pattern,
                          const unsigned char* text, const LikeSigns& signs) {
    const Charset charset{*locale.attrib};
    const auto mode = static_cast<uint16_t>(weights.entries() != locale.coll->foldMap);
    if (charset.hasOnlySingleBytes() && weights.entry(' ') != 0) return matchLikeOfBytes(weights, pattern, text, signs);
    if (comparesSingleBytes(locale)) return walkAny(locale, nullptr, mode, signs, pattern, text);  // whatever it has
    return match(TableRule{charset, weights}, locale, mode, signs, pattern, text);
}

int32_t matchLikeUnderAny(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern,
                          const unsigned char* text, uint16_t mode, const LikeSigns& signs) {
    if (locale.coll != nullptr && kindOf(*locale.coll) == CollKind::unicode)
        return matchByValues(locale, mode, pattern, text, signs);
    return walkAny(locale, tls, mode, signs, pattern, text);
}

}  // namespace nls
