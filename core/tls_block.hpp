// A thread's own block in that thread's memory.
// Tested by tests/core/tls_block_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "nls/records.h"

namespace nls {

// The block, or null where the memory is too small for it, and the bytes to ask for in that case.
struct TlsPlace {
    nlsTlsBlock* block;
    uint32_t bytesNeeded;
};

// Lays a cleared block at the first multiple of 8 in `memory`. No memory at all (a null view) asks for the size that is
// enough at any address.
TlsPlace placeTlsBlock(ByteSpan memory, uint64_t ownerWord);

}  // namespace nls
