// The wide walks of the Unicode transforms, one set for each level of the processor.
//
// Each takes well-formed text off the front of the source and stops where it meets something odd, where the room might
// not do, or at the end; it may take nothing at all. What it took is converted exactly as the exact walk would have, in
// bytes and positions, and nothing behind the last byte written is touched. None sets a status.
#pragma once

#include "conversion/unicode_walk.hpp"

namespace nls {

// Plain x86-64: runs of ASCII, and of units without surrogates between UTF-16 and UCS4.
UnicodeWalk utf8ToUtf16Baseline(UnicodeWalk walk);
UnicodeWalk utf8ToUcs4Baseline(UnicodeWalk walk);
UnicodeWalk utf16ToUtf8Baseline(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf8Baseline(UnicodeWalk walk);
UnicodeWalk utf16ToUcs4Baseline(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf16Baseline(UnicodeWalk walk);

// All well-formed text.
UnicodeWalk utf8ToUtf16Avx2(UnicodeWalk walk);
UnicodeWalk utf8ToUcs4Avx2(UnicodeWalk walk);
UnicodeWalk utf16ToUtf8Avx2(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf8Avx2(UnicodeWalk walk);
UnicodeWalk utf16ToUcs4Avx2(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf16Avx2(UnicodeWalk walk);

UnicodeWalk utf8ToUtf16Avx512(UnicodeWalk walk);
UnicodeWalk utf8ToUcs4Avx512(UnicodeWalk walk);
UnicodeWalk utf16ToUtf8Avx512(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf8Avx512(UnicodeWalk walk);
UnicodeWalk utf16ToUcs4Avx512(UnicodeWalk walk);
UnicodeWalk ucs4ToUtf16Avx512(UnicodeWalk walk);

}  // namespace nls
