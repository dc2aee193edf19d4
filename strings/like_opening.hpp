// The first characters of a pattern and a text: most texts of a column differ from a pattern there, and are told apart
// before anything is prepared.
#pragma once

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/weights.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "strings/like_pattern.hpp"

namespace nls {

// Whether the character that begins with `first` may have the value of a sign. One that the NUL cuts short may be a
// single byte, and one of five bytes and more is "?".
inline bool mayBeSign(const Charset& charset, const LikeSigns& signs, unsigned char first) {
    constexpr unsigned kLongestTrail = 3;
    const unsigned trails = charset.trailCount(first);
    if (trails > kLongestTrail || (trails != 0 && (signs.escape | signs.single | signs.multi) > 0xFF)) return true;
    return first == signs.escape || first == signs.single || first == signs.multi;
}

// Do the first bytes tell that the first characters differ, and is the pattern's no sign? Neither text has ended there,
// and both weigh something. REQUIRES: the weights are those of byte tables that compare the charset as it is.
inline bool differAtOnce(WeightMap weights, const Charset& charset, const LikeSigns& signs, unsigned char wanted,
                         unsigned char is) {
    if (wanted == 0 || is == 0 || mayBeSign(charset, signs, wanted)) return false;
    const unsigned ofWanted = weights.entry(wanted), ofText = weights.entry(is);
    return ofWanted != ofText && ofWanted != 0 && ofText != 0;
}

// In line with the walk, for the characters that most text has.
inline nlsLChar lowerFormAt(const nlsUnicodeCaseStruct& table, const Charset& charset, const unsigned char* place) {
    const unsigned char first = *place;
    const unsigned trails = charset.trailCount(first);
    if (trails == 0 && first < 0x80) {
        const nlsLChar form = table.casePages[0][caseIndexOf(first, CaseForm::lower)];
        return form != 0 ? form : first;
    }
    if (trails == 1 && place[1] != 0)
        return caseFormOf(table.casePages, nlsLChar{first} << 8 | place[1], CaseForm::lower);
    return caseFormOf(table.casePages, readLChar(charset, place).value, CaseForm::lower);
}

// The same where characters are compared by their own values: byte by byte, or with a table by their lower forms.
inline bool differAtOnce(const nlsUnicodeCaseStruct* table, const Charset& charset, const LikeSigns& signs,
                         const unsigned char* pattern, const unsigned char* text) {
    const unsigned char wanted = *pattern, is = *text;
    if (wanted == 0 || is == 0 || mayBeSign(charset, signs, wanted)) return false;
    const bool single = charset.trailCount(wanted) == 0;
    if (table == nullptr) return wanted != is || (!single && pattern[1] != 0 && text[1] != 0 && pattern[1] != text[1]);
    if (wanted == is && single) return false;
    return lowerFormAt(*table, charset, pattern) != lowerFormAt(*table, charset, text);
}

// Passes over each `single` of one byte that a pattern begins with, but for its last element, and over the characters
// that they take.
inline void passSingles(const Charset& charset, const LikeSigns& signs, const unsigned char*& pattern,
                        const unsigned char*& text) {
    while (*pattern == signs.single && *pattern != signs.escape && charset.trailCount(*pattern) == 0 && *pattern != 0 &&
           pattern[1] != 0 && *text != 0) {
        ++pattern;
        text = characterEnd(charset, text);
    }
}

}  // namespace nls
