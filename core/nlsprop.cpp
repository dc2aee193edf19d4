// Door: property queries.
#include "nls/properties.h"

#include <cstring>

#include "convmap/conv_table.hpp"
#include "core/base/checks.hpp"
#include "core/db_block.hpp"
#include "core/property_lists.hpp"
#include "core/property_values.hpp"
#include "strings/str_record.hpp"

namespace {

using nls::ListKind;

bool usable(const nlsStr* rec) {
    return rec != nullptr && (rec->buf != nullptr || rec->bufSize <= 0);
}

nlsStatus handOut(std::optional<uint32_t> answer, nlsStatus otherwise, uint32_t* value) {
    if (!answer) return otherwise;
    if (value == nullptr) return NLS_BAD_ARG;
    *value = *answer;
    return NLS_OK;
}

template <std::size_t Size>
nlsStatus handOutName(const char (&name)[Size], nlsStr* rec) {
    if (!usable(rec)) return NLS_BAD_ARG;
    return nls::replaceText(*rec, reinterpret_cast<const unsigned char*>(name),
                            static_cast<int64_t>(strnlen(name, Size)));
}

// The list whose length or text a number asks for.
std::optional<ListKind> listByLength(uint32_t property) {
    switch (property) {
        case NLS_PROP_CHARSETS_LENGTH:
            return ListKind::charsets;
        case NLS_PROP_COLLATIONS_LENGTH:
            return ListKind::collations;
        case NLS_PROP_CASES_LENGTH:
            return ListKind::caseTables;
        case NLS_PROP_CONVERSIONS_LENGTH:
            return ListKind::conversions;
        default:
            return std::nullopt;
    }
}

std::optional<ListKind> listByText(uint32_t property) {
    switch (property) {
        case NLS_PROP_CHARSETS:
            return ListKind::charsets;
        case NLS_PROP_COLLATIONS:
            return ListKind::collations;
        case NLS_PROP_CASES:
            return ListKind::caseTables;
        case NLS_PROP_CONVERSIONS:
            return ListKind::conversions;
        default:
            return std::nullopt;
    }
}

// A locale has no list of charsets.
std::optional<ListKind> ofLocale(std::optional<ListKind> list) {
    return list == ListKind::charsets ? std::nullopt : list;
}

bool isOfCharset(uint32_t property) {
    static constexpr nlsAttribStruct kAny{};
    return nls::charsetProperty(nls::Charset{kAny}, property).has_value();
}

}  // namespace

nlsStatus nlsGetIntLocaleProperty(const nlsLocale* locale, uint32_t property, uint32_t* value) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    const std::optional<ListKind> list = ofLocale(listByLength(property));
    const bool ofImage = property == NLS_PROP_IMAGE_SIZE;
    if (!list && !ofImage && !isOfCharset(property)) return NLS_BAD_PROPERTY;
    if (value == nullptr) return NLS_BAD_ARG;
    if (ofImage && locale->coll == nullptr) return NLS_BAD_COLLATION;
    if (locale->attrib == nullptr && (!list || list == ListKind::collations)) return NLS_NO_ATTRIB;
    if (list) return handOut(nls::lengthOfList(*locale, *list), NLS_OK, value);
    if (ofImage) return handOut(nls::imageSizeOf(*locale), NLS_OK, value);
    return handOut(nls::charsetProperty(nls::Charset{*locale->attrib}, property), NLS_OK, value);
}

nlsStatus nlsGetStrLocaleProperty(const nlsLocale* locale, uint32_t property, nlsStr* rec) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    switch (property) {
        case NLS_PROP_CHARSET:
            return handOutName(locale->charsetName, rec);
        case NLS_PROP_COLLATION:
            return handOutName(locale->collationName, rec);
        case NLS_PROP_CASE:
            return handOutName(locale->caseName, rec);
        default:
            break;
    }
    const std::optional<ListKind> list = ofLocale(listByText(property));
    if (!list) return NLS_BAD_PROPERTY;
    if (!usable(rec)) return NLS_BAD_ARG;
    if (locale->attrib == nullptr && list == ListKind::collations) return NLS_NO_ATTRIB;
    return nls::writeList(*locale, *list, *rec);
}

nlsStatus nlsGetIntConversionProperty(const nlsConversion* conversion, uint32_t property, uint32_t* value) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    switch (property) {
        case NLS_PROP_GROWTH:
            return handOut(nls::largestGrowth(*conversion), NLS_BAD_ARG, value);
        case NLS_PROP_CONVERTED_CHAR_SIZE:
            if (const nlsStatus bad = nls::checkLocale(conversion->target)) return bad;
            if (conversion->target->attrib == nullptr) return NLS_NO_ATTRIB;
            return handOut(nls::largestCharacter(*conversion), NLS_BAD_ARG, value);
        case NLS_PROP_TWO_STEP:
            return handOut(nls::ConvTable{conversion->table}.type() == nls::ConvType::twoStep, NLS_OK, value);
        default:
            return NLS_BAD_PROPERTY;
    }
}

nlsStatus nlsGetStrConversionProperty(const nlsConversion* conversion, uint32_t property, nlsStr* rec) {
    if (const nlsStatus bad = nls::checkConversion(conversion)) return bad;
    if (property == NLS_PROP_SOURCE_CHARSET) return handOutName(conversion->source->charsetName, rec);
    if (property == NLS_PROP_TARGET_CHARSET) return handOutName(conversion->target->charsetName, rec);
    return NLS_BAD_PROPERTY;
}

nlsStatus nlsGetIntNLSProperty(const nlsHandle* handle, uint32_t property, uint32_t* value) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    switch (property) {
        case NLS_PROP_STR_SIZE:
            return handOut(uint32_t{sizeof(nlsStr)}, NLS_OK, value);
        case NLS_PROP_ARENA_LEFT:
            return handOut(handle->freeBytes, NLS_OK, value);
        case NLS_PROP_DB_BLOCK_BASE:
            return handOut(nls::kSmallBlockBase, NLS_OK, value);
        default:
            break;
    }
    const std::optional<ListKind> list = listByLength(property);
    if (!list) return NLS_BAD_PROPERTY;
    return handOut(nls::lengthOfList(*handle, *list), NLS_OK, value);
}

nlsStatus nlsGetStrNLSProperty(const nlsHandle* handle, uint32_t property, nlsStr* rec) {
    if (handle == nullptr) return NLS_BAD_HANDLE;
    const std::optional<ListKind> list = listByText(property);
    if (!list) return NLS_BAD_PROPERTY;
    if (!usable(rec)) return NLS_BAD_ARG;
    return nls::writeList(*handle, *list, *rec);
}
