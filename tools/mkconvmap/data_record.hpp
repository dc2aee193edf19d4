// What is placed in the data file for one entry: a record, and the arrays that it points to.
#pragma once

#include <cstdint>
#include <vector>

namespace nls::mkconvmap {

// An array of 16-bit words. Where it stands is known at placement alone; its file position then goes into the record.
struct RecordArray {
    std::size_t offsetAt = 0;  // byte of the record at which the 32-bit position stands
    std::vector<uint16_t> words;

    bool operator==(const RecordArray&) const = default;
};

struct DataRecord {
    std::vector<unsigned char> bytes;
    std::vector<RecordArray> arrays;  // none empty: an array without words doesn't exist

    bool operator==(const DataRecord&) const = default;
};

}  // namespace nls::mkconvmap
