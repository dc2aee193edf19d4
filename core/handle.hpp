// A block becomes a handle, grows by buffers, and ends.
//
// The handle's record opens the block, and the arena's first buffer is the rest of it. Each buffer, the first too, has
// a record taken from itself; the records form a list from the newest buffer to the oldest. What the first buffer gives
// next is the head of the list of collations (core/base/handle_block.hpp). Tested by
// tests/core/handle_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "nls/records.h"

namespace nls {

struct OpenedHandle {
    nlsStatus status;
    nlsHandle* handle;  // in use only with NLS_OK
};

// Clears the block and reads header and contents of the file into it. REQUIRES: room for a HandleBlock, alignment 8.
OpenedHandle openHandle(ByteSpan block, nlsReadFn readFn, uint32_t fileHandle);

// Reads header and contents into the handle, which keeps what it had where that fails.
nlsStatus readContentsInto(nlsHandle& handle);

// Makes the buffer the one that is taken from. REQUIRES: room for its record.
void addBuffer(nlsHandle& handle, ByteSpan buffer);

// From now on every check of the handle fails. What hangs off it stays in its memory.
void endHandle(nlsHandle& handle);

}  // namespace nls
