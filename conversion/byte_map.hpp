// Bytes through a map of 256 bytes: from one single-byte charset to another.
//
// Shape: one look-up per byte, for a block of bytes at once where the processor can hold the map in registers: as two
// halves of 8 rows of 16 bytes (AVX2), or as four quarters of 64 bytes (AVX-512).
// Tested by tests/conversion/byte_map_test.cpp.
#pragma once

#include <cstddef>

namespace nls {

// Maps `count` bytes and tells whether any came out different. The result is that of a walk from the first byte to the
// last, however both sides overlap.
bool mapBytes(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target);

// The ways of mapBytes. REQUIRES of the wide ones: `target` doesn't lie inside the source behind its start.
bool mapBytesPlain(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target);
bool mapBytesAvx2(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target);
bool mapBytesAvx512(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target);

}  // namespace nls
