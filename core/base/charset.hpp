// What an attribute table says of its charset, as questions.
#pragma once

#include <emmintrin.h>

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
    bool hasOnlySingleBytes() const { return areSingle(_mm_or_si128(entriesFrom(0), entriesFrom(128))); }
    bool hasSingleByteAscii() const { return areSingle(entriesFrom(0)); }
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
    // What 128 entries of the table of lengths have among them.
    __m128i entriesFrom(unsigned first) const {
        const auto rows = [this](unsigned from) {
            const auto* const row = reinterpret_cast<const __m128i*>(attrib_->lengthMap + from);
            return _mm_or_si128(_mm_or_si128(_mm_loadu_si128(row), _mm_loadu_si128(row + 1)),
                                _mm_or_si128(_mm_loadu_si128(row + 2), _mm_loadu_si128(row + 3)));
        };
        return _mm_or_si128(rows(first), rows(first + 64));
    }
    static bool areSingle(__m128i entries) {
        const __m128i trails = _mm_and_si128(entries, _mm_set1_epi8(0x07));
        return _mm_movemask_epi8(_mm_cmpeq_epi8(trails, _mm_setzero_si128())) == 0xFFFF;
    }
    bool has(int32_t bit) const { return (attrib_->flags & bit) != 0; }

    const nlsAttribStruct* attrib_;
};

}  // namespace nls
