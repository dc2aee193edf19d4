#include "convmap/coll_table_load.hpp"

#include <algorithm>
#include <cstring>

#include "collation/coll_kind.hpp"
#include "convmap/coll_derive.hpp"
#include "convmap/conv_table_load.hpp"
#include "core/base/names.hpp"
#include "icu/collation_name.hpp"
#include "icu/collator.hpp"

namespace nls {

namespace {

using LoadedCollation = Loaded<nlsCollStruct>;
namespace record_of = format::collation;

constexpr LoadedCollation kNoCollation = {NLS_NO_COLL_TABLE, nullptr};

void pushOnList(const LoadContext& context, nlsCollStruct& coll) {
    coll.nextColl = *context.newestCollation;
    *context.newestCollation = &coll;
}

void setNames(nlsCollStruct& coll, const char* charset, const char* collationName) {
    copyName(coll.collCharset, sizeof coll.collCharset, charset);
    copyName(coll.collName, sizeof coll.collName, collationName);
}

// The record stands behind the collation, in one piece of the arena.
struct IcuCollation {
    nlsCollStruct coll;
    nlsIcuInfo info;
};
static_assert(sizeof(IcuCollation) == 648);

// Each locale has a collation of its own; the contents of the file aren't asked. One that ICU refuses stays on the
// list.
LoadedCollation loadIcuCollation(const LoadContext& context, const char* charset, const char* collationName) {
    constexpr int32_t kFailedKind = -2;
    auto* const made = context.arena.make<IcuCollation>();
    if (made == nullptr) return {NLS_NO_MEM, nullptr};
    nlsCollStruct& coll = made->coll;
    if (const nlsStatus bad = fillIcuInfo(coll, made->info, collationName)) return {bad, nullptr};
    const nlsStatus status = makeIcuCollation(made->info.icuLocale, coll);
    setNames(coll, charset, collationName);
    coll.collKind = status == NLS_OK ? static_cast<int32_t>(CollKind::icu) : kFailedKind;
    pushOnList(context, coll);
    return {status, status == NLS_OK ? &coll : nullptr};
}

// A collation by code points has no weights, and says so in both slots.
bool hasUnicodeMarks(ByteView record) {
    constexpr char kMark[] = "BASIC";
    return std::memcmp(record.data() + record_of::kExactMap.offset, kMark, sizeof kMark) == 0 &&
           std::memcmp(record.data() + record_of::kFoldMap.offset, kMark, sizeof kMark) == 0;
}

nlsStatus acceptKind(const LoadContext& context, ByteView record, const char* collationName) {
    switch (CollKind{format::byteOf(record, record_of::kKind)}) {
        case CollKind::unicode:
            return hasUnicodeMarks(record) ? NLS_OK : NLS_BAD_COLLATION;
        case CollKind::userSort:
            return openUserSort(context.userSort, collationName);
        case CollKind::icu:
            return NLS_BAD_COLLATION;
        default:
            return NLS_OK;
    }
}

void fill(nlsCollStruct& coll, ByteView record) {
    const int32_t size = format::decimalOf(record, format::kSlotSize);
    coll.collMapSize = static_cast<uint32_t>(std::clamp<int32_t>(size, 0, format::kMapEntries));
    std::memcpy(coll.exactMap, record.data() + record_of::kExactMap.offset, coll.collMapSize);
    std::memcpy(coll.foldMap, record.data() + record_of::kFoldMap.offset, coll.collMapSize);
    coll.collKind = format::byteOf(record, record_of::kKind);
    coll.collSubKind = format::byteOf(record, record_of::kSubKind);
}

LoadedCollation loadEntry(const LoadContext& context, nlsTocEntry& entry, const char* charset,
                          const char* collationName) {
    if (entry.data != nullptr) return {NLS_OK, cachedCollation(entry)};
    unsigned char record[record_of::kSize];
    if (!context.file.read(entry.offset, record)) return {NLS_READ_FAILED, nullptr};
    if (const nlsStatus bad = acceptKind(context, record, collationName)) return {bad, nullptr};
    auto* const coll = context.arena.make<nlsCollStruct>();
    if (coll == nullptr) return {NLS_NO_MEM, nullptr};
    fill(*coll, record);
    setNames(*coll, charset, collationName);
    entry.data = coll;
    pushOnList(context, *coll);
    return {NLS_OK, coll};
}

void copyTables(nlsCollStruct& coll, const nlsCollStruct& source) {
    coll.collMapSize = source.collMapSize;
    coll.collKind = source.collKind;
    coll.collSubKind = source.collSubKind;
    std::ranges::copy(source.exactMap, coll.exactMap);
    std::ranges::copy(source.foldMap, coll.foldMap);
}

}  // namespace

LoadedCollation deriveCollation(const LoadContext& context, const char* charset, const char* collationName) {
    const DerivationSource from = findDerivation(context.contents, charset, collationName);
    if (from.collation == nullptr) return kNoCollation;
    constexpr bool kMayDerive = false;  // nor need it: there is an entry
    const LoadedCollation source = loadCollation(context, from.collation->name1, collationName, kMayDerive);
    if (source.status != NLS_OK) return kNoCollation;

    auto* const coll = context.arena.make<nlsCollStruct>();
    if (coll == nullptr) return {NLS_NO_MEM, nullptr};
    copyTables(*coll, *source.object);
    setNames(*coll, charset, collationName);
    const NamePair pair = {from.conversion->name1, from.conversion->name2};
    const Loaded<nlsConvTable> table = loadConvTable(context, pair, LoadOptions::none);
    if (table.status != NLS_OK) return kNoCollation;
    moveWeights(coll->exactMap, ConvTable{table.object});
    moveWeights(coll->foldMap, ConvTable{table.object});
    return {NLS_OK, coll};
}

LoadedCollation loadCollation(const LoadContext& context, const char* charset, const char* collationName,
                              bool mayDerive) {
    if (isIcuName(collationName)) return loadIcuCollation(context, charset, collationName);
    nlsTocEntry* const entry = context.contents.find(format::EntryType::collation, charset, collationName);
    if (entry != nullptr) return loadEntry(context, *entry, charset, collationName);
    if (!mayDerive) return kNoCollation;
    const LoadedCollation derived = deriveCollation(context, charset, collationName);
    if (derived.status == NLS_OK) pushOnList(context, *derived.object);
    return derived;
}

}  // namespace nls
