// What a library of a guarded pack has opened and closed since a point in time.
#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <string>

#include "icu/builds.hpp"

namespace nls::test {

class GuardCount {
public:
    // REQUIRES: the library is loaded, from the guarded packs.
    GuardCount(const nlsIcuVersion& row, IcuLibrary library) : row_(row), library_(library) {
        openedBefore_ = told("nls_guard_opened");
        closedBefore_ = told("nls_guard_closed");
    }
    long opened() const { return told("nls_guard_opened") - openedBefore_; }
    long open() const { return opened() - (told("nls_guard_closed") - closedBefore_); }

private:
    long told(const std::string& name) const {
        const std::string file = NLS_ICU_GUARDED_PACKS + std::string{row_.libraries[library_]};
        void* const handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        if (handle == nullptr) std::abort();
        auto* const count = reinterpret_cast<long (*)()>(dlsym(handle, (name + row_.entrySuffix).c_str()));
        dlclose(handle);
        return count();
    }

    const nlsIcuVersion& row_;
    IcuLibrary library_;
    long openedBefore_ = 0, closedBefore_ = 0;
};

}  // namespace nls::test
