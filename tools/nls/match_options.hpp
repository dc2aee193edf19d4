// Options of the commands that look for something in lines.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

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

inline void addMatchOptions(CLI::App& command, MatchOptions& options) {
    addOrderOptions(command, options.order);
    addFoldFlag(command, options.order);
    command.add_flag("-c,--count", options.count, "how many lines of each file, in place of the lines");
    command.add_flag("-n,--line-number", options.numbers, "the number of each line in front of it");
    command.add_flag("-v,--invert", options.invert, "the other lines");
    command.add_flag("-z,--zero", options.zero, "lines end with a NUL");
    command.add_flag("--raw", options.raw, "the pattern is bytes of the charset, and not UTF-8");
    command.add_option("--color", options.color, "auto: on a terminal, unless the environment has NO_COLOR")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->capture_default_str();
    command.add_option("PATTERN", options.pattern, "as UTF-8")->required()->type_name("");
    command.add_option("FILE", options.files, "files; - or none: standard input")->type_name("");
}

}  // namespace nls::tool
