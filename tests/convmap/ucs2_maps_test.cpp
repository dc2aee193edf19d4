#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "convmap/conv_table.hpp"
#include "nls/convert.h"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::ConvTable;
using nls::DbcsTable;
using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::MapSource;
using nls::test::OpenHandle;

// Three maps of arbitrary bytes, with arrays of 0, 1 and many entries.
std::array<MapSource, 3> randomMaps(unsigned seed) {
    std::mt19937 random{seed};
    std::array<MapSource, 3> maps;
    for (MapSource& source : maps) {
        unsigned char bytes[sizeof source.map];
        for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
        std::memcpy(&source.map, bytes, sizeof bytes);
        for (auto* const array : {&source.cjisToUcs, &source.rows, &source.cells}) {
            array->resize(std::array<std::size_t, 4>{0, 1, 300, 5000}[random() % 4]);
            for (uint16_t& word : *array) word = static_cast<uint16_t>(random());
        }
    }
    return maps;
}

ConvmapBuilder world(const std::array<MapSource, 3>& maps, unsigned char code = 17, unsigned char back = 18) {
    ConvmapBuilder builder;
    builder.maps("DBCS", "UTF-8", code, maps).bare("UTF-8", "DBCS", back);
    builder.attributes("DBCS", nls::test::doubleByte(NLS_CHARSET_MULTI_BYTE));
    return builder;
}

void expectArray(const uint16_t* array, const std::vector<uint16_t>& source, const uint16_t* asRead) {
    if (source.empty()) {
        EXPECT_EQ(array, asRead) << "no array: what the file holds stays";
        return;
    }
    ASSERT_EQ(reinterpret_cast<uintptr_t>(array) % 2, 0U);
    EXPECT_EQ(std::memcmp(array, source.data(), source.size() * 2), 0);
}

TEST(Ucs2Maps, BothDirectionsShareTheArrays) {
    for (const auto& [code, back] : {std::pair<unsigned char, unsigned char>{17, 18}, {81, 50}, {89, 18}, {17, 50}})
        for (const bool backFirst : {false, true})
            for (unsigned seed = 0; seed < 12; ++seed) {
                const std::array<MapSource, 3> maps = randomMaps(seed);
                OpenHandle open{world(maps, code, back).build()};
                nlsConvTable *forth = nullptr, *home = nullptr;
                if (backFirst) {
                    ASSERT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "DBCS", 0, &home), NLS_OK);
                }
                ASSERT_EQ(nlsGetConvTablePtr(open.handle, "DBCS", "UTF-8", 0, &forth), NLS_OK);
                ASSERT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "DBCS", 0, &home), NLS_OK);
                EXPECT_EQ(nlsConversionType(forth), code);
                EXPECT_EQ(nlsConversionType(home), back);
                ASSERT_NE(forth, home);
                EXPECT_EQ(std::memcmp(forth, home, sizeof(DbcsTable)), 0);

                const DbcsTable& table = ConvTable{forth}.dbcs();
                nlsAttribStruct* attrib = nullptr;
                ASSERT_EQ(nlsGetAttribStructPtr(open.handle, "DBCS", &attrib), NLS_OK);
                EXPECT_EQ(table.attrib, attrib);
                for (std::size_t i = 0; i < 3; ++i) {
                    const nlsUcs2Map &map = table.maps[i], &source = maps[i].map;
                    expectArray(map.cjisToUcs, maps[i].cjisToUcs, source.cjisToUcs);
                    expectArray(map.ucsRows, maps[i].rows, source.ucsRows);
                    expectArray(map.ucsCells, maps[i].cells, source.ucsCells);
                    EXPECT_EQ(map.cjisCount, maps[i].cjisToUcs.size());
                    EXPECT_EQ(map.ucsRowCount, maps[i].rows.size());
                    EXPECT_EQ(map.ucsCellCount, maps[i].cells.size());
                    EXPECT_EQ(map.substChar, source.substChar) << "the rest is taken as it is";
                    EXPECT_EQ(std::memcmp(map.ranges, source.ranges, sizeof map.ranges), 0);
                }
            }
}

