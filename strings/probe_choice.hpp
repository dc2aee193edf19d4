// Which bytes of a match are looked for: by the rule that makes characters equal.
// Tested by tests/strings/search_test.cpp.
#pragma once

#include "core/base/views.hpp"
#include "strings/char_rules.hpp"
#include "strings/probes.hpp"

namespace nls {

// Matches have as many bytes as the pattern. REQUIRES, here and below: the pattern isn't empty, and whole.
Probes probesOf(const ByteRule& rule, ByteView pattern);
Probes probesOf(const PairRule& rule, ByteView pattern);
Probes probesOf(const ExactRule& rule, ByteView pattern);
// Of the characters that fold to the same, as far as these have one length.
Probes probesOf(const FoldRule& rule, ByteView pattern);

}  // namespace nls
