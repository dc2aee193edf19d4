#include "conversion/dbcs_runs.hpp"

#include <algorithm>

#include "conversion/cjis_grid.hpp"
#include "conversion/dbcs_lane_constants.hpp"
#include "conversion/utf_codec.hpp"

namespace nls {

const LaneConstants kLane{};

namespace {

// The Cjis code of a pair by its place in the grid; numberCount or more where it has none.
inline uint32_t numberOf(const DbcsIndex& index, uint8_t first, uint8_t second) {
    const uint32_t row = index.rowOf[first - 0x80], column = index.columnOf[second];
    if (row == DbcsIndex::kNoRow || column == DbcsIndex::kNoColumn) return 0xFFFFFFFF;
    return index.firstNumber + row * index.columns + column;
}

// `value` if the difference is negative, else 0; without a branch, which half of the characters would take.
inline uint32_t ifNegative(uint32_t difference, uint32_t value) {
    return static_cast<uint32_t>(static_cast<int32_t>(difference) >> 31) & value;
}

// The code in the pages as it stands in text; 0 or one byte where there is none of two bytes.
inline uint32_t codeInPages(const DbcsIndex& index, uint32_t ucs) {
    for (unsigned i = 0; i < DbcsIndex::kPageCount; ++i)
        if (ucs >> 8 == index.pageKeys[i]) return index.pages[i][ucs & 0xFF];
    return 0;
}

// The same for a place in the grid, which always has two bytes.
inline uint32_t codeOfPlace(const DbcsIndex& index, uint32_t place) {
    const uint32_t row = divideBy(index.reciprocal, static_cast<uint16_t>(place));
    const uint32_t column = place - row * index.columns;
    const uint32_t gap = ifNegative(index.trailsBack.split - column, index.trailsBack.delta);
    return index.rowCode[row] + ((column + gap) << 8);
}

// The places of a run in source and target.
class Places {
public:
    Places(ByteView source, ByteSpan target, Run run)
        : from_(source.data() + run.consumed),
          fromEnd_(source.data() + source.size()),
          to_(target.data() + run.written),
          toEnd_(target.data() + target.size()) {}

    bool has(std::ptrdiff_t bytes, std::ptrdiff_t room) const {
        return fromEnd_ - from_ >= bytes && toEnd_ - to_ >= room;
    }
    // Characters for which there is both, of three bytes going to two.
    std::size_t triples() const {
        return std::min(static_cast<std::size_t>(fromEnd_ - from_) / 3, static_cast<std::size_t>(toEnd_ - to_) / 2);
    }
    const unsigned char* from() const { return from_; }
    unsigned char* to() const { return to_; }
    void advance(std::size_t read, std::size_t written) {
        from_ += read;
        to_ += written;
    }
    Run reached(ByteView source, ByteSpan target) const {
        return {static_cast<std::size_t>(from_ - source.data()), static_cast<std::size_t>(to_ - target.data())};
    }

    // ASCII at the front: eight bytes of it, or one. REQUIRES: there is a byte and room for it, and it is ASCII.
    void copyAscii() {
        if (has(8, 8)) {
            const auto bytes = loadWord<uint64_t>(from_);
            if ((bytes & 0x8080808080808080) == 0) {
                storeWord(to_, bytes);
                return advance(8, 8);
            }
        }
        *to_ = *from_;
        advance(1, 1);
    }

