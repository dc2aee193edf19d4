#include "strings/search.hpp"

#include <algorithm>
#include <cstring>

#include "nls/status.h"
#include "strings/counting.hpp"
#include "strings/search_walk.hpp"
#include "strings/str_record.hpp"

namespace nls {
namespace {

Counted countWhole(const Charset& charset, ByteView text) {
    if (text.size() > INT32_MAX) return {NLS_BAD_ARG, 0};
    return text.empty() ? Counted{NLS_OK, 0} : countChars(charset, text);
}

// Of the first `length` bytes, as far as they go without a NUL.
Counted countSpan(const Charset& charset, const unsigned char* text, int32_t length) {
    if (length < 0) return {NLS_BAD_ARG, 0};
    return length == 0 ? Counted{NLS_OK, 0} : countChars(charset, {text, boundedLength(text, length)});
}

nlsStatus walkForEach(const Comparing& by, ByteView pattern, ByteView text, Wildcards wildcards,
                      const MatchTaker& taker) {
    const Charset charset{*by.locale.attrib};
    const Counted inPattern = countWhole(charset, pattern);
    if (inPattern.status != NLS_OK) return inPattern.status;
    const Counted inText = countWhole(charset, text);
    if (inText.status != NLS_OK) return inText.status;
    if (pattern.empty()) {
        const unsigned char* const end = text.data() + text.size();
        taker.take(taker.context, {end, end});
        return NLS_OK;
    }
    ForwardWalk walk{by, pattern.data(), inPattern.count, wildcards, text, inText.count};
    for (;;) {
        const Match match = walk.next();
        if (match.status != NLS_OK || match.span.start == nullptr) return match.status;
        switch (taker.take(taker.context, match.span)) {
            case GoOn::stop:
                return NLS_OK;
            case GoOn::behindMatch:
                walk.goOnBehind(match.span);
                break;
            case GoOn::atNextCharacter:
                break;
        }
    }
}

// The last of the matches in a text without a NUL.
FastAnswer lastMatch(const Comparing& by, ByteView pattern, const unsigned char* text, const unsigned char* end,
                     Span& last) {
    const auto keep = [](void* context, const Span& match) {
        *static_cast<Span*>(context) = match;
        return GoOn::atNextCharacter;
    };
    return eachMatchFast(by, pattern, text, end, {keep, &last});
}

// The end of the text first, where most last matches are, and then, if it has none, all of it.
FastAnswer searchBackwardFast(const Comparing& by, ByteView pattern, ByteView text, Span& last) {
    constexpr std::size_t kTail = 4096, kPatterns = 4;
    if (std::memchr(text.data(), 0, text.size()) != nullptr) return {false, NLS_OK};
    if (!stepsAlikeBothWays(*by.locale.attrib, text) || !stepsAlikeBothWays(*by.locale.attrib, pattern))
        return {false, NLS_OK};
    const unsigned char* const end = text.data() + text.size();
    if (const std::size_t tail = std::max(kTail, kPatterns * pattern.size()); tail < text.size()) {
        const unsigned char* const start = firstByteOf(*by.locale.attrib, end - tail, text.data());
        const FastAnswer answer = lastMatch(by, pattern, start, end, last);
        if (!answer.possible || answer.status != NLS_OK || last.start != nullptr) return answer;
    }
    return lastMatch(by, pattern, text.data(), end, last);
}

// An empty pattern is found at the end of the text, and its match ends one byte later.
nlsStatus tell(const Match& match, const unsigned char* pattern, const unsigned char* text, uint32_t* pos,
               uint32_t* end, const unsigned char** found) {
    *pos = 0;
    if (match.status != NLS_OK) return match.status;
    tellNone(pos, found);
    if (match.span.start != nullptr) tellMatch(match.span, text, pos, end, found);
    if (*pattern == 0) ++*end;
    return NLS_OK;
}

}  // namespace

nlsStatus searchForEach(const Comparing& by, ByteView pattern, const unsigned char* text, Wildcards wildcards,
                        const MatchTaker& taker) {
    if (pattern.size() > INT32_MAX) return NLS_BAD_ARG;
    if (!wildcards.on && !pattern.empty()) {
        const FastAnswer answer = eachMatchFast(by, pattern, text, nullptr, taker);
        if (answer.possible) return answer.status;
    }
    return walkForEach(by, pattern, untilNul(text), wildcards, taker);
}

Match searchForward(const Comparing& by, const unsigned char* pattern, const unsigned char* text, Wildcards wildcards) {
    Match first{NLS_OK, {nullptr, nullptr}};
    const auto keep = [](void* context, const Span& match) {
        static_cast<Match*>(context)->span = match;
        return GoOn::stop;
    };
    first.status = searchForEach(by, untilNul(pattern), text, wildcards, {keep, &first});
    return first;
}

nlsStatus searchAndTell(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                        const unsigned char** found) {
    return tell(searchForward({*locale, tls, mode}, pattern, text, kNoWildcards), pattern, text, pos, end, found);
}
nlsStatus searchAndTell(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                        const unsigned char* text, uint16_t mode, int32_t escape, uint32_t* pos, uint32_t* end,
                        const unsigned char** found) {
    return tell(searchForward({*locale, tls, mode}, pattern, text, {true, escape}), pattern, text, pos, end, found);
}

Match searchBackward(const Comparing& by, ByteView pattern, const unsigned char* text, int32_t length) {
    const Charset charset{*by.locale.attrib};
    const Counted inPattern = countWhole(charset, pattern);
    if (inPattern.status != NLS_OK) return {inPattern.status, {}};
    const Counted inText = countSpan(charset, text, length);
    if (inText.status != NLS_OK) return {inText.status, {}};
    const ByteView span = firstBytes(text, length);
    if (pattern.empty()) return {NLS_OK, {text + length, text + length}};
    if (span.empty()) return {NLS_END_OF_STRING, {}};
    Match last{NLS_OK, {nullptr, nullptr}};
    const FastAnswer answer = searchBackwardFast(by, pattern, span, last.span);
    if (answer.possible) return {answer.status, last.span};
    return walkBackward(by, pattern, inPattern.count, span, inText.count);
}

}  // namespace nls
