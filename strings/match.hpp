// What a search is given, and what it answers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nls/records.h"
#include "nls/status.h"

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

// Offsets in bytes. With another status than NLS_OK, or without a match, they mean nothing.
struct Match {
    nlsStatus status;
    bool found;
    std::size_t start;
    std::size_t end;  // behind the match; an empty pattern is found at the end of the text, and its match ends 1 later
};
constexpr Match noMatch(nlsStatus status = NLS_OK) {
    return {status, false, 0, 0};
}

}  // namespace nls
