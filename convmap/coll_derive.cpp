#include "convmap/coll_derive.hpp"

#include <algorithm>
#include <array>

#include "core/base/names.hpp"

namespace nls {

namespace {

bool isByteMap(const nlsTocEntry& entry) {
    return isType(entry, format::EntryType::conversion) && entry.rawByte == static_cast<int16_t>(ConvType::byteMap);
}

const nlsTocEntry* findByteMap(const Contents& contents, NamePair pair) {
    for (const nlsTocEntry& entry : contents.entries())
        if (isByteMap(entry) && sameName(entry.name1, pair.from) && sameName(entry.name2, pair.to)) return &entry;
    return nullptr;
}

}  // namespace

void moveWeights(WeightMapRef map, ConvTable table) {
    if (table.type() != ConvType::byteMap) return;
    std::array<unsigned char, kWeights> source;
    std::ranges::copy(map, source.begin());
    const unsigned char* const targets = table.byteMap().map;
    for (std::size_t byte = 0; byte < kWeights; ++byte) map[targets[byte]] = source[byte];
}

DerivationSource findDerivation(const Contents& contents, const char* charset, const char* collationName) {
    for (const nlsTocEntry& entry : contents.entries()) {
        if (!isType(entry, format::EntryType::collation) || !sameName(entry.name2, collationName)) continue;
        if (const nlsTocEntry* const map = findByteMap(contents, {entry.name1, charset})) return {&entry, map};
    }
    return {nullptr, nullptr};
}

}  // namespace nls
