#include "convmap/ucs2_maps.hpp"

#include <cstring>

#include "convmap/attrib_table.hpp"
#include "convmap/dbcs_index.hpp"
#include "convmap/inverse_table.hpp"
#include "convmap/table_block.hpp"

namespace nls {

namespace {

static_assert(sizeof(nlsUcs2Map) == format::ucs2::kMapSize);

// Reads one array of a map into the arena. Leaves `array` as it is where there are no entries.
nlsStatus loadArray(const LoadContext& context, uint32_t offset, uint16_t count, uint16_t*& array) {
    if (count == 0) return NLS_OK;
    auto* const words = context.arena.array<uint16_t>(count);
    if (words == nullptr) return NLS_NO_MEM;
    const ByteSpan bytes{reinterpret_cast<unsigned char*>(words), std::size_t{count} * sizeof *words};
    if (!context.file.read(uint64_t{offset} + format::ucs2::kArrayPrefix, bytes)) return NLS_READ_FAILED;
    array = words;
    return NLS_OK;
}

nlsStatus loadArrays(const LoadContext& context, nlsUcs2Map& map) {
    if (const nlsStatus bad = loadArray(context, map.cjisOffset, map.cjisCount, map.cjisToUcs)) return bad;
    if (const nlsStatus bad = loadArray(context, map.rowsOffset, map.ucsRowCount, map.ucsRows)) return bad;
    return loadArray(context, map.cellsOffset, map.ucsCellCount, map.ucsCells);
}

// What an optional index leaves in the arena: room for the table of the opposite direction (504 bytes), and for a
// locale with an attribute table, a collation, a case table and a conversion (2,100 bytes) that a caller may make next.
constexpr uint32_t kBytesKeptFree = 3072;

bool leadsToUnicode(ConvType type) {
    return type == ConvType::dbcsToUtf8 || type == ConvType::dbcsToUtf8Long || type == ConvType::dbcsToUtf8Longest;
}

}  // namespace

ReadMaps readUcs2Maps(const LoadContext& context, NamePair pair) {
    ReadMaps answer = {};
    const nlsTocEntry* const entry = context.contents.find(pair);
    if (entry == nullptr || entry->offset == 0) {
        answer.status = NLS_NO_CONV_TABLE;
        return answer;
    }
    unsigned char record[format::ucs2::kSize];
    if (!context.file.read(entry->offset, record)) {
        answer.status = NLS_READ_FAILED;
        return answer;
    }
    const ByteView maps = format::bytesOf(record, format::ucs2::kMaps);
    std::memcpy(answer.maps, maps.data(), maps.size());
    return answer;
}

Loaded<nlsConvTable> loadDbcsTables(const LoadContext& context, NamePair pair, int64_t typeWord) {
    const ConvType type = ConvTable::typeOfWord(typeWord);
    if (blockOf(type) != TableBlock::dbcs) return {NLS_NO_CONV_TABLE, nullptr};
    const NamePair toUnicode = leadsToUnicode(type) ? pair : pair.reversed();

    ReadMaps read = readUcs2Maps(context, toUnicode);
    if (read.status != NLS_OK) return {read.status, nullptr};
    for (nlsUcs2Map& map : read.maps)
        if (const nlsStatus bad = loadArrays(context, map)) return {bad, nullptr};

    nlsConvTable* const table = makeTable(context.arena, typeWord, sizeof(DbcsTable));
    if (table == nullptr) return {NLS_NO_MEM, nullptr};
    auto& block = *reinterpret_cast<DbcsTable*>(table);
    std::memcpy(block.maps, read.maps, sizeof block.maps);
    const Loaded<nlsAttribStruct> attrib = loadAttributes(context, toUnicode.from);
    if (attrib.status != NLS_OK) return {NLS_NO_MEM, table};
    block.attrib = attrib.object;
    addDbcsIndex(context.arena, kBytesKeptFree, block);

    const ByteView bytes{reinterpret_cast<const unsigned char*>(table), sizeof block};
    return {installInverse(context, pair.reversed(), bytes, TableBlock::dbcs), table};
}

}  // namespace nls
