// What the tests of multi-byte charsets share: their names, hex, records with wild fields, and arrays that end at a
// page that faults.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "convmap/dbcs_index.hpp"
#include "core/base/views.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/real_dbcs.hpp"

namespace nls::test {

using Bytes = std::vector<unsigned char>;

inline std::string hex(ByteView bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

inline bool sameBytes(ByteView a, ByteView b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

inline constexpr const char* kMultiByte[] = {"SHIFT-JIS", "EUCJIS", "KSC5601", "CP949",       "CP1361", "GB2312",
                                             "CP936",     "BIG-5",  "CP950",   "CP950-HKSCS", "ISO6937"};

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    unsigned below(unsigned bound) { return static_cast<unsigned>(engine_() % bound); }
    unsigned char byte(unsigned first, unsigned last) {
        return static_cast<unsigned char>(first + below(last - first + 1));
    }
    uint16_t word() { return static_cast<uint16_t>(engine_()); }
    bool oneIn(unsigned n) { return below(n) == 0; }

private:
    std::mt19937 engine_;
};

// The three arrays of one map, each ending where reading ends the test.
class GuardedArrays {
public:
    explicit GuardedArrays(nlsUcs2Map& map) {
        map.cjisToUcs = moved(0, map.cjisToUcs, map.cjisCount);
        map.ucsRows = moved(1, map.ucsRows, map.ucsRowCount);
        map.ucsCells = moved(2, map.ucsCells, map.ucsCellCount);
    }

private:
    uint16_t* moved(std::size_t index, const uint16_t* array, std::size_t count) {
        if (array == nullptr) return nullptr;
        buffers_[index] = std::make_unique<GuardedBuffer>(count * 2);
        return reinterpret_cast<uint16_t*>(buffers_[index]->atEnd(array, count * 2));
    }
    std::unique_ptr<GuardedBuffer> buffers_[3];
};

// An index tied to a table, at the end of memory that may be read; none with a number of pages below 0.
class GuardedIndex {
public:
    GuardedIndex(DbcsTable& table, int pages) : table_(table) {
        if (pages < 0) return;
        const std::size_t size = bytesOfIndex(static_cast<unsigned>(pages));
        buffer_ = std::make_unique<GuardedBuffer>(size);
        auto* const index = reinterpret_cast<DbcsIndex*>(buffer_->atEnd(size));
        buildDbcsIndex(table, static_cast<unsigned>(pages), *index);
        tieDbcsIndex(table, index);
    }
    GuardedIndex(const GuardedIndex&) = delete;
    GuardedIndex& operator=(const GuardedIndex&) = delete;
    ~GuardedIndex() { tieDbcsIndex(table_, nullptr); }

private:
    DbcsTable& table_;
    std::unique_ptr<GuardedBuffer> buffer_;
};

// Puts odd values into some entries of a map's arrays: no mapping, surrogates, substitutes, anything. Every second time
// only those that leave the runs of an index at work.
inline void scramble(nlsUcs2Map& map, Random& random) {
    if (random.oneIn(2)) {
        constexpr uint16_t kLeft[] = {0x80, 0xA7, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF};
        for (uint32_t i = 0; map.cjisToUcs != nullptr && i < 3000 && map.cjisCount != 0; ++i)
            map.cjisToUcs[random.below(map.cjisCount)] = kLeft[random.below(10)];
        for (uint32_t i = 0; map.ucsCells != nullptr && i < 3000 && map.ucsCellCount != 0; ++i)
            map.ucsCells[random.below(map.ucsCellCount)] = static_cast<uint16_t>(random.below(3000));
        return;
    }
    const auto some = [&](uint16_t* array, uint32_t count) {
        constexpr uint16_t kOdd[] = {0, 0xFFFF, 0xFFFD, 0xFFFE, 0xD800, 0xDFFF, 0x7F, 0x80, 0x7FF, 0x800};
        for (uint32_t i = 0; array != nullptr && i < 200 && count != 0; ++i)
            array[random.below(count)] = random.oneIn(3) ? random.word() : kOdd[random.below(10)];
    };
    some(map.cjisToUcs, map.cjisCount);
    some(map.ucsRows, map.ucsRowCount);
    some(map.ucsCells, map.ucsCellCount);
}

// Changes some fields of a record to anything, as a data file of any origin may hold it. The arrays and their counts
// stay: what the loader takes from the file always has the length that the counts tell.
inline void mutate(nlsUcs2Map& map, Random& random) {
    const auto any = [&](auto& field) {
        constexpr unsigned kEdges[] = {0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0x8000, 0xFFFF};
        field = static_cast<std::remove_reference_t<decltype(field)>>(random.oneIn(2) ? kEdges[random.below(8)]
                                                                                      : random.word());
    };
    const auto sometimes = [&](auto&... fields) { ((random.oneIn(6) ? any(fields) : void()), ...); };
    sometimes(map.sjisZero, map.cjisBase, map.gapAfter, map.gapSize, map.ucsMin, map.ucsMax, map.rowShift,
              map.valueShift, map.colMask, map.skipMask, map.rangesOnCjis, map.leadGap, map.trailGap2, map.trailGap3,
              map.trailsPerRow, map.leadFirst1, map.leadLast1, map.leadFirst2, map.leadLast2, map.trailFirst1,
              map.trailLast1, map.trailFirst2, map.trailLast2, map.trailFirst3, map.trailLast3);
    for (nlsUcs2Range& range : map.ranges) {
        if (!random.oneIn(8)) continue;
        range = {random.word() * (1U + random.below(4)), random.word(), random.word() - random.below(0x8000U)};
    }
    if (random.oneIn(12)) map.ucsRows = nullptr;
    if (random.oneIn(12)) map.ucsCells = nullptr;
    if (random.oneIn(12)) map.cjisToUcs = nullptr;
}

}  // namespace nls::test
