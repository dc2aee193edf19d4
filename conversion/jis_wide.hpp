// Shift-JIS and EUC by rule, sixteen bytes at a time.
//
// Each starts at a character and goes as far as the room and whole characters do, or up to the first half-width kana:
// all else has as many bytes in one spelling as in the other, so that a byte's new value goes to its old place. A rest
// of a few bytes may be left. Nothing behind the bytes written is touched.
// Tested by tests/conversion/jis_test.cpp against tests/reference/jis.hpp.
#pragma once

#include "conversion/run.hpp"
#include "core/base/views.hpp"

namespace nls {

Run sjisToEucBlocks(ByteView source, ByteSpan target);
Run eucToSjisBlocks(ByteView source, ByteSpan target);

}  // namespace nls
