// Where a Unicode transform stands, shared by the exact walk and the wide one.
//
// The wide walks (unicode_wide.hpp) leave the status alone; the exact walk decides how a transform ends.
#pragma once

#include <cstddef>

#include "conversion/converted.hpp"
#include "core/base/views.hpp"
#include "nls/status.h"

namespace nls {

struct UnicodeWalk {
    ByteReader source;  // whole units only
    ByteWriter target;
    ByteOrder order;
    nlsStatus status = NLS_OK;  // of a lone surrogate, or of the end

    // On to places that a loop of its own has reached.
    void moveTo(const unsigned char* sourcePlace, const unsigned char* targetPlace) {
        source.skip(static_cast<std::size_t>(sourcePlace - source.place()));
        target.advance(static_cast<std::size_t>(targetPlace - target.place()));
    }
    void move(std::size_t read, std::size_t written) {
        source.skip(read);
        target.advance(written);
    }
};

}  // namespace nls
