// The layout of multi-byte maps: what the format can't hold is refused, and what is packed reads back.
#include "tools/mkconvmap/ucs2_pack.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tools/mkconvmap/multi_byte.hpp"
#include "tools/mkconvmap/ucs2_reader.hpp"

namespace nls::mkconvmap {
namespace {

constexpr std::size_t kFirst = 0;

CharsetSource describe(const std::string& text) {
    const std::string path = testing::TempDir() + "ucs2_pack_test." + std::to_string(getpid()) + ".txt";
    std::ofstream{path} << text;
    CharsetSource charset = readCharset(path);
    std::remove(path.c_str());
    return charset;
}

// "LINE: reason" of the error, or "" where the charset is packed.
std::string complaintOf(const std::string& text) {
    try {
        packMultiByte(describe(text));
        return {};
    } catch (const DescriptionError& error) {
        const std::string what = error.what();
        return what.substr(what.find(".txt:") + 5);
    }
}

// Line 6 begins behind it. The charset has 8227 codes, among them A1A1, U+3000, and A3DC, U+FFE6.
const std::string kHead = "charset X\nkind multi-byte\nlength 1 A1-FE\ntrail A1-FE\nsource iconv EUC-KR\n";
const std::string kThirdMap = "grid third lead A1-FE trail A1-FE\nforth third\n";
const std::string kFirstMap = "grid first lead A1-FE trail A1-FE\n";

TEST(Ucs2Description, RefusesWhatTheFormatCantHold) {
    const struct {
        const char* why;
        std::string lines;
        std::string complaint;
    } rows[] = {
        {"unknown keyword", "rings first", "6: \"rings\" means nothing in a multi-byte charset"},
        {"second source", "source iconv UHC", "6: the charset has a source already"},
        {"single that leads", "single A1", "6: byte A1 begins a double byte"},
        {"single in ASCII", "single 7F-80", "6: bytes below 80 are ASCII"},
        {"map without grid", "forth third", "6: the third map has no grid yet"},
        {"no such map", "grid fourth lead A1 trail A1", "6: \"fourth\" is no map"},
        {"grid without trails", "grid third lead A1-FE", "6: grid needs trail"},
        {"no trail ranges", "grid third lead A1-FE trail", "6: the grid has no trail bytes"},
        {"grid twice", kThirdMap + "grid third lead A1 trail A1", "8: the third map has a grid already"},
        {"three trail ranges", "grid third lead A1-FE trail 41-5A 61-7A 81-FE",
         "6: three ranges of trail bytes don't inv"},
        {"three lead ranges", "grid third lead A1 B1 C1 trail A1-FE", "6: the format holds two ranges of lead bytes"},
        {"overlap", "grid third lead A1-FE trail 40-7E 7E-FE", "6: the ranges of trail bytes overlap"},
        {"256 columns", "grid third lead A1-FE trail 00-FF", "6: a row has 256 trail bytes"},
        {"direct form elsewhere", kFirstMap + "direct first AC00-D7A3",
         "7: the third map alone is searched in the direct"},
        {"direct beyond the plane", kThirdMap + "direct third FF00-10000", "8: the direct form ends at U+FFFF"},
        {"direct too large", kThirdMap + "direct third 0-FFFF", "8: the block has more than 65535 code points"},
        {"rows in the third map", kThirdMap + "rows third 2/2 A1-451",
         "8: the third map is searched in the direct form"},
        {"shifts", kFirstMap + "rows first 2 A1-451", "7: \"2\" are no shifts"},
        {"row shift", kFirstMap + "rows first 15/2 A1-451", "7: 15 is above 14"},
        {"six triples", kFirstMap + "rows first 2/2 A0-A3 B0 C0 D0 E0 F0", "7: 6 blocks; the format holds 5"},
        {"blocks overlap", kFirstMap + "rows first 2/2 A0-B0 B0-C0", "7: the blocks overlap or aren't ascending"},
        {"blocks share a row", kThirdMap + kFirstMap + "rows first 3/2 A0-A1 A4-C0",
         "9: the block at U+00A4 begins within"},
        {"blocks beyond 16 bits", kThirdMap + kFirstMap + "rows first 2/2 A1-8000 20000-2FFFF",
         "9: the blocks have too many"},
        {"65536 rows", kThirdMap + kFirstMap + "rows first 0/1 0-FFFF", "9: more than 65535 rows"},
        {"value too large", kThirdMap + kFirstMap + "rows first 2/4 A1-FFE6", "9: U+4E00 has the number 7123"},
        {"no such code points", kThirdMap + kFirstMap + "rows first 2/2 A00-AFF",
         "9: no code point of the blocks is left"},
        {"third map without way forth", "grid third lead A1-FE trail A1-FE",
         "6: the third map is looked at only if it has"},
        {"idle map", kThirdMap + kFirstMap, "8: the map has neither a way forth nor a way back"},
        {"idle way forth", kThirdMap + "grid second lead A1-FE trail A1-FE\nforth second", "8: no code is left for"},
        {"codes without a map", "grid third lead A2-FE trail A1-FE\nforth third",
         "1: no map has a way forth for A1A1 (U+3000)"},
        {"code points without a map", kThirdMap, "1: no map has a way back for U+00A1 (A2AE) and 8226 other"},
        {"nothing left out", "without ACF2-ACFE", "6: ACF2-ACFE: the source has no code of this range"},
        {"nothing yields", "yield C9A1-C9FE", "6: C9A1-C9FE: no code of this range has a character"},
        {"one way to nothing", "back A5 C9A1", "6: C9A1 has no character"},
        {"one way to NUL", "back A5 0", "6: 00 has no character"},
        {"one way from ASCII", "back 5C A1A1", "6: U+005C is ASCII"},
        {"one way that is taken", "back 3000 A1A2", "6: U+3000 goes to A1A1 already"},
        {"substitute", "substitute C9A1", "1: the substitute C9A1 has no character"},
    };
    for (const auto& row : rows) {
        const std::string complaint = complaintOf(kHead + row.lines + "\n");
        EXPECT_EQ(complaint.substr(0, row.complaint.size()), row.complaint) << row.why << ": " << complaint;
    }
}

TEST(Ucs2Description, RefusesSourcesThatDontFit) {
    const struct {
        const char* why;
        std::string text;
        std::string complaint;
    } rows[] = {
        {"no source", "charset X\nkind multi-byte\nlength 1 A1-FE\n", "1: the charset has no source"},
        {"unknown converter", "charset X\nkind multi-byte\nsource icu NOPE\n", "3: ICU has no converter \"NOPE\""},
        {"unknown image", "charset X\nkind multi-byte\nsource icu UTF-8 jis\n",
         "3: \"jis\" is no way to take rows over"},
        {"three bytes", "charset X\nkind multi-byte\nlength 2 8F\nsource iconv EUC-JP\n",
         "1: a mapping of characters above"},
        {"sequences", "charset X\nkind multi-byte\nlength 1 87-FE\ntrail 40-7E A1-FE\nsource iconv BIG5-HKSCS\n",
         "5: 8862 is a sequence of 2 code points"},
        {"euro of CP936", "charset cp936\nkind multi-byte\nlength 1 A1-FE\ntrail A1-FE\nsource iconv EUC-KR\n",
         "5: A2E6 is U+20AC; CP936 has the euro at 80"},
        {"ASCII in the map",
         "charset X\nkind multi-byte\nlength 1 C1-CF\ntrail 20-7F\nsource iconv ISO_6937\nsingle 80-FF\n",
         "6: byte C1 begins a double byte"},
    };
    for (const auto& row : rows) {
        const std::string complaint = complaintOf(row.text);
        EXPECT_EQ(complaint.substr(0, row.complaint.size()), row.complaint) << row.why << ": " << complaint;
    }
}

// A way forth into a higher plane hangs on one block, which must leave the plane's last code point to the holes.
TEST(Ucs2Description, RefusesPlanesThatCantBeReached) {
    std::ifstream file{std::filesystem::path{NLS_TEST_DATA}.parent_path().parent_path() /
                       "data/charsets/CP950-HKSCS.txt"};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    const std::string block = "20021-2F9D4";
    ASSERT_NE(text.find(block), std::string::npos);
    const struct {
        const char* blocks;
        std::string complaint;
    } rows[] = {
        {"20021-21000 21020-2F9D4", "a plane of its own takes one block"},
        {"20021-2FFFF", "the block has to end below U+2FFFF"},
        {"20021-2F000", "no map has a way forth for "},
    };
    for (const auto& row : rows) {
        const std::string complaint =
            complaintOf(std::string{text}.replace(text.find(block), block.size(), row.blocks));
        EXPECT_NE(complaint.find(": " + row.complaint), std::string::npos) << row.blocks << ": " << complaint;
    }
}

// A small world: a grid of two lead and two trail ranges in the first map, random characters in two far blocks.
struct World {
    Ucs2Source source;
    CodeMapping mapping;
};

World randomWorld(std::mt19937& random, unsigned rowShift, unsigned valueShift, unsigned percent) {
    const Place place{"world", 1};
    World world;
    const Grid grid(place, {{0x81, 0x83}, {0xE0, 0xE1}}, {{0x40, 0x4F}, {0x60, 0x77}});
    MapPlan& map = world.source.maps[kFirst];
    map.place = place;
    map.grid = grid;
    map.holdsForth = true;
    map.rows = RowsPlan{place, rowShift, valueShift, {{0x3A1, 0x5FF}, {0x6041, 0x62A7}}};
    std::vector<uint32_t> codePoints;
    for (const CodePointBlock& block : map.rows->blocks) {
        for (uint32_t at = block.first; at <= block.last; ++at) {
            if (random() % 100 < percent) codePoints.push_back(at);
        }
    }
    std::shuffle(codePoints.begin(), codePoints.end(), random);
    for (unsigned code = 0x8100; code < 0xFFFF && !codePoints.empty(); ++code) {
        const auto number = grid.number(static_cast<Code>(code));
        if (!number || (*number << valueShift) > 0xFFFF || random() % 4 == 0) continue;
        world.mapping.forth.emplace(static_cast<Code>(code), codePoints.back());
        world.mapping.back.emplace(codePoints.back(), static_cast<Code>(code));
        codePoints.pop_back();
    }
    return world;
}

// Column 0 of every row has a cell of its own, and a row holds a cell for each of its characters besides.
void expectSoundRows(const PackedMap& map, const CodeMapping& mapping) {
    const nlsUcs2Map& record = map.record;
    for (const nlsUcs2Range& range : record.ranges) {
        if (range.rangeEnd == 0) break;
        for (uint32_t at = range.rangeStart; at <= range.rangeEnd; at += record.colMask + 1U) {
            const uint32_t place = at - range.rangeDelta - record.ucsMin;
            ASSERT_EQ(place & record.colMask, 0U);
            const uint16_t cell = map.ucsCells.at(map.ucsRows.at(place >> record.rowShift));
            ASSERT_EQ(cell >> record.valueShift != 0, mapping.back.contains(at)) << codePointText(at);
        }
    }
}

TEST(Ucs2Pack, ReadsBackForEveryShiftAndDensity) {
    std::mt19937 random{20240611};
    for (unsigned rowShift = 0; rowShift <= 8; rowShift += 2) {
        for (unsigned valueShift = 0; valueShift <= 6; valueShift += 2) {
            for (const unsigned percent : {3U, 60U}) {
                const World world = randomWorld(random, rowShift, valueShift, percent);
                const PackedMaps maps = packMaps(world.source, world.mapping);
                EXPECT_EQ(differenceOf(maps, world.mapping), "") << rowShift << "/" << valueShift << " " << percent;
                expectSoundRows(maps[kFirst], world.mapping);
            }
        }
    }
}

TEST(Ucs2Pack, EmptyRowsAreOneAndFarCellsTakeTwo) {
    std::mt19937 random{1};
    World world = randomWorld(random, 3, 2, 0);
    // Three rows of eight columns: 1 and 7 mapped; nothing; 0 mapped. Two empty rows more.
    world.source.maps[kFirst].rows->blocks = {{0x400, 0x427}};
    const Code codes[] = {0x8140, 0x8141, 0x8142};
    const uint32_t codePoints[] = {0x401, 0x407, 0x410};
    for (int at = 0; at < 3; ++at) {
        world.mapping.forth.emplace(codes[at], codePoints[at]);
        world.mapping.back.emplace(codePoints[at], codes[at]);
    }
    const PackedMap map = packMaps(world.source, world.mapping)[kFirst];
    const std::vector<uint16_t> cells{0 << 2 | 1, 1 << 2 | 0, 6, 2 << 2 | 1,  // column 0, 1 and six on, 7
                                      0,          8,                          // the empty row
                                      3 << 2 | 0, 8};                         // column 0 alone
    EXPECT_EQ(map.ucsCells, cells);
    EXPECT_EQ(map.ucsRows, (std::vector<uint16_t>{0, 4, 6, 4, 4}));
    EXPECT_EQ(map.record.ranges[0].rangeEnd, 0U) << "one block of the first plane needs no triple";
}

// A change of any word of any array has to show, or the check of the finished maps is no check. Distances are left out:
// one that passes the end of its row may grow.
TEST(Ucs2Pack, TheCheckSeesEveryChangedWord) {
    std::mt19937 random{7};
    World world = randomWorld(random, 3, 2, 8);
    PackedMaps maps = packMaps(world.source, world.mapping);
    ASSERT_EQ(differenceOf(maps, world.mapping), "");
    for (std::vector<uint16_t>* array : {&maps[kFirst].cjisToUcs, &maps[kFirst].ucsRows, &maps[kFirst].ucsCells}) {
        const std::size_t step = array->size() / 40 + 1;
        for (std::size_t at = 0; at < array->size(); at += step) {
            if (array == &maps[kFirst].ucsCells && (*array)[at] <= 8) continue;
            (*array)[at] ^= 0x0101;
            EXPECT_NE(differenceOf(maps, world.mapping), "") << "word " << at << " of " << array->size();
            (*array)[at] ^= 0x0101;
        }
    }
    maps[kFirst].ucsCells.pop_back();
    EXPECT_EQ(differenceOf(maps, world.mapping), "a walk leaves ucsCells");
}

// Codes just outside a grid are misses, whatever ranges it lacks.
TEST(Ucs2Grid, RefusesEveryCodeOutside) {
    const Place place{"grid", 1};
    const Grid grids[] = {
        Grid(place, {{0xA1, 0xF7}}, {{0xA1, 0xFE}}),
        Grid(place, {{0x81, 0x9F}, {0xE0, 0xFC}}, {{0x40, 0x7E}, {0x80, 0xFC}}),
        Grid(place, {{0x00, 0x00}, {0xC1, 0xCF}}, {{0x20, 0xFF}}),
        Grid(place, {{0x00, 0x00}}, {{0x5C, 0xDF}}),
    };
    for (const Grid& grid : grids) {
        nlsUcs2Map record{};
        grid.describe(record);
        for (uint32_t code = 1; code < 0xFFFF; ++code) {
            const auto number = grid.number(static_cast<Code>(code));
            const uint32_t have = cjisOfCode(record, code);
            if (number) {
                ASSERT_EQ(have, *number) << hexText(code, 4);
                ASSERT_EQ(codeOfCjis(record, *number), code);
            } else {
                // The lead byte FF passes where there is one range of leads: it counts as a row behind the last.
                ASSERT_TRUE(have == kMiss || (code >> 8) > record.leadLast1) << hexText(code, 4);
            }
        }
    }
}

}  // namespace
}  // namespace nls::mkconvmap
