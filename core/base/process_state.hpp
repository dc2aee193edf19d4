// Every object of the library that changes and lives outside a handle.
#pragma once

#include <cstdint>

#include "nls/base.h"

namespace nls {

struct ProcessState {
    int32_t cpuLevel = 0;  // a CpuLevel; 0 until the processor has been asked
};

extern ProcessState processState;

}  // namespace nls

NLS_BEGIN_DECLS
// Version field of the last data-file header that was read, accepted or not.
extern NLS_API uint32_t nlsTemporaryVers;
NLS_END_DECLS
