// How the block of a handle begins: its record, the record of its first arena buffer, and what the handle owns beside
// the fields that others may lay out. The rest of the block is arena.
#pragma once

#include "nls/records.h"

namespace nls {

struct HandleBlock {
    nlsHandle handle;
    nlsBufferRec firstBuffer;
    nlsCollStruct* newestCollation;  // of all that were made under this handle, linked by nextColl; null at first
};
static_assert(sizeof(HandleBlock) == 128);

// REQUIRES: the handle stands at the start of its block.
inline HandleBlock& handleBlockOf(nlsHandle& handle) {
    return reinterpret_cast<HandleBlock&>(handle);
}

}  // namespace nls
