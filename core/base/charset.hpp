// What an attribute table says of its charset, as questions.
#pragma once

#include "nls/records.h"

namespace nls {

class Charset {
public:
    explicit Charset(const nlsAttribStruct& attrib) : attrib_(&attrib) {}

    // Trailing bytes that a first byte announces, 0 to 7. A character takes one byte more.
    unsigned trailCount(unsigned char first) const { return attrib_->lengthMap[first] & unsigned{kTrailCountBits}; }
    static constexpr unsigned char kTrailCountBits = 0x07;
    const unsigned char* lengths() const { return attrib_->lengthMap; }  // of all first bytes: count and bit together
    bool oneColumn(unsigned char first) const { return (attrib_->lengthMap[first] & 0x08U) != 0; }
    bool isLetter(unsigned char byte) const { return attrib_->alphaMap[byte] != 0; }
    // Asks the whole table, whatever the flags say.
    bool hasOnlySingleBytes() const {
        unsigned any = 0;
        for (const unsigned char entry : attrib_->lengthMap) any |= entry;
        return (any & 0x07U) == 0;
    }
    bool mayTrail(unsigned char byte) const { return attrib_->trailMap[byte] != 0; }

    const nlsAttribStruct& attrib() const { return *attrib_; }

    bool isUtf8() const { return has(NLS_CHARSET_UTF8); }
    bool isMultiByte() const { return has(NLS_CHARSET_MULTI_BYTE); }
    bool isSingleByte() const { return has(NLS_CHARSET_SINGLE_BYTE); }
    bool comparesViaSjis() const { return has(NLS_CHARSET_VIA_SJIS); }
    bool hasUnits16() const { return has(NLS_CHARSET_UNITS16); }
    bool hasUnits32() const { return has(NLS_CHARSET_UNITS32); }
    bool isCp936() const { return has(NLS_CHARSET_CP936); }

private:
    bool has(int32_t bit) const { return (attrib_->flags & bit) != 0; }

    const nlsAttribStruct* attrib_;
};

}  // namespace nls
