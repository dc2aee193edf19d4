#include "convmap/conv_table_load.hpp"

#include <algorithm>
#include <cstring>

#include "convmap/table_block.hpp"
#include "convmap/two_step_route.hpp"
#include "convmap/type_codes.hpp"
#include "convmap/ucs2_maps.hpp"
#include "convmap/utf8_tables.hpp"
#include "core/base/names.hpp"
#include "icu/converter.hpp"

namespace nls {

namespace {

using LoadedTable = Loaded<nlsConvTable>;

constexpr const char* kUtf8 = "UTF-8";
constexpr const char* kConvertsToAll = "undefined";

// How many tables may stand behind one another while one is made. Sound contents need three: two steps, of which one is
// a type 29 or 30, and the bridge behind that.
constexpr unsigned kMostNested = 8;

constexpr LoadedTable kNoTable = {NLS_NO_CONV_TABLE, nullptr};

struct TwoStepRecord {
    char from[20];
    char to[20];
    int64_t typeWord;
    nlsConvTable* step[3];  // the third is null
};
static_assert(sizeof(TwoStepRecord) == 72);

// What an entry says of its table, from its record or, without one, from its raw byte.
struct TableSource {
    nlsStatus status;
    unsigned typeCode;
    uint32_t size;  // bytes of `slot` in use
    unsigned char slot[format::kSlotWidth];
};

TableSource readSource(const LoadContext& context, const nlsTocEntry& entry) {
    TableSource source = {};
    if (entry.offset == 0) {
        source.typeCode = static_cast<unsigned char>(entry.rawByte);
        return source;
    }
    unsigned char record[format::conversion::kSize];
    if (!context.file.read(entry.offset, record)) {
        source.status = NLS_READ_FAILED;
        return source;
    }
    source.typeCode = format::bigEndianOf(record, format::conversion::kTypeCode);
    const int32_t size = format::decimalOf(record, format::kSlotSize);
    source.size = static_cast<uint32_t>(std::clamp<int32_t>(size, 0, format::kSlotWidth));
    std::memcpy(source.slot, record + format::conversion::kTable.offset, format::kSlotWidth);
    return source;
}

bool isIdentity(NamePair pair) {
    return sameName(pair.from, pair.to) || sameName(pair.from, kConvertsToAll) || sameName(pair.to, kConvertsToAll);
}

bool isRefused(const nlsTocEntry& entry, LoadOptions options) {
    return options == LoadOptions::refuseUnmarkedMaps && entry.subKind == 0 &&
           entry.rawByte == static_cast<int16_t>(ConvType::byteMap);
}

// A table that isn't there is the status 8 of the one that wanted it; a full arena stays what it is.
LoadedTable orNoTable(LoadedTable inner) {
    return inner.status == NLS_OK || inner.status == NLS_NO_MEM ? inner : kNoTable;
}

LoadedTable orNoMemory(nlsConvTable* table) {
    return {table == nullptr ? NLS_NO_MEM : NLS_OK, table};
}

class TableLoader {
public:
    explicit TableLoader(const LoadContext& context) : context_(context) {}

    LoadedTable load(NamePair pair, LoadOptions options, unsigned nested);
    LoadedTable makeTwoSteps(NamePair pair, unsigned nested);

private:
    LoadedTable make(const nlsTocEntry& entry, NamePair pair, LoadOptions options, unsigned nested);
    LoadedTable makeOnInner(int64_t typeWord, NamePair inner, LoadOptions options, unsigned nested);
    LoadedTable makeOnConverter(int64_t typeWord, const char* charset);
    LoadedTable fromOpposite(const nlsTocEntry& entry, NamePair pair, unsigned nested);
    LoadedTable makePlain(int64_t typeWord, const TableSource& source, uint32_t leastSize);

