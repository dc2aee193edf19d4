// Tables of real multi-byte charsets, packed for the tests from what iconv knows.
//
// The layout is the one that the data file uses: the whole way forth and a dense block of the way back in the third
// map, the rest of the way back in rows of the first, and in the second single bytes or plane 2 where a charset has
// them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "convmap/conv_table.hpp"

namespace nls::test {

struct Span16 {
    uint16_t first, last;
};

// One charset to pack: its name for iconv and the parameters of its maps.
struct DbcsRecipe {
    const char* name;
    const char* iconvName;
    std::vector<Span16> leads;   // first bytes of two-byte characters, one or two ranges
    std::vector<Span16> trails;  // one or two ranges
    Span16 directBlock;
    std::vector<Span16> rowBlocks;  // up to five, in the order of Unicode
    uint16_t rowShift, valueShift;
    uint16_t substitute;
    uint16_t hole;  // what stands in the dense block for a code point without a code: 0 or 0xFFFF
    bool kana;      // a second map of half-width kana: single bytes 0xA1 to 0xDF
};

// The recipe of a name below; ends the program for any other.
// SHIFT-JIS EUCJIS KSC5601 BIG-5 GB2312 CP949 CP936 CP950-HKSCS
const DbcsRecipe& dbcsRecipe(const std::string& name);
std::vector<std::string> dbcsRecipeNames();

// A finished table with everything that it points to. Not to be copied: the table holds addresses.
struct PackedDbcs {
    PackedDbcs() = default;
    PackedDbcs(const PackedDbcs&) = delete;
    PackedDbcs& operator=(const PackedDbcs&) = delete;

    struct Block {  // as in the arena: the type word stands in front of the table
        int64_t typeWord = 17;
        DbcsTable table{};
    } block;
    nlsAttribStruct attrib{};
    std::vector<uint16_t> arrays[3][3];
    std::map<uint16_t, uint32_t> toUnicode;    // what was packed: the codes above 0x7F
    std::map<uint32_t, uint16_t> fromUnicode;  // and the way back

    DbcsTable& table() { return block.table; }
    const nlsConvTable* handle() const { return reinterpret_cast<const nlsConvTable*>(&block.table); }
    // Points the maps to the arrays; to be called again after the arrays have changed.
    void link();
};
std::unique_ptr<PackedDbcs> packDbcs(const DbcsRecipe& recipe);

}  // namespace nls::test
