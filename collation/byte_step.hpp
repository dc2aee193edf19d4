// One step of the walk over texts with characters of two bytes: a character on either side.
// Tested by tests/collation/compare_test.cpp against tests/reference/compare.hpp.
#pragma once

#include <cstddef>

#include "collation/sjis_bridge.hpp"
#include "collation/text.hpp"
#include "collation/weights.hpp"
#include "core/base/charset.hpp"

namespace nls {

// What a walk goes by.
struct ByteRoute {
    WeightMap weights;
    Charset charset;
    SjisBridge bridge;
};

// What a step came to: the answer, or that both have moved on, or that it must be walked weight by weight.
enum class Step { before = -1, movedOn = 0, after = 1, unusual = 2 };

inline Step stepOf(unsigned a, unsigned b) {
    return static_cast<Step>(orderOf(a, b));
}
inline bool decides(Step step) {
    return step == Step::before || step == Step::after;
}

struct Character {
    unsigned first;   // weight; 0 for what a step can't take: an expansion, a character that is cut off
    unsigned second;  // its second byte, or kNoSecond
    unsigned bytes;
};
inline constexpr unsigned kNoSecond = 256;

// REQUIRES: the text hasn't ended.
inline Character readCharacter(const ByteRoute& route, Text text) {
    const unsigned char byte = *text.place;
    const unsigned weight = route.weights.entry(byte);
    if (weight == 0 || route.charset.trailCount(byte) == 0) return {weight, kNoSecond, 1};
    if (Text{text.place + 1, text.limit}.atEnd()) return {0, kNoSecond, 1};
    const unsigned char second = text.place[1];
    if (route.bridge.changesNothing()) return {weight, second, 2};
    const BridgedPair crossed = route.bridge.cross(byte, second);
    return {route.weights.entry(crossed.first), crossed.single ? kNoSecond : crossed.second, 2};
}

inline Step stepBetween(const Character& a, const Character& b) {
    if (a.first == 0 || b.first == 0) return Step::unusual;
    if (a.first != b.first) return stepOf(a.first, b.first);
    if (a.second == b.second) return Step::movedOn;
    // A second byte against the first one of the next character.
    if (a.second == kNoSecond || b.second == kNoSecond) return Step::unusual;
    return stepOf(a.second, b.second);
}

// REQUIRES: both stand between characters, and neither has ended.
inline Step stepOverCharacters(const ByteRoute& route, Text& a, Text& b) {
    const Character ofA = readCharacter(route, a), ofB = readCharacter(route, b);
    const Step step = stepBetween(ofA, ofB);
    if (step == Step::movedOn) {
        a.place += ofA.bytes;
        b.place += ofB.bytes;
    }
    return step;
}

// A character of EUC on its way to Shift-JIS, without branches: whether it is of one byte or of two is anyone's guess.
struct EucCharacter {
    unsigned own, bridged;  // weights of the first byte as it is, and as it comes out; 0 for none
    unsigned first;         // byte as it comes out
    unsigned lead;          // 1 if it is of two bytes, else 0
    unsigned inGrid;        // 1 if both bytes are such that the rule holds

    EucCharacter(WeightMap weights, Charset charset, const unsigned char* place) {
        const unsigned byte = place[0], next = place[1];
        lead = charset.trailCount(place[0]) != 0;
        inGrid = SjisBridge::inEucGrid(byte) & SjisBridge::inEucGrid(next);
        first = byte ^ ((byte ^ sjisLeadOfEuc(byte)) & (0U - lead));
        own = weights.entries()[byte];
        bridged = weights.entries()[first & 0xFF];
    }
    // 0 for what it can't tell: an expansion, the end of the text, a pair that isn't in the grid.
    unsigned isPlain() const { return (own != 0) & (bridged != 0) & (inGrid | (lead ^ 1U)); }
};

// Not 0: the first characters decide; else nothing is known yet. Behind the same first byte the grid has the same order
// on both sides, so that the second byte need not be known. REQUIRES: two bytes can be read of both texts, and
// neither has ended; the bridge is that from EUC.
inline int decidedByEucCharacters(WeightMap weights, Charset charset, const unsigned char* a, const unsigned char* b) {
    const EucCharacter ofA{weights, charset, a}, ofB{weights, charset, b};
    if ((ofA.isPlain() & ofB.isPlain()) == 0) return 0;
    if (ofA.bridged != ofB.bridged) return ofA.bridged < ofB.bridged ? -1 : 1;
    if ((ofA.lead & ofB.lead) == 0 || ofA.first != ofB.first) return 0;
    return orderOf(unsigned{a[0]} << 8 | a[1], unsigned{b[0]} << 8 | b[1]);
}

}  // namespace nls
