#include "core/db_collation_write.hpp"

#include <cstring>

#include "collation/coll_kind.hpp"
#include "core/base/views.hpp"
#include "core/db_block.hpp"
#include "icu/image.hpp"

namespace nls {

namespace {

bool isShort(int32_t format) {
    return format <= kLastShortFormat;
}

// What the maps of ICU's collations begin with is an address. REQUIRES: both maps at `image`.
void clearIcuPointers(unsigned char* image) {
    IcuImage{image + offsetof(nlsCollStruct, exactMap)}.setInfo(nullptr);
    IcuImage{image + offsetof(nlsCollStruct, foldMap)}.setInfo(nullptr);
}

// REQUIRES: a collation and an attribute table at `image`.
void clearTablePointers(unsigned char* image) {
    unsigned char* const attrib = image + sizeof(nlsCollStruct);
    storeWord<void*>(image + offsetof(nlsCollStruct, nextColl), nullptr);
    storeWord<void*>(attrib + offsetof(nlsAttribStruct, sjisAttrib), nullptr);
    storeWord<void*>(attrib + offsetof(nlsAttribStruct, sjisConversion), nullptr);
}

void writeLong(const nlsLocale& locale, unsigned char* image) {
    std::memcpy(image, locale.coll, sizeof(nlsCollStruct));
    std::memcpy(image + sizeof(nlsCollStruct), locale.attrib, sizeof(nlsAttribStruct));
    clearTablePointers(image);
    const uint32_t caseSize = caseSizesOf(Charset{*locale.attrib}, locale.caseTable).image;
    if (caseSize != 0) std::memcpy(image + kTablesSize, locale.caseTable, caseSize);
}

template <std::size_t Size>
void copyField(char (&to)[Size], const char (&from)[Size]) {
    std::memcpy(to, from, Size);
}

}  // namespace

StoredSizes storedSizes(const nlsLocale& locale, int32_t format) {
    if (isShort(format)) return {kMapsSize, kSmallBlockBase};
    const CaseSizes caseSizes = caseSizesOf(Charset{*locale.attrib}, locale.caseTable);
    return {kTablesSize + caseSizes.image, kLargeBlockBase + caseSizes.block};
}

void writeStored(const nlsLocale& locale, int32_t format, nlsDbCollation& record) {
    copyField(record.dbCharset, locale.charsetName);
    copyField(record.dbCollation, locale.collationName);
    copyField(record.dbCase, locale.caseName);
    if (isShort(format))
        std::memcpy(record.dbImage, locale.coll, kMapsSize);
    else
        writeLong(locale, record.dbImage);
    if (kindOf(*locale.coll) == CollKind::icu) clearIcuPointers(record.dbImage);
    const StoredSizes sizes = storedSizes(locale, format);
    record.dbImageSize = sizes.image;
    record.dbBlockBase = sizes.block;
    record.dbCollKind = locale.coll->collKind;
    record.dbCollSubKind = locale.coll->collSubKind;
}

}  // namespace nls
