// The wide walks of the Unicode transforms, one set for each level of the processor.
//
// Each takes well-formed text off the front of the source and stops where it meets something odd, where the room might
// not do, or at the end; it may take nothing at all. What it took is converted exactly as the exact walk would have, in
// bytes and positions, and nothing behind the last byte written is touched. None sets a status.
#pragma once

#include <cstddef>

#include "conversion/converted.hpp"
#include "conversion/unicode_walk.hpp"
#include "core/base/views.hpp"

namespace nls {

// Bytes of whole characters read, and bytes written. Both fit into registers, as do the arguments: a call on a short
// text costs no detour through memory.
struct WideTaken {
    std::size_t read, written;
};
inline WideTaken takenBy(const UnicodeWalk& walk, ByteView source) {
    return {source.size() - walk.source.left(), walk.target.written()};
}

// Plain x86-64: runs of ASCII, and of units without surrogates between UTF-16 and UCS4.
WideTaken utf8ToUtf16Baseline(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf8ToUcs4Baseline(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUtf8Baseline(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf8Baseline(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUcs4Baseline(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf16Baseline(ByteView source, ByteSpan target, ByteOrder order);

// All well-formed text.
WideTaken utf8ToUtf16Avx2(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf8ToUcs4Avx2(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUtf8Avx2(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf8Avx2(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUcs4Avx2(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf16Avx2(ByteView source, ByteSpan target, ByteOrder order);

WideTaken utf8ToUtf16Avx512(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf8ToUcs4Avx512(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUtf8Avx512(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf8Avx512(ByteView source, ByteSpan target, ByteOrder order);
WideTaken utf16ToUcs4Avx512(ByteView source, ByteSpan target, ByteOrder order);
WideTaken ucs4ToUtf16Avx512(ByteView source, ByteSpan target, ByteOrder order);

}  // namespace nls
