// What came of judging a text.
#pragma once

#include <cstdint>

#include "nls/base.h"

namespace nls {

struct Validated {
    nlsStatus status;
    uint32_t chars;  // whole characters in front of the fault, or in all
};

enum class HighByte { first, second };

}  // namespace nls
