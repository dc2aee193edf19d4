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

// Does one text go on with an expansion where the other has the two letters that it counts as?
inline bool weighsAsLetters(WeightMap weights, Text expansion, Text letters) {
    const Text second{letters.place + 1, letters.limit};
    if (letters.atEnd() || second.atEnd() || expansion.atEnd()) return false;
    const unsigned char ofS = weights.ofLetterS();
    return ofS != 0 && weights.entry(*expansion.place) == 0 && weights.entry(*letters.place) == ofS &&
           weights.entry(*second.place) == ofS;
}

}  // namespace

// Calls nothing that comes back, and takes the address of nothing, so that a short text needs no frame.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareSingleBytesAvx512(WeightMap weights, Text a, Text b) {
    while (a.place != a.limit && b.place != b.limit) {
        const std::size_t count = std::min({leftInBoth(a, b), leftInBothPages(a.place, b.place), kBlock});
        const __mmask64 all = firstLanes(count);
        const __m512i bytesA = _mm512_maskz_loadu_epi8(all, a.place), bytesB = _mm512_maskz_loadu_epi8(all, b.place);
        // A lane of which both bytes are the same, else 0: the NUL is as good as a difference.
        const __m512i same = _mm512_maskz_mov_epi8(_mm512_cmpeq_epi8_mask(bytesA, bytesB), bytesA);
        __mmask64 stops = _mm512_mask_testn_epi8_mask(all, same, same);
        if (stops != 0) stops = all & stopsOf(rowsOf(weights), bytesA, bytesB);  // most likely they differ in case
        const std::size_t passed = stops != 0 ? _tzcnt_u64(stops) : count;
        a.place += passed;
        b.place += passed;
        if (stops == 0) continue;
        if (const int decided = decidedByFirstPair(weights, a.place, b.place)) return decided;
        if (weighsAsLetters(weights, a, b)) {
            a.place += 1;
            b.place += 2;
        } else if (weighsAsLetters(weights, b, a)) {
            a.place += 2;
            b.place += 1;
        } else {  // an end, or an expansion that meets something else
            return compareSingleBytesPlain(weights, a, b);
        }
    }
    return decideAtEnd(a, b);
}

namespace {

[[gnu::noinline]] NLS_TARGET_AVX512 nlsStatus compareInBlocks(WeightMap weights, uint16_t* result,
                                                              const unsigned char* s1, const unsigned char* s2,
                                                              int32_t len1, int32_t len2) {
    *result = static_cast<uint16_t>(compareSingleBytesAvx512(weights, {s1, s1 + len1}, {s2, s2 + len2}));
    return NLS_OK;
}

// One is the same as the beginning of the other.
[[gnu::noinline]] nlsStatus decideByRest(uint16_t* result, const unsigned char* s1, const unsigned char* s2,
                                         int32_t len1, int32_t len2) {
    const int32_t same = std::min(len1, len2);
    *result = static_cast<uint16_t>(decideAtEnd({s1 + same, s1 + len1}, {s2 + same, s2 + len2}));
    return NLS_OK;
}

}  // namespace

// Its fast way is without a loop and without a stack frame.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus compareLimitedAvx512(WeightMap weights, uint16_t* result,
                                                                        const unsigned char* s1,
                                                                        const unsigned char* s2, int32_t len1,
                                                                        int32_t len2) {
    const auto most = static_cast<unsigned>(std::min(len1, len2));
    if (most > kBlock || !staysInPage(s1, most) || !staysInPage(s2, most))
        return compareInBlocks(weights, result, s1, s2, len1, len2);
    const __mmask64 all = firstLanes(most);
    const __m512i bytesA = _mm512_maskz_loadu_epi8(all, s1), bytesB = _mm512_maskz_loadu_epi8(all, s2);
    const __mmask64 stops = _mm512_cmpneq_epi8_mask(bytesA, bytesB) | _mm512_mask_testn_epi8_mask(all, bytesA, bytesA);
    if (stops == 0) {
        if (len1 != len2) return decideByRest(result, s1, s2, len1, len2);
        *result = 0;
        return NLS_OK;
    }
    const std::size_t first = _tzcnt_u64(stops);
    const FirstPair pair = firstPair(weights, s1 + first, s2 + first);
    if (!pair.decides()) return compareInBlocks(weights, result, s1, s2, len1, len2);
    *result = static_cast<uint16_t>(pair.sign());
    return NLS_OK;
}

}  // namespace nls
