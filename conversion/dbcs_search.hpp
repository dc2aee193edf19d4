// A character of a multi-byte charset and its code point, searched through the three maps of a table.
//
// Both directions ask the third map first where it is present, for the codes up to U+FFFF; then the first; then the
// second. What no map holds is ASCII, the euro sign of CP936, or a substitute. This is the whole search as told, one
// character at a time; the wide loops take from it what they can and come here for the rest.
// Tested by tests/conversion/dbcs_bridge_test.cpp and, character by character, tests/real.
#pragma once

#include <cstdint>

#include "conversion/ucs2_lookup.hpp"
#include "conversion/utf_codec.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/charset.hpp"

namespace nls {

inline constexpr uint32_t kEuroSign = 0x20AC;
inline constexpr uint16_t kCp936Euro = 0x80;

inline bool hasThirdMap(const DbcsTable& table) {
    return table.maps[2].cjisToUcs != nullptr;
}

// What the maps alone say: kNoMapping when none holds the character.
uint32_t mappedUnicode(const DbcsTable& table, uint16_t code);
uint32_t mappedCode(const DbcsTable& table, uint32_t ucs);

struct FoundUnicode {
    uint32_t ucs;
    bool substituted;  // U+FFFD stands there, whether a map delivered it or none held the character
};
FoundUnicode findUnicode(const DbcsTable& table, uint16_t code);

struct FoundCode {
    uint16_t code;     // above 0xFF two bytes, first byte high, else one
    bool substituted;  // the charset's substitute stands there, since no map held the code point
};
FoundCode findCode(const DbcsTable& table, uint32_t ucs);

}  // namespace nls
