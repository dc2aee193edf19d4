// How a run ends: its exit code, and the failures that end it early.
#pragma once

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

namespace nls::tool {

enum class Exit : int {
    done = 0,
    badInput = 1,      // text that isn't valid, or has no counterpart in the target charset
    nothingFound = 1,  // of the commands that look for something, as grep has it
    usage = 2,         // wrong arguments, or a name that the data file doesn't know
    loss = 3,          // done, but substitutes stand in the output, characters were dropped or not looked at
    fileTrouble = 4,   // a file can't be opened, read or written; the data file is missing or unsound
};

// One line that says what, where and what to do.
class Failure : public std::runtime_error {
public:
    Failure(Exit code, const std::string& what) : std::runtime_error(what), code_(code) {}
    Failure(Exit code, const std::string& what, bool isTold) : std::runtime_error(what), code_(code), isTold_(isTold) {}
    Exit code() const { return code_; }
    // Whether the user hears of it; not of a reader that had enough and went away.
    bool isTold() const { return isTold_; }

private:
    Exit code_;
    bool isTold_ = true;
};

// Trouble with a file as the system tells it, by errno.
inline Failure fileFailure(const std::string& name, int error = errno) {
    return {Exit::fileTrouble, name + ": " + std::strerror(error), error != EPIPE};
}

}  // namespace nls::tool
