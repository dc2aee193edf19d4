#include "collation/sort_key.hpp"

#include <algorithm>
#include <cstring>

#include "collation/byte_key.hpp"
#include "collation/coll_kind.hpp"
#include "collation/hook_text.hpp"
#include "collation/short_key.hpp"
#include "collation/sjis_bridge.hpp"
#include "collation/thai_key.hpp"
#include "collation/unicode_key.hpp"
#include "conversion/engine.hpp"
#include "core/base/cpu.hpp"
#include "icu/icu_key.hpp"
#include "nls/usersort.h"

namespace nls {

namespace {

// The byte of each half of an expansion in the keys of the basic table.
constexpr unsigned char kBasicExpansion = 0x53;

// A basic table keeps the blanks of the text, and then takes those of the key.
bool isBasic(const nlsCollStruct& coll) {
    return kindOf(coll) == CollKind::byteTables && coll.collSubKind == 0;
}

template <typename Bytes>
Bytes withoutBlanksAtEnd(Bytes bytes) {
    std::size_t length = bytes.size();
    while (length != 0 && bytes[length - 1] == ' ') --length;
    return bytes.first(length);
}

std::size_t lengthOf(ByteSpan key) {
    return strnlen(reinterpret_cast<const char*>(key.data()), key.size());
}

// The text on its way through the bridge, in pieces, so that no key has to hold it. A piece that ends inside a
// character is made shorter by as much.
[[gnu::noinline]] nlsStatus addBridged(ByteKey& key, ConvTable bridge, ByteView text) {
    constexpr std::size_t kPiece = 256, kLongestRest = 3;
    unsigned char converted[2 * kPiece];
    while (!text.empty() && !key.full()) {
        std::size_t count = std::min(text.size(), kPiece);
        const bool last = count == text.size();
        EngineAnswer answer = convert(bridge, {ByteSpan{converted}, text.first(count), {}});
        for (std::size_t cut = 0; cut < kLongestRest && answer.status == NLS_BAD_ARG && !last; ++cut)
            answer = convert(bridge, {ByteSpan{converted}, text.first(--count), {}});
        if (!answer.counted()) return NLS_NO_CONV_TABLE;
        const ByteView piece{converted, static_cast<std::size_t>(answer.length)};
        const void* const nul = std::memchr(converted, 0, piece.size());
        if (nul != nullptr) {
            key.add(piece.first(static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - converted)));
            return NLS_OK;
        }
        key.add(piece);
        text = text.subspan(count);
    }
    return NLS_OK;
}

// REQUIRES: room for the NUL.
SortKey keyByTables(const Collation& by, ByteView text, ByteSpan room, KeyOptions options) {
    const nlsAttribStruct* attrib = &by.attrib;
    ConvTable bridge{nullptr};
    if (Charset{by.attrib}.comparesViaSjis()) {
        const SjisHandles sjis = findSjisHandles(by.locale);
        if (sjis.status != NLS_OK) return {sjis.status, 0};
        attrib = sjis.attrib;
        bridge = ConvTable{sjis.conversion->table};
    }
    if (!isByteMode(options.mode)) return {NLS_BAD_COMPARE_MODE, 0};
    const WeightMap weights = WeightMap::of(by.coll, options.mode);
    const bool basic = isBasic(by.coll);
    const unsigned char expansion = basic ? kBasicExpansion : weights.ofLetterS();
    ByteKey key{weights, *attrib, expansion, room.first(room.size() - 1)};
    if (bridge.isNull())
        key.add(text);
    else if (const nlsStatus bad = addBridged(key, bridge, text))
        return {bad, 0};
    room[key.length()] = 0;
    ByteSpan written = room.first(key.length());
    if (key.mayHoldNul()) written = written.first(lengthOf(written));
    if (basic && options.trim) {
        const ByteSpan kept = withoutBlanksAtEnd(written);
        std::fill(written.begin() + static_cast<std::ptrdiff_t>(kept.size()), written.end(), 0);
        written = kept;
    }
    return {NLS_OK, written.size()};
}

// The key of a short text in one go, where that is possible; kNoShortKey where it isn't, or where there is a status to
// tell of.
std::size_t keyInOneGo(const Collation& by, const unsigned char* src, ByteSpan key, KeyOptions options) {
    if (!isByteMode(options.mode) || key.size() < kShortKeyRoom || cpuLevel() < CpuLevel::avx512) return kNoShortKey;
    const nlsAttribStruct* attrib = &by.attrib;
    bool fromEuc = false;
    if (Charset{by.attrib}.comparesViaSjis()) {
        const SjisMemo memo{by.attrib};
        if (!memo.isComplete()) return kNoShortKey;
        const SjisBridge bridge{memo.conversion->table};
        fromEuc = bridge.isFromEuc();
        if (!fromEuc && !bridge.changesNothing()) return kNoShortKey;
        attrib = memo.attrib;
    }
    const WeightMap weights = WeightMap::of(by.coll, options.mode);
    const bool basic = isBasic(by.coll);
    const ShortKey work{weights,
                        *attrib,
                        basic ? kBasicExpansion : weights.ofLetterS(),
                        fromEuc,
                        options.trim && !basic,
                        options.trim && basic};
    return shortKeyAvx512(work, src, key.data());
}

// Out of line, so that the other routes needn't make room for its copy.
[[gnu::noinline]] SortKey keyByHook(const Collation& by, const unsigned char* src, ByteView text, ByteSpan key,
                                    uint16_t mode) {
    const nlsHandle* const handle = by.locale.owner;
    const bool trimmed = src[text.size()] != 0;
    const HookText seen = trimmed ? HookText{src, text.size()} : HookText{src};
    UserSortCopy(key.data(), seen.get(), static_cast<int32_t>(key.size()), by.coll.foldMap, by.coll.exactMap, mode,
                 handle != nullptr ? handle->userSortHandle : 0);
    return {NLS_OK, lengthOf(key)};
}

SortKey keyByValues(const nlsLocale& locale, ByteView text, ByteSpan key, uint16_t mode) {
    if (const nlsStatus bad = unicodeKey(locale, text, key, mode)) return {bad, 0};
    return {NLS_OK, lengthOf(key)};
}

}  // namespace

SortKey makeSortKey(const Collation& by, nlsTlsBlock* tls, const unsigned char* src, ByteSpan key, KeyOptions options) {
    if (key.empty()) return {NLS_BUF_SMALL, 0};
    if (kindOf(by.coll) == CollKind::byteTables) {
        const std::size_t length = keyInOneGo(by, src, key, options);
        if (length != kNoShortKey) return {NLS_OK, length};
    }
    ByteView text = untilNul(src);
    if (options.trim && !isBasic(by.coll)) text = withoutBlanksAtEnd(text);
    switch (kindOf(by.coll)) {
        case CollKind::userSort:
            return keyByHook(by, src, text, key, options.mode);
        case CollKind::unicode:
            return keyByValues(by.locale, text, key, options.mode);
        case CollKind::thai:
            thaiKey(options.mode == 0 ? by.coll.foldMap : by.coll.exactMap, text.data(), text.size(), key);
            return {NLS_OK, lengthOf(key)};
        case CollKind::icu:
            keyByIcu(key, text, tls, options.mode == 0 ? by.coll.foldMap : by.coll.exactMap, options.mode,
                     options.primaryOnly);
            return {NLS_OK, lengthOf(key)};
        default:
            return keyByTables(by, text, key, options);
    }
}

}  // namespace nls
