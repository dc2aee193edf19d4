#include "collation/thai_key.hpp"

#include "collation/thai_clusters.hpp"

namespace nls {
namespace {

constexpr unsigned char kMarker = 0x80;
constexpr unsigned char kVowelBits = 0x78, kToneBits = 0x07;

// False, and nothing written, when the key is full.
bool put(ThaiKeyWalk& walk, unsigned char byte) {
    if (walk.key == walk.keyEnd) return false;
    *walk.key++ = byte;
    return true;
}

// A mark whose place is taken. Without room for it the text isn't read on: the key is at its end.
void putApart(ThaiKeyWalk& walk, unsigned char unit) {
    if (put(walk, kMarker) && put(walk, unit)) ++walk.place;
}

bool hasBaseInFront(const ThaiKeyWalk& walk) {
    return walk.place != walk.src && thaiClass(walk.place[-1]) != ThaiClass::single;
}

void putAlone(ThaiKeyWalk& walk) {
    put(walk, walk.map[*walk.place++]);
}

void putWithUnit(ThaiKeyWalk& walk) {
    putAlone(walk);
    put(walk, kNoTone);
}

void putSwapped(ThaiKeyWalk& walk) {
    put(walk, walk.map[walk.place[1]]);
    put(walk, kMarker);
    put(walk, walk.map[walk.place[0]]);
    put(walk, kNoTone);
    walk.place += 2;
}

}  // namespace

void addToUnit(ThaiKeyWalk& walk) {
    if (!hasBaseInFront(walk)) {
        put(walk, kMarker);
        if (!put(walk, kNoTone)) {  // the mark is given up
            ++walk.place;
            return;
        }
    }
    const unsigned char weight = walk.map[*walk.place];
    unsigned char& unit = walk.key[-1];
    const auto joined = [](unsigned a, unsigned b) { return static_cast<unsigned char>(a | b); };
    if (thaiClass(*walk.place) == ThaiClass::vowel) {
        if ((unit & kVowelBits) != 0) return putApart(walk, joined(weight, kNoTone));
        unit = joined(unit, weight);
    } else {
        if ((unit & kToneBits) != kNoTone) return putApart(walk, weight);
        unit = joined(unit & ~unsigned{kNoTone}, weight);
    }
    ++walk.place;
}

void thaiKey(const unsigned char* map, const unsigned char* src, std::size_t length, ByteSpan key) {
    if (key.empty()) return;
    ThaiKeyWalk walk{map, src, src, key.data(), key.data() + key.size() - 1};
    const unsigned char* const end = src + length;
    while (walk.place != end && walk.key != walk.keyEnd) {
        switch (thaiClass(*walk.place)) {
            case ThaiClass::single:
                putAlone(walk);
                break;
            case ThaiClass::base:
                putWithUnit(walk);
                break;
            case ThaiClass::leadingVowel: {
                const bool baseFollows = end - walk.place > 1 && thaiClass(walk.place[1]) == ThaiClass::base;
                baseFollows ? putSwapped(walk) : putWithUnit(walk);
                break;
            }
            default:
                addToUnit(walk);
        }
    }
    *walk.key = 0;
}

}  // namespace nls
