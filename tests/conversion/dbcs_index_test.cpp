// The index of a multi-byte table: that it says what the plain search says, that only its own table finds it, and that
// it takes what room there is.
#include "convmap/dbcs_index.hpp"

#include <cstring>

#include "conversion/dbcs_search.hpp"
#include "tests/conversion/dbcs_fixture.hpp"

namespace nls {
namespace {

using namespace test;

uint32_t numberByIndex(const DbcsIndex& index, uint32_t code) {
    const uint32_t lead = code >> 8, row = lead < 0x80 ? DbcsIndex::kNoRow : index.rowOf[lead - 0x80];
    const uint32_t column = index.columnOf[code & 0xFF];
    if (row == DbcsIndex::kNoRow || column == DbcsIndex::kNoColumn) return kNoMapping;
    return index.firstNumber + row * index.columns + column;
}

void expectSaysWhatTheSearchSays(const std::string& name) {
    RealDbcs dbcs{name};
    DbcsIndex index;
    buildDbcsIndex(dbcs.table(), DbcsIndex::kPageCount, index);
    const nlsUcs2Map& third = dbcs.table().maps[2];
    EXPECT_TRUE(index.asciiPasses && index.pairsInGrid && index.codesInBlock) << name;
    for (uint32_t code = 0x100; code < 0x10000; ++code) {
        if (dbcs.attrib.lengthMap[code >> 8] % 8 != 1 || (code & 0xFF) == 0) continue;
        ASSERT_EQ(numberByIndex(index, code), gridNumber(third, static_cast<uint16_t>(code))) << name << code;
    }
    EXPECT_EQ(index.numberCount + 1, third.cjisCount) << name;
    EXPECT_EQ(index.directCount + 1, third.ucsCellCount) << name;
    ASSERT_EQ(index.pageCount, DbcsIndex::kPageCount) << name;
    for (unsigned i = 0; i < index.pageCount; ++i) {
        for (uint32_t low = 0; low < DbcsIndex::kPageSize; ++low) {
            const uint32_t code = mappedCode(dbcs.table(), index.pageKeys[i] << 8 | low), page = index.pages[i][low];
            const uint32_t said = page > 0xFF ? (page & 0xFF) << 8 | page >> 8 : page != 0 ? page : kNoMapping;
            ASSERT_EQ(said, code) << name << index.pageKeys[i] << " " << low;
        }
    }
}

TEST(DbcsIndex, SaysWhatTheSearchSays) {
    for (const char* const name : kMultiByte)
        if (name != std::string{"ISO6937"} && name != std::string{"CP1361"}) expectSaysWhatTheSearchSays(name);
}

// Whatever else stands in the record, and whatever a copy of it is told.
TEST(DbcsIndex, OnlyItsOwnTableFindsIt) {
    RealDbcs dbcs{"GB2312"};
    DbcsTable& table = dbcs.table();
    DbcsIndex index;
    buildDbcsIndex(table, 1, index);
    tieDbcsIndex(table, &index);
    EXPECT_EQ(dbcsIndexOf(table), &index);
    EXPECT_EQ(dbcsIndexOf(DbcsTable{table}), &index) << "a copy shares it";

    const DbcsTable tied = table;
    for (unsigned byte = 0; byte < sizeof table.maps[0].reserved24; ++byte) {
        table.maps[0].reserved24 ^= 1U << 8 * byte;
        EXPECT_EQ(dbcsIndexOf(table), nullptr);
        table = tied;
    }
    for (unsigned byte = 2; byte < 10; ++byte) {
        table.maps[0].reserved150[byte] ^= 0x10;
        EXPECT_EQ(dbcsIndexOf(table), nullptr);
        table = tied;
    }
    ++table.maps[2].ucsCells;
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    table = tied;
    ++table.attrib;
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    table = tied;
    tieDbcsIndex(table, nullptr);
    EXPECT_EQ(dbcsIndexOf(table), nullptr);
    std::memset(table.maps[0].reserved150, 0xAB, sizeof table.maps[0].reserved150);
    table.maps[0].reserved24 = 0xABABABAB;
    EXPECT_EQ(dbcsIndexOf(table), nullptr) << "what a file or a caller left there";
}

// With every size of the arena: as many pages as fit, the reserve untouched, and marked as having none when none fits.
TEST(DbcsIndex, TakesWhatRoomThereIs) {
    DbcsTable table = RealDbcs::of("BIG-5").table();
    constexpr uint32_t kReserve = 1000;
    alignas(8) static unsigned char memory[4000];
    for (uint32_t size = 0; size < sizeof memory; size += 4) {
        unsigned char* next = memory;
        uint32_t left = size;
        std::memset(table.maps[0].reserved150, 0xFF, sizeof table.maps[0].reserved150);
        addDbcsIndex(Arena{next, left}, kReserve, table);
        const DbcsIndex* const index = dbcsIndexOf(table);
        const uint32_t free = size < kReserve ? 0 : size - kReserve;
        ASSERT_EQ(index != nullptr, free >= bytesOfIndex(0) + alignof(DbcsIndex)) << size;
        ASSERT_EQ(next - memory, static_cast<std::ptrdiff_t>(size - left));
        if (index == nullptr) {
            ASSERT_EQ(left, size);
            continue;
        }
        ASSERT_GE(left, kReserve);
        ASSERT_EQ(size - left, bytesOfIndex(index->pageCount)) << size;
        ASSERT_EQ(index->pageCount == DbcsIndex::kPageCount, free >= bytesOfIndex(3) + alignof(DbcsIndex)) << size;
    }
}

// What disturbs the lanes is left to the exact walk.
TEST(DbcsIndex, DoubtfulTablesArentCovered) {
    struct Row {
        const char* why;
        void (*spoil)(RealDbcs& dbcs);
        bool ascii, pairs, codes;
    } const rows[] = {
        {"sound", [](RealDbcs&) {}, true, true, true},
        {"ASCII has a trail byte", [](RealDbcs& p) { p.attrib.lengthMap[0x61] = 1; }, false, true, true},
        {"a map holds ASCII", [](RealDbcs& p) { p.table().maps[2].ucsMin = 0x40; }, false, true, true},
        {"a lead byte of three bytes", [](RealDbcs& p) { p.attrib.lengthMap[0xB0] = 2; }, true, true, true},
        {"lead bytes in three ranges", [](RealDbcs& p) { p.attrib.lengthMap[0xB0] = p.attrib.lengthMap[0xC0] = 0; },
         true, false, true},
        {"no third map", [](RealDbcs& p) { p.table().maps[2].cjisToUcs = nullptr; }, true, false, false},
        {"triples on the way forth", [](RealDbcs& p) { p.table().maps[2].rangesOnCjis = 1; }, true, false, true},
        {"a gap in the numbering", [](RealDbcs& p) { p.table().maps[2].gapAfter = 100, p.table().maps[2].gapSize = 7; },
         true, false, false},
        {"no columns", [](RealDbcs& p) { p.table().maps[2].trailsPerRow = 0; }, true, false, false},
        {"a code with two numbers", [](RealDbcs& p) { p.table().maps[2].sjisZero = 0xB0A1; }, true, false, true},
        {"a surrogate", [](RealDbcs& p) { p.arrays[2][0][500] = 0xD800; }, true, false, true},
        {"a pair that is ASCII", [](RealDbcs& p) { p.arrays[2][0][500] = 0x7F; }, true, false, true},
        {"surrogates in the dense block",
         [](RealDbcs& p) { p.table().maps[2].ucsMin = 0xB000, p.table().maps[2].ucsMax = 0xFFFF; }, true, true, false},
        {"a trail byte of 0", [](RealDbcs& p) { p.table().maps[2].trailFirst1 = 0xF0; }, true, true, false},
        {"a place behind the last row", [](RealDbcs& p) { p.arrays[2][2][500] = 0xF000; }, true, true, false},
    };
    for (const Row& row : rows) {
        RealDbcs dbcs{"GB2312"};
        row.spoil(dbcs);
        DbcsIndex index;
        buildDbcsIndex(dbcs.table(), 0, index);
        EXPECT_EQ(index.asciiPasses, row.ascii) << row.why;
        EXPECT_EQ(index.pairsInGrid, row.pairs) << row.why;
        EXPECT_EQ(index.codesInBlock, row.codes) << row.why;
    }
}

}  // namespace
}  // namespace nls
