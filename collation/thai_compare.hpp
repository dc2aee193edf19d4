// The order of Thai texts: cluster by cluster, by ranks.
// Tested by tests/collation/thai_test.cpp.
#pragma once

#include "collation/text.hpp"

namespace nls {

// -1, 0 or 1. The first clusters whose ranks differ decide; blanks at the end don't count. Nothing is written, at the
// limits neither.
int compareThai(const unsigned char* map, Text a, Text b);

}  // namespace nls
