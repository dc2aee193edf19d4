// Door: locales and conversions.
#include "core/base/busy_guard.hpp"
#include "core/base/checks.hpp"
#include "core/base/object_chain.hpp"
#include "core/conversion_create.hpp"
#include "core/locale_create.hpp"
#include "nls/objects.h"

nlsStatus nlsCreateLocale(nlsHandle* handle, const char* charset, const char* collation, const char* caseName,
                          nlsLocale** locale) {
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (charset == nullptr || locale == nullptr) return NLS_BAD_ARG;
    const nls::CreatedLocale created = nls::findOrCreateLocale(*handle, {charset, collation, caseName});
    if (created.locale != nullptr) *locale = created.locale;
    return created.status;
}

nlsStatus findLocale(const nlsHandle* handle, const char* charset, const char* collation, const char* caseName,
                     nlsLocale** locale) {
    if (handle == nullptr || charset == nullptr || locale == nullptr) return NLS_BAD_ARG;
    nlsLocale* const found = nls::findLocaleByNames(*handle, {charset, collation, caseName});
    if (found == nullptr) return NLS_BAD_LOCALE;
    *locale = found;
    return NLS_OK;
}

nlsStatus nlsCreateConversion(nlsHandle* handle, nlsLocale* source, nlsLocale* target, nlsConversion** conversion) {
    if (const nlsStatus bad = nls::checkLocale(source)) return bad;
    if (const nlsStatus bad = nls::checkLocale(target)) return bad;
    if (const nlsStatus bad = nls::checkHandle(handle)) return bad;
    if (conversion == nullptr) return NLS_BAD_ARG;
    const nls::CreatedConversion created = nls::findOrCreateConversion(*handle, *source, *target);
    if (created.conversion != nullptr) *conversion = created.conversion;
    return created.status;
}

nlsStatus findConversion(const nlsHandle* handle, const nlsLocale* source, const nlsLocale* target,
                         nlsConversion** conversion) {
    if (handle == nullptr || source == nullptr || target == nullptr || conversion == nullptr) return NLS_BAD_ARG;
    nlsConversion* const found = nls::findConversionByNames(*handle, *source, *target);
    if (found == nullptr) return NLS_BAD_CONVERSION;
    *conversion = found;
    return NLS_OK;
}

nlsStatus nlsCloseDBLocale(nlsLocale* locale, void** block, uint32_t* size) {
    if (const nlsStatus bad = nls::checkLocale(locale)) return bad;
    if (block == nullptr || size == nullptr) return NLS_BAD_ARG;
    if (locale->dbBlockSize == 0) {
        *block = nullptr;
        *size = 0;
        return NLS_OK;
    }
    nlsHandle& handle = *locale->owner;
    if (handle.busy != 0) return NLS_BUSY;
    const nls::BusyGuard busy{handle};
    if (!nls::unlinkObject(handle, locale->hdr)) return NLS_OK;
    *block = locale;
    *size = locale->dbBlockSize;
    locale->hdr.typeTag = NLS_TAG_CLOSED;
    return NLS_OK;
}
