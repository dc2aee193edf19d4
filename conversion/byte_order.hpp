// Which side of a transform holds its units in swapped byte order, and units of 16 or 32 bits at any address.
//
// The order is a property of the table alone: bits 0x080 and 0x200 of its type word. A null table swaps nothing. The
// order bits 0x100 and 0x400 say the opposite of their neighbours and have no effect here.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#pragma once

#include <cstdint>

#include "conversion/converted.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"

namespace nls {

inline ByteOrder byteOrderOf(const ConvTable& table) {
    return {table.swapsSource(), table.swapsTarget()};
}

constexpr uint16_t swapBytes(uint16_t unit) {
    return __builtin_bswap16(unit);
}
constexpr uint32_t swapBytes(uint32_t unit) {
    return __builtin_bswap32(unit);
}

// One unit, whose bytes stand in the order opposite to the host's when `swap` is set.
template <typename Unit>
inline Unit loadUnit(const void* place, bool swap) {
    const Unit unit = loadWord<Unit>(place);
    return swap ? swapBytes(unit) : unit;
}
template <typename Unit>
inline void storeUnit(void* place, Unit unit, bool swap) {
    storeWord(place, swap ? swapBytes(unit) : unit);
}

}  // namespace nls
