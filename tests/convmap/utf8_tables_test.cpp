// The tables of single-byte charsets against a plain computation of the same: forms by the book, keys in a map.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
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

std::string utf8Form(unsigned unit) {
    if (unit >= 0xD800 && unit < 0xE000) return "?";
    std::string form;
    if (unit < 0x80) return {static_cast<char>(unit)};
    if (unit < 0x800) {
        form += static_cast<char>(0xC0 + unit / 64);
    } else {
        form += static_cast<char>(0xE0 + unit / 4096);
        form += static_cast<char>(0x80 + unit / 64 % 64);
    }
    return form + static_cast<char>(0x80 + unit % 64);
}

// Page and place of a form.
std::pair<unsigned, unsigned> keyOf(const std::string& form) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(form[i]); };
    if (form.size() == 1) return {0, byte(0)};
    if (form.size() == 2) return {byte(0), byte(1) % 64U};
    return {byte(1), byte(2) % 64U};
}

struct Plain {
    bool sound = true;
    std::string forms[256];
    std::map<std::pair<unsigned, unsigned>, unsigned> keys;
};
Plain plainTables(UnitTable units) {
    Plain plain;
    units[0] = 0;
    for (unsigned c = 0; c < 256; ++c) {
        plain.forms[c] = utf8Form(units[c]);
        // A place that holds 0 counts as free, so byte 0 gives way to one other byte with the unit 0.
        unsigned& place = plain.keys[keyOf(plain.forms[c])];
        if (place != 0) plain.sound = false;
        place = c;
    }
    return plain;
}

ConvmapBuilder world(const UnitTable& units, unsigned char code) {
    ConvmapBuilder builder;
    builder.units("SBCS", "UTF-8", code, units).bare("UTF-8", "SBCS", 20);
    return builder;
}

void expectTables(const UnitTable& units, unsigned char code, const char* why) {
    const Plain plain = plainTables(units);
    OpenHandle open{world(units, code).build()};
    nlsConvTable *forth = nullptr, *back = nullptr;
    ASSERT_EQ(nlsGetConvTablePtr(open.handle, "SBCS", "UTF-8", 0, &forth), plain.sound ? NLS_OK : NLS_NO_CONV_TABLE)
        << why;
    if (!plain.sound) {
        EXPECT_EQ(computeUtf8TableData(open.handle, "SBCS", "UTF-8", code, units.data(), &forth), NLS_BAD_TABLE) << why;
        EXPECT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "SBCS", 0, &back), NLS_NO_CONV_TABLE) << why;
        return;
    }
    ASSERT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "SBCS", 0, &back), NLS_OK) << why;
    EXPECT_EQ(nlsConversionType(forth), code);
    EXPECT_EQ(nlsConversionType(back), 20);
    for (unsigned c = 0; c < 256; ++c) {
        char form[4] = {};
        plain.forms[c].copy(form, 4);
        EXPECT_EQ(std::memcmp(&ConvTable{forth}.sbcsWords().utf8[c], form, 4), 0) << why << " byte " << c;
    }
    const nls::SbcsPages& pages = ConvTable{back}.sbcsPages();
    for (unsigned page = 0; page < 256; ++page) {
        bool empty = true;
        for (unsigned place = 0; place < (page == 0 ? 256 : 64); ++place) {
            const auto key = plain.keys.find({page, place});
            const unsigned want = key == plain.keys.end() ? 0 : key->second;
            empty = empty && key == plain.keys.end();
            ASSERT_EQ(pages.page[page][place], want) << why << " page " << page << " place " << place;
        }
        EXPECT_EQ(pages.page[page] == nls::kDefaultPage, empty) << why << " page " << page;
    }
}

UnitTable with(UnitTable units, unsigned byte, uint16_t unit) {
    units[byte] = unit;
    return units;
}

TEST(Utf8Tables, AreThoseOfThePlainComputation) {
    const UnitTable latin = upperHalfAt(0x80);
    const struct {
        const char* why;
        UnitTable units;
    } rows[] = {
        {"Latin", latin},
        {"three-byte forms", upperHalfAt(0x2400)},
        {"forms of two and three bytes", upperHalfAt(0x7C0)},
        {"the last units there are", upperHalfAt(0xFF80)},
        {"a unit for byte 0 is not looked at", with(latin, 0, 0x41)},
        {"one byte without a character", with(latin, 0x90, 0)},
        {"two bytes without a character", with(with(latin, 0x90, 0), 0x91, 0)},
        {"one character twice", with(latin, 0x90, 0x41)},
        {"a surrogate counts as a question mark, which is there", with(latin, 0x90, 0xD800)},
        {"a surrogate alone", with(with(latin, 0x3F, 0xDFFF), 0x90, 0x3000)},
        {"one key for two characters of three bytes", with(with(latin, 0x80, 0x20AC), 0x81, 0x30AC)},
        {"their neighbours have two", with(with(latin, 0x80, 0x20AC), 0x81, 0x30AD)},
    };
    int sound = 0;
    for (const auto& row : rows) {
        expectTables(row.units, 19, row.why);
        expectTables(row.units, 51, row.why);
        sound += plainTables(row.units).sound;
    }
    EXPECT_EQ(sound, 8);

    std::mt19937 random{17};
    for (int round = 0; round < 150; ++round) {
        UnitTable units = upperHalfAt(0x80);
        for (unsigned c = 0x80; c < 256; ++c)
            units[c] = static_cast<uint16_t>(round % 2 ? random() % 0x800 + c : (c << 4) + random() % 16 + 0x1000);
        expectTables(units, 19, "random units");
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
