// Comparison of UTF-8 through a collator of ICU's. Tested by tests/icu/icu_compare_test.cpp.
#pragma once

#include <cstdint>

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Which of a caller's two answers has been found: a comparison can end without a sign and yet without an error, and the
// sign of one that failed is told as well.
struct IcuCompared {
    nlsStatus status;
    bool answered;
    int32_t sign;  // counts if answered: -1, 0, 1, or -2 beside NLS_BAD_TABLE
};

// `map` is one of the maps of a collation of ICU's. A length below 0 is up to the NUL; any other counts as it is, NULs
// in the text included. Blanks at the ends don't count.
IcuCompared compareByIcu(const unsigned char* a, const unsigned char* b, nlsTlsBlock* tls, const unsigned char* map,
                         uint16_t mode, int32_t lengthA, int32_t lengthB);

}  // namespace nls
