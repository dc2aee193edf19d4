#include "tools/mkconvmap/coll_derivation.hpp"

#include <algorithm>

#include "convmap/conv_table.hpp"
#include "core/base/names.hpp"
#include "tools/mkconvmap/coll_writer.hpp"

namespace nls::mkconvmap {

namespace {

bool isByteMap(const FileEntry& entry) {
    return entry.type == format::EntryType::conversion && entry.rawByte == static_cast<uint8_t>(ConvType::byteMap);
}

bool hasOwn(const std::vector<FileEntry>& entries, const std::string& charset, const std::string& collation) {
    return std::any_of(entries.begin(), entries.end(), [&](const FileEntry& entry) {
        return entry.type == format::EntryType::collation && entry.name1 == charset &&
               sameName(entry.name2.c_str(), collation.c_str());
    });
}

}  // namespace

void checkDerivedCollations(const std::vector<FileEntry>& entries) {
    for (const FileEntry& collation : entries) {
        if (collation.type != format::EntryType::collation) continue;
        const bool isSafe = !hasDoubleS(*collation.record);
        for (const FileEntry& map : entries) {
            if (!isByteMap(map) || map.name1 != collation.name1) continue;
            const bool isPermutation = map.subKind == 1;
            if ((isSafe && isPermutation) || hasOwn(entries, map.name2, collation.name2)) continue;
            fail(collation.place, map.name2 + " needs a " + collation.name2 + " of its own: one derived from " +
                                      collation.name1 + (isPermutation ? " has a double s" : " loses characters"));
        }
    }
}

}  // namespace nls::mkconvmap
