// Case tables of both kinds: two maps of bytes, and the pages of UTF-8.
//
// A Unicode table is built from two lists of pairs of UCS-2 characters. Its first stage points to pages in the arena,
// or in the buffer of a caller who builds it there, and to the one page without entries, a constant of the library
// (convmap/case_pages.hpp has the places).
//
// Tested by tests/convmap/case_table_test.cpp.
#pragma once

#include "convmap/case_pages.hpp"
#include "convmap/load_context.hpp"

namespace nls {

// NLS_NO_MEM, NLS_NO_CASE_TABLE, NLS_READ_FAILED. A table of bytes under the name of a charset whose attribute table
// says UTF-8 isn't there: its readers would take it for pages.
Loaded<nlsCaseStruct> loadCaseTable(const LoadContext& context, const char* charset, const char* caseName);

// Builds the table from the record of the file, which may be that in the table itself. Pages come from `memory`; false
// where they don't fit, and then the table is as it was.
bool buildUnicodeCaseTable(const Arena& memory, ByteView record, nlsUnicodeCaseStruct& table);

}  // namespace nls
