// Shuffles that squeeze gaps out of 16 bytes, for processors that can't compress by a mask.
//
// One table for each of the three layouts that the wide walks leave gaps in. Each has 256 rows, made by the compiler,
// and they stand in .rodata: 12 KB in all.
// Tested by tests/conversion/unicode_transforms_test.cpp and sbcs_bridge_test.cpp.
#pragma once

#include <array>
#include <cstdint>

namespace nls {

struct alignas(64) SqueezeTable {
    std::array<uint8_t, 16> shuffle[256];
};

// A table whose row keeps the bytes for which keeps(row, byte) says so.
template <typename Keeps>
constexpr SqueezeTable makeSqueezeTable(Keeps keeps) {
    constexpr uint8_t kZero = 0x80;  // a shuffle puts a zero there
    SqueezeTable table{};
    for (unsigned row = 0; row < 256; ++row) {
        std::array<uint8_t, 16>& shuffle = table.shuffle[row];
        shuffle.fill(kZero);
        unsigned out = 0;
        for (unsigned byte = 0; byte < 16; ++byte) {
            if (keeps(row, byte)) shuffle[out++] = static_cast<uint8_t>(byte);
        }
    }
    return table;
}

// Eight units of 16 bits: bit i of the row keeps unit i.
inline constexpr SqueezeTable kUnitSqueeze =
    makeSqueezeTable([](unsigned row, unsigned byte) { return (row >> (byte / 2) & 1) != 0; });

// Eight characters of UTF-8 in two bytes each: the first byte always counts, bit i of the row keeps the second.
inline constexpr SqueezeTable kTwoByteSqueeze =
    makeSqueezeTable([](unsigned row, unsigned byte) { return byte % 2 == 0 || (row >> (byte / 2) & 1) != 0; });

// Four characters of UTF-8 in four bytes each, with the last byte in the last place. Two bits of the row for each give
// its length: 0 is one byte, 1 is two, 3 is three, 2 is four.
inline constexpr SqueezeTable kFourByteSqueeze = makeSqueezeTable([](unsigned row, unsigned byte) {
    constexpr unsigned kLengths[4] = {1, 2, 4, 3};
    return byte % 4 + kLengths[row >> (byte / 4 * 2) & 3] >= 4;
});

static_assert(kUnitSqueeze.shuffle[0x82][0] == 2 && kUnitSqueeze.shuffle[0x82][2] == 14);
static_assert(kTwoByteSqueeze.shuffle[0x01][1] == 1 && kTwoByteSqueeze.shuffle[0x01][3] == 4);
static_assert(kFourByteSqueeze.shuffle[0xD2][0] == 0 && kFourByteSqueeze.shuffle[0xD2][4] == 7);

}  // namespace nls
