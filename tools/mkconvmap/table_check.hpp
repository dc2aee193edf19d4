// Collations and case tables of the finished file, as the library gives them to a locale: weights, kinds and forms are
// those of the descriptions, and what the library derives along a byte map keeps the characters' weights.
// Part of read_back.hpp; tested by tests/tools/read_back_test.cpp.
#pragma once

#include "nls/records.h"
#include "tools/mkconvmap/compile.hpp"

namespace nls::mkconvmap {

// Loads the table of an entry that is a collation or a case table. Throws a ReadBackError where that fails.
void loadTable(nlsHandle* handle, const FileEntry& entry);

// Throw a ReadBackError with the first difference.
void checkTable(nlsHandle* handle, const FileEntry& entry);
void checkDerivedTables(nlsHandle* handle, const CompiledMap& map);

}  // namespace nls::mkconvmap
