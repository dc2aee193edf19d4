// Text of a multi-byte charset to and from UTF-8 and UTF-16, through the three maps of its table.
//
// Source and target must not overlap, unless the source is one single character. An empty source is converted without a
// look at anything. Statuses: 0; -3, at least one substitute stands in the text; 2, the target is full. `length` counts
// the bytes written, after a failure too, but for dbcsToUtf8, which tells 0 then.
// Tested by tests/conversion/dbcs_bridge_test.cpp and, character by character, tests/real.
#pragma once

#include "conversion/converted.hpp"
#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"

namespace nls {

// A character cut off by the end of the source, or by a NUL, is looked up by the bytes that it has. Status 33 as well:
// a map delivered a surrogate, for which "?" stands at the end of the target.
Converted dbcsToUtf8(const DbcsTable& table, ByteView source, ByteSpan target);
Converted dbcsToUtf16(const DbcsTable& table, bool swapTarget, ByteView source, ByteSpan target);

// Status 16 as well: the end of the source cuts off a character. The first byte of a two-byte code stands in the
// target, and is counted, if the second has no room.
Converted utf8ToDbcs(const DbcsTable& table, ByteView source, ByteSpan target);

// Surrogates without a partner are looked up as they are. An odd byte at the end of `units` isn't read.
Converted utf16ToDbcs(const DbcsTable& table, bool swapSource, ByteView units, ByteSpan target);

}  // namespace nls
