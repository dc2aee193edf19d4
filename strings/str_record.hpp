// The caller's record of a byte buffer, and plain byte copies.
//
// A record that breaks its own rule (negative size, text that fills the buffer) counts as full, so that nothing is
// written at or behind buf + bufSize. Sizes are compared in 64 bits: no pair of 32-bit fields can wrap there. Tested by
// tests/strings/str_record_test.cpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "nls/base.h"
#include "nls/records.h"

namespace nls {

// Bytes before the NUL among the first `count`; `count` if there is none. None are looked at for a count below 1.
std::size_t boundedLength(const unsigned char* text, int64_t count);

// Copies up to `count` bytes of `source`, stopping at a NUL, and closes the copy with a NUL. The bytes copied without
// it.
uint32_t copyClosed(const unsigned char* source, int64_t count, unsigned char* target);

nlsStatus appendText(nlsStr& record, const unsigned char* source, int32_t count);

// Puts up to `count` bytes of `source` in place of the record's text.
nlsStatus replaceText(nlsStr& record, const unsigned char* source, int64_t count);

}  // namespace nls
