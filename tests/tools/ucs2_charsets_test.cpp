// The eleven multi-byte charsets as they are described in data/charsets: their figures. What their characters are is
// held beside published converters by tests/real.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "tools/mkconvmap/multi_byte.hpp"
#include "tools/mkconvmap/ucs2_mapping.hpp"
#include "tools/mkconvmap/ucs2_pack.hpp"

namespace nls::mkconvmap {
namespace {

CharsetSource readNamed(const std::string& name) {
    const std::filesystem::path tests = std::filesystem::path{NLS_TEST_DATA}.parent_path();
    return readCharset(tests.parent_path() / "data/charsets" / (name + ".txt"));
}

using Sizes = std::array<std::size_t, 3>;  // entries of cjisToUcs, ucsRows, ucsCells

Sizes sizesOf(const PackedMap& map) {
    return {map.cjisToUcs.size(), map.ucsRows.size(), map.ucsCells.size()};
}

// The layouts were chosen for look-ups that are short and for buffers that are small; a figure that changes is a change
// of a source or of a layout, and both want a look. The library needs 992 bytes for two copies of the record besides.
TEST(Ucs2Charsets, HaveTheirFigures) {
    const struct {
        const char* name;
        std::size_t codes, back;
        Sizes third, first, second;
        std::size_t bytes;
        ConvType toUtf8, fromUtf8;
        bool fitsSmallestBuffer;
    } rows[] = {
        {"SHIFT-JIS",
         9667,
         9279,
         {11105, 0, 20897},
         {0, 1790, 2612},
         {133, 10, 65},
         73224,
         ConvType{17},
         ConvType{18},
         true},
        {"EUCJIS", 7399, 7397, {8743, 0, 20897}, {0, 1012, 795}, {0, 0, 0}, 62894, ConvType{17}, ConvType{18}, true},
        {"KSC5601", 8227, 8228, {8743, 0, 11172}, {0, 6558, 8283}, {0, 0, 0}, 69512, ConvType{17}, ConvType{50}, true},
        {"GB2312", 7445, 7447, {8179, 0, 20897}, {0, 746, 729}, {0, 0, 0}, 61102, ConvType{17}, ConvType{50}, true},
        {"BIG-5", 13911, 13901, {13974, 0, 20902}, {0, 1169, 907}, {0, 0, 0}, 73904, ConvType{17}, ConvType{50}, true},
        {"CP949",
         17236,
         17236,
         {13249, 0, 11172},
         {0, 7217, 8475},
         {5077, 0, 0},
         90380,
         ConvType{17},
         ConvType{50},
         false},
        {"CP1361",
         17049,
         17050,
         {14976, 0, 11172},
         {0, 6558, 11490},
         {6393, 0, 0},
         101178,
         ConvType{17},
         ConvType{50},
         false},
        {"CP936",
         23940,
         23940,
         {23941, 0, 20902},
         {0, 1848, 3248},
         {0, 0, 0},
         99878,
         ConvType{17},
         ConvType{50},
         false},
        {"CP950",
         19720,
         19710,
         {19783, 0, 20902},
         {0, 2621, 6807},
         {0, 0, 0},
         100226,
         ConvType{17},
         ConvType{50},
         false},
        {"CP950-HKSCS",
         18459,
         18451,
         {18841, 0, 20992},
         {0, 1475, 2731},
         {11147, 1998, 4170},
         122708,
         ConvType{81},
         ConvType{50},
         false},
        {"ISO6937", 238, 238, {0, 0, 0}, {3452, 95, 245}, {0, 0, 0}, 7584, ConvType{17}, ConvType{50}, true},
    };
    constexpr std::size_t smallestBuffer = 76000, recordCopies = 992, objects = 64;
    for (const auto& row : rows) {
        const CharsetSource charset = readNamed(row.name);
        const Ucs2Source source = readUcs2Source(charset);
        const CodeMapping mapping = readMapping(charset, source);
        const PackedMaps maps = packMaps(source, mapping);
        EXPECT_EQ(mapping.forth.size(), row.codes) << row.name;
        EXPECT_EQ(mapping.back.size(), row.back) << row.name;
        EXPECT_EQ(sizesOf(maps[2]), row.third) << row.name;
        EXPECT_EQ(sizesOf(maps[0]), row.first) << row.name;
        EXPECT_EQ(sizesOf(maps[1]), row.second) << row.name;
        EXPECT_EQ(arrayBytes(maps), row.bytes) << row.name;
        EXPECT_EQ(arrayBytes(maps) + recordCopies + objects <= smallestBuffer, row.fitsSmallestBuffer) << row.name;
        const MultiByteTables tables = packMultiByte(charset);
        EXPECT_EQ(tables.toUtf8, row.toUtf8) << row.name;
        EXPECT_EQ(tables.fromUtf8, row.fromUtf8) << row.name;
    }
}

}  // namespace
}  // namespace nls::mkconvmap
