#include "tests/support/dbcs_pack.hpp"

#include <iconv.h>

#include <cstdlib>
#include <cstring>

#include "conversion/cjis_grid.hpp"
#include "conversion/utf_codec.hpp"

namespace nls::test {

namespace {

// ⟨name, iconv's name, lead bytes, trail bytes, direct block, blocks in rows, shifts, substitute, hole, kana⟩
const DbcsRecipe kRecipes[] = {
    {"SHIFT-JIS",
     "CP932",
     {{0x81, 0x9F}, {0xE0, 0xFC}},
     {{0x40, 0x7E}, {0x80, 0xFC}},
     {0x4E00, 0x9FA0},
     {{0xA2, 0x451}, {0x2010, 0x266F}, {0x3000, 0x33CD}, {0xE000, 0xE757}, {0xF929, 0xFFE5}},
     2,
     2,
     0x81AC,
     0xFFFF,
     true},
    {"EUCJIS",
     "EUC-JP-MS",
     {{0x8E, 0x8E}, {0xA1, 0xFE}},
     {{0xA1, 0xFE}},
     {0x4E00, 0x9FA0},
     {{0xA2, 0x451}, {0x2010, 0x266F}, {0x3000, 0x33CD}, {0xF929, 0xFA2D}, {0xFF01, 0xFFE5}},
     2,
     2,
     0xA2AE,
     0,
     false},
    {"KSC5601",
     "EUC-KR",
     {{0xA1, 0xFE}},
     {{0xA1, 0xFE}},
     {0xAC00, 0xD7A3},
     {{0xA1, 0x451}, {0x2015, 0x266D}, {0x3000, 0x33DD}, {0x4E00, 0x9F9C}, {0xF900, 0xFFE6}},
     2,
     2,
     0x3F,
     0xFFFF,
     false},
    {"BIG-5",
     "CP950",
     {{0xA1, 0xF9}},
     {{0x40, 0x7E}, {0xA1, 0xFE}},
     {0x4E00, 0x9FA5},
     {{0xA7, 0x3C9}, {0x2013, 0x2642}, {0x3000, 0x33D5}, {0xF6B1, 0xFA0D}, {0xFE30, 0xFFE5}},
     2,
     2,
     0x3F,
     0,
     false},
    {"GB2312",
     "EUC-CN",
     {{0xA1, 0xF7}},
     {{0xA1, 0xFE}},
     {0x4E00, 0x9FA0},
     {{0xA4, 0x451}, {0x2014, 0x2312}, {0x2460, 0x2642}, {0x3000, 0x3229}, {0xFF01, 0xFFE5}},
     2,
     3,
     0x3F,
     0xFFFF,
     false},
    {"CP949",
     "UHC",
     {{0x81, 0xFE}},
     {{0x41, 0x7A}, {0x81, 0xFE}},
     {0xAC00, 0xD7A3},
     {{0xA1, 0x451}, {0x2015, 0x33DD}, {0x4E00, 0x9F9C}, {0xE000, 0xE0BB}, {0xF900, 0xFFE6}},
     2,
     1,
     0x3F,
     0,
     false},
    {"CP936",
     "GBK",
     {{0x81, 0xFE}},
     {{0x40, 0x7E}, {0x80, 0xFE}},
     {0x4E00, 0x9FA5},
     {{0xA4, 0x451}, {0x2010, 0x2642}, {0x3000, 0x33D5}, {0xE000, 0xE864}, {0xF92C, 0xFFE5}},
     2,
     1,
     0x3F,
     0xFFFF,
     false},
    {"CP950-HKSCS",
     "BIG5-HKSCS",
     {{0x87, 0xFE}},
     {{0x40, 0x7E}, {0xA1, 0xFE}},
     {0x4E00, 0x9FFF},
     {{0xA2, 0x451}, {0x1EBE, 0x273D}, {0x2E80, 0x4D9C}, {0xF907, 0xFA0D}, {0xFE30, 0xFFED}},
     3,
     1,
     0x3F,
     0,
     false},
};

constexpr uint32_t kPlane2First = 0x20000, kPlane2Last = 0x2F9D4;

class Converter {
public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {
        if (handle_ == reinterpret_cast<iconv_t>(-1)) std::abort();
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() { iconv_close(handle_); }

    // Empty when the bytes aren't exactly one character that the other side has.
    std::string operator()(std::string text) {
        char out[16];
        char *in = text.data(), *to = out;
        std::size_t left = text.size(), room = sizeof out;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(handle_, &in, &left, &to, &room) != 0 || iconv(handle_, nullptr, nullptr, &to, &room) != 0) return {};
        return {out, to};
    }

private:
    iconv_t handle_;
};

std::string bytesOfCode(unsigned code) {
    std::string bytes;
    if (code > 0xFF) bytes.push_back(static_cast<char>(code >> 8));
    bytes.push_back(static_cast<char>(code));
    return bytes;
}

std::string bytesOfUcs4(uint32_t ucs) {
    return {reinterpret_cast<const char*>(&ucs), sizeof ucs};
}

// All codes of one and two bytes and all code points of the BMP and plane 2, there and back.
void readCharset(PackedDbcs& packed, const DbcsRecipe& recipe) {
    Converter decode("UCS-4LE", recipe.iconvName), encode(recipe.iconvName, "UCS-4LE");
    for (unsigned code = 0x80; code < 0x10000; ++code) {
        const bool single = code < 0x100;
        if (!single && packed.attrib.lengthMap[code >> 8] != 1) continue;
        if (single && (packed.attrib.lengthMap[code] != 0 || !recipe.kana)) continue;
        if (const std::string ucs = decode(bytesOfCode(code)); ucs.size() == 4)
            std::memcpy(&packed.toUnicode[static_cast<uint16_t>(code)], ucs.data(), 4);
    }
    for (uint32_t ucs = 0x80; ucs <= kPlane2Last; ucs = ucs == 0xFFFF ? kPlane2First : ucs + 1) {
        const std::string bytes = encode(bytesOfUcs4(ucs));
        const auto byte = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[i])); };
        if (bytes.size() == 2) packed.fromUnicode[ucs] = static_cast<uint16_t>(byte(0) << 8 | byte(1));
        if (bytes.size() == 1 && recipe.kana) packed.fromUnicode[ucs] = static_cast<uint16_t>(byte(0));
    }
    std::erase_if(packed.fromUnicode, [&](const auto& pair) {
        return pair.second < 0x80 || packed.toUnicode.count(pair.second) == 0 || pair.second == 0xFFFF;
    });
}

