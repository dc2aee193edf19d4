// Whether a charset of UTF-8 and its case table treat ASCII as everyone expects, so that blocks of it need no look-ups:
// one byte a character, the case of A to Z and a to z, and no other forms.
#pragma once

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

inline bool isAsciiSingleByte(const nlsAttribStruct& attrib) {
    unsigned lengths = 0;
    for (unsigned byte = 0; byte < 128; ++byte) lengths |= attrib.lengthMap[byte];
    return (lengths & 0x07) == 0;
}

}  // namespace nls
