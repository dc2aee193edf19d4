// The order of byte tables for charsets without longer characters: the loop that sorting and searching spend their time
// in.
//
// Most pairs end at their first byte, so that is looked at alone, in line with the call. Behind it texts that belong
// together go on alike, or alike but for case: equal bytes have equal weights, expansions too, and are passed over in
// blocks. Tested by tests/collation/compare_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/text.hpp"
#include "collation/weights.hpp"
#include "core/base/cpu.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// The first bytes of two texts, as their weights.
struct FirstPair {
    int ofA, ofB;  // 0 if there is none: an expansion, or the end of a text

    bool decides() const { return ((ofA - 1) | (ofB - 1)) >= 0 && ofA != ofB; }
    int sign() const { return ofA < ofB ? -1 : 1; }  // where they decide
};

inline FirstPair firstPair(WeightMap weights, const unsigned char* a, const unsigned char* b) {
    if (*a == 0 || *b == 0) return {0, 0};
    return {weights.entry(*a), weights.entry(*b)};
}

// Not 0: the first pair of bytes decides. Else nothing is known yet.
inline int decidedByFirstPair(WeightMap weights, const unsigned char* a, const unsigned char* b) {
    const FirstPair pair = firstPair(weights, a, b);
    return pair.decides() ? pair.sign() : 0;
}

// -1, 0 or 1, from whatever byte on.
int compareSingleBytes(WeightMap weights, Text a, Text b);

// The two ways to do that: any processor; AVX-512.
int compareSingleBytesPlain(WeightMap weights, Text a, Text b);
int compareSingleBytesAvx512(WeightMap weights, Text a, Text b);

// The same of texts with limits, of which most are alike to their ends or differ in a byte that decides, within 64
// bytes. It writes the answer itself and takes the texts where nlsCompareN has them, so that it is a jump away from
// there. REQUIRES: lengths above 0; the processor of the first has AVX-512.
nlsStatus compareLimitedAvx512(WeightMap weights, uint16_t* result, const unsigned char* s1, const unsigned char* s2,
                               int32_t len1, int32_t len2);
nlsStatus compareLimitedPlain(WeightMap weights, uint16_t* result, const unsigned char* s1, const unsigned char* s2,
                              int32_t len1, int32_t len2);
inline nlsStatus compareLimited(WeightMap weights, uint16_t* result, const unsigned char* s1, const unsigned char* s2,
                                int32_t len1, int32_t len2) {
    if (knownCpuLevel() >= CpuLevel::avx512) return compareLimitedAvx512(weights, result, s1, s2, len1, len2);
    return compareLimitedPlain(weights, result, s1, s2, len1, len2);
}

}  // namespace nls