    const LoadContext& context_;
};

LoadedTable TableLoader::load(NamePair pair, LoadOptions options, unsigned nested) {
    if (isIdentity(pair)) return {NLS_OK, nullptr};
    nlsTocEntry* const entry = context_.contents.find(pair);
    if (entry == nullptr) {
        const LoadedTable steps = makeTwoSteps(pair, nested);
        return steps.status == NLS_OK ? steps : kNoTable;
    }
    if (isRefused(*entry, options)) return kNoTable;
    if (entry->data != nullptr) return {NLS_OK, cachedTable(*entry)};
    if (nested >= kMostNested) return kNoTable;
    const LoadedTable made = make(*entry, pair, options, nested);
    if (made.status != NLS_OK) return {made.status, nullptr};
    entry->data = made.object;
    return made;
}

LoadedTable TableLoader::make(const nlsTocEntry& entry, NamePair pair, LoadOptions options, unsigned nested) {
    const TableSource source = readSource(context_, entry);
    if (source.status != NLS_OK) return {source.status, nullptr};
    if (!isTypeCode(source.typeCode)) return kNoTable;
    const int64_t typeWord = typeWordOfCode(source.typeCode);
    const ConvType type = ConvTable::typeOfWord(typeWord);
    switch (blockOf(type)) {
        case TableBlock::innerTable: {
            const NamePair inner =
                type == ConvType::dbcsToUtf16 ? NamePair{pair.from, kUtf8} : NamePair{kUtf8, pair.to};
            return makeOnInner(typeWord, inner, options, nested);
        }
        case TableBlock::dbcs:
            return orNoTable(loadDbcsTables(context_, pair, typeWord));
        case TableBlock::sbcsWords:
            return orNoTable(buildSbcsTables(context_, pair, typeWord, source.slot));
        case TableBlock::sbcsPages:
            return fromOpposite(entry, pair, nested);
        case TableBlock::byteMap:
            return makePlain(typeWord, source, sizeof(ByteMapTable));
        case TableBlock::none:
            return makePlain(typeWord, source, 0);
        case TableBlock::icuConverter:
            return makeOnConverter(typeWord, type == ConvType::unicodeToIcu ? entry.name2 : entry.name1);
        case TableBlock::twoSteps:
            break;
    }
    return kNoTable;
}

LoadedTable TableLoader::makeOnInner(int64_t typeWord, NamePair innerPair, LoadOptions options, unsigned nested) {
    const LoadedTable inner = load(innerPair, options, nested + 1);
    if (inner.status != NLS_OK) return orNoTable(inner);
    if (blockOf(ConvTable{inner.object}.type()) != TableBlock::dbcs) return kNoTable;
    return orNoMemory(makeTable(context_.arena, typeWord, &inner.object, sizeof inner.object));
}

// The converter stays open for as long as the process runs.
LoadedTable TableLoader::makeOnConverter(int64_t typeWord, const char* charset) {
    const OpenedConverter opened = openConverter(charset);
    if (opened.status != kIcuOk) return kNoTable;
    return orNoMemory(makeTable(context_.arena, typeWord, &opened.converter, sizeof opened.converter));
}

// Making the table of the opposite direction has put this one into its entry. Contents where it doesn't do that are
// unsound; they get the identity.
LoadedTable TableLoader::fromOpposite(const nlsTocEntry& entry, NamePair pair, unsigned nested) {
    const LoadedTable opposite = load(pair.reversed(), LoadOptions::none, nested + 1);
    return opposite.status == NLS_OK ? LoadedTable{NLS_OK, cachedTable(entry)} : kNoTable;
}

LoadedTable TableLoader::makePlain(int64_t typeWord, const TableSource& source, uint32_t leastSize) {
    nlsConvTable* const table = makeTable(context_.arena, typeWord, std::max(source.size, leastSize));
    if (table != nullptr) std::memcpy(static_cast<void*>(table), source.slot, source.size);
    return orNoMemory(table);
}

LoadedTable TableLoader::makeTwoSteps(NamePair pair, unsigned nested) {
    const TwoStepRoute route = findTwoStepRoute(context_.contents, pair);
    if (!route.found()) return kNoTable;
    const LoadedTable first = load({pair.from, route.first->name2}, LoadOptions::none, nested + 1);
    if (first.status != NLS_OK) return kNoTable;
    const LoadedTable second = load({route.second->name1, pair.to}, LoadOptions::none, nested + 1);
    if (second.status != NLS_OK) return kNoTable;

    auto* const record = context_.arena.make<TwoStepRecord>();
    if (record == nullptr) return kNoTable;
    copyName(record->from, sizeof record->from, pair.from);
    copyName(record->to, sizeof record->to, pair.to);
    record->typeWord = static_cast<int64_t>(ConvType::twoStep);
    record->step[0] = first.object;
    record->step[1] = second.object;
    return {NLS_OK, reinterpret_cast<nlsConvTable*>(record->step)};
}

}  // namespace

Loaded<nlsConvTable> loadConvTable(const LoadContext& context, NamePair pair, LoadOptions options) {
    return TableLoader{context}.load(pair, options, 0);
}

Loaded<nlsConvTable> makeTwoStepTable(const LoadContext& context, NamePair pair) {
    return TableLoader{context}.makeTwoSteps(pair, 0);
}

}  // namespace nls
