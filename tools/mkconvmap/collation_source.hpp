// One collation as its description in data/collations tells it: where its order comes from, and what is special to it.
// data/README.md tells the language.
// Tested by tests/tools/collation_refusals_test.cpp.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

enum class CollationOrder {
    bytes,       // the basic tables: the bytes themselves, and the upper-case map
    codePoints,  // UTF-8
    language,    // ICU's collator of a locale, letter by letter
    thai,        // letter clusters of the Thai charset
};

// Thai: weights that bytes get one after the other, in the order in which they are named, or in the collator's.
struct WeightRow {
    Place place;
    uint8_t first = 0;
    uint8_t step = 1;
    bool sorted = false;
    std::vector<uint8_t> bytes;
};

struct CollationSource {
    std::string name;
    Place place;  // of the line with the name
    CollationOrder order = CollationOrder::bytes;
    Place orderPlace;
    std::string locale;           // of ICU; language and thai
    std::u16string letters;       // what a charset must have to carry the language
    std::u16string doubled;       // letters that count as two letters s
    std::vector<WeightRow> rows;  // thai
};

CollationSource readCollation(const std::filesystem::path& file);

}  // namespace nls::mkconvmap
