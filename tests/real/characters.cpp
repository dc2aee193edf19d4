#include "tests/real/characters.hpp"

#include <algorithm>
#include <cstring>

namespace nls::real {

namespace {

Characters readSingleByte(const CharsetModel& model, ByteView text) {
    Characters read;
    for (std::size_t at = 0; at < text.size(); ++at) read.add(model.decode(text[at]), at + 1);
    return read;
}

// A trail byte that is missing, or is a NUL, leaves the first byte to be looked up alone.
Characters readMultiByte(const CharsetModel& model, ByteView text) {
    Characters read;
    for (std::size_t at = 0; at < text.size();) {
        uint32_t code = text[at++];
        if (model.trails(text[at - 1]) == 1 && at < text.size() && text[at] != 0) code = code << 8 | text[at++];
        read.add(model.decode(code), at);
    }
    return read;
}

// The first byte tells the count; nothing else about the bytes is judged.
Characters readUtf8(ByteView text) {
    constexpr uint32_t offsets[] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};
    Characters read;
    for (std::size_t at = 0; at < text.size();) {
        const unsigned first = text[at];
        const unsigned trails = first < 0xC0   ? 0
                                : first < 0xE0 ? 1
                                : first < 0xF0 ? 2
                                : first < 0xF8 ? 3
                                : first < 0xFC ? 4
                                               : 5;
        if (at + trails >= text.size()) {
            read.end = NLS_BAD_ARG;
            break;
        }
        uint32_t value = 0;
        for (unsigned byte = 0; byte <= trails; ++byte) value = (value << 6) + text[at + byte];
        at += trails + 1;
        value -= offsets[trails];
        read.add(value > 0x10FFFF ? 0xFFFD : value, at);
    }
    return read;
}

// The way to a single-byte charset looks at two bytes: the last but one chooses a page, the last an entry of it. So
// three-byte characters that differ in the first byte alone are one, and pages of other lengths may be hit.
uint32_t pagedCodePoint(unsigned page, unsigned last) {
    const uint32_t entry = last & 0x3F;
    if (page >= 0xC2 && page <= 0xDF) return (page & 0x1F) << 6 | entry;
    if (page >= 0x80 && page <= 0xBF) return 0xF000 | (page & 0x3F) << 6 | entry;
    return page == 0 && entry != 0 ? entry : kNone;
}

Characters readPagedUtf8(ByteView text) {
    Characters read;
    for (std::size_t at = 0; at < text.size();) {
        const unsigned first = text[at];
        const std::size_t size = first < 0xC0 || first > 0xF4 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (at + size > text.size()) {
            read.end = NLS_BAD_ARG;
            break;
        }
        uint32_t value = kNone;
        if (first < 0x80) value = first;
        if (size == 2) value = pagedCodePoint(first, text[at + 1]);
        if (size == 3) value = pagedCodePoint(text[at + 1], text[at + 2]);
        at += size;
        read.add(value, at);
    }
    return read;
}

template <typename Unit>
uint32_t unitAt(ByteView text, std::size_t index, bool swapped) {
    unsigned char bytes[sizeof(Unit)];
    std::memcpy(bytes, text.data() + index * sizeof(Unit), sizeof(Unit));
    if (swapped) std::reverse(std::begin(bytes), std::end(bytes));
    Unit unit;
    std::memcpy(&unit, bytes, sizeof unit);
    return unit;
}

// A high surrogate takes a low one behind it; any other passes as it is. Bytes that make no whole unit are dropped.
template <typename Unit>
Characters readUnits(ByteView text, bool swapped, bool foldsPairs) {
    Characters read;
    const std::size_t count = text.size() / sizeof(Unit);
    for (std::size_t at = 0; at < count; ++at) {
        uint32_t value = unitAt<Unit>(text, at, swapped);
        if (foldsPairs && value >= 0xD800 && value <= 0xDBFF && at + 1 < count) {
            const uint32_t low = unitAt<Unit>(text, at + 1, swapped);
            if (low >= 0xDC00 && low <= 0xDFFF) {
                value = ((value - 0xD800) << 10) + (low - 0xDC00) + 0x10000;
                ++at;
            }
        }
        read.add(value, (at + 1) * sizeof(Unit));
    }
    return read;
}

}  // namespace

Characters readCharacters(const Name& charset, ByteView text, Reading reading) {
    switch (charset.family) {
        case Family::singleByte:
            return readSingleByte(CharsetModel::of(charset.text), text);
        case Family::multiByte:
            return readMultiByte(CharsetModel::of(charset.text), text);
        case Family::utf8:
            return reading == Reading::byPages ? readPagedUtf8(text) : readUtf8(text);
        case Family::units16:
            return readUnits<uint16_t>(text, charset.swapped, true);
        case Family::units32:
            return readUnits<uint32_t>(text, charset.swapped, reading != Reading::byUnit);
    }
    return {};
}

}  // namespace nls::real
