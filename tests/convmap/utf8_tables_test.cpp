// The tables of single-byte charsets: which units make them, and what goes through them both ways. What real charsets
// make of every byte and every code point: tests/real.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "convmap/conv_table.hpp"
#include "convmap/default_page.hpp"
#include "nls/convert.h"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::ConvTable;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;
using nls::test::UnitTable;
using nls::test::upperHalfAt;

ConvmapBuilder world(const UnitTable& units, unsigned char code) {
    ConvmapBuilder builder;
    builder.units("SBCS", "UTF-8", code, units).bare("UTF-8", "SBCS", 20);
    return builder;
}

// Every byte comes back from its form.
void expectBothWays(const nlsConvTable* forth, const nlsConvTable* back, const char* why) {
    for (unsigned c = 0; c < 256; ++c) {
        unsigned char form[5], again[4];
        const auto byte = static_cast<unsigned char>(c);
        uint32_t length = 0, count = 0;
        ASSERT_EQ(convertBytes(form, 5, &byte, 1, nullptr, 0, forth, &length, 0), NLS_OK) << why << c;
        ASSERT_EQ(convertBytes(again, 4, form, static_cast<int32_t>(length), nullptr, 0, back, &count, 0), NLS_OK);
        ASSERT_TRUE(count == 1 && again[0] == c) << why << c;
    }
}

UnitTable with(UnitTable units, unsigned byte, uint16_t unit) {
    units[byte] = unit;
    return units;
}

TEST(Utf8Tables, AreMadeOfUnitsWithoutACommonKey) {
    const UnitTable latin = upperHalfAt(0x80);
    const struct {
        const char* why;
        UnitTable units;
        bool sound, wholeWay = true;
    } rows[] = {
        {"Latin", latin, true},
        {"three-byte forms", upperHalfAt(0x2400), true},
        {"forms of two and three bytes", upperHalfAt(0x7C0), true},
        {"the last units there are", upperHalfAt(0xFF80), true},
        {"a unit for byte 0 is not looked at", with(latin, 0, 0x41), true},
        {"one byte without a character", with(latin, 0x90, 0), true, false},
        {"two bytes without a character", with(with(latin, 0x90, 0), 0x91, 0), false},
        {"one character twice", with(latin, 0x90, 0x41), false},
        {"a surrogate counts as a question mark, which is there", with(latin, 0x90, 0xD800), false},
        {"a surrogate alone", with(with(latin, 0x3F, 0xDFFF), 0x90, 0x3000), true},
        {"one key for two characters of three bytes", with(with(latin, 0x80, 0x20AC), 0x81, 0x30AC), false},
        {"their neighbours have two", with(with(latin, 0x80, 0x20AC), 0x81, 0x30AD), true},
    };
    for (const auto& row : rows)
        for (const unsigned char code : {uint8_t{19}, uint8_t{51}}) {
            OpenHandle open{world(row.units, code).build()};
            nlsConvTable *forth = nullptr, *back = nullptr;
            const nlsStatus want = row.sound ? NLS_OK : NLS_NO_CONV_TABLE;
            ASSERT_EQ(nlsGetConvTablePtr(open.handle, "SBCS", "UTF-8", 0, &forth), want) << row.why;
            ASSERT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "SBCS", 0, &back), want) << row.why;
            if (!row.sound) {
                EXPECT_EQ(computeUtf8TableData(open.handle, "SBCS", "UTF-8", code, row.units.data(), &forth),
                          NLS_BAD_TABLE);
                continue;
            }
            EXPECT_TRUE(nlsConversionType(forth) == code && nlsConversionType(back) == 20) << row.why;
            EXPECT_EQ(ConvTable{back}.sbcsPages().page[0xC1], nls::kDefaultPage) << "a page without a character";
            if (row.wholeWay) expectBothWays(forth, back, row.why);
        }
}

TEST(Utf8Tables, WhatIsMissingHasItsStatus) {
    const UnitTable units = upperHalfAt(0x80);
    ConvmapBuilder noBack, oddBack;
    noBack.units("SBCS", "UTF-8", 19, units);
    oddBack.units("SBCS", "UTF-8", 19, units).bare("UTF-8", "SBCS", 18);
    for (ConvmapBuilder* const builder : {&noBack, &oddBack}) {
        OpenHandle open{builder->build()};
        nlsConvTable* table = nullptr;
        EXPECT_EQ(computeUtf8TableData(open.handle, "SBCS", "UTF-8", 19, units.data(), &table), NLS_NO_MEM);
        EXPECT_EQ(nlsGetConvTablePtr(open.handle, "SBCS", "UTF-8", 0, &table), NLS_NO_MEM);
        EXPECT_EQ(open.handle->toc[0].data, nullptr);
    }
    OpenHandle open{world(units, 19).build()};
    nlsConvTable* table = nullptr;
    for (const int64_t type : {int64_t{20}, int64_t{17}, int64_t{1}, INT64_MAX, INT64_MIN})
        EXPECT_EQ(computeUtf8TableData(open.handle, "SBCS", "UTF-8", type, units.data(), &table), NLS_BAD_TABLE);
    alignas(2) unsigned char odd[513];
    std::memcpy(odd + 1, units.data(), 512);
    EXPECT_EQ(computeUtf8TableData(open.handle, "SBCS", "UTF-8", 19, reinterpret_cast<uint16_t*>(odd + 1), &table),
              NLS_OK);
}

}  // namespace
