// One character of a text, found under the collation of a locale: forwards up to the NUL, backwards within a length.
//
// A character is found where the comparison takes it for equal, so its bytes may differ from those asked for.
// Tested by tests/chars/find_char_test.cpp against tests/reference/find_char.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nls/base.h"
#include "nls/records.h"

namespace nls {

struct FoundChar {
    nlsStatus status;            // NLS_OK, or what a comparison came to
    const unsigned char* place;  // the character, or null if there is none; beside another status the one not compared
};

// The first character of the NUL-terminated `text` that equals `sought`; for the value 0 its terminator.
// REQUIRES: the locale has an attribute table.
FoundChar findCharForward(const nlsLocale& locale, nlsTlsBlock* tls, nlsLChar sought, const unsigned char* text,
                          uint16_t mode);

// The last one that begins in the first `length` bytes; for the value 0 the terminator, wherever it stands.
// REQUIRES: as above.
FoundChar findCharBackward(const nlsLocale& locale, nlsTlsBlock* tls, nlsLChar sought, const unsigned char* text,
                           std::size_t length, uint16_t mode);

}  // namespace nls
