#include "conversion/byte_map.hpp"
#include "conversion/byte_rows_avx2.hpp"

namespace nls {

NLS_TARGET_AVX2 bool mapBytesAvx2(const unsigned char* map, const unsigned char* source, std::size_t count,
                                  unsigned char* target) {
    const ByteRows low = byteRows(map, map + 64), high = byteRows(map + 128, map + 192);
    const __m256i highBit = _mm256_set1_epi8(-128);
    __m256i changed = _mm256_setzero_si256();
    std::size_t i = 0;
    for (; i + 32 <= count; i += 32) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + i));
        // Each half yields 0 for the bytes of the other.
        const __m256i mapped = _mm256_or_si256(lookUp(low, bytes), lookUp(high, _mm256_xor_si256(bytes, highBit)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + i), mapped);
        changed = _mm256_or_si256(changed, _mm256_xor_si256(mapped, bytes));
    }
    const bool tailChanged = mapBytesPlain(map, source + i, count - i, target + i);
    return tailChanged || _mm256_testz_si256(changed, changed) == 0;
}

}  // namespace nls
