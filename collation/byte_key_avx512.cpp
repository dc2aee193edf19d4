#include <algorithm>

#include "collation/byte_key.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

namespace {

constexpr std::size_t kBlock = 64;
constexpr char kTrailCount = 0x07;

NLS_TARGET_AVX512 inline bool announcesNothing(const WeightRows& lengths) {
    const __m512i all = _mm512_or_si512(_mm512_or_si512(lengths.row[0], lengths.row[1]),
                                        _mm512_or_si512(lengths.row[2], lengths.row[3]));
    return _mm512_test_epi8_mask(all, _mm512_set1_epi8(kTrailCount)) == 0;
}

NLS_TARGET_AVX512 inline Run weighBytes(const WeightRows& rows, unsigned char expansion, ByteView text, ByteSpan room) {
    const unsigned char* const bytes = text.data();
    unsigned char* const key = room.data();
    Run run{0, 0};
    for (;;) {
        std::size_t count = std::min({text.size() - run.consumed, room.size() - run.written, kBlock});
        if (count == 0) return run;
        const __mmask64 all = firstLanes(count);
        const __m512i weighed = weigh(rows, _mm512_maskz_loadu_epi8(all, bytes + run.consumed));
        _mm512_mask_storeu_epi8(key + run.written, all, weighed);
        __mmask64 expansions = _mm512_mask_testn_epi8_mask(all, weighed, weighed);
        std::size_t from = 0;  // the first lane behind the last expansion
        for (; expansions != 0; expansions &= expansions - 1) {
            const std::size_t lane = _tzcnt_u64(expansions);
            run.consumed += lane - from;
            run.written += lane - from;
            from = lane + 1;
            // Where the rest of the block has no room behind it, the rest is weighed again, as far as it has.
            if (room.size() - run.written < count - from + 2) break;
            key[run.written] = key[run.written + 1] = expansion;
            run.consumed += 1;
            run.written += 2;
            const __m512i rest = _mm512_maskz_compress_epi8(all & ~firstLanes(from), weighed);
            _mm512_mask_storeu_epi8(key + run.written, firstLanes(count - from), rest);
        }
        if (expansions != 0) return run;
        run.consumed += count - from;
        run.written += count - from;
    }
}

NLS_TARGET_AVX512 inline Run weighCharacters(const WeightRows& rows, const WeightRows& lengths, ByteView text,
                                             ByteSpan room, bool& secondNext) {
    const std::size_t count = std::min(text.size(), room.size());
    for (std::size_t done = 0; done < count;) {
        const std::size_t block = std::min(count - done, kBlock);
        const __mmask64 all = firstLanes(block);
        const __m512i bytes = _mm512_maskz_loadu_epi8(all, text.data() + done);
        const __mmask64 leads = _mm512_mask_test_epi8_mask(all, weigh(lengths, bytes), _mm512_set1_epi8(kTrailCount));
        const Seconds seconds = pairOff(leads, secondNext, block);
        const __m512i weighed = _mm512_mask_mov_epi8(weigh(rows, bytes), seconds.lanes, bytes);
        _mm512_mask_storeu_epi8(room.data() + done, all, weighed);
        const __mmask64 stops = _mm512_mask_testn_epi8_mask(all, weighed, weighed);
        secondNext = stops == 0 && seconds.next;
        if (stops != 0) return {done + _tzcnt_u64(stops), done + _tzcnt_u64(stops)};
        done += block;
    }
    return {count, count};
}

}  // namespace

NLS_TARGET_AVX512 Run weighAvx512(const KeyWeights& by, ByteView text, ByteSpan room, bool& secondNext) {
    const WeightRows rows = rowsOf(by.weights), lengths = rowsOf(WeightMap{by.attrib.lengthMap});
    if (announcesNothing(lengths)) return weighBytes(rows, by.expansion, text, room);
    return weighCharacters(rows, lengths, text, room, secondNext);
}

}  // namespace nls
