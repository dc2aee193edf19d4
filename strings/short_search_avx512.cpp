#include "collation/equal_run.hpp"
#include "collation/weight_rows_avx512.hpp"
#include "strings/search.hpp"
#include "strings/short_search.hpp"

namespace nls {
namespace {

constexpr std::size_t kBlock = 64;

NLS_TARGET_AVX512 inline bool hasOnlySingleBytes(const nlsAttribStruct& attrib) {
    const unsigned char* const map = attrib.lengthMap;
    const __m512i any =
        _mm512_or_si512(_mm512_or_si512(_mm512_loadu_si512(map), _mm512_loadu_si512(map + kBlock)),
                        _mm512_or_si512(_mm512_loadu_si512(map + 2 * kBlock), _mm512_loadu_si512(map + 3 * kBlock)));
    return _mm512_test_epi8_mask(any, _mm512_set1_epi8(7)) == 0;
}

// With the map where it stands: once, that is less than to have it in registers.
NLS_TARGET_AVX512 inline __m512i entriesOf(WeightMap weights, __m512i bytes) {
    const unsigned char* const map = weights.entries();
    const __m512i low = _mm512_permutex2var_epi8(_mm512_loadu_si512(map), bytes, _mm512_loadu_si512(map + kBlock));
    const __m512i high =
        _mm512_permutex2var_epi8(_mm512_loadu_si512(map + 2 * kBlock), bytes, _mm512_loadu_si512(map + 3 * kBlock));
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
}

NLS_TARGET_AVX512 inline std::uint64_t having(WeightMap weights, __m512i entries, unsigned char byte) {
    return _mm512_cmpeq_epi8_mask(entries, _mm512_set1_epi8(static_cast<char>(weights.entry(byte))));
}

}  // namespace

// Each byte of the pattern leaves those candidates that have its entry at its distance. The first three are taken
// together: a text hardly ever goes on behind them, so that what comes can be foretold.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus searchShortAvx512(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                     const unsigned char* pattern,
                                                                     const unsigned char* text, uint16_t mode,
                                                                     uint32_t* pos, uint32_t* end,
                                                                     const unsigned char** found) {
    const std::size_t room = leftInPage(text);
    const __m512i bytes = room >= kBlock ? _mm512_loadu_si512(text) : _mm512_maskz_loadu_epi8(firstLanes(room), text);
    std::uint64_t nuls = _mm512_testn_epi8_mask(bytes, bytes);
    if (room < kBlock) nuls &= firstLanes(room);
    if (nuls == 0 || *pattern == 0 || !hasOnlySingleBytes(*locale->attrib))
        return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    const WeightMap weights = WeightMap::of(*locale->coll, mode);
    const __m512i entries = entriesOf(weights, bytes);
    const std::uint64_t inText = (nuls - 1) & ~nuls;  // the bytes in front of the first NUL
    std::uint64_t candidates = inText & having(weights, entries, pattern[0]);
    unsigned i = 1;
    if (pattern[1] != 0 && pattern[2] != 0) {
        candidates &=
            having(weights, entries, pattern[1]) >> 1 & having(weights, entries, pattern[2]) >> 2 & inText >> 2;
        i = 3;
    }
    for (; candidates != 0 && pattern[i] != 0; ++i)
        candidates &= i < kBlock ? (having(weights, entries, pattern[i]) & inText) >> i : 0;
    if (candidates == 0) {
        tellNone(pos, found);
        return NLS_OK;
    }
    const unsigned char* const start = text + _tzcnt_u64(candidates);
    tellMatch({start, start + i}, text, pos, end, found);
    return NLS_OK;
}

}  // namespace nls
