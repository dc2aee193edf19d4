// Ways in which characters are equal, one for each family of charset and collation, as far as a search can do better
// than to compare character by character through the whole of the collation.
//
// Each knows next(place), equal(pattern, text) and order(a, b) as strings/two_way.hpp wants them, of whole characters.
// `REQUIRES` tells where it gives the answers of CharacterEquality.
#pragma once

#include <cstring>

#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "collation/weights.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"

namespace nls {

inline int orderOfNumbers(unsigned a, unsigned b) {
    return int{a > b} - int{a < b};
}

// Single bytes by their map entries. REQUIRES: equalByEntries.
class ByteRule {
public:
    explicit ByteRule(WeightMap weights) : weights_(weights) {}

    const unsigned char* next(const unsigned char* place) const { return place + 1; }
    bool equal(const unsigned char* p, const unsigned char* t) const {
        return weights_.entry(*p) == weights_.entry(*t);
    }
    int order(const unsigned char* a, const unsigned char* b) const {
        return orderOfNumbers(weights_.entry(*a), weights_.entry(*b));
    }
    WeightMap weights() const { return weights_; }

private:
    WeightMap weights_;
};

// Byte tables with characters of one and two bytes: the entry of the first byte, and the second byte as it is.
// REQUIRES: characters of the pattern are equal to characters of their own length alone.
class PairRule {
public:
    PairRule(WeightMap weights, const Charset& charset) : weights_(weights), charset_(charset) {}

    const unsigned char* next(const unsigned char* place) const { return place + charset_.trailCount(*place) + 1; }
    bool equal(const unsigned char* p, const unsigned char* t) const {
        return weights_.entry(*p) == weights_.entry(*t) && (charset_.trailCount(*p) == 0 || p[1] == t[1]);
    }
    int order(const unsigned char* a, const unsigned char* b) const {
        const int byFirst = orderOfNumbers(weights_.entry(*a), weights_.entry(*b));
        return byFirst != 0 || charset_.trailCount(*a) == 0 ? byFirst : orderOfNumbers(a[1], b[1]);
    }
    WeightMap weights() const { return weights_; }

private:
    WeightMap weights_;
    Charset charset_;
};

// Characters are their bytes. REQUIRES: the order of Unicode, exact; or folding without a case table, where no
// character has five bytes or more.
class ExactRule {
public:
    explicit ExactRule(const Charset& charset) : charset_(charset) {}

    const unsigned char* next(const unsigned char* place) const { return place + charset_.trailCount(*place) + 1; }
    bool equal(const unsigned char* p, const unsigned char* t) const { return order(p, t) == 0; }
    int order(const unsigned char* a, const unsigned char* b) const {
        if (*a != *b) return orderOfNumbers(*a, *b);
        const unsigned trails = charset_.trailCount(*a);
        for (unsigned i = 1; i <= trails; ++i)
            if (a[i] != b[i]) return orderOfNumbers(a[i], b[i]);
        return 0;
    }

private:
    Charset charset_;
};

// Characters are their lower-case forms; those of five bytes and more are all the same one. REQUIRES: the order of
// Unicode, folding.
class FoldRule {
public:
    // Without a table characters are their own forms.
    FoldRule(const Charset& charset, const nlsUnicodeCaseStruct* table) : charset_(charset), table_(table) {}

    // A broken character can equal a whole one, so this stops at a NUL.
    const unsigned char* next(const unsigned char* place) const { return characterEnd(charset_, place); }
    bool equal(const unsigned char* p, const unsigned char* t) const { return order(p, t) == 0; }
    int order(const unsigned char* a, const unsigned char* b) const {
        const nlsLChar first = readLChar(charset_, a).value, second = readLChar(charset_, b).value;
        return first == second ? 0 : orderOfNumbers(lowerForm(first), lowerForm(second));
    }
    nlsLChar lowerForm(nlsLChar value) const {
        return table_ == nullptr ? value : caseFormOf(table_->casePages, value, CaseForm::lower);
    }
    nlsLChar read(const unsigned char* place) const { return readLChar(charset_, place).value; }
    const nlsUnicodeCaseStruct* table() const { return table_; }

private:
    Charset charset_;
    const nlsUnicodeCaseStruct* table_;
};

// Any byte tables, by the comparison itself. REQUIRES: no trailing byte in pattern or text is a blank, the blank isn't
// an expansion, and no comparison fails. Then equality is that of sequences of weights.
class ComparedRule {
public:
    ComparedRule(const Charset& charset, const CharacterEquality& equality) : charset_(charset), equality_(equality) {}

    const unsigned char* next(const unsigned char* place) const { return place + charset_.trailCount(*place) + 1; }
    bool equal(const unsigned char* p, const unsigned char* t) const { return equality_(p, t).sign == 0; }
    int order(const unsigned char* a, const unsigned char* b) const { return equality_(a, b).sign; }

private:
    Charset charset_;
    CharacterEquality equality_;
};

}  // namespace nls
