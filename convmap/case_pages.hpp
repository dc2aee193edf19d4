// Where a Unicode case table keeps the forms of a character: shared by those who build one and those who look up.
//
// The number of a character is its UTF-8 bytes, one to four, as a big-endian number. From it a key is made, and from
// the key a page and an index:
//
//   character                              number V          key            page
//   one byte                               00..7F            V              00
//   two bytes                              C280..DFBF        V              C2..DF, the first byte
//   three bytes, E1                        E18080..E1BFBF    V - E17F80     01..40
//   three bytes, E2                        E28080..E2BFBF    V - E23F80     41..80
//   three bytes, EF                        EF8080..EFBFBF    V - EEFF80     81..C0
//   other three bytes, four bytes          anything          no key
//
// The page is bits 8 to 15 of the key, the column bits 0 to 6. The upper-case form of a character stands at its column,
// the lower-case form half a page later; half a page is 128 entries on page 0 and 64 on the others. An entry is the low
// 16 bits of the number of the form, and the first byte of a three-byte character is that of the character looked up;
// 0 means that there is no such form.
//
// Text may be broken, and a byte that can't follow gives a column of 64 or more. Such a look-up stays inside the page:
// behind its end there is no form. Tested by tests/convmap/case_table_test.cpp.
#pragma once

#include <cstdint>

#include "nls/records.h"

namespace nls {

enum class CaseForm : unsigned { upper = 0, lower = 1 };

inline constexpr unsigned kCasePages = 256;
inline constexpr unsigned kAsciiPageEntries = 256;  // on page 0
inline constexpr unsigned kCasePageEntries = 128;   // on every other page

// The page of all characters without forms: large enough to stand on any place, page 0 too.
alignas(64) inline constexpr uint16_t kNoCasePage[kAsciiPageEntries] = {};

// The first byte of a three-byte character, at its place in the number; 0 for one of one or two bytes.
constexpr uint32_t caseTopOf(uint32_t number) {
    return number & 0xFFFF0000U;
}

struct CaseKey {
    bool exists;
    uint32_t key;
};

// For a look-up: not every character has a key.
constexpr CaseKey caseKeyOf(uint32_t number) {
    switch (caseTopOf(number)) {
        case 0:
            return {true, number};
        case 0xE10000U:
            return {true, number - 0xE17F80U};
        case 0xE20000U:
            return {true, number - 0xE23F80U};
        case 0xEF0000U:
            return {true, number - 0xEEFF80U};
        default:
            return {false, 0};
    }
}

// For building: a character without a key gets the low 16 bits of its number, so its forms go to a page of others. No
// look-up of the character finds them.
constexpr uint32_t caseKeyForBuilding(uint32_t number) {
    const CaseKey found = caseKeyOf(number);
    return found.exists ? found.key : number & 0xFFFFU;
}

constexpr unsigned casePageOf(uint32_t key) {
    return key >> 8 & 0xFFU;
}
constexpr unsigned entriesOfCasePage(unsigned page) {
    return page == 0 ? kAsciiPageEntries : kCasePageEntries;
}
// Not always inside the page: see above.
constexpr unsigned caseIndexOf(uint32_t key, CaseForm form) {
    return (key & 0x7FU) + static_cast<unsigned>(form) * (entriesOfCasePage(casePageOf(key)) / 2);
}

// The number of the form of a character; the character's own where it has none.
constexpr uint32_t caseFormOf(const uint16_t* const (&pages)[kCasePages], uint32_t number, CaseForm form) {
    const CaseKey found = caseKeyOf(number);
    if (!found.exists) return number;
    const unsigned page = casePageOf(found.key);
    const unsigned index = caseIndexOf(found.key, form);
    if (index >= entriesOfCasePage(page)) return number;
    const uint16_t entry = pages[page][index];
    return entry == 0 ? number : caseTopOf(number) + entry;
}

// The case table of a locale whose charset is UTF-8, and of no other.
inline const nlsUnicodeCaseStruct& unicodeCaseTable(const nlsCaseStruct& table) {
    return reinterpret_cast<const nlsUnicodeCaseStruct&>(table);
}

static_assert(caseIndexOf(0x61, CaseForm::upper) == 0x61 && caseIndexOf(0x41, CaseForm::lower) == 0x41 + 128);
static_assert(casePageOf(0xC3A9) == 0xC3 && caseIndexOf(0xC3A9, CaseForm::upper) == 0x29 &&
              caseIndexOf(0xC3A9, CaseForm::lower) == 0x69);
static_assert(caseKeyOf(0xE1B880).key == 0x3900 && caseKeyOf(0xEFBCA1).key == 0xBD21);
static_assert(!caseKeyOf(0xEA9980).exists && caseKeyForBuilding(0xEA9980) == 0x9980 && !caseKeyOf(0xF0909080).exists);

}  // namespace nls
