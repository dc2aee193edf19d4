// Matches one behind the other in time that grows with the lengths of pattern and text, wherever the collation tells by
// itself which characters are equal. Tested by tests/strings/search_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "strings/match.hpp"
#include "strings/two_way.hpp"

namespace nls {

// Where to look for the next match.
enum class GoOn { stop, behindMatch, atNextCharacter };

struct MatchTaker {
    GoOn (*take)(void* context, const Span& match);
    void* context;
};

struct FastAnswer {
    bool possible;  // false: nothing has been done, the plain walk must do it
    nlsStatus status;
};

// `end` of the text; null: at its NUL. REQUIRES: no NUL in pattern and text, and the pattern isn't empty.
FastAnswer eachMatchFast(const Comparing& by, ByteView pattern, const unsigned char* text, const unsigned char* end,
                         const MatchTaker& taker);

// Does stepping back lead to the same characters as stepping forward, from a text's end to its start? It does where no
// character has more than two bytes, and in UTF-8 that isn't broken.
bool stepsAlikeBothWays(const nlsAttribStruct& attrib, ByteView text);

// The first byte of the character that `place` belongs to. `start`: that of the text, which goes on to `place`.
const unsigned char* firstByteOf(const nlsAttribStruct& attrib, const unsigned char* place, const unsigned char* start);

}  // namespace nls
