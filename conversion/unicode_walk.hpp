// Where a Unicode transform stands, shared by the exact walk and the wide one.
//
// The wide walks (unicode_wide.hpp) leave the status alone; the exact walk decides how a transform ends.
#pragma once

#include "conversion/converted.hpp"
#include "core/base/views.hpp"
#include "nls/status.h"

namespace nls {

struct UnicodeWalk {
    ByteReader source;  // whole units only
    ByteWriter target;
    ByteOrder order;
    nlsStatus status = NLS_OK;  // of a lone surrogate, or of the end
};

}  // namespace nls
