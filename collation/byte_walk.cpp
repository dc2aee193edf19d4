#include "collation/byte_walk.hpp"

#include "collation/byte_step.hpp"
#include "collation/equal_run.hpp"
#include "collation/single_byte_walk.hpp"
#include "core/base/cpu.hpp"

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
        if (route_.bridge.changesNothing()) return hold(weight, trail);
        const BridgedPair bridged = route_.bridge.cross(lead, trail);
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

// Equal bytes at the same place of characters are equal weights, through the bridge and in expansions too. Passes over
// them as far as whole characters go, or to the end of both texts. Not 0: the bytes behind them have decided, as they
// do without a bridge, second bytes as they are. REQUIRES: both stand between characters.
int skipEqualBytes(const ByteRoute& route, Text& a, Text& b) {
    const std::size_t most = leftInBoth(a, b);
    const bool wide = cpuLevel() >= CpuLevel::avx512;
    std::size_t run = wide ? equalRunAvx512(a.place, b.place, most) : equalRun(a.place, b.place, most);
    const Text endA{a.place + run, a.limit}, endB{b.place + run, b.limit};
    if (const bool endedA = endA.atEnd(), endedB = endB.atEnd(); !(endedA && endedB)) {
        const bool second = isSecondByte(route, a.place, run);
        if (!endedA && !endedB && route.bridge.changesNothing()) {
            if (second) return orderOf(*endA.place, *endB.place);
            if (const int decided = decidedByFirstPair(route.weights, endA.place, endB.place)) return decided;
        }
        // Back to the first byte of a character whose second bytes differ, or which one text has lost to its end.
        if (second) --run;
    }
    a.place += run;
    b.place += run;
    return 0;
}

// Are the first two bytes the same? With one alone no blocks are worth looking at. REQUIRES: neither has ended.
bool beginAlike(Text a, Text b) {
    if (*a.place != *b.place || a.place + 1 == a.limit || b.place + 1 == b.limit) return false;
    return a.place[1] == b.place[1];
}

// Weight by weight, until both stand between characters again.
Step stepOverWeights(const ByteRoute& route, Text& a, Text& b) {
    Weights left{route, a}, right{route, b};
    do {
        const unsigned char ofA = left.next(), ofB = right.next();
        if (ofA != ofB) return stepOf(ofA, ofB);
    } while (!(left.betweenCharacters() && right.betweenCharacters()) && !left.ended() && !right.ended());
    a = left.rest();
    b = right.rest();
    return Step::movedOn;
}

}  // namespace

int compareByWeights(const ByteRoute& route, Text a, Text b) {
    while (!a.atEnd() && !b.atEnd()) {
        if (beginAlike(a, b)) {
            if (const int decided = skipEqualBytes(route, a, b)) return decided;
            if (a.atEnd() || b.atEnd()) break;
        }
        Step step = stepOverCharacters(route, a, b);
        if (step == Step::unusual) step = stepOverWeights(route, a, b);
        if (step != Step::movedOn) return static_cast<int>(step);
    }
    return decideAtEnd(a, b);
}

}  // namespace nls
