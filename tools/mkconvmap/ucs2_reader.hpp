// The packed maps read back by the letter of the format's rules, step by step and without haste. Written apart from the
// packer and from the library, so that a fault of either shows.
//
// An index outside its array, which no sound map yields, is a failure and no miss.
// Tested by tests/tools/read_back_test.cpp and tests/real/real_charsets_test.cpp.
#pragma once

#include <cstdint>
#include <string>

#include "tools/mkconvmap/ucs2_mapping.hpp"
#include "tools/mkconvmap/ucs2_pack.hpp"

namespace nls::mkconvmap {

constexpr uint32_t kMiss = 0xFFFF;

// The four walks of one map. Each answers kMiss where the map has nothing.
uint32_t cjisOfCode(const nlsUcs2Map& map, uint32_t code);
uint32_t codeOfCjis(const nlsUcs2Map& map, uint32_t cjis);
uint32_t codePointOfCjis(const PackedMap& map, uint32_t cjis);
uint32_t cjisOfCodePoint(const PackedMap& map, uint32_t codePoint);
uint32_t cjisOfCodePointDirect(const PackedMap& map, uint32_t codePoint);

// The search through all three maps.
uint32_t codePointOf(const PackedMaps& maps, uint32_t code);
uint32_t codeOf(const PackedMaps& maps, uint32_t codePoint);

// Compares maps and mapping over all codes, and over all code points below U+30000. Empty where they agree, else the
// first difference.
std::string differenceOf(const PackedMaps& maps, const CodeMapping& mapping);

}  // namespace nls::mkconvmap
