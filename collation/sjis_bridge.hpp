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

// The two as far as they are remembered; null where nobody has looked yet. The memo is written by whoever comes first,
// while others read it: both words are read and written whole, and one alone doesn't count. What they point to was
// finished with the locale.
struct SjisMemo {
    const nlsAttribStruct* attrib;
    const nlsConversion* conversion;

    explicit SjisMemo(const nlsAttribStruct& of)
        : attrib(__atomic_load_n(&of.sjisAttrib, __ATOMIC_RELAXED)),
          conversion(__atomic_load_n(&of.sjisConversion, __ATOMIC_RELAXED)) {}

    bool isComplete() const { return attrib != nullptr && conversion != nullptr; }
};

// Looks among the objects of the handle once, and remembers the two in the attribute table.
// REQUIRES: the locale has an attribute table.
SjisHandles lookForSjisHandles(const nlsLocale& locale);
inline SjisHandles findSjisHandles(const nlsLocale& locale) {
    const SjisMemo memo{*locale.attrib};
    return memo.isComplete() ? SjisHandles{NLS_OK, memo.attrib, memo.conversion} : lookForSjisHandles(locale);
}

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
    bool isFromEuc() const { return fromEuc_; }
    // Is a byte of EUC one of a pair that the rule alone takes to Shift-JIS, without the engine? 1 or 0.
    static constexpr unsigned inEucGrid(unsigned byte) { return byte >= 0xA1 && byte <= 0xFE; }
    // A pair that can't be converted stays as the conversion leaves it.
    BridgedPair cross(unsigned char first, unsigned char second) const {
        if (!fromEuc_ || !inEucGrid(first) || !inEucGrid(second)) return throughTable(first, second);
        constexpr int kHigh = 0x80;
        const BytePair sjis = sjisOfJis({static_cast<uint8_t>(first - kHigh), static_cast<uint8_t>(second - kHigh)});
        return {sjis.first, sjis.second, false};
    }

private:
    BridgedPair throughTable(unsigned char first, unsigned char second) const;

    ConvTable table_;
    bool fromEuc_;
};

}  // namespace nls
