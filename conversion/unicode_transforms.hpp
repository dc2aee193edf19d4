// The six transforms of whole texts between UTF-8, UTF-16 and UCS4.
//
// Each reads from the front of `source` and writes to the front of `target` until the source is used up or the walk
// ends early, and tells how far both have come, in bytes. Nothing behind what was written is touched. A part of a unit
// at the end of a 16- or 32-bit side isn't read, or written: it counts neither as source nor as room.
//
// Status 0: all of the source was read. 2: the target is full; the character that didn't fit counts as read, but for
// ucs4ToUtf16, which looks for room for one unit before it reads. 16: the end of the source cuts off a character of
// UTF-8, and `consumed` stands in front of it. A lone surrogate is written as "?" by the two that write UTF-8: the walk
// goes on, and its status, 16 from ucs2ToUtf8 and 33 from ucs4ToUtf8, stands at the end unless the target fills up.
//
// Source and target must not overlap, but for a source of one single character.
// Tested by tests/conversion/unicode_transforms_test.cpp against a plain twin.
#pragma once

#include "conversion/converted.hpp"
#include "core/base/views.hpp"

namespace nls {

// Folds surrogate pairs; a surrogate alone passes. Statuses 0 and 2.
Transformed utf16ToUcs4(ByteView source, ByteSpan target, ByteOrder order);

// Above U+10FFFF: U+FFFD. Surrogates pass, and pairs of them aren't folded. Statuses 0 and 2.
Transformed ucs4ToUtf16(ByteView source, ByteSpan target, ByteOrder order);

// Lenient (utf_codec.hpp); above U+10FFFF: U+FFFD. Statuses 0, 2 and 16. The source has no order to swap.
Transformed utf8ToUcs4(ByteView source, ByteSpan target, ByteOrder order);
Transformed utf8ToUcs2(ByteView source, ByteSpan target, ByteOrder order);  // writes UTF-16, in spite of its name

// Folds two surrogate values in a row. Values up to 0x3FFFFFF take up to five bytes, what lies above becomes U+FFFD.
// Statuses 0, 2 and 33.
Transformed ucs4ToUtf8(ByteView source, ByteSpan target, ByteOrder order);

// Reads UTF-16, in spite of its name. Statuses 0, 2 and 16.
Transformed ucs2ToUtf8(ByteView source, ByteSpan target, ByteOrder order);

}  // namespace nls
