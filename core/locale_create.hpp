// A locale from three names, and the companions that it brings.
// Tested by tests/core/locale_test.cpp.
#pragma once

#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// As a caller gives them: the collation may be NLS_NO_COLLATION, null or empty, the case table null or empty.
struct LocaleNames {
    const char* charset;
    const char* collation;
    const char* caseName;
};

// The newest locale on the chain that answers to the names; null without one.
nlsLocale* findLocaleByNames(const nlsHandle& handle, LocaleNames names);

// A locale that was made is there even when one of its companions could not be made.
struct CreatedLocale {
    nlsStatus status;
    nlsLocale* locale;
};
CreatedLocale findOrCreateLocale(nlsHandle& handle, LocaleNames names);

// The same without the database locales, whose tables go with their blocks.
CreatedLocale findOrCreateLastingLocale(nlsHandle& handle, LocaleNames names);

// The locale and the conversion through which a locale of a charset called `charset` compares. The conversion isn't
// kept anywhere: it is found again on the chain. REQUIRES: the handle isn't marked busy, since both are made like any
// other.
nlsStatus makeCompanions(nlsHandle& handle, nlsLocale& locale, const char* charset);

}  // namespace nls
