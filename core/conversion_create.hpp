// A conversion between the charsets of two locales.
// Tested by tests/core/conversion_test.cpp and tests/core/db_locale_test.cpp.
#pragma once

#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// The newest conversion on the chain between charsets of these names; null without one.
nlsConversion* findConversionByNames(const nlsHandle& handle, const nlsLocale& source, const nlsLocale& target);

struct CreatedConversion {
    nlsStatus status;
    nlsConversion* conversion;
};
CreatedConversion findOrCreateConversion(nlsHandle& handle, nlsLocale& source, nlsLocale& target);

}  // namespace nls
