#include "collation/byte_walk.hpp"

#include "collation/equal_run.hpp"
#include "collation/sjis_bridge.hpp"

namespace nls {

namespace {

// Expansions are looked for before longer characters.
bool isLead(const ByteRoute& route, unsigned char byte) {
    return route.charset.trailCount(byte) != 0 && route.weights.entry(byte) != 0;
}

// One text as its weights, one after the other. An expansion gives two, and a character of two bytes the weight of the
// first and then the second as it is; a third byte stands for itself. What is held back for the second weight doesn't
// hold off the end of the text.
class Weights {
public:
    Weights(const ByteRoute& route, Text text) : route_(route), text_(text) {}

    bool ended() const { return text_.atEnd(); }
    bool betweenCharacters() const { return !held_; }
    Text rest() const { return text_; }
    void skip(std::size_t bytes) { text_.place += bytes; }
    void stepBack() { --text_.place; }

    unsigned char next() {
        if (held_) {
            held_ = false;
            ++text_.place;
            return second_;
        }
        const unsigned char byte = *text_.place;
        const unsigned char weight = route_.weights.entry(byte);
        if (weight == 0) return hold(route_.weights.ofLetterS(), route_.weights.ofLetterS());
        ++text_.place;
        return route_.charset.trailCount(byte) == 0 ? weight : pair(byte, weight);
    }

private:
    // The place stays where it is, at the last byte of the character, until the second weight has been taken.
    unsigned char hold(unsigned char first, unsigned char second) {
        held_ = true;
        second_ = second;
        return first;
    }
    // Behind the first byte. A limit there is as good as a NUL.
    unsigned char pair(unsigned char lead, unsigned char weight) {
        const unsigned char trail = ended() ? 0 : *text_.place;
        if (route_.bridge.isNull()) return hold(weight, trail);
        const BridgedPair bridged = throughBridge(route_.bridge, lead, trail);
        const unsigned char bridgedWeight = route_.weights.entry(bridged.first);
        if (!bridged.single) return hold(bridgedWeight, bridged.second);
        if (!ended()) ++text_.place;
        return bridgedWeight;
    }

    const ByteRoute& route_;
    Text text_;
    bool held_ = false;
    unsigned char second_ = 0;
};

// Is the byte behind `run` bytes of whole characters the second one of its character? In the bytes in front of it that
// could all be first bytes these pair off from the left, and whatever stands before them ends a character.
bool isSecondByte(const ByteRoute& route, const unsigned char* start, std::size_t run) {
    std::size_t leads = 0;
    while (leads < run && isLead(route, start[run - 1 - leads])) ++leads;
    return leads % 2 != 0;
}

// Equal bytes at the same place of characters are equal weights, through the bridge and in expansions too. REQUIRES: both
// stand between characters.
void skipEqualBytes(const ByteRoute& route, Weights& left, Weights& right) {
    const Text a = left.rest(), b = right.rest();
    std::size_t run = equalRun(a.place, b.place, leftInBoth(a, b));
    if (run == 0) return;
    left.skip(run);
    right.skip(run);
    if (left.ended() && right.ended()) return;
    // Back to the first byte of a character whose second bytes differ, or which one of the texts has lost to its end.
    if (!isSecondByte(route, a.place, run)) return;
    left.stepBack();
    right.stepBack();
}

}  // namespace

int compareByWeights(const ByteRoute& route, Text a, Text b) {
    Weights left{route, a}, right{route, b};
    for (;;) {
        if (left.betweenCharacters() && right.betweenCharacters()) skipEqualBytes(route, left, right);
        if (left.ended()) return onlyBlanksLeft(right.rest()) ? 0 : -1;
        if (right.ended()) return onlyBlanksLeft(left.rest()) ? 0 : 1;
        const unsigned char first = left.next(), second = right.next();
        if (first != second) return first < second ? -1 : 1;
    }
}

}  // namespace nls
