// The first characters of a pattern and a text: most texts of a column differ from a pattern there, and are told apart
// before anything is prepared.
#pragma once

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

// Of a byte that is a character.
inline nlsLChar lowerFormOf(const nlsUnicodeCaseStruct& table, unsigned char byte) {
    if (byte >= 0x80) return caseFormOf(table.casePages, byte, CaseForm::lower);
    const nlsLChar form = table.casePages[0][caseIndexOf(byte, CaseForm::lower)];
    return form != 0 ? form : byte;
}

// Do the first bytes tell that the first characters differ, and is the pattern's no sign? Under the weights of byte
// tables; and where characters are compared by their own values, or with a table by their lower forms.
inline bool differAtOnce(WeightMap weights, const Charset& charset, const LikeSigns& signs, unsigned char wanted,
                         unsigned char is) {
    if (wanted == 0 || is == 0 || mayBeSign(charset, signs, wanted)) return false;
    const int ofWanted = weights.entry(wanted), ofText = weights.entry(is);
    return ((ofWanted - 1) | (ofText - 1)) >= 0 && ofWanted != ofText;  // neither is an expansion
}
inline bool differAtOnce(const nlsUnicodeCaseStruct* table, const Charset& charset, const LikeSigns& signs,
                         const unsigned char* pattern, unsigned char is) {
    const unsigned char wanted = *pattern;
    if (wanted == 0 || is == 0 || wanted == is || mayBeSign(charset, signs, wanted)) return false;
    if (table == nullptr) return true;
    // The form of a character of three bytes has three, too, and keeps the first of them.
    if (charset.trailCount(wanted) == 2) return pattern[1] != 0 && pattern[2] != 0;
    return (charset.trailCount(wanted) | charset.trailCount(is)) == 0 &&
           lowerFormOf(*table, wanted) != lowerFormOf(*table, is);
}

// Walks along both as long as neither ends, and the pattern has literals and each `single` of one byte. Where that
// doesn't tell the answer, the walk of the pattern goes on from the places it has come to. `Rule` says of two
// characters, or of two bytes that are characters, whether they are equal, or that it doesn't know.
template <typename Rule>
[[gnu::always_inline]] inline LikeAnswer openLike(const Rule& rule, const LikeSigns& signs,
                                                  const unsigned char*& pattern, const unsigned char*& text) {
    const Charset charset = rule.charset;
    if (*pattern == 0 || *text == 0) return LikeAnswer::unknown;
    for (;;) {
        const unsigned char wanted = *pattern, is = *text;
        const bool areBytes = (charset.trailCount(wanted) | charset.trailCount(is)) == 0;
        if (!mayBeSign(charset, signs, wanted)) {
            const LikeAnswer equal = areBytes ? rule.areBytesEqual(wanted, is) : rule.areEqual(pattern, text);
            if (equal != LikeAnswer::yes) return equal;
        } else if (wanted != signs.single || wanted == signs.escape || charset.trailCount(wanted) != 0) {
            return LikeAnswer::unknown;
        }
        const unsigned char* const patternNext = areBytes ? pattern + 1 : characterEnd(charset, pattern);
        const unsigned char* const textNext = areBytes ? text + 1 : characterEnd(charset, text);
        if (*textNext == 0) return *patternNext == 0 ? LikeAnswer::yes : LikeAnswer::unknown;
        if (*patternNext == 0) return LikeAnswer::no;
        pattern = patternNext;
        text = textNext;
    }
}

// The same with a `multi` behind it and a short text: `rule` is asked for the rest of both.
template <typename Rule>
[[gnu::always_inline]] inline LikeAnswer openLikeAndGoOn(const Rule& rule, const LikeSigns& signs,
                                                         const unsigned char*& pattern, const unsigned char*& text) {
    const LikeAnswer answer = openLike(rule, signs, pattern, text);
    if (answer != LikeAnswer::unknown || !isMulti(signs, *pattern) || rule.charset.trailCount(*pattern) != 0)
        return answer;
    if (pattern[1] == 0) return LikeAnswer::yes;
    if (*text == 0) return LikeAnswer::no;
    return rule.matchShort(signs, pattern + 1, text);
}

}  // namespace nls
