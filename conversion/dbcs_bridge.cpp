#include "conversion/dbcs_bridge.hpp"

#include "conversion/dbcs_runs.hpp"
#include "conversion/dbcs_search.hpp"
#include "conversion/utf_codec.hpp"
#include "nls/status.h"

namespace nls {

namespace {

// What has come of a walk so far: a substitute is remembered, and told at the end unless a failure takes its place.
class Outcome {
public:
    void note(bool substituted) { substituted_ |= substituted; }
    nlsStatus atEnd() const { return substituted_ ? NLS_CONV_SUBST : NLS_OK; }

private:
    bool substituted_ = false;
};

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

// Takes runs wherever the index covers the text. Where a run has found nothing, the exact walk has the next characters
// to itself, so that text of strangers isn't tried at each of them.
class Runs {
public:
    Runs(const DbcsTable& table, const DbcsIndex* index, RunConverter converter)
        : table_(table), index_(index), converter_(converter) {}

    void take(ByteReader& source, ByteWriter& target) {
        if (index_ == nullptr) return;
        if (waiting_ != 0) {
            --waiting_;
            return;
        }
        const Run run = converter_(table_, *index_, {source.place(), source.left()}, {target.place(), target.room()});
        source.skip(run.consumed);
        target.advance(run.written);
        if (run.consumed == 0) waiting_ = kCharactersAlone;
    }

private:
    static constexpr unsigned kCharactersAlone = 4;

    const DbcsTable& table_;
    const DbcsIndex* index_;
    RunConverter converter_;
    unsigned waiting_ = 0;
};

Converted result(nlsStatus status, const ByteWriter& target) {
    return {status, static_cast<uint32_t>(target.written())};
}

// The whole walk: runs, and the characters between them exactly. `done` is what the first run has done already.
Converted walkToUtf8(const DbcsTable& table, const DbcsIndex* index, ByteView source, ByteSpan target, Run done) {
    ByteReader reader{source.subspan(done.consumed)};
    ByteWriter writer{target};
    writer.advance(done.written);
    Outcome outcome;
    Runs runs{table, index, runToUtf8};
    while (!reader.atEnd()) {
        const auto [ucs, substituted] = findUnicode(table, readCharsetCode(reader, table));
        outcome.note(substituted);
        if (isSurrogate(ucs)) return {writer.put('?') ? NLS_INVALID_STRING : NLS_BUF_SMALL, 0};
        if (!putUtf8(writer, ucs < kUtf8ValueEnd ? ucs : kReplacementCharacter)) return {NLS_BUF_SMALL, 0};
        runs.take(reader, writer);
    }
    return result(outcome.atEnd(), writer);
}

Converted walkFromUtf8(const DbcsTable& table, const DbcsIndex* index, ByteView source, ByteSpan target, Run done) {
    ByteReader reader{source.subspan(done.consumed)};
    ByteWriter writer{target};
    writer.advance(done.written);
    Outcome outcome;
    Runs runs{table, index, runFromUtf8};
    while (!reader.atEnd()) {
        const auto [value, length] = decodeUtf8(reader.place(), reader.left(), bytesFromUtf8(reader.peek()));
        if (length == 0) return result(NLS_BAD_ARG, writer);
        reader.skip(length);
        const uint32_t ucs = value > kLastCodePoint ? kReplacementCharacter : value;
        const auto [code, substituted] = ucs == 0 ? FoundCode{0, false} : findCode(table, ucs);
        outcome.note(substituted);
        if (!putCode(writer, code)) return result(NLS_BUF_SMALL, writer);
        runs.take(reader, writer);
    }
    return result(outcome.atEnd(), writer);
}

using Walk = Converted (*)(const DbcsTable&, const DbcsIndex*, ByteView, ByteSpan, Run);

// Without an index in the table a long text makes one on the stack.
[[gnu::noinline]] Converted walkWithOwnIndex(Walk walk, const DbcsTable& table, ByteView source, ByteSpan target) {
    DbcsIndex index;
    buildDbcsIndex(table, DbcsIndex::kPageCount, index);
    return walk(table, &index, source, target, {0, 0});
}

// Most texts are one run from end to end.
[[gnu::always_inline]] inline Converted convertText(RunConverter converter, Walk walk, const DbcsTable& table,
                                                    ByteView source, ByteSpan target) {
    constexpr std::size_t kWorthAnIndex = 32768;
    const DbcsIndex* const index = dbcsIndexOf(table);
    if (index == nullptr) {
        return source.size() < kWorthAnIndex ? walk(table, nullptr, source, target, {0, 0})
                                             : walkWithOwnIndex(walk, table, source, target);
    }
    const Run run = converter(table, *index, source, target);
    if (run.consumed == source.size()) return {NLS_OK, static_cast<uint32_t>(run.written)};
    return walk(table, index, source, target, run);
}

}  // namespace

Converted dbcsToUtf8(const DbcsTable& table, ByteView source, ByteSpan target) {
    return convertText(runToUtf8, walkToUtf8, table, source, target);
}

Converted dbcsToUtf16(const DbcsTable& table, bool swapTarget, ByteView source, ByteSpan target) {
    ByteReader reader{source};
    ByteWriter writer{target};
    Outcome outcome;
    while (!reader.atEnd()) {
        const auto [ucs, substituted] = findUnicode(table, readCharsetCode(reader, table));
        outcome.note(substituted);
        if (!putUtf16(writer, ucs, swapTarget)) return result(NLS_BUF_SMALL, writer);
    }
    return result(outcome.atEnd(), writer);
}

Converted utf8ToDbcs(const DbcsTable& table, ByteView source, ByteSpan target) {
    return convertText(runFromUtf8, walkFromUtf8, table, source, target);
}

Converted utf16ToDbcs(const DbcsTable& table, bool swapSource, ByteView units, ByteSpan target) {
    ByteReader reader{units.first(units.size() / 2 * 2)};
    ByteWriter writer{target};
    Outcome outcome;
    while (!reader.atEnd()) {
        const auto [code, substituted] = findCode(table, readUtf16(reader, swapSource));
        outcome.note(substituted);
        if (!putCode(writer, code)) return result(NLS_BUF_SMALL, writer);
    }
    return result(outcome.atEnd(), writer);
}

}  // namespace nls
