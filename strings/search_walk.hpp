// The plain walk of a search: at every character of the text the pattern is compared, character by character.
//
// It takes any locale, pattern and text, and its time is the product of the two lengths at worst.
#pragma once

#include "core/base/charset.hpp"
#include "core/base/views.hpp"
#include "strings/match.hpp"

namespace nls {

// Goes forward from candidate to candidate, and from match to match.
class ForwardWalk {
public:
    // REQUIRES: a NUL behind the text and behind the pattern, which isn't empty.
    ForwardWalk(const Comparing& by, const unsigned char* pattern, uint32_t patternChars, Wildcards wildcards,
                ByteView text, uint32_t textChars);

    // The next match; it may overlap the one before. After any other answer there is no going on.
    Match next();
    // Behind the match told last. REQUIRES: no wildcards.
    void goOnBehind(const Span& match);

private:
    Match matchHere() const;
    bool isEscape(unsigned char byte) const { return wildcards_.escape != 0 && byte == wildcards_.escape; }
    const unsigned char* behind(const unsigned char* place) const;

    const Comparing& by_;
    Charset charset_;
    const unsigned char* pattern_;
    uint32_t patternChars_;
    Wildcards wildcards_;
    const unsigned char *place_, *textEnd_;
    uint32_t left_;  // characters from the place on
};

// The last match in the bytes of `text`, which hold `chars` characters up to a NUL. REQUIRES: the text isn't empty, the
// pattern isn't either and has a NUL behind it.
Match walkBackward(const Comparing& by, ByteView pattern, uint32_t patternChars, ByteView text, uint32_t chars);

}  // namespace nls
