// Data files made in memory, for tests: a description of entries becomes the bytes of a convmap.cp, and every field
// of it can be found again and made wrong.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "convmap/file_format.hpp"
#include "nls/records.h"

namespace nls::test {

using Bytes = std::vector<unsigned char>;
using ByteMap = std::array<unsigned char, 256>;
using UnitTable = std::array<uint16_t, 256>;

inline ByteMap identityBytes() {
    ByteMap map;
    for (unsigned c = 0; c < 256; ++c) map[c] = static_cast<unsigned char>(c);
    return map;
}

// Pairs of a Unicode case list: a character and its form.
using CasePairs = std::vector<std::array<uint16_t, 2>>;

// One map of a multi-byte charset with its arrays. The counts and offsets are filled in by the builder.
struct MapSource {
    nlsUcs2Map map = {};
    std::vector<uint16_t> cjisToUcs, rows, cells;
};

// A field of a finished file: a name for messages, its place, and whether it is decimal text.
struct FieldPlace {
    std::string what;
    std::size_t offset;
    std::size_t width;
    bool text;
};

class ConvmapBuilder {
public:
    struct Attributes {
        unsigned char flags = 0;
        ByteMap alpha = {}, length = {}, trail = {};
    };

    ConvmapBuilder& attributes(std::string_view charset, const Attributes& content) {
        Bytes record(format::attributes::kSize);
        putSize(record, 256);
        putBytes(record, format::attributes::kAlphaMap, content.alpha.data(), 256);
        putBytes(record, format::attributes::kLengthMap, content.length.data(), 256);
        putBytes(record, format::attributes::kTrailMap, content.trail.data(), 256);
        return add({charset, "", format::EntryType::attributes, content.flags, 0, record, "attributes"});
    }
    // A conversion without data: its raw byte says all.
    ConvmapBuilder& bare(std::string_view from, std::string_view to, unsigned char code, unsigned subKind = 0) {
        return add({from, to, format::EntryType::conversion, code, subKind, {}, "bare conversion"});
    }
    ConvmapBuilder& byteMap(std::string_view from, std::string_view to, const ByteMap& map, unsigned subKind = 0) {
        return add({from, to, format::EntryType::conversion, 1, subKind, conversionRecord(1, 256, map.data(), 256),
                    "byte map"});
    }
    // A conversion record of any code, with `size` in its size field and the bytes of `slot` in its slot.
    ConvmapBuilder& record(std::string_view from, std::string_view to, unsigned code, uint32_t size, const Bytes& slot,
                           unsigned char rawByte) {
        return add({from, to, format::EntryType::conversion, rawByte, 0,
                    conversionRecord(code, size, slot.data(), slot.size()), "conversion"});
    }
    ConvmapBuilder& units(std::string_view from, std::string_view to, unsigned char code, const UnitTable& table) {
        return add({from, to, format::EntryType::conversion, code, 0,
                    conversionRecord(code, 512, table.data(), sizeof table), "units"});
    }
    ConvmapBuilder& maps(std::string_view from, std::string_view to, unsigned char code,
                         const std::array<MapSource, 3>& sources) {
        Entry entry{from, to, format::EntryType::conversion, code, 0, conversionRecord(code, 0, nullptr, 0), "maps"};
        entry.maps.assign(sources.begin(), sources.end());
        return add(entry);
    }
    ConvmapBuilder& collation(std::string_view charset, std::string_view name, unsigned char kind = 1,
                              const ByteMap& exact = identityBytes(), const ByteMap& fold = identityBytes(),
                              unsigned char subKind = 0) {
        Bytes record(format::collation::kSize);
        putSize(record, 256);
        putBytes(record, format::collation::kExactMap, exact.data(), 256);
        putBytes(record, format::collation::kFoldMap, fold.data(), 256);
        record[format::collation::kKind.offset] = kind;
        record[format::collation::kSubKind.offset] = subKind;
        return add({charset, name, format::EntryType::collation, 0, 0, record, "collation"});
    }
    // By code points, without weights.
    ConvmapBuilder& unicodeCollation(std::string_view charset, std::string_view name) {
        ByteMap mark = {};
        std::memcpy(mark.data(), "BASIC", 6);
        return collation(charset, name, 3, mark, mark);
    }
    ConvmapBuilder& caseTable(std::string_view charset, std::string_view name, const ByteMap& upper = identityBytes(),
                              const ByteMap& lower = identityBytes()) {
        Bytes record(format::byte_case::kSize);
        putSize(record, 256);
        putBytes(record, format::byte_case::kUpperMap, upper.data(), 256);
        putBytes(record, format::byte_case::kLowerMap, lower.data(), 256);
        return add({charset, name, format::EntryType::caseTable, 1, 0, record, "case table"});
    }
    // Lists of up to 744 pairs; the last of so many leaves no room for the pair that ends the list.
    static Bytes unicodeCaseRecord(const CasePairs& upper, const CasePairs& lower) {
        Bytes record(format::unicode_case::kSize);
        putBytes(record, format::unicode_case::kUpperList, upper.data(), upper.size() * 4);
        putBytes(record, format::unicode_case::kLowerList, lower.data(), lower.size() * 4);
        return record;
    }
    ConvmapBuilder& unicodeCase(std::string_view charset, std::string_view name, const CasePairs& upper,
                                const CasePairs& lower) {
        return add({charset, name, format::EntryType::caseTable, format::kUnicodeCase, 0,
                    unicodeCaseRecord(upper, lower), "Unicode case table"});
    }

