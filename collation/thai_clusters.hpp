// Thai text of one byte a character (TIS-620), read as clusters of letters.
//
// A vowel is written before, above, below or behind its consonant, and a tone mark above it. A cluster is at most one
// leading vowel, one base, one vowel above or below and one tone, the leading vowel in front of the base and the others
// in any order; the second of any kind opens the next cluster. Whatever is no such letter stands alone.
//
// Weights come from a map of 256 bytes. That of a vowel above or below lies in bits 0x78, that of a tone in bits 0x07,
// so that a key can hold both in one byte. Tested by tests/collation/thai_test.cpp.
#pragma once

#include <array>
#include <cstdint>

#include "collation/text.hpp"

namespace nls {

enum class ThaiClass : uint8_t {
    single = 0,        // ASCII, digits, signs: not part of a cluster
    base = 1,          // consonants and spacing signs
    vowel = 2,         // above or below its base
    leadingVowel = 3,  // written before its base
    tone = 4,
};

inline constexpr std::array<ThaiClass, 256> kThaiClasses = [] {
    std::array<ThaiClass, 256> classes{};  // single
    const auto set = [&](unsigned first, unsigned last, ThaiClass value) {
        for (unsigned byte = first; byte <= last; ++byte) classes[byte] = value;
    };
    set(0xA1, 0xCE, ThaiClass::base);
    set(0xD0, 0xD0, ThaiClass::base);
    set(0xD1, 0xD1, ThaiClass::vowel);
    set(0xD2, 0xD3, ThaiClass::base);
    set(0xD4, 0xD9, ThaiClass::vowel);
    set(0xDA, 0xDB, ThaiClass::base);
    set(0xDD, 0xDF, ThaiClass::base);
    set(0xE0, 0xE4, ThaiClass::leadingVowel);
    set(0xE5, 0xE5, ThaiClass::base);
    set(0xE7, 0xEC, ThaiClass::tone);
    set(0xED, 0xED, ThaiClass::vowel);
    set(0xEE, 0xEE, ThaiClass::base);
    set(0xFC, 0xFF, ThaiClass::base);
    return classes;
}();

constexpr ThaiClass thaiClass(unsigned char byte) {
    return kThaiClasses[byte];
}

// The value that a tone takes the place of: no tone yet. In a key it stands in the low bits of a unit, in a rank in the
// lowest byte.
inline constexpr unsigned char kNoTone = 2;

// Ranks one cluster and moves behind it: weight of the base in bits 24 to 31, or of the byte that stands alone; of the
// leading vowel in bits 16 to 23; of the vowel in bits 8 to 15; of the tone in bits 0 to 7. At the end of the text the
// rank is kNoTone.
uint32_t clusterRank(const unsigned char* map, Text& text);

}  // namespace nls
