// Which known name somebody may have meant.
// Tested by tests/tools/nls_names_test.cpp.
#pragma once

#include <string>
#include <vector>

namespace nls::tool {

// At most three of `known`, nearest first; none if nothing comes near. Case, punctuation and the usual prefixes of code
// pages don't count, and a few names that charsets go by elsewhere are understood.
std::vector<std::string> nearestNames(const std::string& asked, const std::vector<std::string>& known);

// " (do you mean A, B or C?)", or nothing.
std::string nearestNamesHint(const std::string& asked, const std::vector<std::string>& known);

}  // namespace nls::tool
