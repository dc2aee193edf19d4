// Options that every command of an order understands.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "tools/nls/order.hpp"

namespace nls::tool {

struct OrderOptions {
    std::string order;
    std::string fold = "exact";

    Fold mode() const { return fold == "fold" ? Fold::folded : Fold::exact; }
};

inline void addOrderOptions(CLI::App& command, OrderOptions& options) {
    command.add_option("-l,--order", options.order, "the charset of the text and the collation to go by")
        ->type_name("CHARSET/COLLATION")
        ->required();
    command.add_option("-f,--mode", options.fold, "exact, or fold: capitals and small letters are the same")
        ->type_name("MODE")
        ->check(CLI::IsMember({"exact", "fold"}))
        ->capture_default_str();
}

// The short way to say it, for commands that look for something.
inline void addFoldFlag(CLI::App& command, OrderOptions& options) {
    command
        .add_flag_callback(
            "--fold", [&options] { options.fold = "fold"; }, "the same as --mode fold")
        ->excludes("--mode");
}

}  // namespace nls::tool
