// The checks of an object, in the order that is part of the interface: the handle behind it (13), then the object (24
// or 26), then its attribute table (27) where an operation needs one. A null object fails the first of them.
#pragma once

#include "nls/records.h"
#include "nls/status.h"

namespace nls {

inline nlsStatus checkHandle(const nlsHandle* handle) {
    return handle != nullptr && handle->hdr.typeTag == NLS_TAG_HANDLE ? NLS_OK : NLS_BAD_HANDLE;
}

inline nlsStatus checkLocale(const nlsLocale* locale) {
    if (locale == nullptr) return NLS_BAD_HANDLE;
    if (const nlsStatus bad = checkHandle(locale->owner)) return bad;
    return locale->hdr.typeTag == NLS_TAG_LOCALE ? NLS_OK : NLS_BAD_LOCALE;
}

// Looks at the handles behind both locales; the tags of the locales themselves don't count.
inline nlsStatus checkConversion(const nlsConversion* conversion) {
    if (conversion == nullptr || conversion->source == nullptr || conversion->target == nullptr) return NLS_BAD_HANDLE;
    if (const nlsStatus bad = checkHandle(conversion->source->owner)) return bad;
    if (const nlsStatus bad = checkHandle(conversion->target->owner)) return bad;
    return conversion->hdr.typeTag == NLS_TAG_CONVERSION ? NLS_OK : NLS_BAD_CONVERSION;
}

}  // namespace nls
