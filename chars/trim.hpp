// Where a text begins and where it ends once the members of a trim set are cut off.
//
// The set is NUL-terminated text; a null set is the blank alone. A member is what the comparison takes for equal to one
// of its characters. Nothing is written into the text. Tested by tests/chars/trim_test.cpp against
// tests/reference/trim.hpp.
#pragma once

#include <cstdint>

#include "core/base/views.hpp"
#include "nls/base.h"
#include "nls/records.h"

namespace nls {

struct TrimPlace {
    nlsStatus status;            // NLS_OK, or what looking up a character came to
    const unsigned char* place;  // with NLS_OK alone
};

// The first character of the NUL-terminated `text` that stays. REQUIRES: the locale has an attribute table.
TrimPlace trimLeft(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* set, const unsigned char* text,
                   uint16_t mode);

// Behind the last character of `text` that stays. A NUL among its bytes is cut off like a member. REQUIRES: as above.
TrimPlace trimRight(const nlsLocale& locale, const unsigned char* set, ByteView text, uint16_t mode);

}  // namespace nls
