#include "convmap/two_step_route.hpp"

#include <array>

#include "core/base/names.hpp"

namespace nls {

namespace {

using format::EntryType;

constexpr std::array<const char*, 4> kUnicodePrefixes = {"UTF-8", "UCS2", "UTF-16", "UTF-32"};

enum class SearchFrom { nowhere, source, target };

SearchFrom sideToSearchFrom(NamePair pair) {
    for (const char* const prefix : kUnicodePrefixes) {
        if (beginsWith(pair.from, prefix)) return SearchFrom::source;
        if (beginsWith(pair.to, prefix)) return SearchFrom::target;
    }
    return SearchFrom::nowhere;
}

bool isConversionFrom(const nlsTocEntry& entry, const char* from) {
    return isType(entry, EntryType::conversion) && sameName(entry.name1, from);
}

bool isConversionTo(const nlsTocEntry& entry, const char* to) {
    return isType(entry, EntryType::conversion) && sameName(entry.name2, to);
}

// The second step, if any, is the first entry from the middle to the target, and a later one can't do better.
TwoStepRoute searchFromSource(const Contents& contents, NamePair pair) {
    for (const nlsTocEntry& first : contents.entries()) {
        if (!isConversionFrom(first, pair.from)) continue;
        if (const nlsTocEntry* const second = contents.find({first.name2, pair.to})) return {&first, second};
    }
    return {};
}

TwoStepRoute searchFromTarget(const Contents& contents, NamePair pair) {
    for (const nlsTocEntry& second : contents.entries()) {
        if (!isConversionTo(second, pair.to)) continue;
        if (const nlsTocEntry* const first = contents.find({pair.from, second.name1})) return {first, &second};
    }
    return {};
}

}  // namespace

TwoStepRoute findTwoStepRoute(const Contents& contents, NamePair pair) {
    switch (sideToSearchFrom(pair)) {
        case SearchFrom::source:
            return searchFromSource(contents, pair);
        case SearchFrom::target:
            return searchFromTarget(contents, pair);
        case SearchFrom::nowhere:
            break;
    }
    return {};
}

}  // namespace nls
