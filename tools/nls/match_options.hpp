// Options of the commands that look for something in lines.
#pragma once

#include <string>
#include <vector>

#include "tools/nls/command_line.hpp"
#include "tools/nls/order_options.hpp"

namespace nls::tool {

struct MatchOptions {
    OrderOptions order;
    std::string pattern;
    std::vector<std::string> files;
    std::string color = "auto";
    bool raw = false;
    bool count = false;
    bool numbers = false;
    bool invert = false;
    bool zero = false;
};

inline void addMatchOptions(Command& command, MatchOptions& options) {
    addOrderOptions(command, options.order);
    addFoldFlag(command, options.order);
    command.flag("-c,--count", options.count, "how many lines of each file, in place of the lines");
    command.flag("-n,--line-number", options.numbers, "the number of each line in front of it");
    command.flag("-v,--invert", options.invert, "the other lines");
    command.flag("-z,--zero", options.zero, "lines end with a NUL");
    command.flag("--raw", options.raw, "the pattern is bytes of the charset, and not UTF-8");
    command.option("--color", options.color, "auto: on a terminal, unless the environment has NO_COLOR")
        .shownAs("WHEN")
        .oneOf({"auto", "always", "never"})
        .showsDefault();
    command.option("PATTERN", options.pattern, "as UTF-8").required().shownAs("");
    command.files(options.files, "files; - or none: standard input");
}

}  // namespace nls::tool
