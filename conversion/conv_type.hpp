// What is known of each conversion type besides how it converts: one constant row per type.
//
// Tested by tests/conversion/engine_test.cpp.
#pragma once

#include <cstdint>
#include <optional>

#include "convmap/conv_table.hpp"

namespace nls {

// An answer of this kind isn't known for the type.
inline constexpr uint8_t kNoAnswer = 0;
// The answer is the largest character of the target charset.
inline constexpr uint8_t kOfTargetCharset = 0xFF;

struct ConvTypeRow {
    ConvType type;
    uint8_t charSize;    // largest bytes of the target per character; kNoAnswer, kOfTargetCharset
    uint8_t growth;      // largest factor between the lengths of both sides in bytes; kNoAnswer
    uint8_t terminator;  // width of the NUL behind a text of the target, in bytes
    bool known;          // false for a number that is no type
};

// The row of a type, or one that knows nothing, with a terminator of 1 byte. The answers of a two-step table come from
// its steps, and aren't in its row.
const ConvTypeRow& rowOf(ConvType type);

// Bytes that one character can take, or growth, of a table; nothing where a type or a step has no answer.
std::optional<uint32_t> largestCharacter(ConvTable table, uint32_t targetCharSize);
std::optional<uint32_t> largestGrowth(ConvTable table);

}  // namespace nls
