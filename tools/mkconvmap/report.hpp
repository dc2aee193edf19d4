// What the finished file holds, in words and numbers for people.
#pragma once

#include <string>
#include <vector>

#include "tools/mkconvmap/compile.hpp"
#include "tools/mkconvmap/read_back.hpp"

namespace nls::mkconvmap {

// Three lines: entries by kind, bytes by use, arena.
std::string summaryOf(const CompiledMap& map, const std::vector<unsigned char>& image, const ArenaUse& use);

// One line for each entry: kind, names, raw byte, where its data stands, bytes with its arrays (= where an
// entry before has the same), arena taken. Behind them the remarks on tables that couldn't take all that was meant.
std::string listingOf(const CompiledMap& map, const std::vector<unsigned char>& image, const ArenaUse& use);

}  // namespace nls::mkconvmap
