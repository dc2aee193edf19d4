// The grid of a multi-byte charset: its rows are the lead bytes, its columns the trail bytes, the holes in both
// squeezed out. A character's number counts the places of the grid row by row from 1; 0 is never a character.
//
// A single byte stands in a row of its own, the lead byte 00.
// Tested by tests/tools/read_back_test.cpp and tests/real/real_charsets_test.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "nls/records.h"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

class Grid {
public:
    // No byte at all: no code stands in it.
    Grid() = default;
    // Fails at `place` unless there are one or two ranges of each, ascending and apart from each other, and at most 255
    // columns. So there are at most 65280 places, and a number is never FFFF, which says "nothing".
    Grid(const Place& place, std::vector<ByteRange> leads, std::vector<ByteRange> trails);

    std::optional<uint16_t> number(uint16_t code) const;
    uint32_t columns() const { return columns_; }

    // The fields of a map record that tell this grid. A range that doesn't exist is written so that the reader's tests
    // refuse what lies outside: as FF-00, and for the third trail range as the last trail byte twice.
    void describe(nlsUcs2Map& record) const;

private:
    std::vector<ByteRange> leads_, trails_;
    uint32_t columns_ = 0;
};

}  // namespace nls::mkconvmap
