// What the plain walk of the single-byte bridges shares with the wide ones: where a walk stands, and how far a wide one
// may go.
//
// A wide walk takes whole blocks as long as all of their characters fit, and leaves the rest to the plain walk: the end
// of the text, the end of the room, and text that is odd. It never writes a byte that isn't part of the text, unless it
// is sure that more text will cover it. Tested by tests/conversion/sbcs_bridge_test.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "convmap/conv_table.hpp"

namespace nls {

struct BridgeWalk {
    const unsigned char* source;
    const unsigned char* sourceEnd;
    unsigned char* target;
    unsigned char* targetEnd;
    bool substituted = false;  // a "?" stands for at least one character

    std::size_t left() const { return static_cast<std::size_t>(sourceEnd - source); }
    std::size_t room() const { return static_cast<std::size_t>(targetEnd - target); }
};

// Bytes of a form by its lead byte. A word holds four, so a lead byte that announces more counts as four.
constexpr unsigned formLength(unsigned lead) {
    return 1U + (lead >= 0xC0) + (lead >= 0xE0) + (lead >= 0xF0);
}
static_assert(formLength(0x7F) == 1 && formLength(0xC2) == 2 && formLength(0xE2) == 3 && formLength(0xF8) == 4);

// The same as a look-up, which is the shorter way in a loop over words.
inline constexpr auto kFormLength = [] {
    std::array<unsigned char, 256> lengths{};
    for (unsigned lead = 0; lead < 256; ++lead) lengths[lead] = static_cast<unsigned char>(formLength(lead));
    return lengths;
}();

// As far as they can go. A text too short for a block is left as it is.
void toUtf8Avx2(const SbcsWords& words, BridgeWalk& walk);
void toUtf8Avx512(const SbcsWords& words, BridgeWalk& walk);
void fromUtf8Avx2(const SbcsPages& pages, BridgeWalk& walk);
void fromUtf8Avx512(const SbcsPages& pages, BridgeWalk& walk);

}  // namespace nls
