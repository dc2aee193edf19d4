// Comparing through Shift-JIS: a Japanese charset that spells the same characters otherwise sorts as Shift-JIS does.
// Tested by tests/collation/sjis_bridge_test.cpp.
#pragma once

#include "convmap/conv_table.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

struct SjisHandles {
    nlsStatus status;
    const nlsAttribStruct* attrib;    // of the locale "shift-jis"
    const nlsConversion* conversion;  // from the charset to it
};

// Looks among the objects of the handle once, and remembers the two in the attribute table.
// REQUIRES: the locale has an attribute table.
SjisHandles findSjisHandles(const nlsLocale& locale);

// A character of two bytes on its way through the bridge.
struct BridgedPair {
    unsigned char first, second;
    bool single;  // it has become one byte, `first`
};

// A pair that can't be converted stays as the conversion leaves it.
BridgedPair throughBridge(ConvTable table, unsigned char first, unsigned char second);

}  // namespace nls
