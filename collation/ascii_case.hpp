// Whether a charset of UTF-8 and its case table treat ASCII as everyone expects, so that blocks of it need no look-ups:
// one byte a character, the case of A to Z and a to z, and no other forms.
#pragma once

#include <array>
#include <cstring>

#include "convmap/case_pages.hpp"
#include "core/base/views.hpp"
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

// Whether each of the first `count` byte values is a character of its own. REQUIRES: count is a multiple of 32.
inline bool areSingleBytes(const nlsAttribStruct& attrib, unsigned count) {
    uint64_t lengths[4] = {};  // four at once: a chain of 32 "or" would take longer than all the rest of a short text
    for (unsigned byte = 0; byte < count; byte += 32)
        for (unsigned i = 0; i < 4; ++i) lengths[i] |= loadWord<uint64_t>(attrib.lengthMap + byte + 8 * i);
    return ((lengths[0] | lengths[1] | lengths[2] | lengths[3]) & 0x0707070707070707U) == 0;
}

inline bool isAsciiSingleByte(const nlsAttribStruct& attrib) {
    return areSingleBytes(attrib, 128);
}

}  // namespace nls
