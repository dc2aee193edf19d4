// The order of byte tables with characters of two bytes: the first pair of weights that differ decides.
// Tested by tests/collation/compare_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/byte_step.hpp"
#include "collation/text.hpp"
#include "collation/weights.hpp"
#include "core/base/charset.hpp"

namespace nls {

// -1, 0 or 1.
int compareByWeights(const ByteRoute& route, Text a, Text b);

// The same of texts with limits, without a bridge, and with that from EUC, which is remembered then.
// REQUIRES: lengths above 0; the processor has AVX-512.
int comparePairsAvx512(WeightMap weights, Charset charset, const unsigned char* s1, const unsigned char* s2,
                       int32_t len1, int32_t len2);
int compareEucAvx512(WeightMap weights, Charset charset, const unsigned char* s1, const unsigned char* s2, int32_t len1,
                     int32_t len2);

}  // namespace nls
