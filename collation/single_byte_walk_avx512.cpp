#include <algorithm>

#include "collation/equal_run.hpp"
#include "collation/single_byte_walk.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

namespace {

constexpr std::size_t kBlock = 64;

// Lanes in which a text ends, or in which the bytes differ and don't weigh the same. An expansion weighs nothing.
NLS_TARGET_AVX512 inline __mmask64 stopsOf(const WeightRows& rows, __m512i a, __m512i b) {
    const __m512i weightsA = weigh(rows, a), weightsB = weigh(rows, b);
    const __mmask64 decides = _mm512_cmpneq_epi8_mask(weightsA, weightsB) | _mm512_testn_epi8_mask(weightsA, weightsA);
    const __mmask64 ends = _mm512_testn_epi8_mask(a, a) | _mm512_testn_epi8_mask(b, b);
    return ends | (decides & _mm512_cmpneq_epi8_mask(a, b));
}

// Passes over an expansion in one text and two letters s in the other. False, and nothing passed, for anything else.
inline bool passExpansion(WeightMap weights, Text& a, Text& b) {
    const bool inA = weights.entry(*a.place) == 0;
    Text& expansion = inA ? a : b;
    Text& letters = inA ? b : a;
    const Text second{letters.place + 1, letters.limit};
    const unsigned char ofS = weights.ofLetterS();
    if (expansion.atEnd() || letters.atEnd() || second.atEnd() || ofS == 0) return false;
    if (weights.entry(*expansion.place) != 0) return false;
    if (weights.entry(*letters.place) != ofS || weights.entry(*second.place) != ofS) return false;
    expansion.place += 1;
    letters.place += 2;
    return true;
}

}  // namespace

// Calls nothing that comes back, so that a short text needs no frame.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareSingleBytesAvx512(WeightMap weights, Text a, Text b) {
    while (a.place != a.limit && b.place != b.limit) {
        std::size_t count = std::min(leftInBoth(a, b), kBlock);
        if (!blockInPage(a.place, b.place, kBlock)) [[unlikely]]
            count = std::min({count, leftInPage(a.place), leftInPage(b.place)});
        const __mmask64 all = firstLanes(count);
        const __m512i bytesA = _mm512_maskz_loadu_epi8(all, a.place), bytesB = _mm512_maskz_loadu_epi8(all, b.place);
        // A lane of which both bytes are the same, else 0: the NUL is as good as a difference.
        const __m512i same = _mm512_maskz_mov_epi8(_mm512_cmpeq_epi8_mask(bytesA, bytesB), bytesA);
        __mmask64 stops = _mm512_mask_testn_epi8_mask(all, same, same);
        if (stops != 0) {
            const std::size_t first = _tzcnt_u64(stops);
            if (const int decided = decidedByFirstPair(weights, a.place + first, b.place + first)) return decided;
            // No more than a difference in case, most likely: the next stop is looked for by weights.
            stops = all & stopsOf(rowsOf(weights), bytesA, bytesB);
            if (stops != 0) {
                const std::size_t next = _tzcnt_u64(stops);
                if (const int decided = decidedByFirstPair(weights, a.place + next, b.place + next)) return decided;
                a.place += next;
                b.place += next;
                if (!passExpansion(weights, a, b)) return compareSingleBytesPlain(weights, a, b);
                continue;
            }
        }
        a.place += count;
        b.place += count;
    }
    return decideAtEnd(a, b);
}

}  // namespace nls
