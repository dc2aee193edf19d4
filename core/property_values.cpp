#include "core/property_values.hpp"

#include "conversion/conv_type.hpp"
#include "core/db_block.hpp"
#include "nls/properties.h"

namespace nls {

namespace {

bool isUnicodeForm(Charset charset) {
    return charset.isUtf8() || charset.hasUnits16() || charset.hasUnits32();
}

uint32_t characterSize(Charset charset) {
    if (isUnicodeForm(charset)) return 4;
    return charset.isMultiByte() ? 2 : 1;
}

uint32_t classOf(Charset charset) {
    enum : uint32_t { utf8 = 1, otherMultiByte = 2, singleByte = 3 };
    if (!charset.isMultiByte()) return singleByte;
    return charset.isUtf8() ? utf8 : otherMultiByte;
}

}  // namespace

std::optional<uint32_t> charsetProperty(Charset charset, uint32_t property) {
    switch (property) {
        case NLS_PROP_CHAR_SIZE:
            return characterSize(charset);
        case NLS_PROP_MULTI_BYTE:
            return charset.isMultiByte();
        case NLS_PROP_VIA_SJIS:
            return charset.comparesViaSjis();
        case NLS_PROP_UTF8:
            return charset.isUtf8();
        case NLS_PROP_UNITS16:
            return charset.hasUnits16();
        case NLS_PROP_DOUBLE_BYTE:
            return charset.isMultiByte() && !isUnicodeForm(charset);
        case NLS_PROP_UNITS32:
            return charset.hasUnits32();
        case NLS_PROP_CHARSET_CLASS:
            return classOf(charset);
        default:
            return std::nullopt;
    }
}

std::optional<uint32_t> largestGrowth(const nlsConversion& conversion) {
    return largestGrowth(ConvTable{conversion.table});
}

std::optional<uint32_t> largestCharacter(const nlsConversion& conversion) {
    return largestCharacter(ConvTable{conversion.table}, characterSize(Charset{*conversion.target->attrib}));
}

uint32_t imageSizeOf(const nlsLocale& locale) {
    if (locale.coll->collKind <= kLastKindByFile) return sizeof(nlsCollStruct);
    return kTablesSize + caseSizesOf(Charset{*locale.attrib}, locale.caseTable).image;
}

}  // namespace nls