    // ASCII at the front of what is left, when that is too little for anything else.
    void copyLastAscii() {
        while (has(1, 1) && !has(3, 3) && *from_ < 0x80) {
            *to_ = *from_;
            advance(1, 1);
        }
    }

private:
    const unsigned char *from_, *fromEnd_;
    unsigned char *to_, *toEnd_;
};

// The code of a code point as it stands in text; 0, or one byte, where there is none of two bytes.
inline uint32_t codeOf(const DbcsIndex& index, const uint16_t* cells, uint32_t ucs) {
    const uint32_t direct = ucs - index.directFirst;
    if (direct >= index.directCount) return codeInPages(index, ucs);
    const uint32_t place = cells[direct] - 1U;
    return place < index.placeEnd ? codeOfPlace(index, place) : 0;
}

// Characters of three bytes, `count` at most; up to the first that isn't covered. False if there was one.
bool convertTriples(const DbcsIndex& index, const uint16_t* cells, std::size_t count, Places& places) {
    for (; count != 0; --count) {
        const unsigned char* const from = places.from();
        if ((from[0] & 0xF0) != 0xE0) return from[0] < 0x80;
        const uint32_t code = codeOf(index, cells, decodeUtf8(from, 2));
        if (code <= 0xFF) return false;
        storeWord(places.to(), static_cast<uint16_t>(code));
        places.advance(3, 2);
    }
    return true;
}

}  // namespace

Run runToUtf8Plain(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target, Run run) {
    const uint16_t* const units = table.maps[2].cjisToUcs;
    Places places{source, target, run};
    if (!index.asciiPasses || !index.pairsInGrid) return run;
    while (places.has(2, 3)) {
        const unsigned char* const from = places.from();
        if (from[0] < 0x80) {
            places.copyAscii();
            continue;
        }
        const uint32_t number = numberOf(index, from[0], from[1]);
        if (number >= index.numberCount) break;
        const uint32_t unit = units[number];
        if (unit - 0x800 >= 0xFFFD - 0x800) break;
        storeWord(places.to(), static_cast<uint16_t>(0x80E0 | unit >> 12 | (unit << 2 & 0x3F00)));
        places.to()[2] = static_cast<unsigned char>(0x80 | (unit & 0x3F));
        places.advance(2, 3);
    }
    places.copyLastAscii();
    return places.reached(source, target);
}

Run runFromUtf8Plain(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target, Run run) {
    const uint16_t* const cells = table.maps[2].ucsCells;
    Places places{source, target, run};
    if (!index.asciiPasses || !index.codesInBlock) return run;
    while (places.has(3, 2)) {
        if (places.from()[0] < 0x80) {
            places.copyAscii();
        } else if (!convertTriples(index, cells, places.triples(), places)) {
            break;
        }
    }
    places.copyLastAscii();
    return places.reached(source, target);
}

Run runToUtf16(const DbcsTable& table, const DbcsIndex& index, bool swap, ByteView source, ByteSpan target) {
    const uint16_t* const array = table.maps[2].cjisToUcs;
    Places places{source, target, {0, 0}};
    if (!index.asciiPasses || !index.pairsInGrid) return {0, 0};
    while (places.has(1, 2)) {
        const unsigned char* const from = places.from();
        const bool ascii = from[0] < 0x80;
        uint32_t unit = from[0];
        if (!ascii) {
            if (!places.has(2, 2)) break;
            const uint32_t number = numberOf(index, from[0], from[1]);
            if (number >= index.numberCount) break;
            unit = array[number];
            if (unit >= kReplacementCharacter) break;
        }
        storeUnit(places.to(), static_cast<uint16_t>(unit), swap);
        places.advance(ascii ? 1 : 2, 2);
    }
    return places.reached(source, target);
}

Run runFromUtf16(const DbcsTable& table, const DbcsIndex& index, bool swap, ByteView units, ByteSpan target) {
    const uint16_t* const cells = table.maps[2].ucsCells;
    Places places{units, target, {0, 0}};
    if (!index.asciiPasses || !index.codesInBlock) return {0, 0};
    while (places.has(2, 2)) {
        const uint32_t unit = loadUnit<uint16_t>(places.from(), swap);
        if (unit < 0x80) {
            *places.to() = static_cast<unsigned char>(unit);
            places.advance(2, 1);
            continue;
        }
        const uint32_t code = codeOf(index, cells, unit);
        if (code <= 0xFF) break;
        storeWord(places.to(), static_cast<uint16_t>(code));
        places.advance(2, 2);
    }
    return places.reached(units, target);
}

}  // namespace nls
