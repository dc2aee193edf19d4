#include "tools/mkconvmap/multi_byte.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "convmap/file_format.hpp"
#include "tools/mkconvmap/ucs2_pack.hpp"
#include "tools/mkconvmap/ucs2_reader.hpp"

namespace nls::mkconvmap {

namespace {

// Four-byte forms of UTF-8 need the type that promises them.
ConvType typeToUtf8(const CodeMapping& mapping) {
    const bool isLong = std::any_of(mapping.forth.begin(), mapping.forth.end(),
                                    [](const auto& entry) { return entry.second > 0xFFFF; });
    return isLong ? ConvType::dbcsToUtf8Long : ConvType::dbcsToUtf8;
}

// With a substitute of two bytes a stray byte of broken UTF-8 grows, and the short type would promise that none does.
ConvType typeFromUtf8(uint16_t substChar) {
    return substChar > 0xFF ? ConvType::utf8ToDbcs : ConvType::utf8ToDbcsShort;
}

void addArray(DataRecord& record, std::size_t offsetAt, const std::vector<uint16_t>& words) {
    if (!words.empty()) record.arrays.push_back({offsetAt, words});
}

DataRecord recordOf(const PackedMaps& maps, ConvType type) {
    DataRecord record;
    record.bytes.resize(format::conversion::kSize);
    format::putDecimal(record.bytes, format::kSlotSize, format::endOf(format::ucs2::kMaps));
    format::putBigEndian(record.bytes, format::conversion::kTypeCode, static_cast<unsigned>(type));
    for (std::size_t at = 0; at < maps.size(); ++at) {
        const std::size_t start = format::ucs2::kMaps.offset + at * format::ucs2::kMapSize;
        static_assert(sizeof(nlsUcs2Map) == format::ucs2::kMapSize);
        std::memcpy(record.bytes.data() + start, &maps[at].record, sizeof(nlsUcs2Map));
        addArray(record, start + offsetof(nlsUcs2Map, cjisOffset), maps[at].cjisToUcs);
        addArray(record, start + offsetof(nlsUcs2Map, rowsOffset), maps[at].ucsRows);
        addArray(record, start + offsetof(nlsUcs2Map, cellsOffset), maps[at].ucsCells);
    }
    return record;
}

// The mapping with what the library knows of itself: ASCII where no map holds it, and the euro of CP936.
void fillInMapping(MultiByteTables& tables, const CharsetSource& charset, const CodeMapping& mapping) {
    tables.toUnicode.insert(mapping.forth.begin(), mapping.forth.end());
    tables.fromUnicode.insert(mapping.back.begin(), mapping.back.end());
    for (uint16_t ascii = 0; ascii < 0x80; ++ascii) {
        tables.toUnicode.emplace(ascii, ascii);
        tables.fromUnicode.emplace(ascii, ascii);
    }
    if (isCp936(charset)) {
        tables.toUnicode.emplace(kCp936EuroCode, kEuro);
        tables.fromUnicode.emplace(kEuro, kCp936EuroCode);
    }
}

}  // namespace

MultiByteTables packMultiByte(const CharsetSource& charset) {
    const Ucs2Source source = readUcs2Source(charset);
    const CodeMapping mapping = readMapping(charset, source);
    const PackedMaps maps = packMaps(source, mapping);
    if (const std::string difference = differenceOf(maps, mapping); !difference.empty()) {
        fail(charset.place, "the finished maps don't read back: " + difference);
    }
    MultiByteTables tables;
    tables.toUtf8 = typeToUtf8(mapping);
    tables.fromUtf8 = typeFromUtf8(source.substChar);
    tables.record = recordOf(maps, tables.toUtf8);
    tables.substChar = source.substChar;
    fillInMapping(tables, charset, mapping);
    return tables;
}

}  // namespace nls::mkconvmap