    ConvmapBuilder& version(uint32_t version) {
        version_ = version;
        return *this;
    }

    std::size_t entryCount() const { return entries_.size(); }

    Bytes build() {
        places_.clear();
        edges_.clear();
        Bytes file(format::header::kSize);
        putHeader(file);
        const std::size_t contents = file.size();
        file.resize(contents + entries_.size() * format::entry::kSize);
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const std::size_t data = appendData(file, entries_[i]);
            putEntry(file, contents + i * format::entry::kSize, entries_[i], data);
        }
        edges_.push_back(file.size());
        return file;
    }
    // Of the file that was built last.
    const std::vector<FieldPlace>& places() const { return places_; }
    const std::vector<std::size_t>& edges() const { return edges_; }

private:
    struct Entry {
        std::string name1, name2;
        format::EntryType type;
        unsigned char rawByte;
        unsigned subKind;
        Bytes record;  // empty: no data
        const char* kind;
        std::vector<MapSource> maps = {};

        Entry(std::string_view n1, std::string_view n2, format::EntryType t, unsigned char raw, unsigned sub,
              Bytes data, const char* what)
            : name1(n1), name2(n2), type(t), rawByte(raw), subKind(sub), record(std::move(data)), kind(what) {}
    };

    ConvmapBuilder& add(const Entry& entry) {
        entries_.push_back(entry);
        return *this;
    }

    static void putBytes(Bytes& record, format::Field field, const void* bytes, std::size_t count) {
        if (count != 0) std::memcpy(record.data() + field.offset, bytes, count);
    }
    static void putSize(Bytes& record, uint32_t size) { format::putDecimal(record, format::kSlotSize, size); }
    static Bytes conversionRecord(unsigned code, uint32_t size, const void* slot, std::size_t slotBytes) {
        Bytes record(format::conversion::kSize);
        putSize(record, size);
        putBytes(record, format::conversion::kTable, slot, slotBytes);
        format::putBigEndian(record, format::conversion::kTypeCode, code);
        return record;
    }

    void note(const std::string& what, std::size_t base, format::Field field, bool text) {
        places_.push_back({what, base + field.offset, field.width, text});
    }

    void putHeader(Bytes& file) {
        namespace h = format::header;
        format::putDecimal(file, h::kMagic, h::kMagicNumber);
        format::putDecimal(file, h::kFirstEntry, h::kSize);
        format::putDecimal(file, h::kVersion, version_);
        format::putDecimal(file, h::kEntryCount, static_cast<uint32_t>(entries_.size()));
        note("magic", 0, h::kMagic, true);
        note("first entry", 0, h::kFirstEntry, true);
        note("version", 0, h::kVersion, true);
        note("entry count", 0, h::kEntryCount, true);
        edges_.push_back(h::kSize);
    }

    void putEntry(Bytes& file, std::size_t base, const Entry& entry, std::size_t data) {
        namespace e = format::entry;
        const ByteSpan record{file.data() + base, e::kSize};
        std::memcpy(record.data(), entry.name1.data(), entry.name1.size());
        std::memcpy(record.data() + e::kName2.offset, entry.name2.data(), entry.name2.size());
        format::putDecimal(record, e::kOffset, static_cast<uint32_t>(data));
        format::putDecimal(record, e::kSubKind, entry.subKind);
        record[e::kRawByte.offset] = entry.rawByte;
        format::putDecimal(record, e::kType, static_cast<uint32_t>(entry.type));
        const std::string what = entry.name1 + ">" + entry.name2 + " " + entry.kind + " entry ";
        note(what + "name1", base, e::kName1, false);
        note(what + "name2", base, e::kName2, false);
        note(what + "offset", base, e::kOffset, true);
        note(what + "subKind", base, e::kSubKind, true);
        note(what + "rawByte", base, e::kRawByte, false);
        note(what + "type", base, e::kType, true);
        edges_.push_back(base + e::kSize);
    }

