#include "tools/nls/convmap_text.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "convmap/type_codes.hpp"
#include "tools/nls/failure.hpp"
#include "tools/nls/hex_text.hpp"
#include "tools/nls/type_names.hpp"

namespace nls::tool {
namespace {

constexpr unsigned withoutOrderBits = 0xF87F;

// A name field up to its NUL, with what is no plain ASCII written as \xHH.
std::string nameOf(ByteView field) {
    std::string name;
    for (const unsigned char byte : field) {
        if (byte == 0) break;
        name += byte > 0x20 && byte < 0x7F ? std::string(1, static_cast<char>(byte))
                                           : formatted("\\x%02X", static_cast<unsigned>(byte));
    }
    return name;
}

std::string kindName(unsigned type) {
    switch (type) {
        case 1:
            return "conversion";
        case 2:
            return "attributes";
        case 3:
            return "case table";
        case 4:
            return "collation";
        default:
            return "entry of type " + std::to_string(type);
    }
}

std::string flagNames(unsigned flags) {
    constexpr struct {
        unsigned bit;
        const char* name;
    } names[] = {{NLS_CHARSET_SINGLE_BYTE, "single-byte"},
                 {NLS_CHARSET_MULTI_BYTE, "multi-byte"},
                 {NLS_CHARSET_VIA_SJIS, "compares through Shift-JIS"},
                 {NLS_CHARSET_UTF8, "UTF-8"},
                 {NLS_CHARSET_UNITS16, "16-bit units"},
                 {NLS_CHARSET_UNITS32, "32-bit units"}};
    std::string text;
    for (const auto& row : names) {
        if ((flags & row.bit) != 0) text += (text.empty() ? "" : ", ") + std::string(row.name);
    }
    return text.empty() ? "none" : text;
}

std::string orderBits(unsigned word) {
    std::string text;
    if ((word & 0x080U) != 0) text += ", source swapped";
    if ((word & 0x100U) != 0) text += ", source in this order";
    if ((word & 0x200U) != 0) text += ", target swapped";
    if ((word & 0x400U) != 0) text += ", target in this order";
    return text;
}

std::string typeText(unsigned code) {
    if (!isTypeCode(code)) return formatted("type code %u, which is none\n", code);
    const unsigned word = typeWordOfCode(code);
    const unsigned type = word & withoutOrderBits;
    std::string text = formatted("    type %u, ", type) + typeName(static_cast<int>(type));
    if (code != word) text += formatted(" (code %u, word 0x%03X%s)", code, word, orderBits(word).c_str());
    return text + "\n";
}

std::string line(const char* label, const std::string& value) {
    return value.empty() ? "" : formatted("    %-13s", label) + value + "\n";
}

// The used part of a slot: what the size field says, but at most `most` bytes.
ByteView slot(ByteView record, format::Field field, uint32_t most) {
    const int32_t size = format::decimalOf(record, format::kSlotSize);
    const auto used = static_cast<uint32_t>(std::clamp<int32_t>(size, 0, static_cast<int32_t>(most)));
    return record.subspan(field.offset, used);
}

uint32_t recordSize(const DumpEntry& entry) {
    switch (entry.type) {
        case 1:
            return format::conversion::kSize;
        case 2:
            return format::attributes::kSize;
        case 3:
            return entry.rawByte == format::kUnicodeCase ? format::unicode_case::kSize : format::byte_case::kSize;
        case 4:
            return format::collation::kSize;
        default:
            return 0;
    }
}

bool holdsMaps(unsigned type) {
    return type == 17 || type == 81 || type == 89;
}

std::string casePairs(const char* label, ByteView list) {
    std::string text = formatted("    %s\n", label);
    std::size_t count = 0;
    for (; count * 4 + 4 <= list.size(); ++count) {
        const unsigned from = loadWord<uint16_t>(list.data() + count * 4);
        if (from == 0) break;
        if (count % 8 == 0) text += count == 0 ? "     " : "\n     ";
        text += formatted(" %04X>%04X", from, static_cast<unsigned>(loadWord<uint16_t>(list.data() + count * 4 + 2)));
    }
    return text + formatted("%s      %zu pairs\n", count == 0 ? "" : "\n", count);
}

}  // namespace

ConvmapText::ConvmapText(const std::string& path, bool wholeArrays) : file_(path), wholeArrays_(wholeArrays) {
    struct stat status {};
    if (fstat(file_.descriptor(), &status) == 0) fileSize_ = static_cast<uint64_t>(status.st_size);
    const std::optional<Bytes> head = read(0, format::header::kSize);
    if (head) {
        header_ = {
            format::decimalOf(*head, format::header::kMagic), format::decimalOf(*head, format::header::kFirstEntry),
            format::decimalOf(*head, format::header::kVersion), format::decimalOf(*head, format::header::kEntryCount)};
    }
    if (!head || header_.magic != format::header::kMagicNumber) {
        throw Failure(Exit::fileTrouble, path + " is no data file of nls");
    }
    for (int32_t i = 0; i < header_.count; ++i) {
        const uint64_t place =
            static_cast<uint64_t>(std::max(header_.contents, 0)) + static_cast<uint64_t>(i) * format::entry::kSize;
        const std::optional<Bytes> entry = read(place, format::entry::kSize);
        if (!entry) {
            throw Failure(Exit::fileTrouble, path + " ends inside entry " + std::to_string(i + 1) + " of its contents");
        }
        entries_.push_back({nameOf(format::bytesOf(*entry, format::entry::kName1)),
                            nameOf(format::bytesOf(*entry, format::entry::kName2)),
                            static_cast<uint32_t>(format::decimalOf(*entry, format::entry::kOffset)),
                            static_cast<unsigned>(format::decimalOf(*entry, format::entry::kSubKind)),
                            format::byteOf(*entry, format::entry::kRawByte),
                            static_cast<unsigned>(format::decimalOf(*entry, format::entry::kType))});
    }
}

std::optional<ConvmapText::Bytes> ConvmapText::read(uint64_t offset, uint64_t length) const {
    if (offset > UINT32_MAX || length > UINT32_MAX) return std::nullopt;
    Bytes bytes(length);
    const uint32_t got = nlsToolRead(static_cast<uint32_t>(file_.descriptor()), static_cast<uint32_t>(offset),
                                     bytes.data(), static_cast<uint32_t>(length));
    if (got != length) return std::nullopt;
    return bytes;
}

std::string ConvmapText::title(const DumpEntry& entry) {
    std::string text = kindName(entry.type) + " " + entry.name1;
    if (!entry.name2.empty()) text += (entry.type == 1 ? " to " : " ") + entry.name2;
    if (entry.offset != 0) text += formatted(", at %u", entry.offset);
    text += formatted(", raw byte %u", entry.rawByte);
    if (entry.type == 2) text += " (" + flagNames(entry.rawByte) + ")";
    if (entry.subKind != 0) text += formatted(", sub-kind %u", entry.subKind);
    return text;
}

std::string ConvmapText::record(const DumpEntry& entry) const {
    const uint32_t size = recordSize(entry);
    if (size == 0) return "    nothing reads it\n";
    if (entry.offset == 0) return entry.type == 1 ? typeText(entry.rawByte) : "    lacks its record\n";
    const std::optional<Bytes> record = read(entry.offset, size);
    if (!record) return "    the file ends inside the record\n";
    switch (entry.type) {
        case 1:
            return conversion(entry, *record);
        case 2:
            return attributes(*record);
        case 3:
            return caseTable(entry, *record);
        default:
            return collation(*record);
    }
}

std::string ConvmapText::attributes(ByteView record) const {
    const ByteView alpha = slot(record, format::attributes::kAlphaMap, format::kMapEntries);
    const ByteView lengths = slot(record, format::attributes::kLengthMap, format::kMapEntries);
    const ByteView trails = slot(record, format::attributes::kTrailMap, format::kMapEntries);
    std::string text = line("map size", std::to_string(alpha.size()));
    text += line("letters", byteRanges([&](unsigned byte) { return byte < alpha.size() && alpha[byte] != 0; }));
    for (unsigned count = 1; count <= 7; ++count) {
        const std::string label = "first of " + std::to_string(count + 1);
        text += line(label.c_str(),
                     byteRanges([&](unsigned byte) { return byte < lengths.size() && (lengths[byte] & 7U) == count; }));
    }
    text += line("one column",
                 byteRanges([&](unsigned byte) { return byte < lengths.size() && (lengths[byte] & 8U) != 0; }));
    return text +
           line("trail bytes", byteRanges([&](unsigned byte) { return byte < trails.size() && trails[byte] != 0; }));
}

std::string ConvmapText::conversion(const DumpEntry& entry, ByteView record) const {
    const unsigned code = format::bigEndianOf(record, format::conversion::kTypeCode);
    const unsigned type = isTypeCode(code) ? typeWordOfCode(code) & withoutOrderBits : 0;
    const std::string text = typeText(code);
    if (holdsMaps(type)) return text + maps(entry.offset);
    const ByteView table = slot(record, format::conversion::kTable, format::kSlotWidth);
    if (type == 19 || type == 51) return text + wordRows(format::bytesOf(record, format::conversion::kTable));
    return text + byteRows(table);
}

std::string ConvmapText::maps(uint32_t offset) const {
    const std::optional<Bytes> record = read(offset, format::ucs2::kSize);
    if (!record) return "    the file ends inside the maps\n";
    std::string text;
    for (uint32_t i = 0; i < format::ucs2::kMapCount; ++i) {
        nlsUcs2Map one;
        std::memcpy(&one, record->data() + format::ucs2::kMaps.offset + i * format::ucs2::kMapSize, sizeof one);
        text += formatted("    map %u\n", i + 1) + map(one);
    }
    return text;
}

std::string ConvmapText::map(const nlsUcs2Map& map) const {
    std::string text = formatted("      lead bytes %02X-%02X %02X-%02X, gap 0x%02X\n", map.leadFirst1, map.leadLast1,
                                 map.leadFirst2, map.leadLast2, map.leadGap);
    text += formatted("      trail bytes %02X-%02X %02X-%02X %02X-%02X, gaps 0x%02X 0x%02X, %u in a row\n",
                      map.trailFirst1, map.trailLast1, map.trailFirst2, map.trailLast2, map.trailFirst3, map.trailLast3,
                      map.trailGap2, map.trailGap3, map.trailsPerRow);
    text += formatted("      zero code %04X, base %u, gap of %u after %u, substitute %04X\n", map.sjisZero,
                      map.cjisBase, map.gapSize, map.gapAfter, map.substChar);
    text += formatted("      way back U+%04X-%04X, row shift %u, column mask %04X, value shift %u, skip mask %04X\n",
                      map.ucsMin, map.ucsMax, map.rowShift, map.colMask, map.valueShift, map.skipMask);
    for (const nlsUcs2Range& range : map.ranges) {
        if (range.rangeEnd == 0) break;
        text += formatted("      range %X-%X, delta %X%s\n", range.rangeStart, range.rangeEnd, range.rangeDelta,
                          map.rangesOnCjis != 0 ? ", both ways" : "");
    }
    text += array("to Unicode", map.cjisOffset, map.cjisCount);
    text += array("rows", map.rowsOffset, map.ucsRowCount);
    return text + array("cells", map.cellsOffset, map.ucsCellCount);
}

std::string ConvmapText::array(const char* name, uint32_t offset, unsigned count) const {
    if (count == 0) return "";
    std::string text = formatted("      array %s: %u words at %u\n", name, count, offset);
    const std::optional<Bytes> words = read(uint64_t{offset} + format::ucs2::kArrayPrefix, uint64_t{count} * 2);
    if (!words) return text + "      the file ends inside the array\n";
    return wholeArrays_ ? text + wordRows(*words) : text;
}

std::string ConvmapText::collation(ByteView record) const {
    return formatted("    kind %u, sub-kind %u\n    exact weights\n",
                     static_cast<unsigned>(format::byteOf(record, format::collation::kKind)),
                     static_cast<unsigned>(format::byteOf(record, format::collation::kSubKind))) +
           byteRows(slot(record, format::collation::kExactMap, format::kMapEntries)) + "    folded weights\n" +
           byteRows(slot(record, format::collation::kFoldMap, format::kMapEntries));
}

std::string ConvmapText::caseTable(const DumpEntry& entry, ByteView record) const {
    if (entry.rawByte == format::kUnicodeCase) {
        return casePairs("upper-case pairs", format::bytesOf(record, format::unicode_case::kUpperList)) +
               casePairs("lower-case pairs", format::bytesOf(record, format::unicode_case::kLowerList));
    }
    return "    upper case\n" + byteRows(slot(record, format::byte_case::kUpperMap, format::kMapEntries)) +
           "    lower case\n" + byteRows(slot(record, format::byte_case::kLowerMap, format::kMapEntries));
}

}  // namespace nls::tool
