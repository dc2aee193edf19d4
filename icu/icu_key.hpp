// Sort keys of UTF-8 by a collator of ICU's: the bytes are ICU's own. Tested by tests/icu/icu_key_test.cpp.
#pragma once

#include <cstdint>

#include "core/base/views.hpp"
#include "nls/records.h"

namespace nls {

// Makes the key of `text`, closed by a NUL; whatever fails leaves an empty one. `map` is one of the maps of a collation
// of ICU's; `options` is the compare mode, whose bit 0x2000 doesn't count. Text of 400 units of UTF-16 or more has no
// key. REQUIRES: room for a byte.
void keyByIcu(ByteSpan key, ByteView text, nlsTlsBlock* tls, const unsigned char* map, unsigned options,
              bool primaryOnly);

}  // namespace nls