    // The place of the data; 0 for none.
    std::size_t appendData(Bytes& file, const Entry& entry) {
        if (entry.record.empty()) return 0;
        const std::size_t base = file.size();
        file.insert(file.end(), entry.record.begin(), entry.record.end());
        for (std::size_t i = 0; i < entry.maps.size(); ++i) appendMap(file, base, i, entry.maps[i]);
        const std::string what = entry.name1 + ">" + entry.name2 + " " + entry.kind + " record ";
        note(what + "size", base, format::kSlotSize, true);
        if (entry.type == format::EntryType::conversion) {
            note(what + "type code", base, format::conversion::kTypeCode, false);
            if (entry.maps.empty()) note(what + "table", base, format::conversion::kTable, false);
        } else if (entry.type == format::EntryType::collation) {
            note(what + "exact map", base, format::collation::kExactMap, false);
            note(what + "fold map", base, format::collation::kFoldMap, false);
            note(what + "kind", base, format::collation::kKind, false);
            note(what + "second kind", base, format::collation::kSubKind, false);
        } else if (entry.type == format::EntryType::caseTable && entry.rawByte == format::kUnicodeCase) {
            note(what + "upper list", base, format::unicode_case::kUpperList, false);
            note(what + "lower list", base, format::unicode_case::kLowerList, false);
        } else if (entry.type == format::EntryType::caseTable) {
            note(what + "upper map", base, format::byte_case::kUpperMap, false);
            note(what + "lower map", base, format::byte_case::kLowerMap, false);
        }
        edges_.push_back(file.size());
        return base;
    }

    void appendMap(Bytes& file, std::size_t base, std::size_t index, const MapSource& source) {
        nlsUcs2Map map = source.map;
        map.cjisCount = static_cast<uint16_t>(source.cjisToUcs.size());
        map.ucsRowCount = static_cast<uint16_t>(source.rows.size());
        map.ucsCellCount = static_cast<uint16_t>(source.cells.size());
        map.cjisOffset = appendArray(file, source.cjisToUcs);
        map.rowsOffset = appendArray(file, source.rows);
        map.cellsOffset = appendArray(file, source.cells);
        const std::size_t place = base + format::ucs2::kMaps.offset + index * format::ucs2::kMapSize;
        std::memcpy(file.data() + place, &map, sizeof map);
        for (uint32_t word = 0; word < sizeof map; word += 2)
            note("map " + std::to_string(index) + " byte " + std::to_string(word), place, {word, 2}, false);
    }
    uint32_t appendArray(Bytes& file, const std::vector<uint16_t>& words) {
        if (words.empty()) return 0;
        const std::size_t base = file.size();
        file.resize(base + format::ucs2::kArrayPrefix + words.size() * 2, 0xEE);
        std::memcpy(file.data() + base + format::ucs2::kArrayPrefix, words.data(), words.size() * 2);
        edges_.push_back(file.size());
        return static_cast<uint32_t>(base);
    }

    std::vector<Entry> entries_;
    uint32_t version_ = format::header::kNewestVersion;
    std::vector<FieldPlace> places_;
    std::vector<std::size_t> edges_;
};

// --- charsets of the small world

// ASCII, and the byte plus `upper` from 0x80 on.
inline UnitTable upperHalfAt(uint16_t upper) {
    UnitTable units;
    for (unsigned c = 0; c < 256; ++c) units[c] = static_cast<uint16_t>(c < 0x80 ? c : upper + c - 0x80);
    return units;
}
inline ConvmapBuilder::Attributes singleByte() {
    return {NLS_CHARSET_SINGLE_BYTE, {}, {}, {}};
}
inline ConvmapBuilder::Attributes doubleByte(int flags) {
    ConvmapBuilder::Attributes attributes;
    attributes.flags = static_cast<unsigned char>(flags);
    for (unsigned c = 0x81; c < 0xFD; ++c) attributes.length[c] = 1;
    for (unsigned c = 0x40; c < 0xFD; ++c) attributes.trail[c] = 1;
    return attributes;
}
inline ConvmapBuilder::Attributes utf8() {
    ConvmapBuilder::Attributes attributes;
    attributes.flags = NLS_CHARSET_UTF8 | NLS_CHARSET_MULTI_BYTE;
    for (unsigned c = 0xC0; c < 0xF8; ++c) attributes.length[c] = c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
    return attributes;
}

