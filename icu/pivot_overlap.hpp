// Whether a text on its way out of the pivot would run over units of the pivot that haven't been read.
//
// Both lie in one buffer: the output grows from its start, the pivot of `count` units begins `free` bytes behind. With
// k units read and n bytes written, n must not exceed free + 2k. Some converters of ICU's write before they read, or
// read again what they have written for: those are held to more. Tested by tests/icu/icu_convert_test.cpp.
#pragma once

#include <cstddef>

#include "icu/entry_points.hpp"

namespace nls {

// In UTF-8 a unit takes at most three bytes, so that the units tell the lengths themselves.
bool utf8OverrunsPivot(const IcuUnit* units, std::size_t count, std::size_t free);

// Into a charset: the converter is asked for the lengths, of the whole first, and of parts where that doesn't settle
// it. A charset with states can be told to overrun where it wouldn't by a byte or a few.
bool charsetOverrunsPivot(IcuConverter* converter, const IcuUnit* units, std::size_t count, std::size_t free);

}  // namespace nls
