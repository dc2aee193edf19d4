// The conversion table between two charsets: found among the loaded ones, read, computed, or put together from others.
//
// A table that a reader could take for something else is not made. So a record of type 7 (two steps, which live in
// memory alone) is refused, a table that leads on to another (29, 30) wants that one to be a multi-byte bridge, and a
// byte map has its 256 bytes whatever its size field says, the rest zero.
//
// Entries can lead from one to another, and unsound ones back to themselves: the way is followed for a few steps only.
//
// Tested by tests/convmap/conv_table_load_test.cpp.
#pragma once

#include "convmap/load_context.hpp"

namespace nls {

enum class LoadOptions : uint32_t {
    none = 0,
    refuseUnmarkedMaps = 1,  // a byte map whose entry has sub-kind 0
};

// The table of `pair`; null with NLS_OK is the identity. NLS_NO_MEM, NLS_NO_CONV_TABLE, NLS_READ_FAILED.
Loaded<nlsConvTable> loadConvTable(const LoadContext& context, NamePair pair, LoadOptions options);

// A new table through a middle charset. NLS_NO_CONV_TABLE for every failure.
Loaded<nlsConvTable> makeTwoStepTable(const LoadContext& context, NamePair pair);

}  // namespace nls
