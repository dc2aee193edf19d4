#include "core/base/process_state.hpp"

#include "nls/handle.h"

namespace nls {

ProcessState processState;

}  // namespace nls

uint32_t nlsTemporaryVers = 0;