// A grid of leads 81 to 83 and trails 40 to 7E, with U+4E00 and on in the first cells, and a way back of one row of
// direct cells; the third map is absent.
inline std::array<MapSource, 3> smallMaps() {
    std::array<MapSource, 3> maps;
    MapSource& first = maps[0];
    nlsUcs2Map& map = first.map;
    map.sjisZero = 0xFFFF;
    map.gapAfter = 0xFFFF;
    map.leadFirst1 = 0x81;
    map.leadLast1 = 0x83;
    map.leadFirst2 = 0xFF;
    map.trailFirst1 = 0x40;
    map.trailLast1 = 0x7E;
    map.trailFirst2 = 0xFF;
    map.trailFirst3 = map.trailLast3 = 0x7E;
    map.trailsPerRow = 63;
    map.ucsMin = 0x4E00;
    map.ucsMax = 0x4E00 + 99;
    map.substChar = '?';
    first.cjisToUcs.push_back(0xFFFF);
    for (uint16_t i = 0; i < 100; ++i) first.cjisToUcs.push_back(static_cast<uint16_t>(0x4E00 + i));
    for (uint16_t i = 0; i < 100; ++i) {
        first.rows.push_back(i);
        first.cells.push_back(static_cast<uint16_t>(i + 1));
    }
    maps[1].map = map;
    maps[1].map.ucsMin = 1;
    maps[1].map.ucsMax = 0;
    return maps;
}

// One charset of each kind, one conversion of each way to be built, an entry of each type.
inline ConvmapBuilder smallWorld() {
    ConvmapBuilder builder;
    const ConvmapBuilder::Attributes units = {NLS_CHARSET_UNITS16 | NLS_CHARSET_MULTI_BYTE, {}, {}, {}};
    builder.attributes("UTF-8", utf8()).attributes("UTF-16", units).attributes("UTF-16BE", units);
    builder.attributes("LATIN", singleByte()).attributes("CYRILLIC", singleByte());
    builder.attributes("SHIFT-JIS", doubleByte(NLS_CHARSET_MULTI_BYTE));
    builder.attributes("EUCJIS", doubleByte(NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_VIA_SJIS));
    builder.units("LATIN", "UTF-8", 51, upperHalfAt(0x80)).bare("UTF-8", "LATIN", 20);
    builder.bare("UTF-8", "CYRILLIC", 20).units("CYRILLIC", "UTF-8", 19, upperHalfAt(0x2400));
    builder.maps("SHIFT-JIS", "UTF-8", 17, smallMaps()).bare("UTF-8", "SHIFT-JIS", 18);
    builder.bare("SHIFT-JIS", "EUCJIS", 3).bare("EUCJIS", "SHIFT-JIS", 4);
    builder.bare("UTF-16", "UTF-8", 23).bare("UTF-8", "UTF-16", 24);
    builder.record("UTF-16BE", "UTF-8", 144, 0, {}, 0).bare("UTF-8", "UTF-16BE", 145);
    builder.bare("SHIFT-JIS", "UTF-16", 29).bare("UTF-16", "SHIFT-JIS", 30);
    builder.byteMap("LATIN", "CYRILLIC", identityBytes(), 1).byteMap("CYRILLIC", "LATIN", identityBytes());
    builder.collation("LATIN", "basic").caseTable("LATIN", "basic");
    builder.unicodeCollation("UTF-8", "basic").collation("LATIN", "thai", 4).collation("LATIN", "site", 2);
    builder.collation("SHIFT-JIS", "basic").collation("EUCJIS", "basic").caseTable("EUCJIS", "basic");
    builder.unicodeCase("UTF-8", "basic", {{'a', 'A'}, {0xE9, 0xC9}, {0x1E01, 0x1E00}, {0xFF41, 0xFF21}},
                        {{'A', 'a'}, {0xC9, 0xE9}, {0x1E00, 0x1E01}, {0xFF21, 0xFF41}});
    return builder;
}

}  // namespace nls::test
