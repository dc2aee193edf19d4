#include "strings/utf8_case.hpp"

#include <emmintrin.h>

namespace nls {

std::size_t mapAsciiCase(CaseForm form, const unsigned char* source, std::size_t count, unsigned char* target) {
    // The 26 letters are moved to the lowest of the signed bytes.
    const __m128i toLowest = _mm_set1_epi8(static_cast<char>(0x80 - (form == CaseForm::lower ? 'A' : 'a')));
    const __m128i behindLetters = _mm_set1_epi8(-128 + 26), caseBit = _mm_set1_epi8(0x20);
    std::size_t done = 0;
    for (; count - done >= kAsciiBlock; done += kAsciiBlock) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + done));
        if (_mm_movemask_epi8(bytes) != 0) break;
        const __m128i letters = _mm_cmplt_epi8(_mm_add_epi8(bytes, toLowest), behindLetters);
        const __m128i mapped = _mm_xor_si128(bytes, _mm_and_si128(letters, caseBit));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + done), mapped);
    }
    return done;
}

}  // namespace nls
