#include "conversion/dbcs_runs.hpp"

#include <bit>

#include "conversion/cjis_grid.hpp"
#include "conversion/dbcs_lane_constants.hpp"
#include "conversion/utf_codec.hpp"

namespace nls {

const LaneConstants kLane{};

namespace {

// The number of a pair in the grid; numberCount or more where it has none.
inline uint32_t numberOf(const DbcsIndex& index, uint8_t first, uint8_t second) {
    const uint32_t column = index.columnOf[second];
    return column == DbcsIndex::kNoColumn ? DbcsIndex::kNoRow : index.rowStart[first - 0x80] + column;
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
    const AxisBack &leads = index.leadsBack, &trails = index.trailsBack;
    const uint32_t row = divideBy(index.reciprocal, static_cast<uint16_t>(place));
    const uint32_t column = place - row * index.columns;
    const uint32_t trail = column + trails.offset + ifNegative(trails.split - column, trails.delta);
    return (trail << 8) + row + leads.offset + ifNegative(leads.split - row, leads.delta);
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
    const unsigned char* from() const { return from_; }
    unsigned char* to() const { return to_; }
    void advance(std::size_t read, std::size_t written) {
        from_ += read;
        to_ += written;
    }
    Run reached(ByteView source, ByteSpan target) const {
        return {static_cast<std::size_t>(from_ - source.data()), static_cast<std::size_t>(to_ - target.data())};
    }

    // ASCII from the front on, up to eight bytes of it. REQUIRES: there is a byte and room for it, and it is ASCII.
    void copyAscii() {
        std::size_t count = 1;
        if (has(8, 8)) {
            const auto bytes = loadWord<uint64_t>(from_);
            const uint64_t high = bytes & 0x8080808080808080;
            storeWord(to_, bytes);
            count = high == 0 ? 8 : static_cast<std::size_t>(std::countr_zero(high)) / 8;
        } else {
            *to_ = *from_;
        }
        advance(count, count);
    }

    // ASCII at the front of what is left, when that is too little for anything else.
    void copyLastAscii() {
        while (has(1, 1) && !has(3, 4) && *from_ < 0x80) {
            *to_ = *from_;
            advance(1, 1);
        }
    }

private:
    const unsigned char *from_, *fromEnd_;
    unsigned char *to_, *toEnd_;
};

}  // namespace

Run runToUtf8Plain(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target, Run run) {
    const uint16_t* const units = table.maps[2].cjisToUcs;
    Places places{source, target, run};
    if (!index.asciiPasses || !index.pairsInGrid) return run;
    while (places.has(2, 4)) {
        const unsigned char* const from = places.from();
        if (from[0] < 0x80) {
            places.copyAscii();
            continue;
        }
        const uint32_t number = numberOf(index, from[0], from[1]);
        if (number >= index.numberCount) break;
        const uint32_t unit = units[number];
        if (unit - 0x800 >= 0xFFFD - 0x800) break;
        storeWord<uint32_t>(places.to(), 0x8080E0 | unit >> 12 | (unit << 2 & 0x3F00) | (unit & 0x3F) << 16);
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
        const unsigned char* const from = places.from();
        if (from[0] < 0x80) {
            places.copyAscii();
            continue;
        }
        if (bytesFromUtf8(from[0]) != 2) break;
        const uint32_t ucs = decodeUtf8(from, 2), direct = ucs - index.directFirst;
        uint32_t code;
        if (direct < index.directCount) {
            const uint32_t place = cells[direct] - 1U;
            if (place >= index.placeEnd) break;
            code = codeOfPlace(index, place);
        } else {
            code = codeInPages(index, ucs);
            if (code <= 0xFF) break;
        }
        storeWord(places.to(), static_cast<uint16_t>(code));
        places.advance(3, 2);
    }
    places.copyLastAscii();
    return places.reached(source, target);
}

}  // namespace nls
