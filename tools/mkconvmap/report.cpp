#include "tools/mkconvmap/report.hpp"

#include <cstdio>
#include <map>
#include <numeric>
#include <set>

namespace nls::mkconvmap {

namespace {

template <typename... Values>
std::string formatted(const char* pattern, Values... values) {
    char line[160];
    std::snprintf(line, sizeof line, pattern, values...);
    return line;
}

const char* kindName(format::EntryType type) {
    switch (type) {
        case format::EntryType::conversion:
            return "conversion";
        case format::EntryType::attributes:
            return "attributes";
        case format::EntryType::caseTable:
            return "case";
        case format::EntryType::collation:
            return "collation";
    }
    return "?";
}

std::size_t arrayBytes(const DataRecord& record) {
    std::size_t bytes = 0;
    for (const RecordArray& array : record.arrays) {
        bytes += format::ucs2::kArrayPrefix + array.words.size() * sizeof(uint16_t);
    }
    return bytes;
}

uint32_t offsetOf(const std::vector<unsigned char>& image, std::size_t index) {
    const std::size_t start = format::header::kSize + index * format::entry::kSize;
    return static_cast<uint32_t>(format::decimalOf(ByteView{image}.subspan(start), format::entry::kOffset));
}

// Entries by kind, and the bytes of their records; shared records count once.
struct Totals {
    std::map<format::EntryType, int> entries;
    std::map<format::EntryType, std::size_t> bytes;
    int bare = 0, shared = 0;
    std::size_t arrays = 0;
};

Totals totalsOf(const FileWriter& file, const std::vector<unsigned char>& image) {
    Totals totals;
    std::set<uint32_t> seen;
    for (std::size_t index = 0; index < file.entries().size(); ++index) {
        const FileEntry& entry = file.entries()[index];
        ++totals.entries[entry.type];
        if (!entry.record) {
            ++totals.bare;
        } else if (!seen.insert(offsetOf(image, index)).second) {
            ++totals.shared;
        } else {
            totals.bytes[entry.type] += entry.record->bytes.size();
            totals.arrays += arrayBytes(*entry.record);
        }
    }
    return totals;
}

}  // namespace

std::string summaryOf(const CompiledMap& map, const std::vector<unsigned char>& image, const ArenaUse& use) {
    using Type = format::EntryType;
    Totals totals = totalsOf(map.file, image);
    const std::size_t entries = map.file.entries().size();
    const uint32_t tables = std::accumulate(use.entries.begin(), use.entries.end(), 0U);
    return formatted("%zu entries: %d attribute tables, %d conversions, %d collations, %d case tables; ", entries,
                     totals.entries[Type::attributes], totals.entries[Type::conversion],
                     totals.entries[Type::collation], totals.entries[Type::caseTable]) +
           formatted("%d without a record, %d with a shared one\n", totals.bare, totals.shared) +
           formatted("%zu bytes: contents %zu, attribute tables %zu, conversion records %zu, arrays %zu, ",
                     image.size(), entries * format::entry::kSize, totals.bytes[Type::attributes],
                     totals.bytes[Type::conversion], totals.arrays) +
           formatted("collations %zu, case tables %zu\n", totals.bytes[Type::collation],
                     totals.bytes[Type::caseTable]) +
           formatted("%u bytes of arena for the handle, %u for all tables\n", use.handle, tables);
}

std::string listingOf(const CompiledMap& map, const std::vector<unsigned char>& image, const ArenaUse& use) {
    std::string text =
        formatted("%-11s %-20s%-20s%4s %8s %7s %7s\n", "kind", "name", "to", "raw", "offset", "bytes", "arena");
    const FileWriter& file = map.file;
    std::set<uint32_t> seen;
    for (std::size_t index = 0; index < file.entries().size(); ++index) {
        const FileEntry& entry = file.entries()[index];
        text += formatted("%-11s %-20s%-20s%4d ", kindName(entry.type), entry.name1.c_str(), entry.name2.c_str(),
                          entry.rawByte);
        if (entry.record) {
            const uint32_t offset = offsetOf(image, index);
            const bool isShared = !seen.insert(offset).second;
            const std::size_t bytes = entry.record->bytes.size() + arrayBytes(*entry.record);
            text += formatted("%8u %6zu%s", offset, bytes, isShared ? "=" : " ");
        } else {
            text += formatted("%8s %6s ", "-", "-");
        }
        text += formatted(" %7u\n", use.entries[index]);
    }
    for (const std::string& remark : map.remarks) text += remark + "\n";
    return text;
}

}  // namespace nls::mkconvmap
