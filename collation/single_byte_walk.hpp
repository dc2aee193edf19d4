// The order of byte tables for charsets without longer characters: the loop that sorting and searching spend their time
// in. Tested by tests/collation/single_byte_walk_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/text.hpp"
#include "collation/weights.hpp"

namespace nls {

// -1, 0 or 1.
int compareSingleBytes(WeightMap weights, Text a, Text b);

}  // namespace nls
