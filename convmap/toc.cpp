#include "convmap/toc.hpp"

#include <cstring>

#include "core/base/names.hpp"
#include "nls/handle.h"

namespace nls {

namespace {

using format::EntryType;

constexpr uint16_t kMatchesNothing = 0;

// Copies a name that is closed within its field. One that isn't is cut, and the answer is false. REQUIRES: `name` is
// zero.
bool copyClosedName(char (&name)[20], ByteView field) {
    const void* const nul = std::memchr(field.data(), 0, field.size());
    const std::size_t length = nul == nullptr
                                   ? field.size() - 1
                                   : static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - field.data());
    std::memcpy(name, field.data(), length);
    return nul != nullptr;
}

// False for a record without data that isn't a conversion.
bool fillEntry(nlsTocEntry& entry, ByteView record) {
    const bool closed1 = copyClosedName(entry.name1, format::bytesOf(record, format::entry::kName1));
    const bool closed2 = copyClosedName(entry.name2, format::bytesOf(record, format::entry::kName2));
    entry.offset = static_cast<uint32_t>(format::decimalOf(record, format::entry::kOffset));
    entry.entryType = static_cast<uint16_t>(format::decimalOf(record, format::entry::kType));
    if (entry.offset == 0 && !isType(entry, EntryType::conversion)) return false;
    entry.subKind = static_cast<uint16_t>(format::decimalOf(record, format::entry::kSubKind));
    entry.rawByte = format::byteOf(record, format::entry::kRawByte);
    if (!closed1 || (!closed2 && !isType(entry, EntryType::attributes))) entry.entryType = kMatchesNothing;
    return true;
}

nlsStatus readEntries(const FileReader& file, uint64_t firstEntry, std::span<nlsTocEntry> entries) {
    uint64_t place = firstEntry;
    for (nlsTocEntry& entry : entries) {
        unsigned char record[format::entry::kSize];
        if (!file.read(place, record) || !fillEntry(entry, record)) return NLS_BAD_TOC;
        place += sizeof record;
    }
    return NLS_OK;
}

}  // namespace

nlsTocEntry* Contents::find(EntryType type, const char* name1) const {
    for (nlsTocEntry& entry : entries_)
        if (isType(entry, type) && sameName(entry.name1, name1)) return &entry;
    return nullptr;
}

nlsTocEntry* Contents::find(EntryType type, const char* name1, const char* name2) const {
    for (nlsTocEntry& entry : entries_)
        if (isType(entry, type) && sameName(entry.name1, name1) && sameName(entry.name2, name2)) return &entry;
    return nullptr;
}

ReadContents readContents(const Arena& arena, const FileReader& file) {
    namespace header = format::header;
    unsigned char record[header::kSize];
    if (!file.read(0, record) || format::decimalOf(record, header::kMagic) != header::kMagicNumber)
        return {NLS_BAD_MAGIC, {}};
    const int32_t version = format::decimalOf(record, header::kVersion);
    nlsTemporaryVers = static_cast<uint32_t>(version);
    if (version < header::kOldestVersion || version > header::kNewestVersion) return {NLS_BAD_VERSION, {}};

    // A count below 0 asks for more than any arena has.
    const int32_t count = format::decimalOf(record, header::kEntryCount);
    auto* const first = count < 0 ? nullptr : arena.array<nlsTocEntry>(static_cast<uint64_t>(count));
    if (first == nullptr) return {NLS_NO_MEM, {}};
    const std::span<nlsTocEntry> entries{first, static_cast<std::size_t>(count)};
    // A negative place reads as one near the end of the 32 bits, where no file reaches.
    const auto firstEntry = static_cast<uint32_t>(format::decimalOf(record, header::kFirstEntry));
    return {readEntries(file, firstEntry, entries), entries};
}

}  // namespace nls
