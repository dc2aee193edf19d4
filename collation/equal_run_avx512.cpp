#include <algorithm>

#include "collation/equal_run.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS std::size_t equalRunAvx512(const unsigned char* a, const unsigned char* b,
                                                                    std::size_t most) {
    constexpr std::size_t kBlock = 64;
    for (std::size_t done = 0; done < most;) {
        const std::size_t count = std::min({most - done, leftInBothPages(a + done, b + done), kBlock});
        const __mmask64 all = firstLanes(count);
        const __m512i ofA = _mm512_maskz_loadu_epi8(all, a + done), ofB = _mm512_maskz_loadu_epi8(all, b + done);
        const __m512i same = _mm512_maskz_mov_epi8(_mm512_cmpeq_epi8_mask(ofA, ofB), ofA);
        const __mmask64 stops = _mm512_mask_testn_epi8_mask(all, same, same);
        if (stops != 0) return done + _tzcnt_u64(stops);
        done += count;
    }
    return most;
}

}  // namespace nls
