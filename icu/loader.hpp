// Loading a build of ICU when something first needs it. Nothing else in the library calls the dynamic loader.
//
// A build is loaded to a level, which only rises; its libraries stay for as long as the process runs. A load that fails
// leaves the level as it was, and the next request tries again from the top. No lock is taken: two threads that load at
// once store the same addresses, and the level last. Tested by tests/icu/loader_test.cpp.
#pragma once

#include "icu/builds.hpp"
#include "nls/base.h"
#include "nls/status.h"

namespace nls {

enum IcuLevel : int32_t {
    kNotLoaded = 0,
    kConverts = 1,  // data and common libraries, the functions of conversion; the base row alone rests here
    kCollates = 2,  // the i18n library as well
};

inline int32_t loadLevel(const nlsIcuVersion& row) {
    return __atomic_load_n(&row.loadLevel, __ATOMIC_ACQUIRE);
}

// The base row to kConverts first, then `row` to `level`. NLS_OK or NLS_ICU_LOAD.
nlsStatus UL_init_icu(int32_t level, nlsIcuVersion& row);

// A library by its path, resident from now on; null, and why, if it can't be had.
struct LoadedLibrary {
    void* handle;
    const char* error;  // null beside a handle
};
LoadedLibrary loadLibrary(const char* path);

// Null if the library has no such symbol.
void* symbolAddress(void* library, const char* name);

}  // namespace nls
