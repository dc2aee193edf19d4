// The names of the collations that ICU is known to have, as callers are told them. They serve for lists alone: any name
// of the two forms is tried on ICU.
#pragma once

#include <array>
#include <cstdint>

namespace nls {

// Comma-separated.
extern const char icucollnames_2_4[442];
extern const char icucollnames_4_8[960];

// Both, a comma between them.
inline constexpr uint32_t kAllIcuCollationsLength = 1401;
extern const std::array<char, kAllIcuCollationsLength + 1> kAllIcuCollations;

// Position, from 1, of the item of a comma-separated list in which `word` first occurs, be it as a part of the item; 0
// if it doesn't occur.
uint32_t placeInList(const char* word, const char* list);

}  // namespace nls
