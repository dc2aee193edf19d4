#include "collation/byte_walk.hpp"

#include <algorithm>

#include "collation/byte_step.hpp"
#include "collation/equal_run.hpp"
#include "collation/single_byte_walk.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

namespace {

constexpr std::size_t kBlock = 64;

// A quarter of a map of the first bytes of two: their weights, and 0 elsewhere. An expansion isn't a first byte.
NLS_TARGET_AVX512 inline __m512i leadRow(WeightMap weights, Charset charset, std::size_t row) {
    const __m512i lengths = _mm512_loadu_si512(charset.lengths() + row * kBlock);
    const __mmask64 longer = _mm512_test_epi8_mask(lengths, _mm512_set1_epi8(Charset::kTrailCountBits));
    return _mm512_maskz_loadu_epi8(longer, weights.entries() + row * kBlock);
}
NLS_TARGET_AVX512 inline WeightRows leadRows(WeightMap weights, Charset charset) {
    return {{leadRow(weights, charset, 0), leadRow(weights, charset, 1), leadRow(weights, charset, 2),
             leadRow(weights, charset, 3)}};
}

// The bytes that begin a character of two wherever one may begin.
NLS_TARGET_AVX512 inline __mmask64 leadsOf(const WeightRows& leads, __m512i bytes) {
    const __m512i found = weigh(leads, bytes);
    return _mm512_test_epi8_mask(found, found);
}

// 1 if the byte in a lane is the second one of its character, else 0. In the lanes in front of it that could all be
// first bytes these pair off from the left, and whatever stands before them ends a character.
NLS_TARGET_AVX512 inline std::size_t secondAt(__mmask64 leads, std::size_t lane) {
    return (lane + _lzcnt_u64(firstLanes(lane) & ~leads)) & 1;
}

// Equal bytes, and single bytes of the same weight, in blocks.
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareInBlocks(const ByteRoute& route, Text a, Text b) {
    const WeightRows leads = leadRows(route.weights, route.charset);
    const WeightRows rows = rowsOf(route.weights);
    while (a.place != a.limit && b.place != b.limit) {
        const std::size_t count = std::min({leftInBoth(a, b), leftInBothPages(a.place, b.place), kBlock});
        const __mmask64 all = firstLanes(count);
        const __m512i bytesA = _mm512_maskz_loadu_epi8(all, a.place), bytesB = _mm512_maskz_loadu_epi8(all, b.place);
        const __mmask64 leadsA = leadsOf(leads, bytesA), leadsB = leadsOf(leads, bytesB);
        const __m512i weightsA = weigh(rows, bytesA), weightsB = weigh(rows, bytesB);
        const __mmask64 singles = _mm512_cmpeq_epi8_mask(weightsA, weightsB) &
                                  _mm512_test_epi8_mask(weightsA, weightsA) &
                                  ~(leadsA | leadsB | pairOff(leadsA, false, count).lanes);
        const __mmask64 ends = _mm512_testn_epi8_mask(bytesA, bytesA) | _mm512_testn_epi8_mask(bytesB, bytesB);
        const __mmask64 stops = all & (ends | ~(singles | _mm512_cmpeq_epi8_mask(bytesA, bytesB)));
        const std::size_t lane = std::min(std::size_t{_tzcnt_u64(stops)}, count);
        // Up to there both texts have been at the same place of their characters; go on from the beginning of one.
        const std::size_t from = lane - secondAt(leadsA, lane);
        a.place += from;
        b.place += from;
        if (stops != 0 || from == 0) return compareByWeights(route, a, b);
    }
    return decideAtEnd(a, b);
}

// The two kinds of pairs: such as stay as they are, and such as go from EUC to Shift-JIS.
enum class Pairs { raw, euc };

template <Pairs kPairs>
ByteRoute routeOf(WeightMap weights, Charset charset) {
    const nlsConvTable* const bridge = kPairs == Pairs::raw ? nullptr : SjisMemo{charset.attrib()}.conversion->table;
    return {weights, charset, SjisBridge{bridge}};
}

template <Pairs kPairs>
[[gnu::noinline]] int compareFurther(WeightMap weights, Charset charset, const unsigned char* s1,
                                     const unsigned char* s2, int32_t len1, int32_t len2) {
    return compareInBlocks(routeOf<kPairs>(weights, charset), {s1, s1 + len1}, {s2, s2 + len2});
}

// Lanes of a block in which bytes differ, or `a` ends at its NUL.
NLS_TARGET_AVX512 NLS_BLOCKS_INLINE inline __mmask64 stopsOf(const unsigned char* a, const unsigned char* b,
                                                             std::size_t count) {
    const __mmask64 all = firstLanes(count);
    const __m512i ofA = _mm512_maskz_loadu_epi8(all, a), ofB = _mm512_maskz_loadu_epi8(all, b);
    return _mm512_cmpneq_epi8_mask(ofA, ofB) | _mm512_mask_testn_epi8_mask(all, ofA, ofA);
}

// Their first difference is behind a byte that may be a first one. REQUIRES: a block holds both.
template <Pairs kPairs>
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareBehindLead(WeightMap weights, Charset charset,
                                                                                 const unsigned char* s1,
                                                                                 const unsigned char* s2, int32_t len1,
                                                                                 int32_t len2) {
    const auto count = static_cast<std::size_t>(std::min(len1, len2));
    const std::size_t lane = _tzcnt_u64(stopsOf(s1, s2, count));
    const __m512i front = _mm512_maskz_loadu_epi8(firstLanes(lane), s1);
    const std::size_t second = secondAt(leadsOf(leadRows(weights, charset), front), lane);
    int decided = 0;
    if (second == 0)
        decided = kPairs == Pairs::raw ? decidedByFirstPair(weights, s1 + lane, s2 + lane) : 0;
    else if (kPairs == Pairs::raw)
        decided = s1[lane] != 0 && s2[lane] != 0 ? orderOf(s1[lane], s2[lane]) : 0;
    else
        decided = decidedByEucCharacters(weights, charset, s1 + lane - 1, s2 + lane - 1);
    return decided != 0 ? decided : compareFurther<kPairs>(weights, charset, s1, s2, len1, len2);
}

// They are the same up to a difference in case alone. REQUIRES: a block holds both.
template <Pairs kPairs>
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareAlike(WeightMap weights, Charset charset,
                                                                            const unsigned char* s1,
                                                                            const unsigned char* s2, int32_t len1,
                                                                            int32_t len2) {
    constexpr unsigned kSingly = 6;
    unsigned singly = 0;
    __mmask64 stops = stopsOf(s1, s2, static_cast<std::size_t>(std::min(len1, len2)));
    for (; stops != 0; stops &= stops - 1) {
        const std::size_t lane = _tzcnt_u64(stops);
        const bool behindLead = lane != 0 && charset.trailCount(s1[lane - 1]) != 0;
        const bool leads = charset.trailCount(s1[lane]) + charset.trailCount(s2[lane]) != 0;
        if (++singly > kSingly || behindLead || leads) break;
        const unsigned ofA = weights.entry(s1[lane]), ofB = weights.entry(s2[lane]);
        if (s1[lane] == 0 || s2[lane] == 0 || ofA == 0 || ofB == 0) break;
        if (ofA != ofB) return ofA < ofB ? -1 : 1;
    }
    return stops == 0 && len1 == len2 ? 0 : compareFurther<kPairs>(weights, charset, s1, s2, len1, len2);
}

// One is the same as the beginning of the other, which goes on at a character, or without a bridge anywhere.
[[gnu::noinline]] int decideByRest(const unsigned char* s1, const unsigned char* s2, int32_t len1, int32_t len2) {
    const int32_t same = std::min(len1, len2);
    return decideAtEnd({s1 + same, s1 + len1}, {s2 + same, s2 + len2});
}

// Without a stack frame as long as the first difference decides.
template <Pairs kPairs>
NLS_TARGET_AVX512 NLS_BLOCKS_INLINE inline int compareShort(WeightMap weights, Charset charset, const unsigned char* s1,
                                                            const unsigned char* s2, int32_t len1, int32_t len2) {
    const auto count = static_cast<unsigned>(std::min(len1, len2));
    if (count > kBlock || !staysInPage(s1, count) || !staysInPage(s2, count))
        return compareFurther<kPairs>(weights, charset, s1, s2, len1, len2);
    const __mmask64 stops = stopsOf(s1, s2, count);
    if (stops == 0) {
        if (len1 == len2) return 0;
        const bool mayGoOn = kPairs == Pairs::euc && charset.trailCount(s1[count - 1]) != 0;
        return mayGoOn ? compareFurther<kPairs>(weights, charset, s1, s2, len1, len2)
                       : decideByRest(s1, s2, len1, len2);
    }
    const std::size_t lane = _tzcnt_u64(stops);
    if (lane != 0 && charset.trailCount(s1[lane - 1]) != 0)
        return compareBehindLead<kPairs>(weights, charset, s1, s2, len1, len2);
    if (kPairs == Pairs::raw || charset.trailCount(s1[lane]) + charset.trailCount(s2[lane]) == 0) {
        const FirstPair pair = firstPair(weights, s1 + lane, s2 + lane);
        return pair.decides() ? pair.sign() : compareAlike<kPairs>(weights, charset, s1, s2, len1, len2);
    }
    if (lane + 1 == count || s1[lane] == 0 || s2[lane] == 0)
        return compareFurther<kPairs>(weights, charset, s1, s2, len1, len2);
    const int decided = decidedByEucCharacters(weights, charset, s1 + lane, s2 + lane);
    return decided != 0 ? decided : compareFurther<kPairs>(weights, charset, s1, s2, len1, len2);
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int comparePairsAvx512(WeightMap weights, Charset charset,
                                                                const unsigned char* s1, const unsigned char* s2,
                                                                int32_t len1, int32_t len2) {
    return compareShort<Pairs::raw>(weights, charset, s1, s2, len1, len2);
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareEucAvx512(WeightMap weights, Charset charset,
                                                              const unsigned char* s1, const unsigned char* s2,
                                                              int32_t len1, int32_t len2) {
    return compareShort<Pairs::euc>(weights, charset, s1, s2, len1, len2);
}

}  // namespace nls
