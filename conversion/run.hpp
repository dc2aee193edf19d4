// How far a fast loop has come when it hands over to the exact walk.
#pragma once

#include <cstddef>

namespace nls {

struct Run {
    std::size_t consumed, written;  // bytes of the source and of the target
};

}  // namespace nls
