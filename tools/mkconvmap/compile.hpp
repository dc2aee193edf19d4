// From descriptions to the entries of the data file.
// Tested by tests/tools/read_back_test.cpp and tests/tools/refusals_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "tools/mkconvmap/conv_writer.hpp"
#include "tools/mkconvmap/file_writer.hpp"
#include "tools/mkconvmap/map_source.hpp"

namespace nls::mkconvmap {

struct CompiledMap {
    std::vector<CompiledCharset> charsets;
    FileWriter file;
    std::vector<std::string> remarks;  // lines for the listing: what could not go into a table, and why
};

// Fails where the format can't hold what the descriptions say, and where the library would not find it.
CompiledMap compileMap(const MapSource& source);

}  // namespace nls::mkconvmap
