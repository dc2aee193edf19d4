#include "tools/mkconvmap/ucs2_reader.hpp"

#include <stdexcept>

namespace nls::mkconvmap {

namespace {

uint16_t entry(const std::vector<uint16_t>& array, std::size_t index, const char* name) {
    if (index >= array.size()) throw std::out_of_range(std::string{"a walk leaves "} + name);
    return array[index];
}

bool isPresent(unsigned first, unsigned last) {
    return last >= first;
}

bool leadIsRefused(const nlsUcs2Map& map, unsigned lead) {
    if (lead < map.leadFirst1) return true;
    if (lead > map.leadLast1 && lead < map.leadFirst2) return true;
    return lead > map.leadLast2 && isPresent(map.leadFirst2, map.leadLast2);
}

bool trailIsRefused(const nlsUcs2Map& map, unsigned trail) {
    if (trail < map.trailFirst1) return true;
    if (trail > map.trailLast1 && trail < map.trailFirst2) return true;
    if (trail > map.trailLast2 && isPresent(map.trailFirst2, map.trailLast2) && trail < map.trailFirst3) return true;
    return trail > map.trailLast3 && isPresent(map.trailFirst3, map.trailLast3);
}

bool hasTriples(const nlsUcs2Map& map) {
    return map.ranges[0].rangeEnd != 0;
}

const PackedMap& mapOf(const PackedMaps& maps, MapName name) {
    return maps[static_cast<std::size_t>(name)];
}

bool isPresent(const PackedMap& third) {
    return third.record.cjisCount != 0;
}

uint32_t codePointIn(const PackedMap& map, uint32_t code) {
    const uint32_t cjis = cjisOfCode(map.record, code);
    return cjis == kMiss ? kMiss : codePointOfCjis(map, cjis);
}

}  // namespace

uint32_t cjisOfCode(const nlsUcs2Map& map, uint32_t code) {
    if (code == map.sjisZero) return 0;
    unsigned lead = code >> 8 & 0xFF, trail = code & 0xFF;
    if (leadIsRefused(map, lead) || trailIsRefused(map, trail)) return kMiss;
    if (lead > map.leadLast1) lead = (lead - map.leadGap) & 0xFF;
    if (trail > map.trailLast2 && isPresent(map.trailFirst2, map.trailLast2)) {
        trail = (trail - map.trailGap3) & 0xFF;
    } else if (trail > map.trailLast1) {
        trail = (trail - map.trailGap2) & 0xFF;
    }
    const unsigned row = (lead - map.leadFirst1) & 0xFF, column = (trail - map.trailFirst1) & 0xFF;
    uint32_t cjis = (1U - map.cjisBase + row * map.trailsPerRow + column) & 0xFFFF;
    if (cjis > map.gapAfter) cjis = (cjis - map.gapSize) & 0xFFFF;
    return cjis;
}

uint32_t codeOfCjis(const nlsUcs2Map& map, uint32_t cjis) {
    if (cjis == 0) return map.sjisZero;
    if (cjis > map.gapAfter) cjis = (cjis + map.gapSize) & 0xFFFF;
    const uint32_t n = (map.cjisBase - 1U + cjis) & 0xFFFF;
    const uint32_t row = n / map.trailsPerRow;
    uint32_t trail = (map.trailFirst1 + n - row * map.trailsPerRow) & 0xFF;
    if (trail > map.trailLast2 && isPresent(map.trailFirst2, map.trailLast2)) {
        trail = (trail + map.trailGap3) & 0xFF;
    } else if (trail > map.trailLast1) {
        trail = (trail + map.trailGap2) & 0xFF;
    }
    uint32_t lead = (row + map.leadFirst1) & 0xFF;
    if (lead > map.leadLast1) lead = (lead + map.leadGap) & 0xFF;
    return lead << 8 | trail;
}

uint32_t codePointOfCjis(const PackedMap& map, uint32_t cjis) {
    if (cjis >= map.record.cjisCount) return kMiss;
    const uint32_t value = entry(map.cjisToUcs, cjis, "cjisToUcs");
    if (map.record.rangesOnCjis == 0) return value;
    for (const nlsUcs2Range& range : map.record.ranges) {
        if (range.rangeEnd == 0) break;
        if (value + range.rangeDelta <= range.rangeEnd) return value + range.rangeDelta;
    }
    return value;
}

uint32_t cjisOfCodePoint(const PackedMap& map, uint32_t codePoint) {
    const nlsUcs2Map& record = map.record;
    if (hasTriples(record)) {
        const nlsUcs2Range* taken = nullptr;
        for (const nlsUcs2Range& range : record.ranges) {
            if (range.rangeEnd == 0) break;
            if (taken == nullptr && range.rangeStart <= codePoint && codePoint <= range.rangeEnd) taken = &range;
        }
        if (taken == nullptr) return kMiss;
        codePoint -= taken->rangeDelta;
    }
    if (codePoint < record.ucsMin || codePoint > record.ucsMax) return kMiss;
    const uint32_t offset = codePoint - record.ucsMin;
    auto column = static_cast<int16_t>(offset & record.colMask);
    std::size_t cell = entry(map.ucsRows, offset >> record.rowShift, "ucsRows");
    while (column > 0) {
        unsigned skip = entry(map.ucsCells, cell++, "ucsCells") & record.skipMask;
        if (skip == 0) skip = entry(map.ucsCells, cell++, "ucsCells");
        column = static_cast<int16_t>(column - static_cast<int>(skip));
    }
    if (column != 0) return kMiss;
    return static_cast<uint32_t>(entry(map.ucsCells, cell, "ucsCells") >> record.valueShift);
}

uint32_t cjisOfCodePointDirect(const PackedMap& map, uint32_t codePoint) {
    codePoint &= 0xFFFF;
    if (codePoint < map.record.ucsMin || codePoint > map.record.ucsMax) return kMiss;
    return entry(map.ucsCells, codePoint - map.record.ucsMin, "ucsCells");
}

uint32_t codePointOf(const PackedMaps& maps, uint32_t code) {
    for (const MapName name : kSearchOrder) {
        const PackedMap& map = mapOf(maps, name);
        if (name == MapName::third && !isPresent(map)) continue;
        if (const uint32_t codePoint = codePointIn(map, code); codePoint != kMiss) return codePoint;
    }
    return kMiss;
}

uint32_t codeOf(const PackedMaps& maps, uint32_t codePoint) {
    for (const MapName name : kSearchOrder) {
        const PackedMap& map = mapOf(maps, name);
        const bool isDirect = name == MapName::third;
        if (isDirect && (!isPresent(map) || codePoint > 0xFFFF)) continue;
        const uint32_t cjis = isDirect ? cjisOfCodePointDirect(map, codePoint) : cjisOfCodePoint(map, codePoint);
        const uint32_t code = cjis == kMiss ? kMiss : codeOfCjis(map.record, cjis);
        if (code != kMiss) return code;
    }
    return kMiss;
}

namespace {

std::string firstDifference(const PackedMaps& maps, const CodeMapping& mapping) {
    const auto text = [](const std::string& from, uint32_t have, uint32_t want) {
        return from + " reads as " + hexText(have, 4) + ", but is " + hexText(want, 4);
    };
    for (uint32_t code = 1; code <= 0xFFFF; ++code) {
        const auto found = mapping.forth.find(static_cast<Code>(code));
        const uint32_t want = found == mapping.forth.end() ? kMiss : found->second;
        if (const uint32_t have = codePointOf(maps, code); have != want) return text(hexText(code, 4), have, want);
    }
    for (uint32_t codePoint = 0; codePoint < 0x30000; ++codePoint) {
        const auto found = mapping.back.find(codePoint);
        const uint32_t want = found == mapping.back.end() ? kMiss : found->second;
        if (const uint32_t have = codeOf(maps, codePoint); have != want) {
            return text(codePointText(codePoint), have, want);
        }
    }
    return {};
}

}  // namespace

std::string differenceOf(const PackedMaps& maps, const CodeMapping& mapping) {
    try {
        return firstDifference(maps, mapping);
    } catch (const std::out_of_range& walk) {
        return walk.what();
    }
}

}  // namespace nls::mkconvmap
