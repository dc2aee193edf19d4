// Slow twins of the Thai order and its keys: the rules one after the other, on indices into strings.
#pragma once

#include <string>

namespace nls::test {

inline int thaiClassOf(unsigned char byte) {
    const auto in = [byte](unsigned first, unsigned last) { return byte >= first && byte <= last; };
    if (byte == 0xCF || byte == 0xDC || byte == 0xE6) return 0;
    if (in(0xD4, 0xD9) || byte == 0xD1 || byte == 0xED) return 2;
    if (in(0xE0, 0xE4)) return 3;
    if (in(0xE7, 0xEC)) return 4;
    return in(0x00, 0xA0) || in(0xEF, 0xFB) ? 0 : 1;
}

inline unsigned char byteAt(const std::string& text, std::size_t pos) {
    return pos < text.size() ? static_cast<unsigned char>(text[pos]) : 0;
}

inline uint32_t slowRank(const unsigned char* map, const std::string& text, std::size_t& pos) {
    uint32_t rank = 2;
    bool base = false, leading = false, vowel = false, tone = false, begun = false;
    for (; pos < text.size(); ++pos) {
        const unsigned char b = byteAt(text, pos);
        const uint32_t w = map[b];
        switch (thaiClassOf(b)) {
            case 0:
                if (begun) return rank;
                ++pos;
                return w << 24;
            case 1:
                if (base) return rank;
                rank |= w << 24, base = true;
                break;
            case 2:
                if (vowel) return rank;
                rank |= w << 8, vowel = true;
                break;
            case 3:
                if (leading || base) return rank;
                rank |= w << 16, leading = true;
                break;
            default:
                if (tone) return rank;
                rank = (rank & 0xFFFFFFFD) | w, tone = true;
        }
        begun = true;
    }
    return rank;
}

inline int slowThaiCompare(const unsigned char* map, const std::string& a, const std::string& b) {
    const auto isBlank = [](const std::string& text, std::size_t from) {
        return text.find_first_not_of(' ', from) == std::string::npos;
    };
    for (std::size_t i = 0, j = 0;;) {
        if (i == a.size()) return isBlank(b, j) ? 0 : -1;
        if (j == b.size()) return isBlank(a, i) ? 0 : 1;
        const uint32_t rankA = slowRank(map, a, i), rankB = slowRank(map, b, j);
        if (rankA != rankB) return rankA < rankB ? -1 : 1;
    }
}

// The key without its NUL, of at most `room` bytes.
inline std::string slowThaiKey(const unsigned char* map, const std::string& text, std::size_t room) {
    std::string key;
    const auto full = [&] { return key.size() == room; };
    const auto put = [&](unsigned byte) {
        if (!full()) key += static_cast<char>(byte);
    };
    for (std::size_t r = 0; r < text.size() && !full();) {
        const unsigned c = byteAt(text, r), w = map[c];
        const int kind = thaiClassOf(byteAt(text, r));
        if (kind == 0) {
            put(w), r += 1;
        } else if (kind == 3 && r + 1 < text.size() && thaiClassOf(byteAt(text, r + 1)) == 1) {
            put(map[byteAt(text, r + 1)]), put(0x80), put(w), put(2), r += 2;
        } else if (kind == 1 || kind == 3) {
            put(w), put(2), r += 1;
        } else {
            if (r == 0 || thaiClassOf(byteAt(text, r - 1)) == 0) {
                put(0x80);
                if (full()) {
                    r += 1;
                    continue;
                }
                put(2);
            }
            const unsigned u = static_cast<unsigned char>(key.back());
            const bool joins = kind == 2 ? (u & 0x78) == 0 : (u & 7) == 2;
            if (joins) {
                key.back() = static_cast<char>(kind == 2 ? u | w : (u & ~2U) | w);
            } else {
                put(0x80);
                if (full()) continue;  // the key is at its end, so the loop is
                put(kind == 2 ? w | 2 : w);
            }
            r += 1;
        }
    }
    return key;
}

}  // namespace nls::test
