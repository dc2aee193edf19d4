// Options that every command of an order understands.
#pragma once

#include <string>

#include "tools/nls/command_line.hpp"
#include "tools/nls/order.hpp"

namespace nls::tool {

struct OrderOptions {
    std::string order;
    std::string fold = "exact";

    Fold mode() const { return fold == "fold" ? Fold::folded : Fold::exact; }
};

inline void addOrderOptions(Command& command, OrderOptions& options) {
    command.option("-l,--order", options.order, "the charset of the text and the collation to go by")
        .shownAs("CHARSET/COLLATION")
        .required();
    command.option("-f,--mode", options.fold, "exact, or fold: capitals and small letters are the same")
        .shownAs("MODE")
        .oneOf({"exact", "fold"})
        .showsDefault();
}

// The short way to say it, for commands that look for something.
inline void addFoldFlag(Command& command, OrderOptions& options) {
    command
        .flag(
            "--fold", [&options] { options.fold = "fold"; }, "the same as --mode fold")
        .excludes("--mode");
}

}  // namespace nls::tool
