// Marks a handle busy for a scope, on every way out of it.
//
// The mark is a plain word. It catches a change of the handle that starts inside another one, for instance from the
// read callback; it is no lock, and the caller has to keep changes from two threads apart.
#pragma once

#include "nls/records.h"

namespace nls {

class BusyGuard {
public:
    explicit BusyGuard(nlsHandle& handle) : handle_(handle) { handle_.busy = 1; }
    ~BusyGuard() { handle_.busy = 0; }
    BusyGuard(const BusyGuard&) = delete;
    BusyGuard& operator=(const BusyGuard&) = delete;

private:
    nlsHandle& handle_;
};

// Lifts the mark for a scope inside that of a BusyGuard, for a change that is made like any other.
class BusyPause {
public:
    explicit BusyPause(nlsHandle& handle) : handle_(handle) { handle_.busy = 0; }
    ~BusyPause() { handle_.busy = 1; }
    BusyPause(const BusyPause&) = delete;
    BusyPause& operator=(const BusyPause&) = delete;

private:
    nlsHandle& handle_;
};

}  // namespace nls
