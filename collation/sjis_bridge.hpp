// Comparing through Shift-JIS: a Japanese charset that spells the same characters otherwise sorts as Shift-JIS does.
// Tested by tests/collation/compare_test.cpp.
#pragma once

#include "conversion/jis.hpp"
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

class SjisBridge {
public:
    // Null: pairs stay as they are.
    explicit SjisBridge(const nlsConvTable* table)
        : table_(table), fromEuc_(table != nullptr && table_.type() == ConvType::eucToSjis) {}

    bool changesNothing() const { return table_.isNull(); }
    // A pair that can't be converted stays as the conversion leaves it.
    BridgedPair cross(unsigned char first, unsigned char second) const {
        if (fromEuc_ && isEucByte(first) && isEucByte(second)) {  // the rule alone, without the engine
            constexpr int kHigh = 0x80;
            const BytePair sjis =
                sjisOfJis({static_cast<uint8_t>(first - kHigh), static_cast<uint8_t>(second - kHigh)});
            return {sjis.first, sjis.second, false};
        }
        return throughTable(first, second);
    }

private:
    static bool isEucByte(unsigned char byte) { return byte >= 0xA1 && byte <= 0xFE; }
    BridgedPair throughTable(unsigned char first, unsigned char second) const;

    ConvTable table_;
    bool fromEuc_;
};

}  // namespace nls
