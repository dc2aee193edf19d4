// Conversion tables from the real data file, opened once and kept for the run.
#pragma once

#include <string>

#include "nls/nls.h"

namespace nls::bench {

// The table between two charsets of convmap.cp; null where the two are one. An unknown pair ends the program.
const nlsConvTable* table(const std::string& from, const std::string& to);

}  // namespace nls::bench
