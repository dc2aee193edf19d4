// Matches of a search replaced, the result in the caller's record.
// Tested by tests/strings/replace_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "strings/match.hpp"

namespace nls {

// `text` with `replacement` in place of `match`, or unchanged where its start is null. A record that can't take all
// behind the match is emptied; `replacement` may be null, which is refused where there is a match.
nlsStatus replaceMatch(nlsStr& record, const unsigned char* text, const Span& match, const unsigned char* replacement);

struct Replaced {
    nlsStatus status;
    uint32_t count;
};
// The same for all matches. `record` may be null as well, which is refused. REQUIRES: a NUL behind pattern and text,
// and none in the pattern.
Replaced replaceAll(const Comparing& by, ByteView pattern, const unsigned char* replacement, const unsigned char* text,
                    nlsStr* record);

}  // namespace nls
