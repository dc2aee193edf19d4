// Bytes, characters and screen columns of text.
// Tested by tests/strings/counting_test.cpp.
#pragma once

#include <cstdint>

#include "core/base/charset.hpp"
#include "core/base/views.hpp"
#include "nls/base.h"

namespace nls {

struct Counted {
    nlsStatus
        status;  // NLS_OK, or NLS_PARTIAL_CHAR where a character runs past the end; then `count` is what came before
    uint32_t count;
};

// Characters in `text`, which holds no NUL. By the charset's flag: every byte is one unless it is multi-byte.
Counted countChars(const Charset& charset, ByteView text);

// The characters of `text` up to the one that runs past its end, with their bytes. A text without NULs.
struct WholeCharacters {
    uint32_t chars;
    std::size_t bytes;
};
WholeCharacters wholeCharacters(const Charset& charset, ByteView text);

// Bytes of the first `charCount` characters of the NUL-terminated `text`.
Counted countBytes(const Charset& charset, const unsigned char* text, int32_t charCount);

// Columns of the characters that begin in `span`, which holds no NUL. REQUIRES: a NUL somewhere behind the span.
uint32_t countColumns(const Charset& charset, ByteView span);

}  // namespace nls
