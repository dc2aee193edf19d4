#include "convmap/inverse_table.hpp"

#include "convmap/table_block.hpp"

namespace nls {

namespace {

nlsStatus install(const LoadContext& context, nlsTocEntry& entry, ByteView block) {
    nlsConvTable* const table = makeTable(context.arena, entry.rawByte, block.data(), block.size());
    if (table == nullptr) return NLS_NO_MEM;
    entry.data = table;
    return NLS_OK;
}

}  // namespace

nlsStatus installInverse(const LoadContext& context, NamePair pair, ByteView block) {
    nlsTocEntry* const entry = context.contents.find(pair);
    return entry == nullptr ? NLS_NO_CONV_TABLE : install(context, *entry, block);
}

nlsStatus installInverse(const LoadContext& context, NamePair pair, ByteView block, TableBlock kind) {
    nlsTocEntry* const entry = context.contents.find(pair);
    if (entry == nullptr || blockOf(ConvTable::typeOfWord(entry->rawByte)) != kind) return NLS_NO_CONV_TABLE;
    return install(context, *entry, block);
}

}  // namespace nls
