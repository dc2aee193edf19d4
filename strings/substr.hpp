// A range of bytes of a text, without half characters at its ends.
// Tested by tests/strings/substr_test.cpp.
#pragma once

#include <cstdint>

#include "core/base/charset.hpp"
#include "core/base/views.hpp"
#include "nls/base.h"

namespace nls {

struct Cut {
    nlsStatus status;  // NLS_OK, or NLS_BAD_ARG for a place or a count beyond the text
    ByteView bytes;
    uint32_t chars;
};

// The whole characters in `byteCount` bytes from position `start` on, counted from 1. `text` is NUL-terminated.
Cut cutCharacters(const Charset& charset, const unsigned char* text, int32_t start, int32_t byteCount);

}  // namespace nls
