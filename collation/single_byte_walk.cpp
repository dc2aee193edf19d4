#include "collation/single_byte_walk.hpp"

namespace nls {

namespace {

// One text as its weights, one after the other: an expansion gives two.
class Weights {
public:
    Weights(WeightMap map, Text text) : map_(map), text_(text) {}

    bool ended() const { return text_.atEnd(); }
    Text rest() const { return text_; }

    unsigned char next() {
        if (secondS_) {
            secondS_ = false;
        } else if (const unsigned char weight = map_.entry(*text_.place); weight != 0) {
            ++text_.place;
            return weight;
        } else {
            secondS_ = true;
            return map_.ofLetterS();
        }
        ++text_.place;
        return map_.ofLetterS();
    }

private:
    WeightMap map_;
    Text text_;
    bool secondS_ = false;
};

}  // namespace

int compareSingleBytes(WeightMap weights, Text a, Text b) {
    Weights left{weights, a}, right{weights, b};
    for (;;) {
        if (left.ended()) return onlyBlanksLeft(right.rest()) ? 0 : -1;
        if (right.ended()) return onlyBlanksLeft(left.rest()) ? 0 : 1;
        const unsigned char first = left.next(), second = right.next();
        if (first != second) return first < second ? -1 : 1;
    }
}

}  // namespace nls
