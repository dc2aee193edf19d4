// Columns of short values as tables have them: names, addresses and codes, the same on every run.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/support/texts.hpp"

namespace nls::bench {

// `count` values of 8 to 64 bytes, in UTF-8. REQUIRES: German, Russian or Japanese.
std::vector<std::string> column(Language language, std::size_t count);

}  // namespace nls::bench
