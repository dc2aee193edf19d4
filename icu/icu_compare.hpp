// Comparison of UTF-8 through a collator of ICU's. Tested by tests/icu/icu_compare_test.cpp.
#pragma once

#include <cstdint>

#include "nls/base.h"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// A comparison can end without a sign and yet without an error, and the sign of one that failed is told as well.
struct IcuCompared {
    static constexpr int32_t kNoAnswer = INT32_MIN + 1, kFailed = -2;

    nlsStatus status;
    int32_t sign;  // -1, 0, 1; kFailed beside NLS_BAD_TABLE; or kNoAnswer

    bool answered() const { return sign != kNoAnswer; }
};

// `map` is one of the maps of a collation of ICU's. A length below 0 is up to the NUL; any other counts as it is, NULs
// in the text included. Blanks at the ends don't count.
IcuCompared compareByIcu(const unsigned char* a, const unsigned char* b, nlsTlsBlock* tls, const unsigned char* map,
                         uint16_t mode, int32_t lengthA, int32_t lengthB);

}  // namespace nls
