#include <gtest/gtest.h>

#include <cstring>

#include "tools/nls/nearest_names.hpp"
#include "tools/nls/unicode_check.hpp"

namespace {

namespace tool = nls::tool;
using nls::ByteView;

TEST(NearestNames, WhatSomebodyMayHaveMeant) {
    const std::vector<std::string> known{"UTF-8", "UTF-16", "ISO8859-1", "ISO8859-15", "KOI8-R",   "IBM850", "1252",
                                         "1251",  "BIG-5",  "SHIFT-JIS", "EUCJIS",     "620-2533", "CP936",  "GB2312"};
    const struct {
        const char* asked;
        const char* first;  // null: nothing comes near
    } rows[] = {
        {"utf8", "UTF-8"},    {"UTF_16", "UTF-16"},       {"latin1", "ISO8859-1"},  {"iso-8859-15", "ISO8859-15"},
        {"koi8-u", "KOI8-R"}, {"cp850", "IBM850"},        {"windows-1251", "1251"}, {"cp1252", "1252"},
        {"Big5", "BIG-5"},    {"shift_jis", "SHIFT-JIS"}, {"euc-jp", "EUCJIS"},     {"TIS-620", "620-2533"},
        {"gbk", "CP936"},     {"koi", "KOI8-R"},          {"nonsense", nullptr},    {"", nullptr},
    };
    for (const auto& row : rows) {
        const std::vector<std::string> names = tool::nearestNames(row.asked, known);
        EXPECT_LE(names.size(), 3U);
        EXPECT_EQ(names.empty() ? "" : names[0], row.first == nullptr ? "" : row.first) << row.asked;
    }
}

// By the table of well-formed sequences, written down once more: the ranges of each byte.
bool wellFormed(const unsigned char* b, std::size_t n) {
    const auto in = [](unsigned char byte, unsigned from, unsigned to) { return byte >= from && byte <= to; };
    if (n == 1) return b[0] < 0x80;
    if (n == 2) return in(b[0], 0xC2, 0xDF) && in(b[1], 0x80, 0xBF);
    if (n == 3) {
        return in(b[2], 0x80, 0xBF) &&
               ((b[0] == 0xE0 && in(b[1], 0xA0, 0xBF)) || (b[0] == 0xED && in(b[1], 0x80, 0x9F)) ||
                (b[0] != 0xE0 && b[0] != 0xED && in(b[0], 0xE1, 0xEF) && in(b[1], 0x80, 0xBF)));
    }
    return in(b[2], 0x80, 0xBF) && in(b[3], 0x80, 0xBF) &&
           ((b[0] == 0xF0 && in(b[1], 0x90, 0xBF)) || (in(b[0], 0xF1, 0xF3) && in(b[1], 0x80, 0xBF)) ||
            (b[0] == 0xF4 && in(b[1], 0x80, 0x8F)));
}

TEST(UnicodeCheck, EverySequenceOfTwoBytesAndTheEdgesOfLongerOnes) {
    const unsigned char edges[] = {0x00, 0x7F, 0x80, 0xA0, 0xBF, 0xC0, 0xED};
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            for (const unsigned char third : edges) {
                for (const unsigned char fourth : edges) {
                    const unsigned char text[] = {static_cast<unsigned char>(first), static_cast<unsigned char>(second),
                                                  third, fourth};
                    const tool::Unit unit = tool::firstUtf8(text);
                    std::size_t want = 0;
                    for (std::size_t n = 1; n <= 4 && want == 0; ++n) want = wellFormed(text, n) ? n : 0;
                    ASSERT_EQ(unit.fault.empty(), want != 0) << first << ' ' << second;
                    ASSERT_TRUE(want == 0 ? unit.length >= 1 && unit.length <= 3 : unit.length == want);
                    const bool all = want != 0 && tool::validUtf8(ByteView{text}.subspan(want));
                    ASSERT_EQ(tool::validUtf8(text), all) << first << ' ' << second;
                }
            }
        }
    }
}

}  // namespace
