// Every object of the library that changes and lives outside a handle. One more, nlsTemporaryVers, is exported and
// declared in nls/handle.h; it is defined beside this one.
#pragma once

#include <cstdint>

namespace nls {

struct ProcessState {
    int32_t cpuLevel = 0;  // a CpuLevel; 0 until the processor has been asked
};

extern ProcessState processState;

}  // namespace nls
