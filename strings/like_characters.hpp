// Characters of one byte and more, compared in line with the walk of LIKE as far as the rule for most of them goes; the
// comparison itself decides the rest.
// Tested by tests/strings/like_test.cpp.
#pragma once

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/cpu.hpp"
#include "strings/like_lanes.hpp"
#include "strings/like_opening.hpp"
#include "strings/like_passing.hpp"

namespace nls {

// `Rule` says whether two characters are equal, neither of them the end of a text, or that it doesn't know; which first
// bytes the characters have that may equal one; and, if it can, what follows the first `multi` of a short text.
template <typename Rule>
class LikeCharacters {
public:
    LikeCharacters(const Rule& rule, const CharacterEquality& equality) : rule_(rule), equality_(equality) {}

    LCharRead read(const unsigned char* place) const {
        if (*place != 0 && rule_.charset.trailCount(*place) == 0) return {*place, place + 1};
        return readLChar(rule_.charset, place);
    }
    const unsigned char* next(const unsigned char* place) const { return characterEnd(rule_.charset, place); }

    Compared compare(const unsigned char* a, const unsigned char* b) const {
        const LikeAnswer equal = *a != 0 && *b != 0 ? rule_.areEqual(a, b) : LikeAnswer::unknown;
        if (equal == LikeAnswer::unknown) return equality_(a, b);
        return {NLS_OK, equal == LikeAnswer::yes ? 0 : 1};
    }

    LikeAnswer matchShort(const LikeSigns& signs, const unsigned char* pattern, const unsigned char* text) const {
        return rule_.matchShort(signs, pattern, text);
    }
    const unsigned char* lastCharacters(std::size_t count, const unsigned char* text) const {
        return lastCharactersOf(rule_.charset, count, text);
    }

    LikePassing<LikeCharacters> passing(const LikeSigns& signs, const LikeSegment& segment) const {
        return {*this, signs, segment};
    }
    const Charset& charset() const { return rule_.charset; }
    FirstBytes mayEqual(const unsigned char* literal) const { return rule_.mayEqual(literal); }

private:
    Rule rule_;
    CharacterEquality equality_;
};

// Byte tables that compare a charset as it is: the weight of the first byte and then the second byte.
struct TableRule {
    Charset charset;
    WeightMap weights;

    LikeAnswer areBytesEqual(unsigned char a, unsigned char b) const {
        const unsigned ofA = weights.entry(a), ofB = weights.entry(b);
        if (ofA == 0 || ofB == 0) return LikeAnswer::unknown;  // an expansion
        return ofA == ofB ? LikeAnswer::yes : LikeAnswer::no;
    }
    LikeAnswer areEqual(const unsigned char* a, const unsigned char* b) const {
        const LikeAnswer firstBytes = areBytesEqual(*a, *b);
        const unsigned trailsA = charset.trailCount(*a), trailsB = charset.trailCount(*b);
        if (firstBytes != LikeAnswer::yes || (trailsA | trailsB) == 0) return firstBytes;
        if (trailsA != 1 || trailsB != 1 || a[1] == 0 || b[1] == 0) return LikeAnswer::unknown;
        return a[1] == b[1] ? LikeAnswer::yes : LikeAnswer::no;
    }
    FirstBytes mayEqual(const unsigned char* literal) const { return bytesWeighing(weights, weights.entry(*literal)); }
    LikeAnswer matchShort(const LikeSigns& signs, const unsigned char* pattern, const unsigned char* text) const {
        return cpuLevel() < CpuLevel::avx512 ? matchPairsPlain(charset, weights, signs, pattern, text)
                                             : matchPairsAvx512(charset, weights, signs, pattern, text);
    }
};

// Characters by their own values: byte by byte.
struct ValueRule {
    Charset charset;

    LikeAnswer areBytesEqual(unsigned char a, unsigned char b) const {
        return a == b ? LikeAnswer::yes : LikeAnswer::no;
    }
    LikeAnswer areEqual(const unsigned char* a, const unsigned char* b) const {
        if (*a != *b) return LikeAnswer::no;
        for (unsigned left = charset.trailCount(*a); left != 0; --left) {
            if (*++a == 0 || *++b == 0) return LikeAnswer::unknown;
            if (*a != *b) return LikeAnswer::no;
        }
        return LikeAnswer::yes;
    }
    FirstBytes mayEqual(const unsigned char* literal) const {
        FirstBytes bytes;
        bytes.add(*literal);
        return bytes;
    }
    LikeAnswer matchShort(const LikeSigns& signs, const unsigned char* pattern, const unsigned char* text) const {
        return cpuLevel() < CpuLevel::avx512 ? matchUtf8Plain(charset, nullptr, signs, pattern, text)
                                             : matchUtf8Avx512(charset, nullptr, signs, pattern, text);
    }
};

// In line with the walk, for the characters that most text has.
inline nlsLChar lowerFormAt(const nlsUnicodeCaseStruct& table, const Charset& charset, const unsigned char* place) {
    const unsigned char first = *place;
    const unsigned trails = charset.trailCount(first);
    if (trails == 0) return lowerFormOf(table, first);
    const nlsLChar two = nlsLChar{first} << 8 | place[1];
    if (trails == 1 && place[1] != 0) return caseFormOf(table.casePages, two, CaseForm::lower);
    if (trails == 2 && place[1] != 0 && place[2] != 0)
        return caseFormOf(table.casePages, two << 8 | place[2], CaseForm::lower);
    return caseFormOf(table.casePages, readLChar(charset, place).value, CaseForm::lower);
}

// The same by their lower forms.
struct LowerFormRule {
    Charset charset;
    const nlsUnicodeCaseStruct* table;

    LikeAnswer areBytesEqual(unsigned char a, unsigned char b) const {
        return lowerFormOf(*table, a) == lowerFormOf(*table, b) ? LikeAnswer::yes : LikeAnswer::no;
    }
    LikeAnswer areEqual(const unsigned char* a, const unsigned char* b) const {
        return lowerFormAt(*table, charset, a) == lowerFormAt(*table, charset, b) ? LikeAnswer::yes : LikeAnswer::no;
    }
    FirstBytes mayEqual(const unsigned char* literal) const {
        return bytesOfForm(*table, charset, lowerFormAt(*table, charset, literal));
    }
    LikeAnswer matchShort(const LikeSigns& signs, const unsigned char* pattern, const unsigned char* text) const {
        return cpuLevel() < CpuLevel::avx512 ? matchUtf8Plain(charset, table, signs, pattern, text)
                                             : matchUtf8Avx512(charset, table, signs, pattern, text);
    }
};

}  // namespace nls
