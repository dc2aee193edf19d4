// Whether a charset of UTF-8 and its case table treat ASCII as everyone expects, so that blocks of it need no look-ups:
// one byte a character, the case of A to Z and a to z, and no other forms.
#pragma once

#include <emmintrin.h>

#include <array>
#include <cstring>

#include "convmap/case_pages.hpp"
#include "nls/records.h"

namespace nls {

// The half of page 0 for one form.
using AsciiForms = std::array<uint16_t, kAsciiPageEntries / 2>;

constexpr AsciiForms plainAsciiForms(CaseForm form) {
    AsciiForms forms{};
    for (unsigned i = 0; i < 26; ++i) {
        const auto upper = static_cast<uint16_t>('A' + i), lower = static_cast<uint16_t>('a' + i);
        if (form == CaseForm::lower) forms[upper] = lower;
        if (form == CaseForm::upper) forms[lower] = upper;
    }
    return forms;
}

alignas(64) inline constexpr AsciiForms kPlainAsciiForms[2] = {plainAsciiForms(CaseForm::upper),
                                                               plainAsciiForms(CaseForm::lower)};

inline bool hasPlainAsciiForms(const uint16_t* const (&pages)[kCasePages], CaseForm form) {
    const AsciiForms& plain = kPlainAsciiForms[static_cast<unsigned>(form)];
    return std::memcmp(pages[0] + caseIndexOf(0, form), plain.data(), sizeof plain) == 0;
}

// Whether each of the first kCount byte values is a character of its own. Two sums at once, because in a short text one
// chain of "or" would take longer than all the rest.
template <unsigned kCount>
inline bool areSingleBytes(const nlsAttribStruct& attrib) {
    static_assert(kCount % 32 == 0);
    const auto* const block = reinterpret_cast<const __m128i*>(attrib.lengthMap);
    __m128i even = _mm_setzero_si128(), odd = even;
#pragma GCC unroll 8
    for (unsigned i = 0; i < kCount / 16; i += 2) {
        even = _mm_or_si128(even, _mm_loadu_si128(block + i));
        odd = _mm_or_si128(odd, _mm_loadu_si128(block + i + 1));
    }
    const __m128i trails = _mm_and_si128(_mm_or_si128(even, odd), _mm_set1_epi8(0x07));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(trails, _mm_setzero_si128())) == 0xFFFF;
}

inline bool isAsciiSingleByte(const nlsAttribStruct& attrib) {
    return areSingleBytes<128>(attrib);
}

}  // namespace nls
