#include "core/base/process_state.hpp"

namespace nls {

ProcessState processState;

}  // namespace nls

uint32_t nlsTemporaryVers = 0;
