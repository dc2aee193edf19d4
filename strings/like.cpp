#include "strings/like.hpp"

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "strings/like_bytes.hpp"
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

}  // namespace

int32_t matchLikeUnderAny(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* pattern,
                          const unsigned char* text, uint16_t mode, const LikeSigns& signs) {
    const AnyCharacters characters{Charset{*locale.attrib}, CharacterEquality{locale, tls, mode}};
    return LikeWalk{characters, signs}(pattern, text);
}

int32_t matchLikeByTables(const nlsLocale& locale, WeightMap weights, const unsigned char* pattern,
                          const unsigned char* text, const LikeSigns& signs) {
    const Charset charset{*locale.attrib};
    if (charset.hasOnlySingleBytes() && weights.entry(' ') != 0) return matchLikeOfBytes(weights, pattern, text, signs);
    const auto mode = static_cast<uint16_t>(weights.entries() != locale.coll->foldMap);
    return matchLikeUnderAny(locale, nullptr, pattern, text, mode, signs);
}

}  // namespace nls
