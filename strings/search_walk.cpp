#include "strings/search_walk.hpp"

#include <algorithm>

#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"
#include "nls/status.h"

namespace nls {

namespace {
constexpr unsigned char kWildcard = '_';
constexpr Match kNone{NLS_OK, {nullptr, nullptr}};
}  // namespace

ForwardWalk::ForwardWalk(const Comparing& by, const unsigned char* pattern, uint32_t patternChars, Wildcards wildcards,
                         ByteView text, uint32_t textChars)
    : by_(by),
      charset_(*by.locale.attrib),
      pattern_(pattern),
      patternChars_(patternChars),
      wildcards_(wildcards),
      place_(text.data()),
      textEnd_(text.data() + text.size()),
      left_(textChars) {}

const unsigned char* ForwardWalk::behind(const unsigned char* place) const {
    return characterEnd(charset_, place);
}

// Behind the head, wildcards that pass over characters, the pattern is compared even where only its NUL is left. In the
// tail it has to go on to be compared; a wildcard there passes over a character if the text has one.
Match ForwardWalk::matchHere() const {
    const CharacterEquality equality{by_.locale, by_.tls, by_.mode};
    const unsigned char *p = pattern_, *t = place_;
    if (wildcards_.on) {
        for (; !isEscape(*p) && *p == kWildcard; p = behind(p)) t = behind(t);
        if (isEscape(*p)) p = behind(p);
    }
    for (;;) {
        const Compared compared = equality(p, t);
        if (compared.status != NLS_OK) return {compared.status, {}};
        if (static_cast<uint16_t>(compared.sign) != 0) return kNone;
        bool passed;
        do {
            p = behind(p);
            t = behind(t);
            if (*p == 0) return {NLS_OK, {place_, t}};
            passed = wildcards_.on && !isEscape(*p) && *p == kWildcard;
        } while (passed);
        if (wildcards_.on && isEscape(*p)) p = behind(p);
    }
}

Match ForwardWalk::next() {
    while (left_ != 0 && (wildcards_.on || left_ >= patternChars_)) {
        const Match match = matchHere();
        --left_;
        place_ = behind(place_);
        if (match.status != NLS_OK || match.span.start != nullptr) return match;
    }
    return kNone;
}

// Where characters are counted by bytes, so is what is left of them.
void ForwardWalk::goOnBehind(const Span& match) {
    place_ = match.end;
    left_ = charset_.isMultiByte() ? left_ + 1 - patternChars_ : static_cast<uint32_t>(textEnd_ - place_);
}

namespace {

// Characters of a text without a NUL behind it: one that the end cuts short is the bytes in front of the end.
class BackwardWalk {
public:
    BackwardWalk(const Comparing& by, ByteView pattern, ByteView text)
        : by_(by), charset_(*by.locale.attrib), pattern_(pattern), text_(text) {}

    Match run(uint32_t patternChars, uint32_t chars) const {
        StepsBack inText = stepsThrough(text_), inPattern = stepsThrough(pattern_);
        const unsigned char* const last = before(pattern_.data() + pattern_.size(), pattern_, inPattern);
        const unsigned char* candidate = before(text_.data() + text_.size(), text_, inText);
        for (; chars >= patternChars; --chars, candidate = before(candidate, text_, inText)) {
            const Match match = matchFrom(last, candidate, inPattern, inText);
            if (match.status != NLS_OK || match.span.start != nullptr) return match;
        }
        return kNone;
    }

private:
    StepsBack stepsThrough(ByteView text) const { return {charset_, text.data(), text.data() + text.size()}; }
    static const unsigned char* before(const unsigned char* place, ByteView in, StepsBack& steps) {
        return place == in.data() ? place : steps.from(place);
    }
    int32_t lengthAt(const unsigned char* place) const { return static_cast<int32_t>(charset_.trailCount(*place)) + 1; }

    Compared compare(const unsigned char* p, const unsigned char* t) const {
        if (by_.locale.coll == nullptr) return {NLS_BAD_COLLATION, 0};
        const std::ptrdiff_t left = text_.data() + text_.size() - t;
        const auto length = static_cast<int32_t>(std::min<std::ptrdiff_t>(lengthAt(t), left));
        return compareLimited(by_.locale, by_.tls, p, t, lengthAt(p), length, by_.mode);
    }
    Match matchFrom(const unsigned char* p, const unsigned char* t, StepsBack inPattern, StepsBack inText) const {
        for (;;) {
            const Compared compared = compare(p, t);
            if (compared.status != NLS_OK) return {compared.status, {}};
            if (static_cast<uint16_t>(compared.sign) != 0) return kNone;
            if (p == pattern_.data()) return {NLS_OK, {t, nullptr}};
            p = before(p, pattern_, inPattern);
            t = before(t, text_, inText);
        }
    }

    const Comparing& by_;
    Charset charset_;
    ByteView pattern_, text_;
};

}  // namespace

Match walkBackward(const Comparing& by, ByteView pattern, uint32_t patternChars, ByteView text, uint32_t chars) {
    return BackwardWalk{by, pattern, text}.run(patternChars, chars);
}

}  // namespace nls
