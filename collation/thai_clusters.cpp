#include "collation/thai_clusters.hpp"

namespace nls {
namespace {

// The parts that a cluster has already, one bit for each class.
class Parts {
public:
    // False if the cluster must end before a byte of this class.
    bool take(ThaiClass kind) {
        const unsigned own = bit(kind);
        const unsigned closing = kind == ThaiClass::leadingVowel ? own | bit(ThaiClass::base) : own;
        if ((taken_ & closing) != 0) return false;
        taken_ |= own;
        return true;
    }
    bool none() const { return taken_ == 0; }

private:
    static constexpr unsigned bit(ThaiClass kind) { return 1U << static_cast<unsigned>(kind); }

    unsigned taken_ = 0;
};

uint32_t withPart(uint32_t rank, ThaiClass kind, uint32_t weight) {
    switch (kind) {
        case ThaiClass::base:
            return rank | weight << 24;
        case ThaiClass::leadingVowel:
            return rank | weight << 16;
        case ThaiClass::vowel:
            return rank | weight << 8;
        default:
            return (rank & ~uint32_t{kNoTone}) | weight;
    }
}

}  // namespace

uint32_t clusterRank(const unsigned char* map, Text& text) {
    uint32_t rank = kNoTone;
    for (Parts parts; !text.atEnd(); ++text.place) {
        const unsigned char byte = *text.place;
        const ThaiClass kind = thaiClass(byte);
        if (kind == ThaiClass::single) {
            if (!parts.none()) break;
            ++text.place;
            return uint32_t{map[byte]} << 24;
        }
        if (!parts.take(kind)) break;
        rank = withPart(rank, kind, map[byte]);
    }
    return rank;
}

}  // namespace nls
