// The order of byte tables for charsets without longer characters: the loop that sorting and searching spend their time
// in.
//
// Most pairs end at their first byte, so that is looked at alone, in line with the call. Behind it texts that belong
// together go on alike, or alike but for case: equal bytes have equal weights, expansions too, and are passed over in
// blocks. Tested by tests/collation/compare_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/text.hpp"
#include "collation/weights.hpp"

namespace nls {

// Not 0: the first pair of bytes decides. Else nothing is known yet.
inline int decidedByFirstPair(WeightMap weights, const unsigned char* a, const unsigned char* b) {
    const unsigned byteA = *a, byteB = *b, ofA = weights.entry(*a), ofB = weights.entry(*b);
    const bool decides = byteA != 0 && byteB != 0 && ofA != 0 && ofB != 0 && ofA != ofB;
    return decides ? 1 - 2 * int{ofA < ofB} : 0;
}

// -1, 0 or 1, from whatever byte on.
int compareSingleBytes(WeightMap weights, Text a, Text b);

// The two ways to do that: any processor; AVX-512.
int compareSingleBytesPlain(WeightMap weights, Text a, Text b);
int compareSingleBytesAvx512(WeightMap weights, Text a, Text b);

// Of texts with limits, of which most are the same to their ends or differ in a byte that decides, within 64 bytes.
// REQUIRES: both have limits, and the processor has AVX-512.
int compareLimitedAvx512(WeightMap weights, Text a, Text b);

}  // namespace nls
