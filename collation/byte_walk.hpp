// The order of byte tables with characters of two bytes: the first pair of weights that differ decides.
// Tested by tests/collation/compare_test.cpp against tests/reference/compare.hpp.
#pragma once

#include "collation/sjis_bridge.hpp"
#include "collation/text.hpp"
#include "collation/weights.hpp"
#include "core/base/charset.hpp"

namespace nls {

struct ByteRoute {
    WeightMap weights;
    Charset charset;
    SjisBridge bridge;
};

// -1, 0 or 1.
int compareByWeights(const ByteRoute& route, Text a, Text b);

}  // namespace nls
