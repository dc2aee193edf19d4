#include "convmap/dbcs_index.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

// Against the arrows: what is proved here is what the plain search of the conversions answers.
#include "conversion/dbcs_search.hpp"

namespace nls {

namespace {

// --- the way forth

// A byte of an axis and its place there.
struct Placed {
    bool valid;
    uint8_t place;
};

// Adds a byte to the ranges of an axis. False when it would need a third one.
bool addByte(GridAxis& axis, unsigned& used, uint32_t byte, uint32_t place) {
    const uint32_t offset = byte - place;
    const unsigned last = used - 1;
    if (used != 0 && axis.first[last] + axis.width[last] + 1 == byte && axis.offset[last] == offset) {
        ++axis.width[last];
        return true;
    }
    if (used == 2) return false;
    axis.first[used] = byte;
    axis.width[used] = 0;
    axis.offset[used] = offset;
    ++used;
    return true;
}

struct FoundAxis {
    bool fits;  // there is a byte, and two ranges are enough
    GridAxis axis;
};
// The axis of the bytes for which `placeOf` has a place. NUL is never one of them.
template <typename PlaceOf>
FoundAxis findAxis(PlaceOf placeOf) {
    GridAxis axis{};
    unsigned used = 0;
    for (unsigned byte = 1; byte < 256; ++byte) {
        const Placed placed = placeOf(static_cast<uint8_t>(byte));
        if (placed.valid && !addByte(axis, used, byte, placed.place)) return {false, axis};
    }
    if (used == 1) {
        axis.first[1] = axis.first[0];
        axis.width[1] = axis.width[0];
        axis.offset[1] = axis.offset[0];
    }
    return {used != 0, axis};
}

// An axis whose constants are made of those of two others.
template <typename Combine>
GridAxis combined(const GridAxis& a, const GridAxis& b, Combine combine) {
    GridAxis result;
    for (int i = 0; i < 2; ++i) {
        result.first[i] = combine(a.first[i], b.first[i]);
        result.width[i] = combine(a.width[i], b.width[i]);
        result.offset[i] = combine(a.offset[i], b.offset[i]);
    }
    return result;
}
uint32_t inAllBytes(uint32_t value, uint32_t) {
    return (value & 0xFF) * 0x01010101;
}
uint32_t inWords(uint32_t lead, uint32_t trail) {
    return (lead & 0xFFFF) | trail << 16;
}

// True when the grid is counted by rows and columns alone, which a gap in the numbering disturbs.
bool countsEvenly(const nlsUcs2Map& map) {
    return map.trailsPerRow >= 2 && (map.gapSize == 0 || map.gapAfter == 0xFFFF);
}

// The code of Cjis code 0 mustn't have another number by its place.
bool zeroIsApart(const nlsUcs2Map& map) {
    nlsUcs2Map plain = map;
    plain.sjisZero = static_cast<uint16_t>(~map.sjisZero);
    const uint32_t number = gridNumber(plain, map.sjisZero);
    return number == 0 || number == kNoMapping;
}

// An entry of the map's array whose UTF-8 a lane can't write: a pair of bytes makes two bytes or three, never one, and
// a surrogate ends the conversion.
bool hasOddEntry(const nlsUcs2Map& map) {
    return std::any_of(map.cjisToUcs, map.cjisToUcs + cjisCountOf(map),
                       [](uint16_t unit) { return unit < 0x80 || isSurrogate(unit); });
}

bool isOn(const GridAxis& axis, uint32_t byte, uint32_t& place) {
    for (int i = 0; i < 2; ++i) {
        place = byte - axis.offset[i];
        if (byte - axis.first[i] <= axis.width[i]) return true;
    }
    return false;
}

void fillRows(const GridAxis& leads, uint8_t (&rowOf)[DbcsIndex::kRowCount]) {
    for (uint32_t lead = 0x80; lead < 256; ++lead) {
        uint32_t row = 0;
        const bool known = isOn(leads, lead, row) && row < DbcsIndex::kNoRow;
        rowOf[lead - 0x80] = known ? static_cast<uint8_t>(row) : DbcsIndex::kNoRow;
    }
}

// A row has at most 255 places, so that no column has the number kNoColumn.
void fillColumns(const GridAxis& trails, uint8_t (&columnOf)[256]) {
    for (uint32_t trail = 0; trail < 256; ++trail) {
        uint32_t column = 0;
        columnOf[trail] = isOn(trails, trail, column) ? static_cast<uint8_t>(column) : DbcsIndex::kNoColumn;
    }
}

void findWayForth(const DbcsTable& table, DbcsIndex& index) {
    const nlsUcs2Map& third = table.maps[2];
    if (cjisCountOf(third) == 0 || third.rangesOnCjis != 0 || !countsEvenly(third) || !zeroIsApart(third)) return;
    if (hasOddEntry(third)) return;
    const Charset charset{*table.attrib};
    const FoundAxis leads = findAxis([&](uint8_t lead) -> Placed {
        const int squeezed = lead - (lead > third.leadLast1 ? third.leadGap : 0);
        const bool valid = lead >= 0x80 && charset.trailCount(lead) == 1 && isGridLead(third, lead);
        return {valid, static_cast<uint8_t>(squeezed - third.leadFirst1)};
    });
    const FoundAxis trails = findAxis([&](uint8_t trail) -> Placed {
        const int squeezed = trail - trailGap(third, trail);
        return {isGridTrail(third, trail), static_cast<uint8_t>(squeezed - third.trailFirst1)};
    });
    index.leadBytes = combined(leads.axis, leads.axis, inAllBytes);
    index.trailBytes = combined(trails.axis, trails.axis, inAllBytes);
    index.pairWords = combined(leads.axis, trails.axis, inWords);
    index.columns = third.trailsPerRow;
    index.pairWeights = inWords(third.trailsPerRow, 1);
    index.firstNumber = 1U - third.cjisBase;
    index.numberCount = third.cjisCount - 1U;
    fillRows(leads.axis, index.rowOf);
    fillColumns(trails.axis, index.columnOf);
    index.pairsInGrid = leads.fits && trails.fits;
}

// --- the way back through the dense block

// Finds the bytes of the places below `limit`. Answers how many of the places an AxisBack tells.
template <typename ByteOf>
uint32_t findAxisBack(AxisBack& axis, uint32_t limit, ByteOf byteOf) {
    const auto offsetOf = [&](uint32_t place) { return byteOf(place) - place; };
    uint32_t place = 0;
    axis.offset = offsetOf(0);
    while (place < limit && offsetOf(place) == axis.offset) ++place;
    axis.split = place - 1;
    if (place == limit) return limit;
    axis.delta = offsetOf(place) - axis.offset;
    while (place < limit && offsetOf(place) == axis.offset + axis.delta) ++place;
    return place;
}

// Rows of the grid from the first on whose lead bytes an AxisBack tells. A lead byte of 0 would make a code of one
// byte, and one of 0xFF could make the code that says "no mapping".
uint32_t findRows(const nlsUcs2Map& map, AxisBack& axis) {
    const auto leadOf = [&](uint32_t row) -> uint32_t {
        const auto squeezed = static_cast<uint8_t>(map.leadFirst1 + row);
        return static_cast<uint8_t>(squeezed + (squeezed > map.leadLast1 ? map.leadGap : 0));
    };
    uint32_t rows = 0;
    while (rows < DbcsIndex::kRowCount && leadOf(rows) != 0 && leadOf(rows) != 0xFF) ++rows;
    return rows == 0 ? 0 : findAxisBack(axis, rows, leadOf);
}

// Lanes take a byte of 0 for none, so that no trail may be 0.
bool findColumns(const nlsUcs2Map& map, AxisBack& axis) {
    const auto trailOf = [&](uint32_t column) -> uint32_t {
        const auto squeezed = static_cast<uint8_t>(map.trailFirst1 + column);
        return static_cast<uint8_t>(squeezed + trailGap(map, squeezed));
    };
    for (uint32_t column = 0; column < map.trailsPerRow; ++column)
        if (trailOf(column) == 0) return false;
    return map.trailsPerRow == findAxisBack(axis, map.trailsPerRow, trailOf);
}

// Cells of 0 and 0xFFFF are no mapping. All others must stand for a place below `end`, and for no surrogate: two of
// these are one character in UTF-16, whatever a cell says of the first.
bool allBelow(const nlsUcs2Map& map, uint32_t count, uint32_t end) {
    for (uint32_t place = 0; place < count; ++place) {
        const uint32_t cell = map.ucsCells[place];
        if (cell == 0 || cell == kNoMapping) continue;
        if (cell - 1 >= end || isSurrogate(map.ucsMin + place)) return false;
    }
    return true;
}

void findWayBack(const DbcsTable& table, DbcsIndex& index) {
    const nlsUcs2Map& third = table.maps[2];
    const uint32_t count = directCountOf(third);
    if (!hasThirdMap(table) || count == 0 || third.cjisBase != 0 || !countsEvenly(third)) return;
    const uint32_t columns = third.trailsPerRow, rows = findRows(third, index.leadsBack);
    constexpr uint32_t kPlaceLimit = 0x8000;
    const uint32_t placeEnd = std::min(rows * columns, kPlaceLimit);
    if (rows == 0 || !findColumns(third, index.trailsBack) || !allBelow(third, count, placeEnd)) return;
    for (uint32_t row = 0; row < rows; ++row) {
        const uint32_t code = gridCode(third, static_cast<uint16_t>(row * columns + 1));
        index.rowCode[row] = static_cast<uint16_t>(code << 8 | code >> 8);
    }
    index.columns = columns;
    index.directFirst = third.ucsMin;
    index.directCount = count - 1;
    index.placeEnd = placeEnd;
    index.reciprocal = kReciprocals[columns];
    // 2^(15 + bits) / columns, rounded up, lies between 2^15 and 2^16. What rounding adds to a place below 2^15, times
    // the factor, is less than 2^15 * columns, which is at most 2^(15 + bits): the quotient is exact.
    const auto bits = static_cast<uint32_t>(std::bit_width(columns - 1));
    index.rowFactor = ((1U << (15 + bits)) + columns - 1) / columns;
    index.rowShift = bits - 1;
    index.codesInBlock = true;
}

// --- the pages and ASCII

// A code as its bytes stand in text; 0 for none, and for the two-byte codes whose second byte is 0.
uint16_t entryOf(uint32_t code) {
    if (code <= 0xFF) return static_cast<uint16_t>(code);
    return code == kNoMapping || (code & 0xFF) == 0 ? 0 : static_cast<uint16_t>(code << 8 | code >> 8);
}

// Fills a page with the codes that the maps answer. False when there are none of two bytes.
bool fillPage(const DbcsTable& table, unsigned key, uint16_t (&page)[DbcsIndex::kPageSize]) {
    bool worthIt = false;
    for (unsigned low = 0; low < DbcsIndex::kPageSize; ++low) {
        page[low] = entryOf(mappedCode(table, key << 8 | low));
        worthIt |= page[low] > 0xFF;
    }
    return worthIt;
}

// Kana and CJK punctuation, full width, dashes and quotes, boxes, circled figures, mathematics, arrows, Cyrillic,
// Greek.
constexpr uint8_t kBusyPages[] = {0x30, 0xFF, 0x20, 0x25, 0x24, 0x22, 0x21, 0x04, 0x03};

void findPages(const DbcsTable& table, unsigned pageCount, DbcsIndex& index) {
    std::fill(std::begin(index.pageKeys), std::end(index.pageKeys), DbcsIndex::kNoKey);
    for (const uint8_t key : kBusyPages) {
        if (index.pageCount == pageCount) return;
        if (!fillPage(table, key, index.pages[index.pageCount])) continue;
        index.pageKeys[index.pageCount++] = key;
    }
}

bool asciiPasses(const DbcsTable& table) {
    const Charset charset{*table.attrib};
    for (unsigned c = 0; c < 0x80; ++c) {
        if (charset.trailCount(static_cast<unsigned char>(c)) != 0 || mappedCode(table, c) != kNoMapping) return false;
        if (c != 0 && mappedUnicode(table, static_cast<uint16_t>(c)) != kNoMapping) return false;
    }
    return true;
}

}  // namespace

void buildDbcsIndex(const DbcsTable& table, unsigned pageCount, DbcsIndex& index) {
    std::memset(&index, 0, bytesOfIndex(0));
    findPages(table, std::min(pageCount, DbcsIndex::kPageCount), index);
    if (table.attrib == nullptr) return;
    index.asciiPasses = asciiPasses(table);
    findWayForth(table, index);
    findWayBack(table, index);
}

void addDbcsIndex(const Arena& arena, uint32_t reserve, DbcsTable& table) {
    const uint32_t left = arena.left();
    DbcsIndex* index = nullptr;
    unsigned pages = DbcsIndex::kPageCount;
    while (pages > 0 && bytesOfIndex(pages) + alignof(DbcsIndex) + reserve > left) --pages;
    if (bytesOfIndex(pages) + alignof(DbcsIndex) + reserve <= left)
        index = static_cast<DbcsIndex*>(arena.take(bytesOfIndex(pages), alignof(DbcsIndex)));
    if (index != nullptr) buildDbcsIndex(table, pages, *index);
    tieDbcsIndex(table, index);
}

void tieDbcsIndex(DbcsTable& table, const DbcsIndex* index) {
    nlsUcs2Map& first = table.maps[0];
    std::memcpy(first.reserved150 + kIndexPlace, &index, sizeof index);
    first.reserved24 = index == nullptr ? 0 : sealOf(table, index);
}

}  // namespace nls
