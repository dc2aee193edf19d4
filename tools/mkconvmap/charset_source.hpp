// One charset as its description in data/charsets tells it.
//
// What every description says stands here: name, kind, what is known of its bytes. A single-byte charset also has its
// 256 characters here. The mapping of a multi-byte charset has a language of its own: those lines are kept as they are
// and read by ucs2_source.hpp. data/README.md tells the whole language.
// Tested by tests/tools/refusals_test.cpp.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

enum class CharsetKind { singleByte, multiByte, utf8, ucs2, utf16, utf32 };
enum class UnitOrder { host, little, big };

struct CharsetSource {
    std::string name;
    Place place;  // of the line with the name
    CharsetKind kind = CharsetKind::singleByte;
    UnitOrder order = UnitOrder::host;  // of 16- and 32-bit units
    bool viaShiftJis = false;           // compares through Shift-JIS

    std::array<uint8_t, 256> lengths{};  // by first byte: trail count, and 0x08 for a double byte of one column
    std::bitset<256> trails;             // bytes that may trail

    std::array<uint16_t, 256> units{};  // single-byte: the character of each byte, fillers among them
    std::bitset<256> filled;            // single-byte: bytes without a character, which hold a filler
    std::array<int, 256> unitLines{};   // single-byte: the line of the description that each unit comes from

    std::vector<Line> mappingLines;  // multi-byte: the lines that tell the mapping

    bool isUnicode() const { return kind >= CharsetKind::utf8; }
    bool isSingleByte() const { return kind == CharsetKind::singleByte; }
    bool isMultiByte() const { return kind == CharsetKind::multiByte; }
};

CharsetSource readCharset(const std::filesystem::path& file);

// The rows of a single-byte charset as the format can hold them: every byte has a unit of its own that no other byte
// shares a key with. Fails at the line that a faulty unit comes from.
void checkSingleByteUnits(const CharsetSource& charset);

// The key by which the way back from UTF-8 finds a unit: page and index. Two units above U+07FF share a key where they
// agree in their low 12 bits.
uint16_t keyOfUnit(uint16_t unit);

}  // namespace nls::mkconvmap
