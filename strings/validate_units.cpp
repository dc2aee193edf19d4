#include "strings/validate_units.hpp"

#include <emmintrin.h>

#include "nls/status.h"
#include "strings/utf8_block.hpp"

namespace nls {
namespace {

// ---- 16 bits ----

// What stands at the 32 units of a block: one bit for each, the lowest for the first.
struct UnitBlock {
    uint32_t zero, highSurrogate, lowSurrogate;
};

class UnitReader {
public:
    explicit UnitReader(HighByte highByte) : swapped_(highByte == HighByte::first) {}

    // REQUIRES: two readable bytes.
    uint16_t unitAt(const unsigned char* place) const { return inOrder(loadWord<uint16_t>(place)); }

    // Units are compared as they lie in memory, with numbers that are swapped instead. REQUIRES: 64 readable bytes.
    UnitBlock blockAt(const unsigned char* place) const {
        __m128i units[4];
        for (int i = 0; i < 4; ++i) units[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(place) + i);
        return {bitsOf(units, 0xFFFF, 0), bitsOf(units, 0xFC00, 0xD800), bitsOf(units, 0xFC00, 0xDC00)};
    }

private:
    uint16_t inOrder(uint16_t unit) const { return swapped_ ? __builtin_bswap16(unit) : unit; }

    uint32_t bitsOf(const __m128i (&units)[4], uint16_t mask, uint16_t wanted) const {
        const __m128i masks = _mm_set1_epi16(static_cast<int16_t>(inOrder(mask)));
        const __m128i wants = _mm_set1_epi16(static_cast<int16_t>(inOrder(wanted)));
        const auto equal = [&](__m128i part) { return _mm_cmpeq_epi16(_mm_and_si128(part, masks), wants); };
        const auto bits = [&](__m128i first, __m128i second) {
            return static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(equal(first), equal(second))));
        };
        return bits(units[0], units[1]) | bits(units[2], units[3]) << 16;
    }

    bool swapped_;
};

class Utf16Walk {
public:
    Utf16Walk(ByteView text, HighByte highByte) : text_(text), reader_(highByte) {}

    Validated run() {
        while (text_.size() >= 2) {
            if (text_.size() >= blockSize && takeBlock()) continue;
            for (unsigned i = 0; i < blockSize && text_.size() >= 2; i += 2) {
                if (const nlsStatus bad = takeUnit()) return {bad, chars_};
            }
        }
        if (pending_) return {NLS_INVALID_STRING, chars_};
        return {text_.empty() ? NLS_OK : NLS_PARTIAL_CHAR, chars_};
    }

private:
    nlsStatus takeUnit() {
        const unsigned unit = reader_.unitAt(text_.data());
        const bool low = (unit & 0xFC00U) == 0xDC00U;
        if (unit == 0) return pending_ ? NLS_INVALID_STRING : NLS_END_OF_STRING;
        if (low != pending_) return NLS_INVALID_STRING;
        pending_ = (unit & 0xFC00U) == 0xD800U;
        if (!pending_) ++chars_;
        text_ = text_.subspan(2);
        return NLS_OK;
    }
    // False, and nothing taken, where a unit is out of order. Low surrogates must stand right behind the high ones and
    // nowhere else; all units but the high ones complete a character.
    bool takeBlock() {
        const UnitBlock block = reader_.blockAt(text_.data());
        const uint64_t behindHigh = uint64_t{block.highSurrogate} << 1 | uint64_t{pending_};
        if (block.zero != 0 || block.lowSurrogate != static_cast<uint32_t>(behindHigh)) return false;
        pending_ = behindHigh >> 32 != 0;
        chars_ += blockSize / 2 - bitCount(block.highSurrogate);
        text_ = text_.subspan(blockSize);
        return true;
    }

    ByteView text_;
    UnitReader reader_;
    bool pending_ = false;  // a high surrogate waits for its partner
    uint32_t chars_ = 0;
};

// ---- 32 bits ----

template <HighByte highByte>
uint32_t wideUnitAt(const unsigned char* place) {
    const auto unit = loadWord<uint32_t>(place);
    return highByte == HighByte::first ? __builtin_bswap32(unit) : unit;
}

constexpr bool isCodePoint(uint32_t unit) {
    return unit - 1 < 0x10FFFF;
}

// Are all units of a block code points other than 0?
template <HighByte highByte>
bool allCodePoints(const unsigned char* place) {
    uint32_t odd = 0;
    for (unsigned i = 0; i < blockSize; i += 4) odd |= isCodePoint(wideUnitAt<highByte>(place + i)) ? 0U : 1U;
    return odd == 0;
}

template <HighByte highByte>
Validated validateWideUnits(ByteView text) {
    uint32_t chars = 0;
    while (text.size() >= 4) {
        if (text.size() >= blockSize && allCodePoints<highByte>(text.data())) {
            text = text.subspan(blockSize);
            chars += blockSize / 4;
            continue;
        }
        const uint32_t unit = wideUnitAt<highByte>(text.data());
        if (!isCodePoint(unit)) return {unit == 0 ? NLS_END_OF_STRING : NLS_BAD_ARG, chars};
        text = text.subspan(4);
        ++chars;
    }
    return {text.empty() ? NLS_OK : NLS_PARTIAL_CHAR, chars};
}

}  // namespace

Validated validateUtf16(ByteView text, HighByte highByte) {
    return Utf16Walk{text, highByte}.run();
}

Validated validateUtf32(ByteView text, HighByte highByte) {
    return highByte == HighByte::first ? validateWideUnits<HighByte::first>(text)
                                       : validateWideUnits<HighByte::second>(text);
}

}  // namespace nls
