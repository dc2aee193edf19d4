// Conversion of the caller's string records, with the terminators that belong to them.
//
// A record is refused with 16 where it has no buffer, and where its text is longer than the interface can count.
// Tested by tests/conversion/convert_record_test.cpp.
#pragma once

#include "conversion/engine.hpp"

namespace nls {

// The text of `from` and the NUL behind it.
EngineAnswer convertWithTerminator(ConvTable table, const nlsStr& from, ByteSpan target);

// No terminator is added. `strLength` of `to` changes where the conversion counts.
nlsStatus convertIntoRecord(ConvTable table, ByteView source, nlsStr& to);

// Text and NUL, with the check; the NUL at the end of the result isn't counted in `strLength`.
nlsStatus convertAndCheck(ConvTable table, const nlsStr& from, nlsStr& to);

// The text, closed with a terminator as wide as the units of the target. A two-step table needs `scratch`.
nlsStatus convertAndTerminate(ConvTable table, const nlsStr& from, const nlsStr* scratch, nlsStr& to);

}  // namespace nls
