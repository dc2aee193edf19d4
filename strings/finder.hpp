// Matches one behind the other: what the probes find is compared, and where that costs too much, a matcher of linear
// time takes over. Tested by tests/strings/search_test.cpp.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>

#include "core/base/views.hpp"
#include "strings/character_starts.hpp"
#include "strings/probes.hpp"
#include "strings/two_way.hpp"

namespace nls {

// `Rule` is one of strings/char_rules.hpp. REQUIRES: the pattern consists of whole characters and isn't empty. The text
// needn't until the matcher of linear time takes over; it asks for it then.
template <typename Rule>
class Finder {
public:
    // `end` of the text; null: at its NUL.
    Finder(const Rule& rule, ByteView pattern, const Probes& probes, const CharsetLengths& lengths,
           const unsigned char* text, const unsigned char* end)
        : rule_(rule),
          lengths_(lengths),
          pattern_(pattern),
          scan_(probes, text, end),
          starts_(lengths, text),
          text_(text),
          end_(end),
          from_(text) {
        if (probes.first.isAny()) goLinear(text, text);
    }

    // The next match; it may overlap the one before. None in a text that isn't whole, where it comes to that.
    Span next() {
        if (linear_) return linear_->next();
        while (const unsigned char* const last = scan_.next()) {
            if (last < from_) continue;
            const unsigned char* next = starts_.of(last);  // where a match may begin that hasn't been looked at
            if (const unsigned char* const start = next; rule_.next(start) == last + 1) {
                next = last + 1;
                const unsigned char* const behind = start < from_ ? nullptr : compareAt(start);
                if (behind != nullptr) {
                    from_ = next;
                    return {start, behind};
                }
            }
            if (compared_ > kFree + static_cast<std::size_t>(last - text_)) {
                goLinear(std::max(next, from_), last);
                return linear_->next();
            }
        }
        return {nullptr, nullptr};
    }
    // What begins in front of `place`, the first byte of a character, is no match any more.
    void goOnAt(const unsigned char* place) {
        from_ = place;
        if (linear_)
            linear_->begin(place, end_);
        else
            scan_.skipTo(place);
    }
    // The end of the text, for one that is known to go on to `place` at least.
    const unsigned char* textEnd(const unsigned char* place) {
        if (end_ == nullptr) end_ = scan_.end();
        if (end_ == nullptr) end_ = place + untilNul(place).size();
        return end_;
    }

private:
    // Characters that may be compared in vain beyond one for each byte of the text.
    static constexpr std::size_t kFree = 1024;

    // `known` is a place that the text surely reaches; `place` may be behind the end of one that isn't whole.
    void goLinear(const unsigned char* place, const unsigned char* known) {
        textEnd(known);
        linear_.emplace(rule_, pattern_);
        const bool whole = endsWhole(lengths_, {text_, end_});
        linear_->begin(whole ? place : end_, end_);
    }
    // Behind the match; null if there is none.
    const unsigned char* compareAt(const unsigned char* t) {
        const unsigned char* const patternEnd = pattern_.data() + pattern_.size();
        for (const unsigned char* p = pattern_.data(); p != patternEnd; p = rule_.next(p), t = rule_.next(t)) {
            ++compared_;
            if (t == end_ || *t == 0 || !rule_.equal(p, t)) return nullptr;
        }
        return t;
    }

    Rule rule_;
    CharsetLengths lengths_;
    ByteView pattern_;
    ProbeScan scan_;
    CharacterStarts starts_;
    const unsigned char *text_, *end_, *from_;
    std::size_t compared_ = 0;
    std::optional<TwoWay<Rule>> linear_;
};

}  // namespace nls
