#include "tools/mkconvmap/conv_writer.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

#include "convmap/conv_table.hpp"
#include "convmap/file_format.hpp"
#include "convmap/type_codes.hpp"

namespace nls::mkconvmap {

namespace {

using Pair = std::array<ConversionEntry, 2>;

uint8_t plainCode(ConvType type) {
    return static_cast<uint8_t>(type);
}

ConversionEntry bare(ConvType type) {
    return {plainCode(type), 0, std::nullopt};
}

// Order bits of a side whose charset names its order. The host is little-endian: the other order is the swapped one.
uint16_t sourceBits(UnitOrder order) {
    constexpr uint16_t notSwapped = 0x100;
    if (order == UnitOrder::host) return 0;
    return order == UnitOrder::little ? notSwapped : uint16_t{ConvTable::kSwapSource};
}
uint16_t targetBits(UnitOrder order) {
    constexpr uint16_t notSwapped = 0x400;
    if (order == UnitOrder::host) return 0;
    return order == UnitOrder::little ? notSwapped : uint16_t{ConvTable::kSwapTarget};
}

// The file's code for a type with the orders of its two sides.
ConversionEntry ordered(const Place& place, ConvType type, UnitOrder source, UnitOrder target) {
    const auto word = static_cast<unsigned>(type) | sourceBits(source) | targetBits(target);
    for (unsigned code = 0; code <= kLastMappedTypeCode; ++code) {
        if (isTypeCode(code) && typeWordOfCode(code) == word) return {static_cast<uint8_t>(code), 0, std::nullopt};
    }
    fail(place, "the format has no code for type " + std::to_string(plainCode(type)) + " in these byte orders");
}

// A conversion record whose slot holds `table`.
template <typename Table>
DataRecord conversionRecord(ConvType type, const Table& table) {
    static_assert(sizeof table <= format::kSlotWidth);
    DataRecord record;
    record.bytes.resize(format::conversion::kSize);
    format::putDecimal(record.bytes, format::kSlotSize, sizeof table);
    std::memcpy(record.bytes.data() + format::conversion::kTable.offset, table.data(), sizeof table);
    format::putBigEndian(record.bytes, format::conversion::kTypeCode, plainCode(type));
    return record;
}

std::optional<ConvType> unicodeType(CharsetKind from, CharsetKind to) {
    using Kind = CharsetKind;
    static const std::map<std::pair<Kind, Kind>, ConvType> types{
        {{Kind::ucs2, Kind::utf8}, ConvType::ucs2ToUtf8},    {{Kind::utf8, Kind::ucs2}, ConvType::utf8ToUcs2},
        {{Kind::utf16, Kind::utf8}, ConvType::utf16ToUtf8},  {{Kind::utf8, Kind::utf16}, ConvType::utf8ToUtf16},
        {{Kind::utf32, Kind::utf8}, ConvType::ucs4ToUtf8},   {{Kind::utf8, Kind::utf32}, ConvType::utf8ToUcs4},
        {{Kind::utf16, Kind::utf32}, ConvType::utf16ToUcs4}, {{Kind::utf32, Kind::utf16}, ConvType::ucs4ToUtf16},
    };
    const auto found = types.find({from, to});
    return found == types.end() ? std::nullopt : std::optional{found->second};
}

// From one form of Unicode to another.
ConversionEntry unicodeEntry(const Place& place, const CharsetSource& from, const CharsetSource& to) {
    const std::optional<ConvType> type = unicodeType(from.kind, to.kind);
    if (!type) fail(place, "no conversion type leads from " + from.name + " to " + to.name);
    return ordered(place, *type, from.order, to.order);
}

// A single-byte charset to UTF-8. Type 51 promises two bytes a character, type 19 three.
ConversionEntry singleByteToUtf8(const CharsetSource& charset) {
    constexpr uint16_t firstThreeByteForm = 0x800;
    const bool isShort = *std::max_element(charset.units.begin(), charset.units.end()) < firstThreeByteForm;
    const ConvType type = isShort ? ConvType::sbcsToUtf8Short : ConvType::sbcsToUtf8;
    return {plainCode(type), 0, conversionRecord(type, charset.units)};
}

Pair singleByteWithUtf8(const CharsetSource& charset) {
    return {singleByteToUtf8(charset), bare(ConvType::utf8ToSbcs)};
}

Pair multiByteWithUtf8(const MultiByteTables& tables) {
    return {ConversionEntry{plainCode(tables.toUtf8), 0, tables.record}, bare(tables.fromUtf8)};
}

// Types 29 and 30 go through the charset's own tables to and from UTF-8, one character at a time. UCS2 has the units of
// UTF-16.
Pair multiByteWithUnits16(const Place& place, const CharsetSource& unicode) {
    return {ordered(place, ConvType::dbcsToUtf16, UnitOrder::host, unicode.order),
            ordered(place, ConvType::utf16ToDbcs, unicode.order, UnitOrder::host)};
}

ConversionEntry byteMapEntry(const ByteMap& forth, const ByteMap& back) {
    const bool isPermutation = forth.lost == 0 && back.lost == 0;
    return {plainCode(ConvType::byteMap), static_cast<uint8_t>(isPermutation ? 1 : 0),
            conversionRecord(ConvType::byteMap, forth.map)};
}

Pair singleByteWithSingleByte(const CharsetSource& from, const CharsetSource& to) {
    const ByteMap forth = byteMapBetween(from, to);
    const ByteMap back = byteMapBetween(to, from);
    return {byteMapEntry(forth, back), byteMapEntry(back, forth)};
}

Pair legacyWithUnicode(const Place& place, const CompiledCharset& legacy, const CharsetSource& unicode) {
    if (unicode.kind == CharsetKind::utf8) {
        return legacy.multiByte ? multiByteWithUtf8(*legacy.multiByte) : singleByteWithUtf8(legacy.source);
    }
    const bool hasUnits16 = unicode.kind == CharsetKind::ucs2 || unicode.kind == CharsetKind::utf16;
    if (!legacy.multiByte || !hasUnits16) {
        fail(place, "no conversion type leads from " + legacy.source.name + " to " + unicode.name +
                        "; the route through UTF-8 needs no entry");
    }
    return multiByteWithUnits16(place, unicode);
}

}  // namespace

Pair conversionsBetween(const Place& place, const CompiledCharset& from, const CompiledCharset& to) {
    const CharsetSource& source = from.source;
    const CharsetSource& target = to.source;
    if (source.isUnicode() && target.isUnicode()) {
        return {unicodeEntry(place, source, target), unicodeEntry(place, target, source)};
    }
    if (target.isUnicode()) return legacyWithUnicode(place, from, target);
    if (source.isUnicode()) {
        Pair pair = legacyWithUnicode(place, to, source);
        std::swap(pair[0], pair[1]);
        return pair;
    }
    if (source.isSingleByte() && target.isSingleByte()) return singleByteWithSingleByte(source, target);
    fail(place, "no conversion type leads from " + source.name + " to " + target.name);
}

Pair conversionsByRule(const Place& place, const CompiledCharset& from, const CompiledCharset& to) {
    if (!from.source.isMultiByte() || !to.source.isMultiByte()) {
        fail(place, "the rule between Shift-JIS and EUC needs two multi-byte charsets");
    }
    return {bare(ConvType::sjisToEuc), bare(ConvType::eucToSjis)};
}

ByteMap byteMapBetween(const CharsetSource& from, const CharsetSource& to) {
    std::map<uint16_t, uint8_t> byteOfUnit;
    for (uint32_t byte = 0; byte < 256; ++byte) {
        if (!to.filled[byte]) byteOfUnit.emplace(to.units[byte], static_cast<uint8_t>(byte));
    }
    ByteMap result;
    for (uint32_t byte = 0; byte < 256; ++byte) {
        const auto found = byteOfUnit.find(from.units[byte]);
        const bool isLost = from.filled[byte] || found == byteOfUnit.end();
        result.map[byte] = isLost ? byteOfUnit.at('?') : found->second;
        result.lost += isLost ? 1 : 0;
    }
    return result;
}

}  // namespace nls::mkconvmap