// The last trail byte stands in the third range twice, which refuses what lies above it.
void setGrid(nlsUcs2Map& map, const std::vector<Span16>& leads, const std::vector<Span16>& trails) {
    const auto byte = [](int value) { return static_cast<uint8_t>(value); };
    map.sjisZero = 0xFFFF, map.cjisBase = 0, map.gapAfter = 0xFFFF, map.gapSize = 0;
    map.leadFirst1 = byte(leads[0].first), map.leadLast1 = byte(leads[0].last);
    map.leadFirst2 = 0xFF, map.leadLast2 = 0;
    map.trailFirst1 = byte(trails[0].first), map.trailLast1 = byte(trails[0].last);
    map.trailFirst2 = 0xFF, map.trailLast2 = 0;
    map.trailFirst3 = map.trailLast3 = byte(trails.back().last);
    int columns = trails[0].last - trails[0].first + 1;
    if (leads.size() > 1) {
        map.leadFirst2 = byte(leads[1].first), map.leadLast2 = byte(leads[1].last);
        map.leadGap = byte(leads[1].first - leads[0].last - 1);
    }
    if (trails.size() > 1) {
        map.trailFirst2 = byte(trails[1].first), map.trailLast2 = byte(trails[1].last);
        map.trailGap2 = byte(trails[1].first - trails[0].last - 1);
        columns += trails[1].last - trails[1].first + 1;
    }
    map.trailsPerRow = byte(columns);
}

