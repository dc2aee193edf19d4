#include "strings/like_bytes.hpp"

#include <cstring>

#include "chars/lchar.hpp"
#include "core/base/cpu.hpp"
#include "strings/like_walk.hpp"

namespace nls {
namespace {

bool isBlankOrEnd(unsigned char byte) {
    return byte == 0 || byte == ' ';
}

const char* charsOf(const unsigned char* text) {
    return reinterpret_cast<const char*>(text);
}

struct Bytes {
    WeightMap weights;
    bool hasAvx512;

    LCharRead read(const unsigned char* place) const { return {*place, next(place)}; }
    const unsigned char* next(const unsigned char* place) const { return place + (*place != 0); }

    Compared compare(const unsigned char* a, const unsigned char* b) const {
        const bool bothStand = *a != 0 && *b != 0;
        const bool equal = bothStand ? weights.entry(*a) == weights.entry(*b) : isBlankOrEnd(*a) && isBlankOrEnd(*b);
        return {NLS_OK, equal ? 0 : 1};
    }

    LikeAnswer matchShort(const LikeSigns& signs, const unsigned char* pattern, const unsigned char* text) const {
        return hasAvx512 ? matchShortAvx512(weights, signs, pattern, text) : LikeAnswer::unknown;
    }
    // Where the last `count` characters of the text begin; null if it has fewer.
    const unsigned char* lastCharacters(std::size_t count, const unsigned char* text) const {
        const unsigned char* const end = hasAvx512 ? endOfTextAvx512(text) : text + std::strlen(charsOf(text));
        return static_cast<std::size_t>(end - text) < count ? nullptr : end - count;
    }
    auto passing(const LikeSigns& signs, const LikeSegment& segment) const {
        return [&](const unsigned char* text) { return passOver(signs, segment, text); };
    }
    const unsigned char* passOver(const LikeSigns& signs, const LikeSegment& segment, const unsigned char* text) const {
        if (hasAvx512) return passOverAvx512(weights, signs, segment, text);
        const unsigned char first = *segment.begin;
        if (first == signs.escape || first == signs.single) return text;
        while (*text != 0 && weights.entry(*text) != weights.entry(first)) ++text;
        return text;
    }
};

// Walks on as long as both bytes fit and neither is the last, as far as to the first sign but `single`. False: they
// don't fit.
bool fitsOpening(WeightMap weights, const LikeSigns& signs, const unsigned char*& pattern, const unsigned char*& text) {
    for (;; ++pattern, ++text) {
        const unsigned char wanted = *pattern, is = *text;
        if (wanted == 0 || is == 0 || wanted == signs.escape) return true;
        if (wanted != signs.single) {
            if (wanted == signs.multi) return true;
            if (weights.entry(wanted) != weights.entry(is)) return false;
        }
        if (pattern[1] == 0 || text[1] == 0) return true;
    }
}

}  // namespace

int32_t matchLikeOfBytes(WeightMap weights, const unsigned char* pattern, const unsigned char* text,
                         const LikeSigns& signs) {
    if (!fitsOpening(weights, signs, pattern, text)) return kLikeNoMatch;
    const Bytes bytes{weights, cpuLevel() >= CpuLevel::avx512};
    if (isMulti(signs, *pattern)) {
        if (pattern[1] == 0) return kLikeMatch;
        if (*text == 0) return kLikeNoMatch;
        const LikeAnswer answer = bytes.matchShort(signs, pattern + 1, text);
        if (answer != LikeAnswer::unknown) return verdictOf(answer);
    }
    return LikeWalk{bytes, signs}(pattern, text);
}

}  // namespace nls
