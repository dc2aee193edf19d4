#include "conversion/engine.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "conversion/byte_map.hpp"
#include "conversion/change_check.hpp"
#include "conversion/conv_type.hpp"
#include "conversion/converted.hpp"
#include "conversion/dbcs_bridge.hpp"
#include "conversion/jis.hpp"
#include "conversion/sbcs_bridge.hpp"
#include "conversion/unicode_transforms.hpp"
#include "icu/icu_convert.hpp"
#include "nls/status.h"

namespace nls {

namespace {

constexpr EngineAnswer kRefused{NLS_BAD_ARG, kUncounted};

bool complete(nlsStatus status) {
    return status == NLS_OK || status == NLS_CONV_SUBST;
}

bool inPlace(const Conversion& text) {
    return text.target.data() == text.source.data();
}

// 10xxxxxx: no character of UTF-8 starts so.
bool startsInsideCharacter(ByteView utf8) {
    return (utf8[0] & 0xC0) == 0x80;
}

ByteView outputOf(const Conversion& text, int64_t length) {
    return text.target.first(std::min(length > 0 ? static_cast<std::size_t>(length) : 0, text.target.size()));
}

// --- What `check` makes of an answer ---

// Both sides are bytes of a charset: they differ or not.
EngineAnswer compared(const Conversion& text, Converted answer) {
    const bool changed =
        text.check && answer.status == NLS_OK && differsAsString(outputOf(text, answer.length), text.source);
    return {changed ? NLS_CONV_CHANGED : answer.status, answer.length};
}

// --- The types ---

EngineAnswer copyText(const Conversion& text) {
    const std::size_t count = std::min(text.source.size(), text.target.size());
    if (count != 0) std::memmove(text.target.data(), text.source.data(), count);
    return {count == text.source.size() ? NLS_OK : NLS_BUF_SMALL, static_cast<int64_t>(count)};
}

EngineAnswer withoutHandler(const Conversion& text) {
    if (!text.target.empty()) text.target[0] = 0;
    return {NLS_OK, kUncounted};
}

EngineAnswer throughByteMap(const ByteMapTable& table, const Conversion& text) {
    if (text.source.size() > text.target.size()) return {NLS_BUF_SMALL, 0};
    const bool changed = mapBytes(table.map, text.source.data(), text.source.size(), text.target.data());
    return {text.check && changed ? NLS_CONV_CHANGED : NLS_OK, static_cast<int64_t>(text.source.size())};
}

// ICU reads up to a NUL, which is a unit in UTF-16.
bool closeForIcu(ConvTable step, ByteSpan scratch, std::size_t length) {
    const bool readsUnits = step.type() == ConvType::unicodeToIcu && !step.hasUtf8Side();
    const std::size_t width = readsUnits ? 2 : 1;
    if (scratch.size() - length < width) return false;
    std::memset(scratch.data() + length, 0, width);
    return true;
}

EngineAnswer inTwoSteps(ConvTable table, const Conversion& text) {
    if ((text.check && inPlace(text)) || text.scratch.empty()) return kRefused;
    const EngineAnswer first = convert(table.firstStep(), {text.scratch, text.source, {}});
    if (!complete(first.status)) return first;
    const ByteView middle = text.scratch.first(first.counted() ? static_cast<std::size_t>(first.length) : 0);
    const ConvTable step = table.secondStep();
    if (blockOf(step.type()) == TableBlock::icuConverter && !closeForIcu(step, text.scratch, middle.size()))
        return {NLS_BUF_SMALL, first.length};
    EngineAnswer second = convert(step, {text.target, middle, {}});
    if (!second.counted()) second.length = first.length;
    if (text.check && complete(second.status) && differsAsString(outputOf(text, second.length), text.source))
        second.status = NLS_CONV_CHANGED;
    return second;
}

EngineAnswer fromSbcs(ConvTable table, const Conversion& text) {
    if (text.check && inPlace(text)) return kRefused;
    return compared(text, sbcsToUtf8(table.sbcsWords(), text.source, text.target));
}

EngineAnswer toSbcs(ConvTable table, const Conversion& text) {
    if ((text.check && inPlace(text)) || startsInsideCharacter(text.source)) return kRefused;
    return compared(text, utf8ToSbcs(table.sbcsPages(), text.source, text.target));
}

using Rule = Converted (*)(ByteView source, ByteSpan target);

EngineAnswer byRule(Rule rule, const Conversion& text) {
    if (text.check && inPlace(text)) return kRefused;
    return compared(text, rule(text.source, text.target));
}

// One side is a multi-byte charset, the other a form of Unicode: any output is a change.
EngineAnswer bridged(const Conversion& text, Converted answer) {
    const bool changed = text.check && complete(answer.status) && answer.length != 0;
    return {changed ? NLS_CONV_CHANGED : answer.status, answer.length};
}

EngineAnswer fromDbcs(ConvTable table, const Conversion& text) {
    return bridged(text, dbcsToUtf8(table.dbcs(), text.source, text.target));
}

EngineAnswer toDbcs(ConvTable table, const Conversion& text) {
    if (startsInsideCharacter(text.source)) return kRefused;
    return bridged(text, utf8ToDbcs(table.dbcs(), text.source, text.target));
}

EngineAnswer dbcsToUnits(ConvTable table, const Conversion& text) {
    return bridged(text, dbcsToUtf16(table.inner().dbcs(), table.swapsTarget(), text.source, text.target));
}

EngineAnswer unitsToDbcs(ConvTable table, const Conversion& text) {
    return bridged(text, utf16ToDbcs(table.inner().dbcs(), table.swapsSource(), text.source, text.target));
}

using Transform = Transformed (*)(ByteView source, ByteSpan target, ByteOrder order);

// Both sides are forms of Unicode: any output is a change.
EngineAnswer through(Transform transform, ConvTable table, const Conversion& text) {
    const Transformed done = transform(text.source, text.target, {table.swapsSource(), table.swapsTarget()});
    const bool changed = text.check && done.status == NLS_OK && done.written != 0;
    return {changed ? NLS_CONV_CHANGED : done.status, static_cast<int64_t>(done.written)};
}

EngineAnswer fromUtf8Through(Transform transform, ConvTable table, const Conversion& text) {
    return startsInsideCharacter(text.source) ? kRefused : through(transform, table, text);
}

// ICU reads the source up to its NUL, which the caller has put there.
EngineAnswer throughIcu(ConvTable table, const Conversion& text) {
    const IcuConverted done =
        convertByIcu(table, text.target, text.source.data(), static_cast<uint32_t>(text.source.size()));
    const bool changed = text.check && done.status == NLS_OK && done.length != 0;
    return {changed ? NLS_CONV_CHANGED : done.status, done.told ? int64_t{done.length} : kUncounted};
}

bool hasHandler(ConvType type) {
    return rowOf(type).known && type != ConvType::identity;
}

// REQUIRES: the source isn't empty.
EngineAnswer byType(ConvType type, ConvTable table, const Conversion& text) {
    // clang-format off
    switch (type) {
        case ConvType::byteMap:         return throughByteMap(table.byteMap(), text);
        case ConvType::sjisToEuc:       return byRule(sjisToEuc, text);
        case ConvType::eucToSjis:       return byRule(eucToSjis, text);
        case ConvType::unicodeToIcu:
        case ConvType::icuToUnicode:    return throughIcu(table, text);
        case ConvType::twoStep:         return inTwoSteps(table, text);
        case ConvType::dbcsToUtf8:
        case ConvType::dbcsToUtf8Long:
        case ConvType::dbcsToUtf8Longest:
                                        return fromDbcs(table, text);
        case ConvType::utf8ToDbcs:
        case ConvType::utf8ToDbcsShort: return toDbcs(table, text);
        case ConvType::sbcsToUtf8:
        case ConvType::sbcsToUtf8Short: return fromSbcs(table, text);
        case ConvType::utf8ToSbcs:      return toSbcs(table, text);
        case ConvType::ucs2ToUtf8:
        case ConvType::utf16ToUtf8:     return through(ucs2ToUtf8, table, text);
        case ConvType::utf8ToUcs2:
        case ConvType::utf8ToUtf16:     return fromUtf8Through(utf8ToUcs2, table, text);
        case ConvType::ucs4ToUtf8:      return through(ucs4ToUtf8, table, text);
        case ConvType::utf8ToUcs4:      return fromUtf8Through(utf8ToUcs4, table, text);
        case ConvType::utf16ToUcs4:     return through(utf16ToUcs4, table, text);
        case ConvType::ucs4ToUtf16:     return through(ucs4ToUtf16, table, text);
        case ConvType::dbcsToUtf16:     return dbcsToUnits(table, text);
        case ConvType::utf16ToDbcs:     return unitsToDbcs(table, text);
        default:                        return withoutHandler(text);
    }
    // clang-format on
}

}  // namespace

EngineAnswer convert(ConvTable table, const Conversion& text) {
    if (table.isNull()) return copyText(text);
    const ConvType type = table.type();
    if (!text.source.empty()) return byType(type, table, text);
    return hasHandler(type) ? EngineAnswer{NLS_OK, 0} : withoutHandler(text);
}

namespace {

// A character as its bytes, first byte first, without leading zero bytes; one byte at least.
struct CharacterBytes {
    unsigned char bytes[4];
    unsigned char end[2];  // ICU reads up to a NUL
    std::size_t count;
};

CharacterBytes spelledOut(nlsLChar value) {
    CharacterBytes character{};
    character.count = value == 0 ? 1 : (static_cast<std::size_t>(std::bit_width(value)) + 7) / 8;
    for (std::size_t i = 0; i < character.count; ++i)
        character.bytes[i] = static_cast<unsigned char>(value >> (8 * (character.count - 1 - i)));
    return character;
}

nlsLChar readBack(const unsigned char* bytes, std::size_t count) {
    nlsLChar value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8 | bytes[i];
    return value;
}

}  // namespace

ConvertedCharacter convertCharacter(ConvTable table, nlsLChar value) {
    if (table.isNull()) return {NLS_OK, value};
    CharacterBytes character = spelledOut(value);
    const ByteSpan target{character.bytes};
    const EngineAnswer answer = convert(table, {target, ByteView{target}.first(character.count), {}});
    if (answer.length < 1 || answer.length > 4) return {NLS_BAD_ARG, kUncounted};
    const bool codePoint = table.type() == ConvType::utf8ToUcs4 && !table.swapsTarget();
    if (codePoint && answer.length == 4) return {answer.status, loadWord<uint32_t>(character.bytes)};
    return {answer.status, readBack(character.bytes, static_cast<std::size_t>(answer.length))};
}

}  // namespace nls
