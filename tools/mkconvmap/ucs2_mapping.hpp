// The characters of a multi-byte charset: code to code point and back, ASCII left out.
//
// The way forth is what the source decodes; the way back its inverse, where of several codes of one character the
// lowest is taken that doesn't yield, and the one-way entries of the description. Tested by
// tests/tools/read_back_test.cpp and tests/real/real_charsets_test.cpp.
#pragma once

#include <cstdint>
#include <map>

#include "tools/mkconvmap/row_source.hpp"
#include "tools/mkconvmap/ucs2_source.hpp"

namespace nls::mkconvmap {

// The library itself reads byte 80 of CP936 as the euro sign, and no map may hold either.
constexpr Code kCp936EuroCode = 0x80;
constexpr uint32_t kEuro = 0x20AC;
bool isCp936(const CharsetSource& charset);

struct CodeMapping {
    std::map<Code, uint32_t> forth;
    std::map<uint32_t, Code> back;
};

// Fails where the source gives a code several code points or one that a map can't hold, and where a line of the
// description says what isn't so.
CodeMapping readMapping(const CharsetSource& charset, const Ucs2Source& source);

// The Shift-JIS form of EUC bytes, by the rule of JIS X 0208; empty where there is none.
std::vector<uint8_t> shiftJisOfEuc(ByteView euc);

}  // namespace nls::mkconvmap
