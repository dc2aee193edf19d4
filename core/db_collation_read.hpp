// A record that a database has stored, made into a locale in a block of the caller's.
//
// The record, its image and its word-break table may hold anything. Sizes are checked before they are used; what the
// tables hold otherwise is believed as far as a walk can bear it, like those of a data file. Places in the block:
// core/db_block.hpp. Tested by tests/core/db_collation_test.cpp, tests/icu/stored_icu_test.cpp,
// tests/real/real_stored_test.cpp and fuzz/db_collation.cpp.
#pragma once

#include <cstdint>

#include "core/base/views.hpp"
#include "nls/dbcollation.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Bytes that a block needs for the record and a text of `textLength` bytes; NLS_BAD_COLLATION where the image tells
// sizes that it can't have. REQUIRES: an image, for a kind above 5.
struct BlockNeeded {
    nlsStatus status;
    uint64_t size;
};
BlockNeeded blockNeeded(const nlsDbCollation& record, uint64_t textLength);

// Fills the block and puts its locale on the chain. `text` is without its NUL. Nothing is linked on a failure.
// REQUIRES: the handle marked busy, an image, a block of the size needed at a multiple of 8.
nlsStatus openStored(nlsHandle& handle, const nlsDbCollation& record, ByteView text, ByteSpan block);

}  // namespace nls
