// What a search is given, and what it answers.
#pragma once

#include <cstdint>

#include "nls/records.h"
#include "nls/status.h"
#include "strings/two_way.hpp"

namespace nls {

// What characters are compared by. REQUIRES: the locale has an attribute table.
struct Comparing {
    const nlsLocale& locale;
    nlsTlsBlock* tls;
    uint16_t mode;
};

// Whether a "_" stands for any character, and the byte that makes the next character stand for itself; 0 for none.
struct Wildcards {
    bool on;
    int32_t escape;
};
inline constexpr Wildcards kNoWildcards{false, 0};

struct Match {
    nlsStatus status;
    Span span;  // with NLS_OK; without a match its start is null
};

}  // namespace nls
