// A locale's tables, written as a record that a database stores.
// Tested by tests/core/db_collation_test.cpp and tests/real/real_stored_test.cpp.
#pragma once

#include <cstdint>

#include "nls/dbcollation.h"
#include "nls/records.h"

namespace nls {

// Bytes of the image, and of the tables in a block.
struct StoredSizes {
    uint32_t image, block;
};
// REQUIRES: an attribute table, for a long form.
StoredSizes storedSizes(const nlsLocale& locale, int32_t format);

// REQUIRES: a collation, an attribute table for a long form, room for the image.
void writeStored(const nlsLocale& locale, int32_t format, nlsDbCollation& record);

}  // namespace nls
