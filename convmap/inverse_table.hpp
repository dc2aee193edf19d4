// Installing the table of the way back, which is made together with that of the way forth.
// Tested by tests/convmap/inverse_table_test.cpp.
#pragma once

#include "convmap/conv_table.hpp"
#include "convmap/load_context.hpp"

namespace nls {

// Puts a copy of `block` behind the raw byte of the entry of `pair` as type word, and into that entry, whether or not a
// table was there. NLS_NO_CONV_TABLE without an entry, NLS_NO_MEM without room.
nlsStatus installInverse(const LoadContext& context, NamePair pair, ByteView block);

// The same for a block of a known kind. An entry whose raw byte is a type of another kind would make its readers take
// the block for something else: NLS_NO_CONV_TABLE.
nlsStatus installInverse(const LoadContext& context, NamePair pair, ByteView block, TableBlock kind);

}  // namespace nls
