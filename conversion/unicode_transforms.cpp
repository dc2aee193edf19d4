#include "conversion/unicode_transforms.hpp"

#include <algorithm>

#include "conversion/unicode_wide.hpp"
#include "conversion/utf_codec.hpp"
#include "core/base/cpu.hpp"

namespace nls {

namespace {

// --- one character each: false when the walk ends here, with its status set

bool stop(UnicodeWalk& walk, nlsStatus status) {
    walk.status = status;
    return false;
}

inline bool stepUtf16ToUcs4(UnicodeWalk& walk) {
    const uint32_t value = readUtf16(walk.source, walk.order.swapSource);
    return putUcs4(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

// Alone in looking for room before it reads: a unit that meets a full target stays unread.
inline bool stepUcs4ToUtf16(UnicodeWalk& walk) {
    if (walk.target.room() < 2) return stop(walk, NLS_BUF_SMALL);
    const uint32_t value = loadUnit<uint32_t>(walk.source.place(), walk.order.swapSource);
    walk.source.skip(4);
    return putUtf16(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

inline bool stepUtf8ToUcs4(UnicodeWalk& walk) {
    const DecodedUtf8 character = frontUtf8({walk.source.place(), walk.source.left()});
    if (character.length == 0) return stop(walk, NLS_BAD_ARG);
    walk.source.skip(character.length);
    const uint32_t value = character.value > kLastCodePoint ? kReplacementCharacter : character.value;
    return putUcs4(walk.target, value, walk.order.swapTarget) || stop(walk, NLS_BUF_SMALL);
}

inline bool stepUtf8ToUcs2(UnicodeWalk& walk) {
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

inline bool stepUcs4ToUtf8(UnicodeWalk& walk) {
    const uint32_t value = readUcs4Folding(walk.source, walk.order.swapSource);
    return encodeCharacter(walk, value, NLS_INVALID_STRING);
}

inline bool stepUcs2ToUtf8(UnicodeWalk& walk) {
    const uint32_t value = readUtf16(walk.source, walk.order.swapSource);
    return encodeCharacter(walk, value, NLS_BAD_ARG);
}

// --- the walks

ByteView wholeUnits(ByteView bytes, std::size_t unit) {
    return bytes.first(bytes.size() - bytes.size() % unit);
}

using Step = bool (*)(UnicodeWalk&);
using WideWalk = WideTaken (*)(ByteView source, ByteSpan target, ByteOrder order);

// A few bytes, about what is odd in a block; more than is needed would be lost to the wide walk. False when the walk
// ends in them.
template <Step kStep>
bool takeExactly(UnicodeWalk& walk) {
    constexpr std::size_t kStretch = 16;
    UnicodeWalk here = walk;  // a copy of its own, which the bytes written can't alias
    const unsigned char* const until = here.source.place() + std::min(here.source.left(), kStretch);
    bool going = true;
    while (going && here.source.place() < until) going = kStep(here);
    walk = here;
    return going;
}

// The rest of a text of which the front is taken: exactly over what the wide walk left, then wide as far as the text is
// regular, and so on.
template <Step kStep>
[[gnu::noinline]] Transformed finish(WideWalk wide, ByteView source, ByteSpan target, ByteOrder order,
                                     WideTaken taken) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    for (;;) {
        walk.source.skip(taken.read);
        walk.target.advance(taken.written);
        if (!takeExactly<kStep>(walk) || walk.source.atEnd()) break;
        taken = wide({walk.source.place(), walk.source.left()}, {walk.target.place(), walk.target.room()}, order);
    }
    return {walk.status, source.size() - walk.source.left(), walk.target.written()};
}

template <Step kStep, WideWalk kBaseline, WideWalk kAvx2, WideWalk kAvx512>
Transformed transform(ByteView source, ByteSpan target, ByteOrder order) {
    const CpuLevel level = cpuLevel();
    const WideTaken taken = level == CpuLevel::avx512 ? kAvx512(source, target, order)
                            : level == CpuLevel::avx2 ? kAvx2(source, target, order)
                                                      : kBaseline(source, target, order);
    if (taken.read == source.size()) return {NLS_OK, taken.read, taken.written};
    const WideWalk wide = level == CpuLevel::avx512 ? kAvx512 : level == CpuLevel::avx2 ? kAvx2 : kBaseline;
    return finish<kStep>(wide, source, target, order, taken);
}

}  // namespace

Transformed utf16ToUcs4(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUtf16ToUcs4, utf16ToUcs4Baseline, utf16ToUcs4Avx2, utf16ToUcs4Avx512>(wholeUnits(source, 2),
                                                                                               target, order);
}

Transformed ucs4ToUtf16(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUcs4ToUtf16, ucs4ToUtf16Baseline, ucs4ToUtf16Avx2, ucs4ToUtf16Avx512>(wholeUnits(source, 4),
                                                                                               target, order);
}

Transformed utf8ToUcs4(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUtf8ToUcs4, utf8ToUcs4Baseline, utf8ToUcs4Avx2, utf8ToUcs4Avx512>(source, target, order);
}

Transformed utf8ToUcs2(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUtf8ToUcs2, utf8ToUtf16Baseline, utf8ToUtf16Avx2, utf8ToUtf16Avx512>(source, target, order);
}

Transformed ucs4ToUtf8(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUcs4ToUtf8, ucs4ToUtf8Baseline, ucs4ToUtf8Avx2, ucs4ToUtf8Avx512>(wholeUnits(source, 4),
                                                                                           target, order);
}

Transformed ucs2ToUtf8(ByteView source, ByteSpan target, ByteOrder order) {
    return transform<stepUcs2ToUtf8, utf16ToUtf8Baseline, utf16ToUtf8Avx2, utf16ToUtf8Avx512>(wholeUnits(source, 2),
                                                                                              target, order);
}

}  // namespace nls
