// Characters of one and two bytes, up to 64 bytes at once.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nls {

// One bit for each byte, the lowest for the first.
struct Seconds {
    std::uint64_t lanes;  // second bytes
    bool next;            // the last lane is a first byte
};

// Which bytes are second ones. In a run of bytes that could all be first ones they pair off from the left: the carry of
// an addition at the start of each run that begins in an even lane tells those runs from the others. `leads` are the
// bytes that could be first ones; where `second` holds, the first lane is a second byte.
inline Seconds pairOff(std::uint64_t leads, bool second, std::size_t count) {
    constexpr std::uint64_t kEven = 0x5555555555555555;
    leads &= ~std::uint64_t{second};
    const std::uint64_t starts = leads & ~(leads << 1);
    const std::uint64_t fromEven = leads & ~(leads + (starts & kEven));
    const std::uint64_t first = (fromEven & kEven) | (leads & ~fromEven & ~kEven);
    return {first << 1 | std::uint64_t{second}, (first >> (count - 1) & 1) != 0};
}

}  // namespace nls
