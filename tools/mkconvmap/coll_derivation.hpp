// Collations that the library would derive. Where a single-byte charset has no collation of a name, the library takes
// that of another charset with a byte map to it, the first in the order of the file, and moves its weights along the
// map.
//
// Along a permutation the weights keep their characters. Along a map that loses something they don't: the bytes that
// nothing maps to keep weights by accident. And a byte that counts as two letters s takes the weight of the byte 73,
// which is no s everywhere. So a charset that such a map reaches needs a collation of its own under the name.
// Tested by tests/tools/collation_refusals_test.cpp.
#pragma once

#include <vector>

#include "tools/mkconvmap/file_writer.hpp"

namespace nls::mkconvmap {

// Fails at the collation that would be derived wrongly.
void checkDerivedCollations(const std::vector<FileEntry>& entries);

}  // namespace nls::mkconvmap
