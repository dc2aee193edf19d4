// The list of what goes into the data file: data/convmap.list and the descriptions that it names.
// Tested by tests/tools/refusals_test.cpp and tests/tools/collation_refusals_test.cpp.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "tools/mkconvmap/case_source.hpp"
#include "tools/mkconvmap/charset_source.hpp"
#include "tools/mkconvmap/collation_source.hpp"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

struct ConversionSource {
    Place place;
    std::size_t from = 0;  // index of the charset
    std::size_t to = 0;
    bool byRule = false;  // Shift-JIS and EUC by arithmetic
};

// A collation or a case table under a name, of one charset.
template <typename Description>
struct TableSource {
    Place place;
    std::string name;
    std::size_t charset = 0;  // indices
    std::size_t description = 0;
    bool isPart = false;  // a collation of a charset that lacks letters of the language
};
using CollationEntry = TableSource<CollationSource>;
using CaseEntry = TableSource<CaseSource>;

// One field of the list: the index of a charset, a pair of charsets that convert both ways, a table of a charset.
using MapItem = std::variant<std::size_t, ConversionSource, CollationEntry, CaseEntry>;

struct MapSource {
    std::vector<CharsetSource> charsets;
    std::vector<CollationSource> collations;
    std::vector<CaseSource> caseTables;
    std::vector<MapItem> items;  // in the order of the list, which is that of the file's contents
};

// Descriptions are read from the folders "charsets", "collations" and "case" beside the list, each from the file
// NAME.txt.
MapSource readMap(const std::filesystem::path& list);

}  // namespace nls::mkconvmap
