// The finished file as the library sees it: every locale and conversion that it names is made, and every character is
// converted and compared with the descriptions; so are all weights, and the forms of all characters. A file that passes
// is one that the library doesn't misread.
// Tested by tests/tools/read_back_test.cpp.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/mkconvmap/compile.hpp"
#include "tools/mkconvmap/read_back_error.hpp"

namespace nls::mkconvmap {

// Bytes of arena.
struct ArenaUse {
    uint32_t handle = 0;            // what nlsInit takes, the contents among it
    std::vector<uint32_t> entries;  // what loading the table of each entry takes, asked in the order of the file
};

ArenaUse readBack(const CompiledMap& map, const std::vector<unsigned char>& image);

}  // namespace nls::mkconvmap
