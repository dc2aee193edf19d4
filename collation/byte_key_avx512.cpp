#include "collation/byte_key.hpp"
#include "collation/weight_rows_avx512.hpp"

namespace nls {

NLS_TARGET_AVX512 std::size_t weighBytesAvx512(WeightMap weights, const unsigned char* bytes, std::size_t count,
                                               unsigned char* key) {
    constexpr std::size_t kBlock = 64;
    const WeightRows rows = rowsOf(weights);
    for (std::size_t done = 0; done < count; done += kBlock) {
        const __mmask64 all = firstLanes(count - done < kBlock ? count - done : kBlock);
        const __m512i weighed = weigh(rows, _mm512_maskz_loadu_epi8(all, bytes + done));
        _mm512_mask_storeu_epi8(key + done, all, weighed);
        const __mmask64 expansions = _mm512_mask_testn_epi8_mask(all, weighed, weighed);
        if (expansions != 0) return done + _tzcnt_u64(expansions);
    }
    return count;
}

}  // namespace nls
