// The list of what goes into the data file: data/convmap.list and the charsets that it names.
// Tested by tests/tools/refusals_test.cpp.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "tools/mkconvmap/charset_source.hpp"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

struct ConversionSource {
    Place place;
    std::size_t from = 0;  // index of the charset
    std::size_t to = 0;
    bool byRule = false;  // Shift-JIS and EUC by arithmetic
};

// One line of the list: the index of a charset, or a pair of charsets that convert both ways.
using MapItem = std::variant<std::size_t, ConversionSource>;

struct MapSource {
    std::vector<CharsetSource> charsets;
    std::vector<MapItem> items;  // in the order of the list, which is that of the file's contents
};

// Charsets are read from the folder "charsets" beside the list, each from the file NAME.txt.
MapSource readMap(const std::filesystem::path& list);

}  // namespace nls::mkconvmap
