#include "collation/single_byte_walk.hpp"

#include "collation/equal_run.hpp"
#include "core/base/cpu.hpp"

namespace nls {

namespace {

// One text as its weights, one after the other: an expansion gives two.
class Weights {
public:
    Weights(WeightMap map, Text text) : map_(map), text_(text) {}

    bool ended() const { return text_.atEnd(); }
    bool betweenCharacters() const { return !secondS_; }
    Text rest() const { return text_; }

    unsigned char next() {
        const unsigned char weight = map_.entry(*text_.place);
        secondS_ = weight == 0 && !secondS_;
        if (!secondS_) ++text_.place;  // an expansion is left behind with its second weight
        return weight != 0 ? weight : map_.ofLetterS();
    }

private:
    WeightMap map_;
    Text text_;
    bool secondS_ = false;
};

// The pairs from an expansion on, as long as one of the texts is inside one. Not 0: the answer; else both have moved
// on, and may have ended. REQUIRES: neither has ended.
int throughExpansion(WeightMap weights, Text& a, Text& b) {
    Weights left{weights, a}, right{weights, b};
    do {
        const unsigned char first = left.next(), second = right.next();
        if (first != second) return orderOf(first, second);
    } while (!(left.betweenCharacters() && right.betweenCharacters()) && !left.ended() && !right.ended());
    a = left.rest();
    b = right.rest();
    return 0;
}

}  // namespace

// Equal bytes in blocks, and behind each difference a few pairs by their weights.
int compareSingleBytesPlain(WeightMap weights, Text a, Text b) {
    constexpr std::size_t kSingly = 12;
    std::size_t singly = 0;
    while (!a.atEnd() && !b.atEnd()) {
        if (singly == 0 && *a.place == *b.place) {
            const std::size_t equal = equalRun(a.place, b.place, leftInBoth(a, b));
            a.place += equal;
            b.place += equal;
            singly = kSingly;
            continue;
        }
        if (singly != 0) --singly;
        const unsigned char first = weights.entry(*a.place), second = weights.entry(*b.place);
        if (first == 0 || second == 0) {
            if (const int decided = throughExpansion(weights, a, b)) return decided;
            continue;
        }
        if (first != second) return orderOf(first, second);
        ++a.place;
        ++b.place;
    }
    return decideAtEnd(a, b);
}

nlsStatus compareLimitedPlain(WeightMap weights, uint16_t* result, const unsigned char* s1, const unsigned char* s2,
                              int32_t len1, int32_t len2) {
    *result = static_cast<uint16_t>(compareSingleBytes(weights, {s1, s1 + len1}, {s2, s2 + len2}));
    return NLS_OK;
}

int compareSingleBytes(WeightMap weights, Text a, Text b) {
    if (cpuLevel() >= CpuLevel::avx512) return compareSingleBytesAvx512(weights, a, b);
    return compareSingleBytesPlain(weights, a, b);
}

}  // namespace nls
