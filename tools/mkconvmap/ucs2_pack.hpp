// The mapping of a multi-byte charset as the data file holds it: three map records with their arrays.
//
// Each character is given to the first map, in the order in which the library searches them, whose grid and blocks take
// it; the other maps then hold nothing for it.
//
// Rows of the way back. A walk ends at the first cell for column 0 whatever stands there, so every row begins with a
// cell for column 0, of value 0 where nothing is mapped: 0 leads to the code FFFF, and that ends the search of the map
// as a miss. The last cell of a row jumps past its end. All empty rows are one. Tested by
// tests/tools/read_back_test.cpp and tests/real/real_charsets_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "nls/records.h"
#include "tools/mkconvmap/ucs2_mapping.hpp"
#include "tools/mkconvmap/ucs2_source.hpp"

namespace nls::mkconvmap {

struct PackedMap {
    nlsUcs2Map record{};  // its pointers and the places in the file are 0
    std::vector<uint16_t> cjisToUcs, ucsRows, ucsCells;

    std::size_t arrayBytes() const;
};

using PackedMaps = std::array<PackedMap, 3>;  // first, second, third

std::size_t arrayBytes(const PackedMaps& maps);

// Fails at the line of the layout that can't hold the mapping.
PackedMaps packMaps(const Ucs2Source& source, const CodeMapping& mapping);

}  // namespace nls::mkconvmap
