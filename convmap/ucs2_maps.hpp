// Tables of a multi-byte charset to and from UTF-8.
//
// The file holds three map records at the entry from the charset to UTF-8, and up to three arrays for each map
// elsewhere. Either direction, asked for first, loads both: the arrays are shared, and each direction has its own copy
// of the records.
//
// The contents of a record are not judged. Its array pointers are the arena's wherever the count isn't 0, and what the
// file holds in that place where it is 0: a walk goes by the counts, never by the pointers alone.
//
// Tested by tests/convmap/ucs2_maps_test.cpp.
#pragma once

#include "convmap/conv_table.hpp"
#include "convmap/load_context.hpp"

namespace nls {

struct ReadMaps {
    nlsStatus status;
    nlsUcs2Map maps[format::ucs2::kMapCount];
};

// The map records as they stand in the file. `pair` goes from the multi-byte charset to the other one.
// NLS_NO_CONV_TABLE where the contents have no such entry or it has no data, NLS_READ_FAILED where the record can't be
// read.
ReadMaps readUcs2Maps(const LoadContext& context, NamePair pair);

// Builds the tables of both directions; the one of the opposite direction goes into its entry, the other is the answer.
// `typeWord` belongs to `pair` and tells which side is the multi-byte charset. NLS_NO_MEM also where that charset has
// no attribute table; NLS_NO_CONV_TABLE also for a type word of another family, and without a fitting entry for the
// opposite direction.
Loaded<nlsConvTable> loadDbcsTables(const LoadContext& context, NamePair pair, int64_t typeWord);

}  // namespace nls
