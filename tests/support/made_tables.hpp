// Conversion tables made in memory, without a data file: a type word and the block behind it.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

#include "convmap/conv_table.hpp"

namespace nls::test {

class MadeTable {
public:
    explicit MadeTable(int64_t typeWord, std::size_t blockBytes = 0) : words_(1 + (blockBytes + 7) / 8) {
        words_[0] = typeWord;
    }
    template <typename Block>
    static MadeTable of(int64_t typeWord, const Block& block) {
        MadeTable table{typeWord, sizeof block};
        std::memcpy(&table.words_[1], &block, sizeof block);
        return table;
    }
    static MadeTable twoStep(const nlsConvTable* first, const nlsConvTable* second) {
        const nlsConvTable* const block[3] = {first, second, nullptr};
        return of(7, block);
    }
    static MadeTable byteMap(const std::array<unsigned char, 256>& map) { return of(1, map); }

    nlsConvTable* get() const { return reinterpret_cast<nlsConvTable*>(const_cast<int64_t*>(&words_[1])); }
    operator nlsConvTable*() const { return get(); }

private:
    std::vector<int64_t> words_;
};

inline std::array<unsigned char, 256> identityMap() {
    std::array<unsigned char, 256> map{};
    for (unsigned c = 0; c < 256; ++c) map[c] = static_cast<unsigned char>(c);
    return map;
}

// Maps a to b, b to c, and so on; all others to themselves.
inline MadeTable shifted() {
    auto map = identityMap();
    for (unsigned c = 'a'; c < 'z'; ++c) map[c] = static_cast<unsigned char>(c + 1);
    return MadeTable::byteMap(map);
}

// The 256 units of a single-byte charset, by byte.
using Units = std::array<uint16_t, 256>;

inline Units unitsOf(uint16_t (*unit)(unsigned byte)) {
    Units units{};
    for (unsigned c = 0; c < 256; ++c) units[c] = unit(c);
    return units;
}
inline Units latinUnits() {
    return unitsOf([](unsigned c) { return static_cast<uint16_t>(c); });
}
// Two-byte forms on neighbouring pages, and a three-byte sign at F0.
inline Units cyrillicUnits() {
    return unitsOf([](unsigned c) {
        if (c < 0xA1 || c == 0xAD) return static_cast<uint16_t>(c);
        return static_cast<uint16_t>(c == 0xF0 ? 0x2116 : c == 0xFD ? 0xA7 : 0x400 + c - 0xA0);
    });
}
// Three-byte forms; bytes without a character have fillers of the private-use area.
inline Units thaiUnits() {
    return unitsOf([](unsigned c) {
        if (c < 0x80) return static_cast<uint16_t>(c);
        const bool letter = (c >= 0xA1 && c <= 0xDA) || (c >= 0xDF && c <= 0xFB);
        return static_cast<uint16_t>(letter ? 0xE00 + c - 0xA0 : 0xF700 + c);
    });
}
// A permutation that leaves ASCII nowhere, as the charsets of mainframes do, but for NUL.
inline Units scrambledUnits() {
    return unitsOf([](unsigned c) { return static_cast<uint16_t>(c == 0 ? 0 : 1 + (c * 91 + 17) % 255); });
}

// Both tables of a single-byte charset, built from its units by the rules of the format, apart from the library's own
// builder. No two units may have one key; a unit 0 beyond byte 0 leaves its byte without a character.
class MadeCharset {
public:
    explicit MadeCharset(const Units& units) : pages_(257) {
        for (auto& page : pages_) page.assign(64, 0);
        pages_[0].assign(256, 0);
        SbcsWords words{};
        for (unsigned c = 0; c < 256; ++c) put(static_cast<unsigned char>(c), units[c], words.utf8[c]);
        SbcsPages table{};
        for (unsigned i = 0; i < 256; ++i) table.page[i] = pages_[i].data();
        toUtf8_ = MadeTable::of(19, words);
        fromUtf8_ = MadeTable::of(20, table);
    }
    MadeCharset(const MadeCharset&) = delete;
    MadeCharset& operator=(const MadeCharset&) = delete;

    const MadeTable& toUtf8() const { return toUtf8_; }
    const MadeTable& fromUtf8() const { return fromUtf8_; }
    const SbcsWords& words() const { return ConvTable{toUtf8_}.sbcsWords(); }
    const SbcsPages& pages() const { return ConvTable{fromUtf8_}.sbcsPages(); }
    std::vector<unsigned char>& page(unsigned number) { return pages_[number]; }

private:
    void put(unsigned char byte, uint32_t unit, uint32_t& word) {
        const uint32_t last = 0x80 | (unit & 0x3F), middle = 0x80 | (unit >> 6 & 0x3F);
        if (unit < 0x80) {
            word = unit;
            pages_[0][unit] = byte;
        } else if (unit < 0x800) {
            word = 0xC0 | unit >> 6 | last << 8;
            pages_[0xC0 | unit >> 6][unit & 0x3F] = byte;
        } else {
            word = 0xE0 | unit >> 12 | middle << 8 | last << 16;
            pages_[middle][unit & 0x3F] = byte;
        }
    }

    std::vector<std::vector<unsigned char>> pages_;
    MadeTable toUtf8_{19}, fromUtf8_{20};
};

}  // namespace nls::test
