// A text searched for a pattern under a locale: forwards, with or without wildcards, and backwards.
// Tested by tests/strings/search_test.cpp against tests/reference/search.hpp.
#pragma once

#include <cstdint>

#include "core/base/views.hpp"
#include "strings/each_match.hpp"

namespace nls {

// Matches one behind the other, as the taker wants them. An empty pattern has one, empty, at the end of the text.
// REQUIRES: a NUL behind both texts, and none in the pattern.
nlsStatus searchForEach(const Comparing& by, ByteView pattern, const unsigned char* text, Wildcards wildcards,
                        const MatchTaker& taker);

// The first match. REQUIRES: a NUL behind both texts.
Match searchForward(const Comparing& by, const unsigned char* pattern, const unsigned char* text, Wildcards wildcards);

// The same, told to a caller who wants position and end as nlsSearchForw has them, the arguments of which these are.
nlsStatus searchAndTell(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                        const unsigned char** found);

// The same with wildcards, as nlsSearchForwWithEscape has it.
nlsStatus searchAndTell(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t mode, int32_t escape, uint32_t* pos, uint32_t* end,
                        const unsigned char** found);

inline void tellNone(uint32_t* pos, const unsigned char** found) {
    *pos = 0;
    *found = nullptr;
}
inline void tellMatch(const Span& match, const unsigned char* text, uint32_t* pos, uint32_t* end,
                      const unsigned char** found) {
    *found = match.start;
    *pos = static_cast<uint32_t>(match.start - text + 1);
    *end = static_cast<uint32_t>(match.end - text);
}

// The last match that ends at or in front of `length`. REQUIRES: a NUL behind the pattern, and none in it.
Match searchBackward(const Comparing& by, ByteView pattern, const unsigned char* text, int32_t length);

}  // namespace nls
