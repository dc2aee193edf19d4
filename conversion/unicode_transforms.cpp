#include "conversion/unicode_transforms.hpp"

#include "conversion/unicode_walk.hpp"
#include "conversion/utf_codec.hpp"

namespace nls {

namespace {

// --- one character each: false when the walk ends here, with its status set

bool stop(UnicodeWalk& walk, nlsStatus status) {
    walk.status = status;
    return false;
}

bool stepUtf16ToUcs4(UnicodeWalk& walk) {
    const uint32_t value = readUtf16(walk.source, walk.order.swapSource);
    return putUcs4(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

// Alone in looking for room before it reads: a unit that meets a full target stays unread.
bool stepUcs4ToUtf16(UnicodeWalk& walk) {
    if (walk.target.room() < 2) return stop(walk, NLS_BUF_SMALL);
    const uint32_t value = loadUnit<uint32_t>(walk.source.place(), walk.order.swapSource);
    walk.source.skip(4);
    return putUtf16(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

bool stepUtf8ToUcs4(UnicodeWalk& walk) {
    const DecodedUtf8 character = frontUtf8({walk.source.place(), walk.source.left()});
    if (character.length == 0) return stop(walk, NLS_BAD_ARG);
    walk.source.skip(character.length);
    const uint32_t value = character.value > kLastCodePoint ? kReplacementCharacter : character.value;
    return putUcs4(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

bool stepUtf8ToUcs2(UnicodeWalk& walk) {
    const DecodedUtf8 character = frontUtf8({walk.source.place(), walk.source.left()});
    if (character.length == 0) return stop(walk, NLS_BAD_ARG);
    walk.source.skip(character.length);
    return putUtf16(walk.target, character.value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

// A surrogate that reaches this place is a lone one: "?" takes its place, and the walk goes on.
bool encodeCharacter(UnicodeWalk& walk, uint32_t value, nlsStatus loneSurrogate) {
    if (isSurrogate(value)) {
        walk.status = loneSurrogate;
        value = '?';
    } else if (value >= kUtf8ValueEnd) {
        value = kReplacementCharacter;
    }
    return putUtf8(walk.target, value) || stop(walk, NLS_BUF_SMALL);
}

bool stepUcs4ToUtf8(UnicodeWalk& walk) {
    const uint32_t value = readUcs4Folding(walk.source, walk.order.swapSource);
    return encodeCharacter(walk, value, NLS_INVALID_STRING);
}

bool stepUcs2ToUtf8(UnicodeWalk& walk) {
    const uint32_t value = readUtf16(walk.source, walk.order.swapSource);
    return encodeCharacter(walk, value, NLS_BAD_ARG);
}

// --- the walks

ByteView wholeUnits(ByteView bytes, std::size_t unit) {
    return bytes.first(bytes.size() - bytes.size() % unit);
}

template <typename Step>
Transformed transform(ByteView source, ByteSpan target, ByteOrder order, Step step) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    while (!walk.source.atEnd() && step(walk)) {
    }
    return {walk.status, source.size() - walk.source.left(), walk.target.written()};
}

}  // namespace

Transformed utf16ToUcs4(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(wholeUnits(source, 2), target, order, stepUtf16ToUcs4);
}

Transformed ucs4ToUtf16(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(wholeUnits(source, 4), target, order, stepUcs4ToUtf16);
}

Transformed utf8ToUcs4(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(source, target, order, stepUtf8ToUcs4);
}

Transformed utf8ToUcs2(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(source, target, order, stepUtf8ToUcs2);
}

Transformed ucs4ToUtf8(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(wholeUnits(source, 4), target, order, stepUcs4ToUtf8);
}

Transformed ucs2ToUtf8(ByteView source, ByteSpan target, ByteOrder order) {
    return transform(wholeUnits(source, 2), target, order, stepUcs2ToUtf8);
}

}  // namespace nls
