// The index of a multi-byte table: what the bridges may take for granted about it, and a few pages of ready answers.
//
// The bridges convert runs of ASCII and of double-byte characters sixteen at a time, by arithmetic on lanes. Whether
// that is allowed, and with which constants, follows from the three maps and the trail counts, but takes some
// microseconds to find out. So it is found out once, when the table has been loaded, by asking the plain search
// (dbcs_search.hpp) what it answers; the index holds nothing that the search would answer otherwise. Kana and
// punctuation stand in the rows of the first map, whose walk is the slowest of all searches: the index carries up to
// three pages of 256 code points with their charset codes.
//
// The index lies in the arena behind the arrays and is left out, or has fewer pages, where room is short: a table
// without it converts to the same text, more slowly, and long texts build one on the stack. The table finds it through
// bytes of its first map record that mean nothing in the file: a pointer in bytes 152 to 159 and a seal in bytes 24 to
// 27. The loader writes both, zeros where there is no index. A record that someone else has made may hold anything
// there: the pointer counts only with the seal that belongs to it and to the places of the arrays. The seal doesn't
// depend on where the record itself lies, so a copy of the table shares the index.
//
// Tested by tests/conversion/dbcs_bridge_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "convmap/conv_table.hpp"
#include "core/base/arena.hpp"
#include "core/base/views.hpp"

namespace nls {

// The constants of lanes stand here as 32-bit words, which a register of any width takes in by one broadcast: a value
// alone, one for each of two 16-bit lanes, or one for each of four bytes.

// Bytes that are valid on one axis of a grid, in one or two ascending ranges: a byte with byte - first[i] <= width[i]
// has the place byte - offset[i]. An axis with one range holds it twice.
struct GridAxis {
    uint32_t first[2], width[2], offset[2];
};

// Place 0 to `split` of an axis is the byte place + offset, a later one that byte + delta.
struct AxisBack {
    uint32_t split, offset, delta;
};

struct DbcsIndex {
    static constexpr unsigned kPageCount = 3, kPageSize = 256;
    static constexpr uint32_t kRowCount = 128;
    static constexpr uint8_t kNoRow = 0xFF;
    static constexpr uint8_t kNoColumn = 0xFF;
    static constexpr uint32_t kNoKey = 0xFFFFFFFF;

    bool asciiPasses;   // 0 to 0x7F are one byte each, caught by no map in either direction
    bool pairsInGrid;   // two-byte characters by the third map's grid: leadBytes to columnOf
    bool codesInBlock;  // code points by the third map's dense block: directFirst to rowCode
    uint8_t pageCount;

    uint32_t columns;                // trail bytes in a row, for both ways
    GridAxis leadBytes, trailBytes;  // of two-byte characters; no NUL is a trail. The same in all bytes of a word
    GridAxis pairWords;              // leads in the low half, trails in the high half
    uint32_t pairWeights;            // what a place counts for in a number: a row in the low half, 1 in the high half
    uint32_t firstNumber;            // Cjis code of the first place of the grid
    uint32_t numberCount;            // Cjis codes below it have an entry, and there is one behind
    uint8_t rowOf[kRowCount];        // by lead byte less 0x80; or kNoRow
    uint8_t columnOf[256];           // by trail byte; or kNoColumn

    uint32_t directFirst, directCount;  // code points from directFirst on that have a cell, with another one behind
    uint32_t placeEnd;                  // a cell less 1 is a place below it, or the code point isn't mapped
    uint32_t reciprocal;                // of `columns`, as divideBy takes it (conversion/cjis_grid.hpp)
    uint32_t rowFactor, rowShift;  // the same for 16 bits: the row of a place is (place * rowFactor >> 16) >> rowShift
    AxisBack leadsBack, trailsBack;
    uint16_t rowCode[kRowCount];  // the code of each row's first place, as it stands in text: the first byte low

    uint32_t pageKeys[kPageCount];  // the upper byte of each page's code points; kNoKey where there is no page
    // The codes that the maps answer, as they stand in text: the first byte low, no second byte for one-byte codes.
    // 0 where there is none. Behind the last page comes one more entry, which a lane may read and doesn't use.
    uint16_t pages[kPageCount][kPageSize];
    uint16_t behindPages[2];
};

// Room that an index with some pages takes.
constexpr std::size_t bytesOfIndex(unsigned pageCount) {
    return offsetof(DbcsIndex, pages) + pageCount * sizeof(uint16_t) * DbcsIndex::kPageSize +
           sizeof(DbcsIndex::behindPages);
}
static_assert(bytesOfIndex(DbcsIndex::kPageCount) <= 2352);

// Fills an index for the table, with at most `pageCount` pages. Reads the table alone.
void buildDbcsIndex(const DbcsTable& table, unsigned pageCount, DbcsIndex& index);

// Takes an index from the arena, as far as `reserve` bytes stay free in it, and ties it to the table; without room the
// table is marked as having none.
void addDbcsIndex(const Arena& arena, uint32_t reserve, DbcsTable& table);

// What ties an index to a table: half of a product that depends on every bit of the places.
inline uint32_t sealOf(const DbcsTable& table, const DbcsIndex* index) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    const auto place = [](const auto* object) { return uint64_t{reinterpret_cast<uintptr_t>(object)}; };
    const auto& [first, second, third] = table.maps;
    const uint64_t sum = place(index) + 3 * place(first.ucsRows) + 5 * place(first.ucsCells) +
                         9 * place(second.cjisToUcs) + 11 * place(third.cjisToUcs) + 13 * place(third.ucsCells) +
                         17 * place(table.attrib);
    return static_cast<uint32_t>((sum ^ kOdd) * kOdd >> 32);
}

inline constexpr std::size_t kIndexPlace = 152 - 150;  // in reserved150

// Ties an index to the table; null marks it as having none.
void tieDbcsIndex(DbcsTable& table, const DbcsIndex* index);

// The index that the table is tied to, or null.
inline const DbcsIndex* dbcsIndexOf(const DbcsTable& table) {
    const auto* const index = loadWord<const DbcsIndex*>(table.maps[0].reserved150 + kIndexPlace);
    return index != nullptr && table.maps[0].reserved24 == sealOf(table, index) ? index : nullptr;
}

}  // namespace nls
