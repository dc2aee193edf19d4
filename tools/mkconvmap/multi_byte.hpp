// What becomes of the mapping of a multi-byte charset: the one thing that the writers and the check of the finished
// file ask of ucs2_*.cpp.
#pragma once

#include <cstdint>
#include <map>

#include "convmap/conv_table.hpp"
#include "tools/mkconvmap/charset_source.hpp"
#include "tools/mkconvmap/data_record.hpp"

namespace nls::mkconvmap {

struct MultiByteTables {
    ConvType toUtf8 = ConvType::dbcsToUtf8;    // types 17, 81, 89
    ConvType fromUtf8 = ConvType::utf8ToDbcs;  // types 18, 50
    DataRecord record;                         // 528 bytes with the three maps, positions of the arrays left 0
    uint16_t substChar = 0;

    // Every code of the charset that the record maps, single bytes among them, and the ASCII that the bridges pass
    // where no map holds it. Codes that aren't here turn into U+FFFD, code points that aren't here into substChar.
    std::map<uint16_t, char32_t> toUnicode;
    std::map<char32_t, uint16_t> fromUnicode;
};

// Reads charset.mappingLines and lays the mapping out. Fails at the line at fault where the description says what the
// format can't hold. REQUIRES: charset.isMultiByte().
MultiByteTables packMultiByte(const CharsetSource& charset);

}  // namespace nls::mkconvmap
