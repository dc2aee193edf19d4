// A character as one 32-bit word: its bytes, first byte most significant, right-aligned.
//
// The word is no code point: "A" is 0x41 and Shift-JIS 81 40 is 0x8140, but UTF-8 E3 81 82 is 0xE38182. 0 is the end of
// a string, and "?" stands for characters of five bytes and more. Tested by tests/chars/lchar_test.cpp.
#pragma once

#include <cstdint>

#include "core/base/charset.hpp"
#include "nls/base.h"

namespace nls {

struct LCharRead {
    nlsLChar value;
    const unsigned char* next;  // behind the character, or the NUL that cuts it short
};

struct LCharWritten {
    nlsStatus status;    // NLS_OK or NLS_BAD_CHAR
    uint16_t byteCount;  // bytes told to the caller, also beside NLS_BAD_CHAR
};

LCharRead readLChar(const Charset& charset, const unsigned char* p);

// REQUIRES: room for 3 bytes at `target`. A value that fails for its bytes alone is written before it fails.
LCharWritten writeLChar(const Charset& charset, nlsLChar value, unsigned char* target);

}  // namespace nls
