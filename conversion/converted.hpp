// Answers of the conversion rooms.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nls/base.h"

namespace nls {

// What a bridge or a transform by rule came to: its status, and the bytes that the caller is told of.
struct Converted {
    nlsStatus status;
    uint32_t length;
};

// What a Unicode transform came to: it also tells how far the source was read. Bytes, not units.
struct Transformed {
    nlsStatus status;
    std::size_t consumed;
    std::size_t written;
};

// Which sides hold their 16- or 32-bit units in the order opposite to the host's.
struct ByteOrder {
    bool swapSource = false;
    bool swapTarget = false;
};

}  // namespace nls
