// What a command says of its options and arguments. CLI11 does the rest, behind command_line.cpp: its headers take
// longer to compile than all of a command.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/nls/failure.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace nls::tool {

// What to run once the command line has been read.
using Run = std::function<Exit()>;

// An option or an argument. Others are named as the user writes them, and stand in front of it.
class Option {
public:
    explicit Option(CLI::Option* option) : option_(option) {}

    Option& shownAs(const char* type);  // the help's word for its value; "" for none
    Option& required();
    Option& showsDefault();
    Option& oneOf(const std::vector<std::string>& words);
    Option& bytesFromTo(uint64_t least, uint64_t most);  // as 64M
    Option& oneForEachUse();                             // of a list: each value has its option in front
    Option& excludes(const char* other);
    Option& needs(const char* other);
    bool isGiven() const;

private:
    CLI::Option* option_;
};

class Command {
public:
    // `run` is set when the command line asks for this command. Both outlive it.
    Command(CLI::App& app, Run& run) : app_(&app), run_(&run) {}

    Command add(const char* name, const char* what) const;  // a command of this program, or of this command
    void takesCommands();                                   // it has commands of its own, and wants one

    // `names` as "-o,--output", or a word in capitals for an argument. The values outlive the reading of the command
    // line.
    Option option(const char* names, std::string& value, const char* what);
    Option option(const char* names, uint64_t& value, const char* what);
    Option option(const char* names, std::vector<std::string>& values, const char* what);
    Option flag(const char* names, bool& value, const char* what);
    Option flag(const char* names, const std::function<void()>& then, const char* what);
    // The arguments behind all others; without one the standard input, "-".
    void files(std::vector<std::string>& names, const char* what);
    void output(std::string& file);

    void footer(const std::string& text);
    void runs(Run run);  // the last to say

private:
    CLI::App* app_;
    Run* run_;
    std::vector<std::string>* files_ = nullptr;
};

}  // namespace nls::tool
