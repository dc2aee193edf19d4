// The records of a data file as text, for `nls dump`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convmap/file_format.hpp"
#include "nls/records.h"
#include "tools/nls/data_file.hpp"

namespace nls::tool {

// One entry of the contents.
struct DumpEntry {
    std::string name1;
    std::string name2;
    uint32_t offset;
    unsigned subKind;
    unsigned rawByte;
    unsigned type;
};

struct DumpHeader {
    int32_t magic;
    int32_t contents;
    int32_t version;
    int32_t count;
};

class ConvmapText {
public:
    // Opens a file and reads header and contents. Throws if it is no data file.
    ConvmapText(const std::string& path, bool wholeArrays);

    const DumpHeader& header() const { return header_; }
    const std::vector<DumpEntry>& entries() const { return entries_; }
    uint64_t fileSize() const { return fileSize_; }

    // "conversion KOI8-R to UTF-8".
    static std::string title(const DumpEntry& entry);
    // The record of an entry in lines, each with its end.
    std::string record(const DumpEntry& entry) const;

private:
    using Bytes = std::vector<unsigned char>;

    // None if the file doesn't hold them all.
    std::optional<Bytes> read(uint64_t offset, uint64_t length) const;

    std::string attributes(ByteView record) const;
    std::string conversion(const DumpEntry& entry, ByteView record) const;
    std::string maps(uint32_t offset) const;
    std::string map(const nlsUcs2Map& map) const;
    std::string array(const char* name, uint32_t offset, unsigned count) const;
    std::string collation(ByteView record) const;
    std::string caseTable(const DumpEntry& entry, ByteView record) const;

    OpenFile file_;
    bool wholeArrays_;
    uint64_t fileSize_ = 0;
    DumpHeader header_{};
    std::vector<DumpEntry> entries_;
};

}  // namespace nls::tool
