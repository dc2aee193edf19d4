// How a multi-byte charset maps to Unicode and how its map records are laid out: the lines of its description behind
// name, kind and bytes. data/README.md tells the language.
// Tested by tests/tools/read_back_test.cpp and tests/real/real_charsets_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/mkconvmap/charset_source.hpp"
#include "tools/mkconvmap/ucs2_grid.hpp"

namespace nls::mkconvmap {

// A character's bytes as a number, first byte high; a single byte has its value.
using Code = uint16_t;

struct CodeRange {
    Place place;
    Code first, last;
};

struct CodePointBlock {
    uint32_t first, last;

    bool holds(uint32_t codePoint) const { return codePoint >= first && codePoint <= last; }
    uint32_t size() const { return last - first + 1; }
};

// A code point that goes to a code which itself means another code point, or ASCII.
struct OneWay {
    Place place;
    uint32_t codePoint;
    Code code;
};

// The way back in the row form: blocks of code points laid end to end, rows of 2^rowShift columns, cells whose low
// valueShift bits hold the distance to the next cell.
struct RowsPlan {
    Place place;
    unsigned rowShift, valueShift;
    std::vector<CodePointBlock> blocks;
};

// The way back in the direct form: one cell for each code point.
struct DirectPlan {
    Place place;
    CodePointBlock block;
};

struct MapPlan {
    Place place;  // of the line "grid"; line 0 where the charset doesn't use the map
    Grid grid;
    bool holdsForth = false;  // it has a table from numbers to code points
    std::optional<DirectPlan> direct;
    std::optional<RowsPlan> rows;
};

// The maps in the order of the file. The third is searched first, in the direct form; then the first, then the second.
enum class MapName { first, second, third };
constexpr std::array<MapName, 3> kSearchOrder{MapName::third, MapName::first, MapName::second};

struct Ucs2Source {
    Place place;  // of the charset's name
    Place sourcePlace;
    std::string library, converter;  // where the rows come from
    bool eucImage = false;           // the converter knows Shift-JIS; the charset is its EUC form
    Code substChar = '?';
    std::bitset<256> singles;         // bytes above 7F that are characters of their own
    std::vector<CodeRange> without;   // codes of the source that the charset doesn't take over
    std::vector<CodeRange> yielding;  // codes that leave the way back to any other code of the same character
    std::vector<OneWay> back;
    std::array<MapPlan, 3> maps;

    const MapPlan& map(MapName name) const { return maps[static_cast<std::size_t>(name)]; }
};

Ucs2Source readUcs2Source(const CharsetSource& charset);

}  // namespace nls::mkconvmap
