#include "collation/byte_walk.hpp"

#include "collation/sjis_bridge.hpp"

namespace nls {

namespace {

// One text as its weights, one after the other. An expansion gives two, and a character of two bytes the weight of the
// first and then the second as it is; a third byte stands for itself. What is held back for the second weight doesn't
// hold off the end of the text.
class Weights {
public:
    Weights(const ByteRoute& route, Text text) : route_(route), text_(text) {}

    bool ended() const { return text_.atEnd(); }
    Text rest() const { return text_; }

    unsigned char next() {
        if (held_) {
            held_ = false;
            ++text_.place;
            return second_;
        }
        const unsigned char byte = *text_.place;
        const unsigned char weight = route_.weights.entry(byte);
        if (weight == 0) return hold(route_.weights.ofLetterS(), route_.weights.ofLetterS());
        if (route_.charset.trailCount(byte) != 0) return pair(byte);
        ++text_.place;
        return weight;
    }

private:
    // The place stays where it is, at the last byte of the character, until the second weight has been taken.
    unsigned char hold(unsigned char first, unsigned char second) {
        held_ = true;
        second_ = second;
        return first;
    }
    unsigned char pair(unsigned char lead) {
        ++text_.place;
        const unsigned char trail = ended() ? 0 : *text_.place;  // a limit behind the first byte is as good as a NUL
        if (route_.bridge.isNull()) return hold(route_.weights.entry(lead), trail);
        const BridgedPair bridged = throughBridge(route_.bridge, lead, trail);
        const unsigned char weight = route_.weights.entry(bridged.first);
        if (!bridged.single) return hold(weight, bridged.second);
        if (!ended()) ++text_.place;
        return weight;
    }

    const ByteRoute& route_;
    Text text_;
    bool held_ = false;
    unsigned char second_ = 0;
};

}  // namespace

int compareByWeights(const ByteRoute& route, Text a, Text b) {
    Weights left{route, a}, right{route, b};
    for (;;) {
        if (left.ended()) return onlyBlanksLeft(right.rest()) ? 0 : -1;
        if (right.ended()) return onlyBlanksLeft(left.rest()) ? 0 : 1;
        const unsigned char first = left.next(), second = right.next();
        if (first != second) return first < second ? -1 : 1;
    }
}

}  // namespace nls
