// Slow twins of the multi-byte search and its bridges: one step after the other, as plain as they can be told.
#pragma once

#include <cstdint>
#include <vector>

#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"
#include "tests/real/characters.hpp"

namespace nls::reference {

inline constexpr uint32_t kNone = 65535;

inline bool exists(unsigned first, unsigned last) {
    return last >= first;
}

inline uint32_t sjisToCjis(const nlsUcs2Map& m, uint32_t code) {
    if (m.trailsPerRow == 0) return kNone;
    if (code == m.sjisZero) return 0;
    unsigned lead = code >> 8 & 0xFF, trail = code & 0xFF;
    if (lead < m.leadFirst1) return kNone;
    if (lead > m.leadLast1 && lead < m.leadFirst2) return kNone;
    if (lead > m.leadLast2 && exists(m.leadFirst2, m.leadLast2)) return kNone;
    if (lead > m.leadLast1) lead = (lead - m.leadGap) & 0xFF;
    if (trail < m.trailFirst1) return kNone;
    if (trail > m.trailLast1 && trail < m.trailFirst2) return kNone;
    if (trail > m.trailLast2 && exists(m.trailFirst2, m.trailLast2) && trail < m.trailFirst3) return kNone;
    if (trail > m.trailLast3 && exists(m.trailFirst3, m.trailLast3)) return kNone;
    if (trail > m.trailLast2 && exists(m.trailFirst2, m.trailLast2))
        trail = (trail - m.trailGap3) & 0xFF;
    else if (trail > m.trailLast1)
        trail = (trail - m.trailGap2) & 0xFF;
    unsigned value =
        (1U - m.cjisBase + ((lead - m.leadFirst1) & 0xFF) * m.trailsPerRow + ((trail - m.trailFirst1) & 0xFF)) & 0xFFFF;
    if (value > m.gapAfter) value = (value - m.gapSize) & 0xFFFF;
    return value;
}

inline uint32_t cjisToSjis(const nlsUcs2Map& m, uint32_t cjis) {
    if (m.trailsPerRow == 0) return kNone;
    if (cjis == 0) return m.sjisZero;
    if (cjis > m.gapAfter) cjis = (cjis + m.gapSize) & 0xFFFF;
    const unsigned n = (m.cjisBase - 1U + cjis) & 0xFFFF;
    const unsigned row = n / m.trailsPerRow;
    unsigned trail = (m.trailFirst1 + n - row * m.trailsPerRow) & 0xFF;
    if (trail > m.trailLast2 && exists(m.trailFirst2, m.trailLast2))
        trail = (trail + m.trailGap3) & 0xFF;
    else if (trail > m.trailLast1)
        trail = (trail + m.trailGap2) & 0xFF;
    unsigned lead = (row + m.leadFirst1) & 0xFF;
    if (lead > m.leadLast1) lead = (lead + m.leadGap) & 0xFF;
    return lead << 8 | trail;
}

inline uint32_t cjisToUnicode(const nlsUcs2Map& m, uint32_t cjis) {
    if (cjis >= m.cjisCount || m.cjisToUcs == nullptr) return kNone;
    const uint32_t v = m.cjisToUcs[cjis];
    if (m.rangesOnCjis == 0) return v;
    for (int i = 0; i < 5 && m.ranges[i].rangeEnd != 0; ++i)
        if (v + m.ranges[i].rangeDelta <= m.ranges[i].rangeEnd) return v + m.ranges[i].rangeDelta;
    return v;
}

inline uint32_t unicodeToCjis(const nlsUcs2Map& m, uint32_t ucs) {
    if (m.ranges[0].rangeEnd != 0) {
        int i = 0;
        while (i < 5 && m.ranges[i].rangeEnd != 0 && !(m.ranges[i].rangeStart <= ucs && ucs <= m.ranges[i].rangeEnd))
            ++i;
        if (i == 5 || m.ranges[i].rangeEnd == 0) return kNone;
        ucs = ucs - m.ranges[i].rangeDelta;
    }
    if (ucs < m.ucsMin || ucs > m.ucsMax) return kNone;
    const uint32_t i = ucs - m.ucsMin;
    const uint32_t row = i >> m.rowShift % 32;
    auto c = static_cast<int16_t>(i & m.colMask);
    if (m.ucsRows == nullptr || row >= m.ucsRowCount || m.ucsCells == nullptr) return kNone;
    uint32_t cell = m.ucsRows[row];
    while (c > 0) {
        if (cell >= m.ucsCellCount) return kNone;
        unsigned s = m.ucsCells[cell] & m.skipMask;
        ++cell;
        if (s == 0) {
            if (cell >= m.ucsCellCount) return kNone;
            s = m.ucsCells[cell];
            ++cell;
        }
        c = static_cast<int16_t>(c - static_cast<int>(s));
    }
    if (c != 0) return kNone;
    if (cell >= m.ucsCellCount) return kNone;
    return static_cast<uint32_t>(m.ucsCells[cell]) >> m.valueShift % 32;
}

inline uint32_t unicodeToDbcs(const nlsUcs2Map& m, uint32_t ucs) {
    ucs &= 0xFFFF;
    if (ucs < m.ucsMin || ucs > m.ucsMax) return kNone;
    if (m.ucsCells == nullptr || ucs - m.ucsMin >= m.ucsCellCount) return kNone;
    return m.ucsCells[ucs - m.ucsMin];
}

// --- the searches

struct Found {
    uint32_t value;
    bool substituted;
};

inline bool cp936(const DbcsTable& t) {
    return (t.attrib->flags & 0x8000) != 0;
}

inline Found toUnicode(const DbcsTable& t, uint32_t v) {
    if (v == 0) return {0, false};
    for (const int map : {2, 0, 1}) {
        if (map == 2 && t.maps[2].cjisToUcs == nullptr) continue;
        const uint32_t cjis = sjisToCjis(t.maps[map], v);
        if (cjis == kNone) continue;
        const uint32_t ucs = cjisToUnicode(t.maps[map], cjis);
        if (ucs != kNone) return {ucs, ucs == 0xFFFD};
    }
    if (v <= 0x7F) return {v, false};
    if (v == 0x80 && cp936(t)) return {0x20AC, false};
    return {0xFFFD, true};
}

inline Found toCharset(const DbcsTable& t, uint32_t ucs) {
    for (const int map : {2, 0, 1}) {
        if (map == 2 && (t.maps[2].cjisToUcs == nullptr || ucs > 0xFFFF)) continue;
        const uint32_t cjis = map == 2 ? unicodeToDbcs(t.maps[2], ucs) : unicodeToCjis(t.maps[map], ucs);
        if (cjis == kNone) continue;
        const uint32_t code = cjisToSjis(t.maps[map], cjis);
        if (code != kNone) return {code, false};
    }
    if (ucs < 0x80) return {ucs, false};
    if (ucs == 0x20AC && cp936(t)) return {0x80, false};
    return {t.maps[0].substChar, true};
}

// --- the bridges

// What a bridge leaves: its status, the count that it tells, and every byte that it wrote.
struct Bridged {
    int status;
    uint32_t outLen;
    std::vector<unsigned char> bytes;
};

// One character of the charset from `pos` on; `pos` may come to lie behind the end.
inline uint32_t readCharsetCharacter(const DbcsTable& t, ByteView source, std::size_t& pos) {
    uint32_t v = source[pos++];
    unsigned n = t.attrib->lengthMap[v] & 7U;
    if (n >= 4) {
        pos += n;
        return '?';
    }
    for (; n > 0; --n) {
        if (pos >= source.size()) {
            pos += n;
            break;
        }
        if (source[pos] == 0) break;
        v = v << 8 | source[pos++];
    }
    return v & 0xFFFF;
}

// The forms of Unicode, written and read one character at a time.
inline real::Name form(bool utf16, bool swapped = false) {
    return {"", utf16 ? real::Family::units16 : real::Family::utf8, swapped};
}

inline Bridged dbcsToUtf8(const DbcsTable& t, ByteView source, std::size_t room) {
    Bridged result{0, 0, {}};
    for (std::size_t pos = 0; pos < source.size();) {
        const Found found = toUnicode(t, readCharsetCharacter(t, source, pos));
        if (found.substituted) result.status = -3;
        const bool surrogate = found.value >= 0xD800 && found.value <= 0xDFFF;
        const std::size_t before = result.bytes.size();
        real::append(result.bytes, surrogate ? '?' : found.value >= 0x4000000 ? 0xFFFD : found.value, form(false));
        if (result.bytes.size() > room) {
            result.bytes.resize(before);
            return {2, 0, result.bytes};
        }
        if (surrogate) return {33, 0, result.bytes};
    }
    result.outLen = static_cast<uint32_t>(result.bytes.size());
    return result;
}

inline Bridged dbcsToUtf16(const DbcsTable& t, bool swap, ByteView source, std::size_t room) {
    Bridged result{0, 0, {}};
    for (std::size_t pos = 0; pos < source.size();) {
        const Found found = toUnicode(t, readCharsetCharacter(t, source, pos));
        if (found.substituted) result.status = -3;
        const std::size_t before = result.bytes.size();
        real::append(result.bytes, found.value > 0x10FFFF ? 0xFFFD : found.value, form(true, swap));
        if (result.bytes.size() > room) {
            result.bytes.resize(before);
            result.status = 2;
            break;
        }
    }
    result.outLen = static_cast<uint32_t>(result.bytes.size());
    return result;
}

// False when a byte has no room.
inline bool putCode(std::vector<unsigned char>& bytes, uint32_t code, std::size_t room) {
    if (code > 0xFF) {
        if (bytes.size() >= room) return false;
        bytes.push_back(static_cast<unsigned char>(code >> 8));
    }
    if (bytes.size() >= room) return false;
    bytes.push_back(static_cast<unsigned char>(code));
    return true;
}

// From UTF-8 a NUL goes out with no search.
inline Bridged unicodeToCharset(const DbcsTable& t, const real::Characters& read, bool utf8, std::size_t room) {
    Bridged result{0, 0, {}};
    for (const uint32_t ch : read.values) {
        const Found found = ch == 0 && utf8 ? Found{0, false} : toCharset(t, ch);
        if (found.substituted) result.status = -3;
        if (!putCode(result.bytes, found.value, room)) {
            result.status = 2;
            break;
        }
    }
    if (result.status != 2 && read.end != 0) result.status = read.end;
    result.outLen = static_cast<uint32_t>(result.bytes.size());
    return result;
}

inline Bridged utf8ToDbcs(const DbcsTable& t, ByteView source, std::size_t room) {
    return unicodeToCharset(t, readCharacters(form(false), source, real::Reading::byCharacter), true, room);
}
inline Bridged utf16ToDbcs(const DbcsTable& t, bool swap, ByteView source, std::size_t room) {
    return unicodeToCharset(t, readCharacters(form(true, swap), source, real::Reading::byCharacter), false, room);
}

}  // namespace nls::reference
