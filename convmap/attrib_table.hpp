// Attribute tables: what the data file says of the bytes of a charset.
// Tested by tests/convmap/attrib_table_test.cpp.
#pragma once

#include "convmap/load_context.hpp"

namespace nls {

// The attribute table of a charset, read on first use.
//
// A size field above 256 counts as 256, one below 0 as 0; behind the size the maps are zero. The charset "CP936" gets
// NLS_CHARSET_CP936 set.
Loaded<nlsAttribStruct> loadAttributes(const LoadContext& context, const char* charset);

}  // namespace nls
