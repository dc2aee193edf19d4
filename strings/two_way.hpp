// Searching in linear time and constant space, after Crochemore and Perrin: the pattern is split where its local period
// is its own period. The right part is compared first; where it fails, the window moves behind the failure, and where
// the left part fails, by the period.
//
// It asks only whether characters are equal and, of those of the pattern, in which order they stand, so it works for
// whatever a locale takes for a character, of however many bytes. Windows move forward by walking characters.
//
// `Characters`:
//   next(place)     the place behind a character
//   equal(p, t)     a character of the pattern and one of the text
//   order(a, b)     -1, 0 or 1 for two of the pattern; 0 exactly where they are equal to the same characters
// Equality must be an equivalence. Tested by tests/strings/search_test.cpp.
#pragma once

#include <algorithm>
#include <cstddef>

#include "core/base/views.hpp"

namespace nls {

struct Span {
    const unsigned char* start;  // null: none
    const unsigned char* end;
};

template <typename Characters>
class TwoWay {
public:
    // REQUIRES: the pattern isn't empty and consists of whole characters.
    TwoWay(const Characters& characters, ByteView pattern)
        : characters_(characters), start_(pattern.data()), end_(start_ + pattern.size()) {
        for (const unsigned char* p = start_; p != end_; p = characters_.next(p)) ++length_;
        split();
    }

    // Begins at `place`, the first byte of a character. `end`: that of the text, whose characters are whole.
    void begin(const unsigned char* place, const unsigned char* end) {
        window_ = place;
        textEnd_ = end;
        fresh_ = true;
    }

    // The next match; it may overlap the one before.
    Span next() {
        if (fresh_) {
            fresh_ = false;
            right_ = forward(window_, split_);
            remembered_ = false;
        }
        while (right_ != nullptr) {
            const unsigned char* p = remembered_ ? rememberedPlace_ : splitPlace_;
            const unsigned char* t = remembered_ ? known_ : right_;
            std::size_t passed = remembered_ ? remembers_ - split_ : 0;
            for (; p != end_ && t != textEnd_ && characters_.equal(p, t); ++passed) {
                p = characters_.next(p);
                t = characters_.next(t);
            }
            if (p != end_) {
                if (t == textEnd_) break;
                window_ = forward(window_, passed + 1);
                right_ = characters_.next(t);
                remembered_ = false;
                continue;
            }
            const Span match{leftMatches() ? window_ : nullptr, t};
            shiftByPeriod(t);
            if (match.start != nullptr) return match;
        }
        right_ = nullptr;
        return {nullptr, nullptr};
    }

private:
    // A suffix of the pattern that is the greatest in an order or in its reverse, and the period of that suffix.
    struct Suffix {
        const unsigned char* place;
        std::size_t index, period;
    };
    Suffix greatestSuffix(int sign) const {
        Suffix best{start_, 0, 1};
        const unsigned char* candidate = characters_.next(start_);
        std::size_t index = 1, k = 1;
        for (const unsigned char *inBest = start_, *inCandidate = candidate; inCandidate != end_;) {
            const int order = sign * characters_.order(inCandidate, inBest);
            if (order > 0) {
                best = {candidate, index, 1};
                candidate = characters_.next(candidate);
                ++index;
                k = 1;
                inBest = best.place;
                inCandidate = candidate;
                continue;
            }
            inCandidate = characters_.next(inCandidate);
            if (order == 0 && k != best.period) {
                inBest = characters_.next(inBest);
                ++k;
                continue;
            }
            index += order == 0 ? best.period : k;
            candidate = inCandidate;
            k = 1;
            inBest = best.place;
            if (order < 0) best.period = index - best.index;
        }
        return best;
    }

    void split() {
        const Suffix up = greatestSuffix(1), down = greatestSuffix(-1);
        const Suffix& best = up.index > down.index ? up : down;
        splitPlace_ = best.place;
        split_ = best.index;
        period_ = best.period;
        const unsigned char *p = start_, *q = patternPlace(period_);
        while (p != splitPlace_ && q != end_ && characters_.order(p, q) == 0) {
            p = characters_.next(p);
            q = characters_.next(q);
        }
        remembers_ = 0;
        if (p == splitPlace_) {
            remembers_ = length_ - period_;  // the period of the whole: what matched may match again
            rememberedPlace_ = patternPlace(remembers_);
        } else {
            period_ = std::max(split_, length_ - split_) + 1;
        }
    }
    const unsigned char* patternPlace(std::size_t index) const {
        const unsigned char* p = start_;
        for (; index != 0 && p != end_; --index) p = characters_.next(p);
        return p;
    }

    // Null where the text ends before.
    const unsigned char* forward(const unsigned char* place, std::size_t count) const {
        for (; count != 0 && place != textEnd_; --count) place = characters_.next(place);
        return count == 0 ? place : nullptr;
    }

    bool leftMatches() const {
        if (remembered_ && remembers_ >= split_) return true;
        const unsigned char* t = window_;
        for (const unsigned char* p = start_; p != splitPlace_; p = characters_.next(p), t = characters_.next(t))
            if (!characters_.equal(p, t)) return false;
        return true;
    }
    // `behind`: the end of the window.
    void shiftByPeriod(const unsigned char* behind) {
        window_ = forward(window_, period_);
        right_ = right_ == nullptr || window_ == nullptr ? nullptr : forward(right_, period_);
        remembered_ = remembers_ > split_;
        known_ = behind;
    }

    Characters characters_;
    const unsigned char *start_, *end_, *splitPlace_ = nullptr, *rememberedPlace_ = nullptr;
    std::size_t length_ = 0, split_ = 0, period_ = 1;
    std::size_t remembers_ = 0;  // characters at the window's start that match after a shift by the period; 0: none
    const unsigned char *window_ = nullptr, *right_ = nullptr, *known_ = nullptr, *textEnd_ = nullptr;
    bool fresh_ = false, remembered_ = false;
};

}  // namespace nls