// The way forth of the codes that the grid has a place for; `folded` turns a code point into an entry.
std::vector<uint16_t> forwardArray(const PackedDbcs& packed, const nlsUcs2Map& map,
                                   const std::function<uint32_t(uint32_t)>& folded) {
    std::vector<uint16_t> array;
    for (const auto& [code, ucs] : packed.toUnicode) {
        const uint32_t cjis = gridNumber(map, code), entry = folded(ucs);
        if (cjis == kNoMapping || entry >= 0xFFFF) continue;
        if (cjis >= array.size()) array.resize(cjis + 1, 0xFFFF);
        array[cjis] = static_cast<uint16_t>(entry);
    }
    return array;
}

struct Rows {
    std::vector<uint16_t> rows, cells;
};

// `places` holds the Cjis codes by folded code point less ucsMin; 0 where there is none.
Rows packRows(const std::vector<uint16_t>& places, unsigned rowShift, unsigned valueShift) {
    const unsigned width = 1U << rowShift, mask = (1U << valueShift) - 1;
    Rows result;
    const auto cell = [&](unsigned value, unsigned distance) {
        const bool fits = distance <= mask;
        result.cells.push_back(static_cast<uint16_t>(value << valueShift | (fits ? distance : 0)));
        if (!fits) result.cells.push_back(static_cast<uint16_t>(distance));
    };
    cell(0, width);  // shared by the empty rows
    for (std::size_t start = 0; start < places.size(); start += width) {
        std::vector<unsigned> columns = {0};
        for (unsigned c = 0; c < width && start + c < places.size(); ++c)
            if (c > 0 && places[start + c] != 0) columns.push_back(c);
        const bool empty = columns.size() == 1 && places[start] == 0;
        result.rows.push_back(static_cast<uint16_t>(empty ? 0 : result.cells.size()));
        for (std::size_t i = 0; i < columns.size() && !empty; ++i)
            cell(places[start + columns[i]], (i + 1 < columns.size() ? columns[i + 1] : width) - columns[i]);
    }
    return result;
}

struct Block32 {
    uint32_t first, last;
};

// The way back of what lies in `blocks` and in the grid, the blocks folded end to end from the first one's start.
void packBack(PackedDbcs& packed, int index, const std::vector<Block32>& blocks, unsigned rowShift,
              unsigned valueShift) {
    nlsUcs2Map& map = packed.table().maps[index];
    std::vector<uint16_t> places;
    const uint32_t start = std::min<uint32_t>(blocks[0].first, 0xFFFF);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        map.ranges[i] = {blocks[i].last, blocks[i].first,
                         blocks[i].first - start - static_cast<uint32_t>(places.size())};
        for (uint32_t ucs = blocks[i].first; ucs <= blocks[i].last; ++ucs) {
            const auto found = packed.fromUnicode.find(ucs);
            const uint32_t cjis = found == packed.fromUnicode.end() ? 0 : gridNumber(map, found->second);
            places.push_back(static_cast<uint16_t>(cjis == kNoMapping ? 0 : cjis));
        }
    }
    map.ucsMin = static_cast<uint16_t>(start);
    map.ucsMax = static_cast<uint16_t>(start + places.size() - 1);
    map.rowShift = static_cast<uint16_t>(rowShift), map.valueShift = static_cast<uint16_t>(valueShift);
    map.colMask = static_cast<uint16_t>((1U << rowShift) - 1);
    map.skipMask = static_cast<uint16_t>((1U << valueShift) - 1);
    Rows rows = packRows(places, rowShift, valueShift);
    packed.arrays[index][1] = std::move(rows.rows);
    packed.arrays[index][2] = std::move(rows.cells);
}

