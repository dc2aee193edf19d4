// Header and table of contents of the data file.
//
// The contents are an array of records in the arena, in the order of the file. A look-up is a walk from the first
// record, and the first match counts. Each record caches the object that was made of it in `data`; once set, that
// pointer stays, so a table is read once.
//
// A record whose type is none of EntryType matches nothing. A record with a name that isn't closed within its 20 bytes
// gets such a type, so it matches nothing either; the rest of the file stays usable. (The second name of an attribute
// table takes no part in look-ups and is just cut.)
//
// Tested by tests/convmap/toc_test.cpp.
#pragma once

#include <span>

#include "convmap/file_format.hpp"
#include "convmap/file_reader.hpp"
#include "core/base/arena.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// The charsets of a conversion. The names are NUL-terminated.
struct NamePair {
    const char* from;
    const char* to;

    NamePair reversed() const { return {to, from}; }
};

class Contents {
public:
    explicit Contents(std::span<nlsTocEntry> entries) : entries_(entries) {}

    std::span<nlsTocEntry> entries() const { return entries_; }

    // The first record of the type with this name, or with these two; null without one.
    nlsTocEntry* find(format::EntryType type, const char* name1) const;
    nlsTocEntry* find(format::EntryType type, const char* name1, const char* name2) const;
    nlsTocEntry* find(NamePair pair) const { return find(format::EntryType::conversion, pair.from, pair.to); }

private:
    std::span<nlsTocEntry> entries_;
};

inline bool isType(const nlsTocEntry& entry, format::EntryType type) {
    return entry.entryType == static_cast<uint16_t>(type);
}

// The cached object, typed. REQUIRES: the entry's type is that of the object.
inline nlsAttribStruct* cachedAttributes(const nlsTocEntry& entry) {
    return static_cast<nlsAttribStruct*>(entry.data);
}
inline nlsConvTable* cachedTable(const nlsTocEntry& entry) {
    return static_cast<nlsConvTable*>(entry.data);
}
inline nlsCollStruct* cachedCollation(const nlsTocEntry& entry) {
    return static_cast<nlsCollStruct*>(entry.data);
}
inline nlsCaseStruct* cachedCaseTable(const nlsTocEntry& entry) {
    return static_cast<nlsCaseStruct*>(entry.data);
}

// What reading the contents came to. The entries are complete only with NLS_OK.
struct ReadContents {
    nlsStatus status;
    std::span<nlsTocEntry> entries;
};

// Reads and checks header and contents. Stores the header's version in nlsTemporaryVers before it is judged.
ReadContents readContents(const Arena& arena, const FileReader& file);

}  // namespace nls
