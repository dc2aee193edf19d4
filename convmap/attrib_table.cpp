#include "convmap/attrib_table.hpp"

#include <algorithm>
#include <cstring>

#include "core/base/names.hpp"

namespace nls {

namespace {

constexpr const char* kEuroAt80 = "CP936";

void fillMaps(nlsAttribStruct& attrib, ByteView record) {
    const int32_t size = format::decimalOf(record, format::kSlotSize);
    attrib.mapSize = static_cast<uint32_t>(std::clamp<int32_t>(size, 0, format::kMapEntries));
    std::memcpy(attrib.alphaMap, record.data() + format::attributes::kAlphaMap.offset, attrib.mapSize);
    std::memcpy(attrib.lengthMap, record.data() + format::attributes::kLengthMap.offset, attrib.mapSize);
    std::memcpy(attrib.trailMap, record.data() + format::attributes::kTrailMap.offset, attrib.mapSize);
}

}  // namespace

Loaded<nlsAttribStruct> loadAttributes(const LoadContext& context, const char* charset) {
    nlsTocEntry* const entry = context.contents.find(format::EntryType::attributes, charset);
    if (entry == nullptr) return {NLS_NO_ATTRIB_TABLE, nullptr};
    if (entry->data != nullptr) return {NLS_OK, cachedAttributes(*entry)};

    auto* const attrib = context.arena.make<nlsAttribStruct>();
    if (attrib == nullptr) return {NLS_NO_MEM, nullptr};
    unsigned char record[format::attributes::kSize];
    if (!context.file.read(entry->offset, record)) return {NLS_READ_FAILED, attrib};
    fillMaps(*attrib, record);
    attrib->flags = entry->rawByte;
    if (sameName(charset, kEuroAt80)) attrib->flags |= NLS_CHARSET_CP936;
    entry->data = attrib;
    return {NLS_OK, attrib};
}

}  // namespace nls
