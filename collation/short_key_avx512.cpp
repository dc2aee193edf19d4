#include <algorithm>

#include "collation/equal_run.hpp"
#include "collation/short_key.hpp"
#include "collation/weight_rows_avx512.hpp"
#include "core/base/charset.hpp"

namespace nls {

namespace {

// The bytes of a text, 0 in all lanes behind it.
struct Lanes {
    __m512i bytes;
    std::size_t count;  // kNoShortKey: no
};

// The same with the second bytes that the bridge has found; each stands behind its first byte.
struct BridgedLanes {
    Lanes text;
    __mmask64 seconds;
};

NLS_TARGET_AVX512 inline __m512i all(unsigned byte) {
    return _mm512_set1_epi8(static_cast<char>(byte));
}
NLS_TARGET_AVX512 inline __mmask64 within(__m512i bytes, unsigned first, unsigned last) {
    return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, all(first)), all(last - first));
}

// How many lanes are left if those at the end that hold a blank are not counted.
NLS_TARGET_AVX512 inline std::size_t withoutBlanks(__m512i bytes, std::size_t count) {
    return kShortKeyRoom - _lzcnt_u64(_mm512_mask_cmpneq_epu8_mask(firstLanes(count), bytes, all(' ')));
}

// The rule of conversion/jis.hpp: a pair whose second byte is outside the grid stays as it is.
NLS_TARGET_AVX512 inline BridgedLanes eucToSjis(Lanes text) {
    constexpr unsigned kKana = 0x8E;
    const __m512i bytes = text.bytes;
    const __mmask64 grid = within(bytes, 0xA1, 0xFE), kana = _mm512_cmpeq_epi8_mask(bytes, all(kKana));
    const Seconds seconds = pairOff(grid | kana, false, text.count + (text.count == 0));
    // What else could be a first byte is one.
    if ((kana & ~seconds.lanes) != 0 || seconds.next) return {{bytes, kNoShortKey}, 0};
    const __mmask64 trails = seconds.lanes & grid, leads = trails >> 1;
    const __mmask64 oddRows = _mm512_mask_test_epi8_mask(leads, bytes, all(1)) << 1;  // those of their second bytes
    // (row + 1) / 2 + 0x70, 0xB0 from row 0x5F on; a row is its byte less 0x80.
    const __m512i halves = _mm512_avg_epu8(bytes, _mm512_setzero_si512());  // with 0x40 too many
    const __mmask64 highRows = _mm512_cmpge_epu8_mask(bytes, all(0xDF));
    const __m512i newLeads = _mm512_add_epi8(halves, _mm512_mask_mov_epi8(all(0x30), highRows, all(0x70)));
    // A column is its byte less 0x80. Even row: 0x7E more; odd row: 0x1F, and 0x20 from column 0x60 on.
    const __mmask64 highColumns = _mm512_cmpge_epu8_mask(bytes, all(0xE0));
    const __m512i inOddRow = _mm512_mask_mov_epi8(all(0x9F), highColumns, all(0xA0));
    const __m512i newTrails = _mm512_add_epi8(bytes, _mm512_mask_mov_epi8(all(0xFE), oddRows, inOddRow));
    const __m512i sjis = _mm512_mask_mov_epi8(_mm512_mask_mov_epi8(bytes, leads, newLeads), trails, newTrails);
    return {{sjis, text.count}, trails};
}

// Each of the lanes `expansions` twice, as the byte for it.
NLS_TARGET_AVX512 inline Lanes expand(Lanes weighed, __mmask64 expansions, unsigned char byte) {
    const std::size_t count = weighed.count + static_cast<std::size_t>(_mm_popcnt_u64(expansions));
    if (count >= kShortKeyRoom || byte == 0) return {weighed.bytes, kNoShortKey};
    const __m512i halves = _mm512_mask_mov_epi8(weighed.bytes, expansions, all(byte));
    __mmask64 others = ~__mmask64{0};  // lanes that aren't the second halves
    for (std::size_t before = 1; expansions != 0; expansions &= expansions - 1, ++before)
        others &= ~(__mmask64{1} << (_tzcnt_u64(expansions) + before));
    const __m512i expanded = _mm512_mask_expand_epi8(all(byte), others, halves);
    return {_mm512_maskz_mov_epi8(firstLanes(count), expanded), count};
}

// The lanes of second bytes, if `leads` could be first bytes. On the bridge they are mostly known.
NLS_TARGET_AVX512 inline __mmask64 secondsOf(__mmask64 leads, __mmask64 bridged) {
    if ((leads & ~bridged) == bridged >> 1) return bridged;
    return pairOff(leads, false, kShortKeyRoom).lanes;
}

NLS_TARGET_AVX512 inline Lanes weighAll(const ShortKey& by, Lanes text, __mmask64 bridged) {
    const WeightRows lengths = rowsOf(by.attrib.lengthMap);
    const __m512i anyLength = _mm512_or_si512(_mm512_or_si512(lengths.row[0], lengths.row[1]),
                                              _mm512_or_si512(lengths.row[2], lengths.row[3]));
    const __m512i trailCounts = all(Charset::kTrailCountBits);
    const __mmask64 inText = firstLanes(text.count);
    __m512i weighed = _mm512_maskz_mov_epi8(inText, weigh(rowsOf(by.weights), text.bytes));
    __mmask64 leads = 0;
    if (_mm512_test_epi8_mask(anyLength, trailCounts) != 0) {
        leads = _mm512_mask_test_epi8_mask(inText, weigh(lengths, text.bytes), trailCounts);
        const __mmask64 seconds = by.fromEuc ? secondsOf(leads, bridged) : pairOff(leads, false, kShortKeyRoom).lanes;
        weighed = _mm512_mask_mov_epi8(weighed, seconds & inText, text.bytes);
    }
    const __mmask64 nothing = _mm512_mask_testn_epi8_mask(inText, weighed, weighed);
    if (nothing == 0) return {weighed, text.count};
    if ((nothing & leads) != 0) return {weighed, kNoShortKey};
    return expand({weighed, text.count}, nothing, by.expansion);
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS std::size_t shortKeyAvx512(const ShortKey& by, const unsigned char* src,
                                                                    unsigned char* key) {
    const __mmask64 readable = firstLanes(std::min(leftInPage(src), kShortKeyRoom));
    const __m512i bytes = _mm512_maskz_loadu_epi8(readable, src);
    const __mmask64 nuls = _mm512_mask_testn_epi8_mask(readable, bytes, bytes);
    if (nuls == 0) return kNoShortKey;
    std::size_t count = _tzcnt_u64(nuls);
    if (by.trimsText) count = withoutBlanks(bytes, count);
    BridgedLanes lanes{{_mm512_maskz_mov_epi8(firstLanes(count), bytes), count}, 0};
    if (by.fromEuc) lanes = eucToSjis(lanes.text);
    if (lanes.text.count == kNoShortKey) return kNoShortKey;
    const Lanes weighed = weighAll(by, lanes.text, lanes.seconds);
    if (weighed.count == kNoShortKey) return kNoShortKey;
    const std::size_t kept = by.trimsKey ? withoutBlanks(weighed.bytes, weighed.count) : weighed.count;
    // With the NUL, and others for what is left out.
    _mm512_mask_storeu_epi8(key, firstLanes(weighed.count + 1), _mm512_maskz_mov_epi8(firstLanes(kept), weighed.bytes));
    return kept;
}

}  // namespace nls
