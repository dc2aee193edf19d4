// Shift-JIS and EUC by rule: the two ways to spell a place in the 94 by 94 grid of JIS X 0208.
//
// EUC is the JIS code with 0x80 added to both bytes. Shift-JIS lays two JIS rows into one of its own:
//
//   JIS row odd    trail 0x40-0x7E, 0x80-0x9E        lead 0x81-0x9F for the rows 0x21-0x5E,
//   JIS row even   trail 0x9F-0xFC                        0xE0-0xEF for the rows 0x5F-0x7E
//
// Half-width kana are one byte 0xA1-0xDF in Shift-JIS, and two in EUC, 0x8E in front.
// Tested by tests/conversion/jis_test.cpp against tests/reference/jis.hpp.
#pragma once

#include <cstdint>

#include "conversion/converted.hpp"
#include "core/base/views.hpp"

namespace nls {

struct BytePair {
    uint8_t first, second;
};

// The rule, for any two bytes: what lies outside the grid comes out wrapped at 8 bits.
constexpr BytePair jisOfSjis(BytePair sjis) {
    const int row = (sjis.first - (sjis.first < 0xA0 ? 0x70 : 0xB0)) * 2;
    const bool odd = sjis.second <= 0x9E;
    const int column = sjis.second - (odd ? (sjis.second >= 0x80 ? 0x20 : 0x1F) : 0x7E);
    return {static_cast<uint8_t>(odd ? row - 1 : row), static_cast<uint8_t>(column)};
}

constexpr BytePair sjisOfJis(BytePair jis) {
    const int lead = (jis.first + 1) / 2 + (jis.first < 0x5F ? 0x70 : 0xB0);
    const bool odd = (jis.first & 1) != 0;
    const int trail = jis.second + (odd ? (jis.second < 0x60 ? 0x1F : 0x20) : 0x7E);
    return {static_cast<uint8_t>(lead), static_cast<uint8_t>(trail)};
}

// The first byte alone, of a pair in the grid.
constexpr unsigned sjisLeadOfEuc(unsigned first) {
    return ((first - 0x7F) >> 1) + (first < 0xDF ? 0x70 : 0xB0);
}
static_assert(sjisLeadOfEuc(0xA1) == 0x81 && sjisLeadOfEuc(0xDE) == 0x9F && sjisLeadOfEuc(0xDF) == 0xE0);

// Whole texts. A pair whose second byte is outside the grid goes out as it stands. Status 0; 16 when the end of the
// source cuts off a pair; 2 when the target is full. The character that failed leaves nothing, and `length` counts what
// stands before it. Source and target must not overlap, unless the source is one single character.
Converted sjisToEuc(ByteView source, ByteSpan target);
Converted eucToSjis(ByteView source, ByteSpan target);

}  // namespace nls
