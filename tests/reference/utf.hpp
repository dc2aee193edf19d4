// The Unicode transforms once more, plainly: a byte at a time, a value at a time, into a growing vector.
//
// Nothing here is shared with the library but the status numbers. Each function is the rule of its transform written
// down in order, so that the fast one can be held against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "nls/status.h"

namespace nls::test {

using Bytes = std::vector<unsigned char>;

struct SlowResult {
    int32_t status = NLS_OK;
    std::size_t consumed = 0;
    Bytes written;
};

// Units of `width` bytes, little-endian unless swapped, one after the other.
class SlowUnits {
public:
    SlowUnits(const Bytes& bytes, std::size_t width, bool swapped) : bytes_(bytes), width_(width), swapped_(swapped) {}

    std::size_t count() const { return bytes_.size() / width_; }
    uint32_t at(std::size_t index) const {
        uint32_t unit = 0;
        for (std::size_t i = 0; i < width_; ++i) {
            const std::size_t place = index * width_ + (swapped_ ? i : width_ - 1 - i);
            unit = unit * 256 + bytes_[place];
        }
        return unit;
    }

    // The value at `index`, moved on behind it; two surrogates that make a pair are one value.
    uint32_t nextFolded(std::size_t& index) const {
        const uint32_t unit = at(index++);
        if (unit < 0xD800 || unit > 0xDBFF || index == count()) return unit;
        const uint32_t low = at(index);
        if (low < 0xDC00 || low > 0xDFFF) return unit;
        ++index;
        return (unit - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000;
    }

private:
    const Bytes& bytes_;
    std::size_t width_;
    bool swapped_;
};

inline void slowAppend(Bytes& target, uint32_t unit, std::size_t width, bool swapped) {
    for (std::size_t i = 0; i < width; ++i) {
        const std::size_t shift = 8 * (swapped ? width - 1 - i : i);
        target.push_back(static_cast<unsigned char>(unit >> shift));
    }
}

// --- writers: false when the room ends

inline bool slowPutUcs4(Bytes& target, std::size_t room, uint32_t value, bool swapped) {
    if (room - target.size() < 4) return false;
    slowAppend(target, value, 4, swapped);
    return true;
}

inline bool slowPutUtf16(Bytes& target, std::size_t room, uint32_t value, bool swapped) {
    if (room - target.size() < 2) return false;
    if (value > 0x10FFFF) value = 0xFFFD;
    if (value <= 0xFFFF) {
        slowAppend(target, value, 2, swapped);
        return true;
    }
    if (room - target.size() < 4) return false;
    slowAppend(target, 0xD800 + (value - 0x10000) / 0x400, 2, swapped);
    slowAppend(target, 0xDC00 + (value - 0x10000) % 0x400, 2, swapped);
    return true;
}

inline bool slowPutUtf8(Bytes& target, std::size_t room, uint32_t value) {
    Bytes form;
    if (value < 0x80) {
        form = {static_cast<unsigned char>(value)};
    } else {
        const std::size_t length = value < 0x800 ? 2 : value < 0x10000 ? 3 : value < 0x200000 ? 4 : 5;
        constexpr unsigned kFirst[6] = {0, 0, 0xC0, 0xE0, 0xF0, 0xF8};
        for (std::size_t i = 0; i < length; ++i) {
            const uint32_t bits = value >> (6 * (length - 1 - i));
            form.push_back(static_cast<unsigned char>(i == 0 ? kFirst[length] + bits : 0x80 + bits % 64));
        }
    }
    if (room - target.size() < form.size()) return false;
    target.insert(target.end(), form.begin(), form.end());
    return true;
}

// --- the transforms

inline SlowResult slowUtf16ToUcs4(const Bytes& source, std::size_t room, bool swapSource, bool swapTarget) {
    const SlowUnits units(source, 2, swapSource);
    SlowResult result;
    for (std::size_t i = 0; i < units.count() && result.status == NLS_OK; result.consumed = 2 * i) {
        const uint32_t value = units.nextFolded(i);
        if (!slowPutUcs4(result.written, room, value, swapTarget)) result.status = NLS_BUF_SMALL;
    }
    return result;
}

inline SlowResult slowUcs4ToUtf16(const Bytes& source, std::size_t room, bool swapSource, bool swapTarget) {
    const SlowUnits units(source, 4, swapSource);
    SlowResult result;
    for (std::size_t i = 0; i < units.count(); ++i) {
        if (room - result.written.size() < 2) {  // the unit stays unread
            result.status = NLS_BUF_SMALL;
            break;
        }
        result.consumed = 4 * (i + 1);
        if (!slowPutUtf16(result.written, room, units.at(i), swapTarget)) {
            result.status = NLS_BUF_SMALL;
            break;
        }
    }
    return result;
}

// `put` writes one value; both readers of UTF-8 are alike but for it.
template <typename Put>
SlowResult slowFromUtf8(const Bytes& source, Put put) {
    constexpr uint32_t kOffsets[6] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};
    SlowResult result;
    while (result.consumed < source.size()) {
        const unsigned first = source[result.consumed];
        const std::size_t trails = first < 0xC0   ? 0
                                   : first < 0xE0 ? 1
                                   : first < 0xF0 ? 2
                                   : first < 0xF8 ? 3
                                   : first < 0xFC ? 4
                                                  : 5;
        if (result.consumed + trails >= source.size()) {
            result.status = NLS_BAD_ARG;
            break;
        }
        uint32_t value = 0;
        for (std::size_t i = 0; i <= trails; ++i) value = value * 64 + source[result.consumed + i];
        value -= kOffsets[trails];
        result.consumed += trails + 1;
        if (!put(result.written, value)) {
            result.status = NLS_BUF_SMALL;
            break;
        }
    }
    return result;
}

inline SlowResult slowUtf8ToUcs4(const Bytes& source, std::size_t room, bool, bool swapTarget) {
    return slowFromUtf8(source, [=](Bytes& target, uint32_t value) {
        return slowPutUcs4(target, room, value > 0x10FFFF ? 0xFFFD : value, swapTarget);
    });
}

inline SlowResult slowUtf8ToUcs2(const Bytes& source, std::size_t room, bool, bool swapTarget) {
    return slowFromUtf8(source,
                        [=](Bytes& target, uint32_t value) { return slowPutUtf16(target, room, value, swapTarget); });
}

inline SlowResult slowToUtf8(const SlowUnits& units, std::size_t width, std::size_t room, int32_t loneSurrogate) {
    SlowResult result;
    for (std::size_t i = 0; i < units.count(); result.consumed = width * i) {
        uint32_t value = units.nextFolded(i);
        if (value >= 0xD800 && value <= 0xDFFF) {
            value = '?';
            result.status = loneSurrogate;
        }
        if (value >= 0x4000000) value = 0xFFFD;
        if (!slowPutUtf8(result.written, room, value)) {
            result.consumed = width * i;
            result.status = NLS_BUF_SMALL;
            break;
        }
    }
    return result;
}

inline SlowResult slowUcs4ToUtf8(const Bytes& source, std::size_t room, bool swapSource, bool) {
    return slowToUtf8(SlowUnits(source, 4, swapSource), 4, room, NLS_INVALID_STRING);
}

inline SlowResult slowUcs2ToUtf8(const Bytes& source, std::size_t room, bool swapSource, bool) {
    return slowToUtf8(SlowUnits(source, 2, swapSource), 2, room, NLS_BAD_ARG);
}

}  // namespace nls::test
