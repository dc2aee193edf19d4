// Grid numbers and Unicode through the arrays of a map record, both ways.
//
// The way forth is one array by Cjis code. Its 16-bit entries can reach code points above U+FFFF through the record's
// range triples: an entry stands for its value plus the delta of the first triple that takes it.
//
// The way back has two forms. In the row form the triples first fold distant blocks of Unicode into one range ucsMin to
// ucsMax; its upper bits select a row, its low bits a column, and a row is a run of cells for the columns that have a
// mapping. A cell holds its value in the high bits and in the low ones the distance to the next mapped column, with one
// cell more for a distance that those bits can't hold:
//
//   columns 0  3  4 of a row:   [v0|3] [v3|1] [v4|0] [distance]
//
// In the direct form there is one cell for each code point from ucsMin on, and it is the Cjis code.
//
// A record may hold anything: nothing outside its three arrays is read, an array whose pointer is null has no entry,
// and shifts are taken modulo 32. What lies outside is no mapping. The walk of a row moves on by a cell or two at each
// step, so it ends at the last cell at the latest. Tested by tests/conversion/dbcs_bridge_test.cpp and,
// character by character, tests/real.
#pragma once

#include <algorithm>
#include <cstdint>

#include "conversion/cjis_grid.hpp"
#include "nls/records.h"

namespace nls {

inline uint32_t cjisCountOf(const nlsUcs2Map& map) {
    return map.cjisToUcs == nullptr ? 0 : map.cjisCount;
}
inline uint32_t rowCountOf(const nlsUcs2Map& map) {
    return map.ucsRows == nullptr ? 0 : map.ucsRowCount;
}
inline uint32_t cellCountOf(const nlsUcs2Map& map) {
    return map.ucsCells == nullptr ? 0 : map.ucsCellCount;
}

// Code points from ucsMin on that have a cell in the direct form.
inline uint32_t directCountOf(const nlsUcs2Map& map) {
    const uint32_t told = map.ucsMax < map.ucsMin ? 0 : map.ucsMax - map.ucsMin + 1U;
    return std::min(told, cellCountOf(map));
}

// A Cjis code's code point or kNoMapping.
uint32_t unicodeThroughRanges(const nlsUcs2Map& map, uint32_t value);
inline uint32_t unicodeAt(const nlsUcs2Map& map, uint16_t cjis) {
    if (cjis >= cjisCountOf(map)) return kNoMapping;
    const uint32_t value = map.cjisToUcs[cjis];
    return map.rangesOnCjis == 0 ? value : unicodeThroughRanges(map, value);
}

// The direct form: a code point's Cjis code or kNoMapping.
inline uint32_t cjisDirect(const nlsUcs2Map& map, uint16_t ucs) {
    const auto place = static_cast<uint32_t>(ucs - map.ucsMin);
    return place < directCountOf(map) ? map.ucsCells[place] : kNoMapping;
}

// The row form: a code point's Cjis code or kNoMapping.
uint32_t cjisInRows(const nlsUcs2Map& map, uint32_t ucs);

}  // namespace nls