void packThird(PackedDbcs& packed, const DbcsRecipe& recipe) {
    nlsUcs2Map& map = packed.table().maps[2];
    setGrid(map, recipe.leads, recipe.trails);
    packed.arrays[2][0] = forwardArray(packed, map, [](uint32_t ucs) { return ucs; });
    map.ucsMin = recipe.directBlock.first, map.ucsMax = recipe.directBlock.last;
    for (uint32_t ucs = map.ucsMin; ucs <= map.ucsMax; ++ucs) {
        const auto found = packed.fromUnicode.find(ucs);
        const uint32_t cjis = found == packed.fromUnicode.end() ? recipe.hole : gridNumber(map, found->second);
        packed.arrays[2][2].push_back(static_cast<uint16_t>(cjis));
    }
}

// Half-width kana: single bytes, in a grid whose one row has the lead byte 0.
void packKana(PackedDbcs& packed) {
    setGrid(packed.table().maps[1], {{0, 0}}, {{0x5C, 0xDF}});
    packed.arrays[1][0] = forwardArray(packed, packed.table().maps[1], [](uint32_t ucs) { return ucs; });
    packBack(packed, 1, {{0xA5, 0xA5}, {0x203E, 0x203E}, {0xFF61, 0xFF9F}}, 3, 8);
}

// Plane 2: the entries of the array are folded to 16 bits, and the one triple serves both ways.
void packPlane2(PackedDbcs& packed, const DbcsRecipe& recipe) {
    nlsUcs2Map& map = packed.table().maps[1];
    setGrid(map, recipe.leads, recipe.trails);
    packBack(packed, 1, {{kPlane2First, kPlane2Last}}, 5, 1);
    map.ranges[0].rangeDelta = kPlane2First;
    map.ucsMin = 0, map.ucsMax = kPlane2Last - kPlane2First;
    map.rangesOnCjis = 1;
    packed.arrays[1][0] = forwardArray(packed, map, [](uint32_t ucs) { return ucs - kPlane2First; });
}

}  // namespace

const DbcsRecipe& dbcsRecipe(const std::string& name) {
    for (const DbcsRecipe& recipe : kRecipes)
        if (recipe.name == name) return recipe;
    std::abort();
}

std::vector<std::string> dbcsRecipeNames() {
    std::vector<std::string> names;
    for (const DbcsRecipe& recipe : kRecipes) names.emplace_back(recipe.name);
    return names;
}

void PackedDbcs::link() {
    for (int i = 0; i < 3; ++i) {
        nlsUcs2Map& map = table().maps[i];
        const auto place = [&](int array) { return arrays[i][array].empty() ? nullptr : arrays[i][array].data(); };
        map.cjisToUcs = place(0), map.ucsRows = place(1), map.ucsCells = place(2);
        map.cjisCount = static_cast<uint16_t>(arrays[i][0].size());
        map.ucsRowCount = static_cast<uint16_t>(arrays[i][1].size());
        map.ucsCellCount = static_cast<uint16_t>(arrays[i][2].size());
    }
    table().attrib = &attrib;
}

std::unique_ptr<PackedDbcs> packDbcs(const DbcsRecipe& recipe) {
    auto packed = std::make_unique<PackedDbcs>();
    packed->attrib.mapSize = 256;
    packed->attrib.flags = NLS_CHARSET_MULTI_BYTE;
    for (const Span16 leads : recipe.leads)
        std::memset(packed->attrib.lengthMap + leads.first, 1, leads.last - leads.first + 1U);
    readCharset(*packed, recipe);
    setGrid(packed->table().maps[0], recipe.leads, recipe.trails);
    std::vector<Block32> blocks;
    for (const Span16 block : recipe.rowBlocks) blocks.push_back({block.first, block.last});
    packBack(*packed, 0, blocks, recipe.rowShift, recipe.valueShift);
    packed->table().maps[0].substChar = recipe.substitute;
    packThird(*packed, recipe);
    for (nlsUcs2Map& map : packed->table().maps) map.substChar = recipe.substitute;
    if (recipe.kana) packKana(*packed);
    if (recipe.iconvName == std::string("BIG5-HKSCS")) packPlane2(*packed, recipe);
    packed->link();
    return packed;
}

}  // namespace nls::test
