// Where a Unicode transform stands, shared by the exact walk and the wide one.
//
// The wide walks (conversion/*_avx2.cpp and so on) take what is well-formed off the front of the source, as far as the
// room surely reaches, and set no status. The exact walk takes the rest, character by character, and alone decides how
// a transform ends.
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
