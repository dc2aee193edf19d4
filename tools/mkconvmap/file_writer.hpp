// The data file as a whole: header, table of contents, placement of the records.
//
//   header | contents, one entry each | records and arrays, in the order in which entries first need them
//
// Records that are equal, their arrays too, are written once and shared.
// Tested by tests/tools/read_back_test.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "convmap/file_format.hpp"
#include "tools/mkconvmap/data_record.hpp"
#include "tools/mkconvmap/source_text.hpp"

namespace nls::mkconvmap {

struct FileEntry {
    Place place;  // the line of the list that asked for the entry
    format::EntryType type = format::EntryType::conversion;
    std::string name1;
    std::string name2;  // not in an attribute entry
    uint8_t subKind = 0;
    uint8_t rawByte = 0;
    std::optional<DataRecord> record;  // conversions alone may be without
};

class FileWriter {
public:
    // Fails at the entry's place where the contents can't take it: a name too long, a second entry that no search would
    // ever reach, one record more than the header can count.
    void add(FileEntry entry);

    const std::vector<FileEntry>& entries() const { return entries_; }

    // The finished file. Fails where it outgrows an offset.
    std::vector<unsigned char> build() const;

private:
    std::vector<FileEntry> entries_;
};

}  // namespace nls::mkconvmap
