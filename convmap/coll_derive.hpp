// Weights of one single-byte charset moved to the bytes of another.
// Tested by tests/convmap/coll_table_load_test.cpp.
#pragma once

#include <cstdint>
#include <span>

#include "convmap/conv_table.hpp"
#include "convmap/toc.hpp"

namespace nls {

inline constexpr std::size_t kWeights = 256;
using WeightMapRef = std::span<unsigned char, kWeights>;

// Each byte of the target charset gets the weight of the byte that `table` maps to it, the highest of several. One that
// nothing is mapped to keeps the weight that its own value had in the source charset. A table of another type than a
// map of bytes leaves the weights where they are.
void moveWeights(WeightMapRef map, ConvTable table);

// A charset that has the collation, and the map of bytes from it to another charset; null without such a pair.
struct DerivationSource {
    const nlsTocEntry* collation;
    const nlsTocEntry* conversion;
};
// The first collation of that name in the contents that has a map to the charset, and the first such map.
DerivationSource findDerivation(const Contents& contents, const char* charset, const char* collationName);

}  // namespace nls
