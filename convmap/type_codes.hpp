// Conversion types as the data file writes them.
//
// A conversion record holds its type as a code, a 16-bit big-endian number; an entry without a record holds it in its
// raw byte. A code up to 128 is itself the type word of the table. The codes 144 to 177 stand for types with order
// bits, which say how the 16- and 32-bit units of the source and the target lie:
//
//   0x080  the source's units are swapped      0x100  the source's units are in the host's order
//   0x200  the target's units are swapped      0x400  the target's units are in the host's order
//
// On a little-endian host the swapped order is the big-endian one. No other code has a meaning.
// Tested by tests/convmap/conv_table_load_test.cpp.
#pragma once

#include <array>
#include <cstdint>

namespace nls {

inline constexpr unsigned kLastPlainTypeCode = 128;
inline constexpr unsigned kFirstMappedTypeCode = 144;

// The type words of the codes from 144 on.
inline constexpr std::array<uint16_t, 34> kMappedTypeWords = {
    0x097, 0x218, 0x117, 0x418,  // 144: 23 and 24, UTF-16 with UTF-8
    0x099, 0x21A, 0x119, 0x41A,  // 148: 25 and 26, UTF-32 with UTF-8
    0x09B, 0x21C, 0x11B, 0x41C,  // 152: 27 from UTF-16, 28 to UTF-16
    0x21B, 0x09C, 0x41B, 0x11C,  // 156: 27 to UTF-32, 28 from UTF-32
    0x29B, 0x29C, 0x49B, 0x31C,  // 160: 27 and 28 with an order on both sides
    0x31B, 0x49C, 0x51B, 0x51C,  // 164
    0x11E, 0x41D, 0x09E, 0x21D,  // 168: 30 and 29, a multi-byte charset with UTF-16
    0x105, 0x406, 0x085, 0x206,  // 172: 5 and 6, ICU with UTF-16
    0x185, 0x606,                // 176: 5 and 6, ICU with UTF-8
};
inline constexpr unsigned kLastMappedTypeCode =
    kFirstMappedTypeCode + static_cast<unsigned>(kMappedTypeWords.size()) - 1;

constexpr bool isTypeCode(unsigned code) {
    return code <= kLastPlainTypeCode || (code >= kFirstMappedTypeCode && code <= kLastMappedTypeCode);
}

// REQUIRES: isTypeCode(code).
constexpr uint16_t typeWordOfCode(unsigned code) {
    return code <= kLastPlainTypeCode ? static_cast<uint16_t>(code) : kMappedTypeWords[code - kFirstMappedTypeCode];
}

static_assert(typeWordOfCode(150) == 0x119 && typeWordOfCode(160) == 0x29B && kLastMappedTypeCode == 177);

}  // namespace nls
