#include "conversion/dbcs_bridge.hpp"

#include "conversion/dbcs_runs.hpp"
#include "conversion/dbcs_search.hpp"
#include "conversion/utf_codec.hpp"
#include "nls/status.h"

namespace nls {

namespace {

// Reads one character of the charset as the code by which it is looked up: its last two bytes. A NUL ends it and stays
// unread; characters of five bytes and more read as "?".
uint16_t readCharsetCode(ByteReader& source, const DbcsTable& table) {
    constexpr unsigned kLongestLookedUp = 3;  // trailing bytes
    uint32_t code = source.next();
    const unsigned trails =
        table.attrib == nullptr ? 0 : Charset{*table.attrib}.trailCount(static_cast<unsigned char>(code));
    if (trails > kLongestLookedUp) {
        source.skip(std::min<std::size_t>(trails, source.left()));
        return '?';
    }
    for (unsigned i = 0; i < trails && !source.atEnd() && source.peek() != 0; ++i) code = code << 8 | source.next();
    return static_cast<uint16_t>(code);
}

// One or two bytes. False when the room ends; the first of two may stand there then.
bool putCode(ByteWriter& target, uint16_t code) {
    if (code > 0xFF && !target.put(static_cast<unsigned char>(code >> 8))) return false;
    return target.put(static_cast<unsigned char>(code));
}

// What has come of one character.
struct Step {
    nlsStatus status;
    bool substituted;  // a substitute stands for it, which is told at the end unless a failure takes its place
};

// Each bridge converts a run through the index of the table, and one character exactly.

struct ToUtf8 {
    Run run(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target) const {
        return runToUtf8(table, index, source, target);
    }
    Step character(const DbcsTable& table, ByteReader& source, ByteWriter& target) const {
        const auto [ucs, substituted] = findUnicode(table, readCharsetCode(source, table));
        if (isSurrogate(ucs)) return {target.put('?') ? NLS_INVALID_STRING : NLS_BUF_SMALL, false};
        const bool fits = putUtf8(target, ucs < kUtf8ValueEnd ? ucs : kReplacementCharacter);
        return {fits ? NLS_OK : NLS_BUF_SMALL, substituted};
    }
    static constexpr bool kCountsAfterFailure = false;
};

struct ToUtf16 {
    bool swap;

    Run run(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target) const {
        return runToUtf16(table, index, swap, source, target);
    }
    Step character(const DbcsTable& table, ByteReader& source, ByteWriter& target) const {
        const auto [ucs, substituted] = findUnicode(table, readCharsetCode(source, table));
        return {putUtf16(target, ucs, swap) ? NLS_OK : NLS_BUF_SMALL, substituted};
    }
    static constexpr bool kCountsAfterFailure = true;
};

struct FromUtf8 {
    Run run(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target) const {
        return runFromUtf8(table, index, source, target);
    }
    Step character(const DbcsTable& table, ByteReader& source, ByteWriter& target) const {
        const auto [value, length] = decodeUtf8(source.place(), source.left(), bytesFromUtf8(source.peek()));
        if (length == 0) return {NLS_BAD_ARG, false};
        source.skip(length);
        const uint32_t ucs = value > kLastCodePoint ? kReplacementCharacter : value;
        const auto [code, substituted] = ucs == 0 ? FoundCode{0, false} : findCode(table, ucs);
        return {putCode(target, code) ? NLS_OK : NLS_BUF_SMALL, substituted};
    }
    static constexpr bool kCountsAfterFailure = true;
};

struct FromUtf16 {
    bool swap;

    Run run(const DbcsTable& table, const DbcsIndex& index, ByteView units, ByteSpan target) const {
        return runFromUtf16(table, index, swap, units, target);
    }
    Step character(const DbcsTable& table, ByteReader& units, ByteWriter& target) const {
        const auto [code, substituted] = findCode(table, readUtf16(units, swap));
        return {putCode(target, code) ? NLS_OK : NLS_BUF_SMALL, substituted};
    }
    static constexpr bool kCountsAfterFailure = true;
};

// Runs, and the characters between them exactly; `done` is what the first run has done already. Where a run has found
// nothing, the next characters go alone, so that text of strangers isn't tried at each of them.
template <typename Bridge>
Converted walk(const Bridge& bridge, const DbcsTable& table, const DbcsIndex* index, ByteView source, ByteSpan target,
               Run done) {
    constexpr unsigned kCharactersAlone = 4;
    ByteReader reader{source.subspan(done.consumed)};
    ByteWriter writer{target};
    writer.advance(done.written);
    bool substituted = false;
    for (unsigned alone = 1; !reader.atEnd(); --alone) {
        const Step step = bridge.character(table, reader, writer);
        if (step.status != NLS_OK)
            return {step.status, Bridge::kCountsAfterFailure ? static_cast<uint32_t>(writer.written()) : 0};
        substituted |= step.substituted;
        if (index == nullptr || alone > 1) continue;
        const Run run = bridge.run(table, *index, {reader.place(), reader.left()}, {writer.place(), writer.room()});
        reader.skip(run.consumed);
        writer.advance(run.written);
        alone = run.consumed == 0 ? kCharactersAlone + 1 : 2;
    }
    return {substituted ? NLS_CONV_SUBST : NLS_OK, static_cast<uint32_t>(writer.written())};
}

// Without an index in the table a long text makes one on the stack.
template <typename Bridge>
[[gnu::noinline]] Converted walkWithoutIndex(const Bridge& bridge, const DbcsTable& table, ByteView source,
                                             ByteSpan target) {
    constexpr std::size_t kWorthAnIndex = 32768;
    if (source.size() < kWorthAnIndex) return walk(bridge, table, nullptr, source, target, {0, 0});
    DbcsIndex index;
    buildDbcsIndex(table, DbcsIndex::kPageCount, index);
    return walk(bridge, table, &index, source, target, {0, 0});
}

// Most texts are one run from end to end.
template <typename Bridge>
Converted convertText(const Bridge& bridge, const DbcsTable& table, ByteView source, ByteSpan target) {
    const DbcsIndex* const index = dbcsIndexOf(table);
    if (index == nullptr) return walkWithoutIndex(bridge, table, source, target);
    const Run run = bridge.run(table, *index, source, target);
    if (run.consumed == source.size()) return {NLS_OK, static_cast<uint32_t>(run.written)};
    return walk(bridge, table, index, source, target, run);
}

}  // namespace

Converted dbcsToUtf8(const DbcsTable& table, ByteView source, ByteSpan target) {
    return convertText(ToUtf8{}, table, source, target);
}

Converted dbcsToUtf16(const DbcsTable& table, bool swapTarget, ByteView source, ByteSpan target) {
    return convertText(ToUtf16{swapTarget}, table, source, target);
}

Converted utf8ToDbcs(const DbcsTable& table, ByteView source, ByteSpan target) {
    return convertText(FromUtf8{}, table, source, target);
}

Converted utf16ToDbcs(const DbcsTable& table, bool swapSource, ByteView units, ByteSpan target) {
    return convertText(FromUtf16{swapSource}, table, units.first(units.size() / 2 * 2), target);
}

}  // namespace nls
