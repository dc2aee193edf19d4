// Collation tables, by their three origins: a record of the file, the record of another charset moved through a map of
// bytes, and ICU.
//
// What a record says is believed as far as a walk can bear it: any weights, any kind but that of ICU, whose tables are
// made in memory alone, with a record of ICU's behind them. Each finished table goes to the head of the handle's list
// of collations, which is only ever added to and which nothing in the library walks.
//
// Tested by tests/convmap/coll_table_load_test.cpp.
#pragma once

#include "convmap/load_context.hpp"

namespace nls {

// `mayDerive`: the charset is a single-byte one, so its collation may be that of another charset, moved. Such a table
// is made anew by each call; one of the file is cached in its entry. NLS_NO_MEM, NLS_NO_COLL_TABLE, NLS_READ_FAILED,
// NLS_BAD_COLLATION.
Loaded<nlsCollStruct> loadCollation(const LoadContext& context, const char* charset, const char* collationName,
                                    bool mayDerive);

// A new table from another charset's, on no list. NLS_NO_MEM, and NLS_NO_COLL_TABLE for every other failure.
Loaded<nlsCollStruct> deriveCollation(const LoadContext& context, const char* charset, const char* collationName);

}  // namespace nls
