#include "conversion/ucs2_lookup.hpp"

#include <span>

namespace nls {

namespace {

// The triples in use.
std::span<const nlsUcs2Range> rangesOf(const nlsUcs2Map& map) {
    const auto* const end = std::find_if(std::begin(map.ranges), std::end(map.ranges),
                                         [](const nlsUcs2Range& r) { return r.rangeEnd == 0; });
    return {std::begin(map.ranges), end};
}

constexpr uint32_t shiftRight(uint32_t value, uint16_t shift) {
    return value >> (shift & 31U);
}

// The cell of `column` in the row that starts at cell `first`. The column is a signed 16-bit number all the way: a
// distance that takes it below zero ends the walk, and the code point lies between two mapped ones.
uint32_t cellOfColumn(const nlsUcs2Map& map, uint32_t first, int16_t column) {
    const uint32_t count = cellCountOf(map);
    uint32_t place = first;
    while (column > 0) {
        if (place >= count) return kNoMapping;
        uint16_t distance = map.ucsCells[place++] & map.skipMask;
        if (distance == 0) {
            if (place >= count) return kNoMapping;
            distance = map.ucsCells[place++];
        }
        column = static_cast<int16_t>(column - distance);
    }
    if (column != 0 || place >= count) return kNoMapping;
    return shiftRight(map.ucsCells[place], map.valueShift);
}

}  // namespace

uint32_t unicodeThroughRanges(const nlsUcs2Map& map, uint32_t value) {
    for (const nlsUcs2Range& range : rangesOf(map)) {
        if (value + range.rangeDelta <= range.rangeEnd) return value + range.rangeDelta;
    }
    return value;
}

uint32_t cjisInRows(const nlsUcs2Map& map, uint32_t ucs) {
    const auto ranges = rangesOf(map);
    if (!ranges.empty()) {
        const auto range = std::find_if(ranges.begin(), ranges.end(), [ucs](const nlsUcs2Range& r) {
            return r.rangeStart <= ucs && ucs <= r.rangeEnd;
        });
        if (range == ranges.end()) return kNoMapping;
        ucs -= range->rangeDelta;
    }
    if (ucs < map.ucsMin || ucs > map.ucsMax) return kNoMapping;
    const uint32_t place = ucs - map.ucsMin;
    const uint32_t row = shiftRight(place, map.rowShift);
    if (row >= rowCountOf(map)) return kNoMapping;
    return cellOfColumn(map, map.ucsRows[row], static_cast<int16_t>(place & map.colMask));
}

}  // namespace nls
