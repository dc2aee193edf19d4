#include <immintrin.h>

#include "conversion/byte_map.hpp"
#include "core/base/cpu.hpp"

namespace nls {

namespace {

struct Quarters {
    __m512i part[4];
};

NLS_TARGET_AVX512 inline __m512i mapped(const Quarters& map, __m512i bytes) {
    const __m512i low = _mm512_permutex2var_epi8(map.part[0], bytes, map.part[1]);
    const __m512i high = _mm512_permutex2var_epi8(map.part[2], bytes, map.part[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
}

}  // namespace

NLS_TARGET_AVX512 bool mapBytesAvx512(const unsigned char* map, const unsigned char* source, std::size_t count,
                                      unsigned char* target) {
    const Quarters quarters{{_mm512_loadu_si512(map), _mm512_loadu_si512(map + 64), _mm512_loadu_si512(map + 128),
                             _mm512_loadu_si512(map + 192)}};
    __m512i changed = _mm512_setzero_si512();
    std::size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        const __m512i before = _mm512_loadu_si512(source + i), after = mapped(quarters, before);
        _mm512_storeu_si512(target + i, after);
        changed = _mm512_or_si512(changed, _mm512_xor_si512(after, before));
    }
    if (i < count) {
        const __mmask64 rest = _bzhi_u64(~0ULL, static_cast<unsigned>(count - i));
        const __m512i before = _mm512_maskz_loadu_epi8(rest, source + i), after = mapped(quarters, before);
        _mm512_mask_storeu_epi8(target + i, rest, after);
        changed = _mm512_or_si512(changed, _mm512_maskz_mov_epi8(rest, _mm512_xor_si512(after, before)));
    }
    return _mm512_test_epi8_mask(changed, changed) != 0;
}

}  // namespace nls