TEST(Ucs2Maps, TheRecordAsTheFileHoldsIt) {
    const Bytes file = world(randomMaps(3)).build();
    OpenHandle open{file};
    unsigned char read[481];
    ASSERT_EQ(readUCS2Data(open.handle, "dbcs", "utf-8", read + 1), NLS_OK);
    EXPECT_EQ(std::memcmp(read + 1, file.data() + open.handle->toc[0].offset + 8, 480), 0);
    EXPECT_EQ(readUCS2Data(open.handle, "UTF-8", "DBCS", read), NLS_NO_CONV_TABLE) << "an entry without data";
    open.file.cutRead = open.file.reads;
    EXPECT_EQ(readUCS2Data(open.handle, "DBCS", "UTF-8", read), NLS_READ_FAILED);
}

TEST(Ucs2Maps, AnArrayMayEndWhereTheFileEnds) {
    std::array<MapSource, 3> maps;
    maps[1].cells.assign(50, 0x1234);
    Bytes file = world(maps).build();
    const std::size_t attributes = nls::format::attributes::kSize;
    // The array stands behind the record, in front of the attribute table: put a copy of it at the very end.
    const std::size_t place = file.size() - attributes - nls::format::ucs2::kArrayPrefix - 100;
    const Bytes array(file.begin() + static_cast<std::ptrdiff_t>(place),
                      file.end() - static_cast<std::ptrdiff_t>(attributes));
    const auto moved = static_cast<uint32_t>(file.size());
    file.insert(file.end(), array.begin(), array.end());
    const std::size_t record = 16 + 3 * 64;
    std::memcpy(file.data() + record + 8 + 160 + 36, &moved, 4);

    nlsConvTable* table = nullptr;
    OpenHandle whole{file};
    EXPECT_EQ(nlsGetConvTablePtr(whole.handle, "DBCS", "UTF-8", 0, &table), NLS_OK);
    const Bytes shorter(file.begin(), file.end() - 1);
    OpenHandle cut{shorter};
    EXPECT_EQ(getUCS2Data(cut.handle, "DBCS", "UTF-8", 17, &table), NLS_READ_FAILED);
    EXPECT_EQ(nlsGetConvTablePtr(cut.handle, "DBCS", "UTF-8", 0, &table), NLS_NO_CONV_TABLE);

    for (const uint32_t offset : {0xFFFFFFFFU, 0xFFFFFFFAU, 0xFFFFFFFAU - 100}) {
        std::memcpy(file.data() + record + 8 + 160 + 36, &offset, 4);
        OpenHandle past{file};
        EXPECT_EQ(getUCS2Data(past.handle, "DBCS", "UTF-8", 17, &table), NLS_READ_FAILED) << offset;
    }
}

TEST(Ucs2Maps, WhatIsMissingHasItsStatus) {
    std::array<MapSource, 3> maps;
    maps[0].cjisToUcs.assign(10, 1);
    const struct {
        const char* why;
        ConvmapBuilder builder;
        nlsStatus inner, outer;
    } rows[] = {
        {"no attribute table", ConvmapBuilder{}.maps("DBCS", "UTF-8", 17, maps).bare("UTF-8", "DBCS", 18), 1, 1},
        {"no entry for the way back",
         ConvmapBuilder{}.maps("DBCS", "UTF-8", 17, maps).attributes("DBCS", nls::test::doubleByte(2)), 8, 8},
        {"the way back of another kind", world(maps, 17, 24), 8, 8},
        {"all there", world(maps), 0, 0},
    };
    for (const auto& row : rows) {
        const Bytes file = ConvmapBuilder{row.builder}.build();
        nlsConvTable* table = nullptr;
        OpenHandle inner{file}, outer{file};
        EXPECT_EQ(getUCS2Data(inner.handle, "DBCS", "UTF-8", 17, &table), row.inner) << row.why;
        EXPECT_EQ(nlsGetConvTablePtr(outer.handle, "DBCS", "UTF-8", 0, &table), row.outer) << row.why;
        EXPECT_EQ(outer.handle->toc[0].data != nullptr, row.outer == NLS_OK) << row.why;
    }
    OpenHandle open{world(maps).build()};
    nlsConvTable* table = nullptr;
    for (const int64_t type : {int64_t{7}, int64_t{19}, int64_t{0}, INT64_MAX, INT64_MIN})
        EXPECT_EQ(getUCS2Data(open.handle, "DBCS", "UTF-8", type, &table), NLS_NO_CONV_TABLE);
}

}  // namespace
