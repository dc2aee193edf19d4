// The walk of a pattern of LIKE along a text, for any way to read and compare characters.
#pragma once

#include "collation/compare.hpp"
#include "strings/like_pattern.hpp"

namespace nls {

// `Characters` knows the characters of a locale:
//   read(place)          value and next place, as an LChar; 0 and the same place at a NUL
//   next(place)          the place behind a character; the same at a NUL
//   compare(a, b)        status and sign of one character of the pattern against one of the text. Either may be a NUL:
//                        the end of a text equals a blank
// and perhaps faster ways for what follows the first `multi`:
//   matchShort(signs, pattern, text)    an answer, if the text is short; neither is empty
//   lastCharacters(count, text)         where the last characters begin; null if there are fewer
//   passing(signs, segment)             a function from a place to the first from there on where the segment may fit;
//                                       the places never go back
template <typename Characters>
class LikeWalk {
public:
    LikeWalk(const Characters& characters, const LikeSigns& signs) : characters_(characters), signs_(signs) {}

    int32_t operator()(const unsigned char* pattern, const unsigned char* text) const {
        for (;;) {
            const LikeElement element = readLikeElement(characters_, signs_, pattern);
            switch (element.kind) {
                case LikeKind::bad:
                    return kLikeBadPattern;
                case LikeKind::multi:
                    return behindMulti(element.next, text);
                case LikeKind::single:
                    if (*text == 0) return kLikeNoMatch;
                    text = characters_.next(text);
                    break;
                case LikeKind::literal:
                    if (*element.literal == 0 && *text == 0) return kLikeMatch;
                    const Compared compared = characters_.compare(element.literal, text);
                    if (compared.status != NLS_OK) return compared.status;
                    if (compared.sign != 0) return kLikeNoMatch;
                    text = characters_.next(text);
                    if (*text == 0) return textEndedAt(element.next);
                    break;
            }
            if (*element.next == 0 && *text != 0) return kLikeNoMatch;
            pattern = element.next;
        }
    }

private:
    // Behind a literal that ends the text, one `multi` may follow; here it counts even where `single` is the same.
    int32_t textEndedAt(const unsigned char* pattern) const {
        if (*pattern == 0) return kLikeMatch;
        const auto read = characters_.read(pattern);
        const bool isMulti = read.value == signs_.multi && read.value != signs_.escape;
        return isMulti && *read.next == 0 ? kLikeMatch : kLikeNoMatch;
    }

    int32_t behindMulti(const unsigned char* pattern, const unsigned char* text) const {
        if (*pattern == 0) return kLikeMatch;
        if (*text == 0) return kLikeNoMatch;
        if constexpr (requires { characters_.matchShort(signs_, pattern, text); }) {
            const LikeAnswer answer = characters_.matchShort(signs_, pattern, text);
            if (answer != LikeAnswer::unknown) return verdictOf(answer);
        }
        while (*text != 0) {
            const LikeSegment segment = readLikeSegment(characters_, signs_, pattern);
            switch (segment.end) {
                case LikeSegment::End::bad:
                    return kLikeNoMatch;
                case LikeSegment::End::text:
                    return fitsAtEnd(segment, text) ? kLikeMatch : kLikeNoMatch;
                case LikeSegment::End::lastMulti:
                    return firstFit(segment, text) != nullptr || fitsOnBlank(segment, text) ? kLikeMatch : kLikeNoMatch;
                case LikeSegment::End::multi:
                    text = firstFit(segment, text);
                    if (text == nullptr) return kLikeNoMatch;
                    pattern = segment.next;
                    break;
            }
        }
        return kLikeNoMatch;
    }

    struct Fit {
        enum class Result { fits, differs, textTooShort } result;
        const unsigned char* end;
    };

    // Do the first `count` elements of a segment fit the text from `text` on?
    Fit fit(const unsigned char* pattern, std::size_t count, const unsigned char* text) const {
        for (; count != 0; --count) {
            if (*text == 0) return {Fit::Result::textTooShort, text};
            const LikeElement element = readLikeElement(characters_, signs_, pattern);
            if (element.kind == LikeKind::literal && !equal(element.literal, text)) return {Fit::Result::differs, text};
            text = characters_.next(text);
            pattern = element.next;
        }
        return {Fit::Result::fits, text};
    }

    // The place behind the first part of the text that fits a whole segment; null if none does.
    const unsigned char* firstFit(const LikeSegment& segment, const unsigned char* text) const {
        const Fit found = fit(segment.begin, segment.count, text);
        if (found.result == Fit::Result::fits) return found.end;
        if (found.result == Fit::Result::textTooShort) return nullptr;
        text = characters_.next(text);
        if constexpr (requires { characters_.passing(signs_, segment); })
            return firstFit(segment, text, characters_.passing(signs_, segment));
        else
            return firstFit(segment, text, [](const unsigned char* place) { return place; });
    }
    template <typename Passing>
    const unsigned char* firstFit(const LikeSegment& segment, const unsigned char* text, Passing passing) const {
        for (;; text = characters_.next(text)) {
            text = passing(text);
            const Fit found = fit(segment.begin, segment.count, text);
            if (found.result == Fit::Result::fits) return found.end;
            if (found.result == Fit::Result::textTooShort) return nullptr;
        }
    }

    bool fitsAtEnd(const LikeSegment& segment, const unsigned char* text) const {
        const unsigned char* const place = lastCharacters(segment.count, text);
        if (place != nullptr && fit(segment.begin, segment.count, place).result == Fit::Result::fits) return true;
        return fitsOnBlank(segment, text);
    }

    // Behind a `single` that takes the last character, a literal is compared with the end of the text, which equals a
    // blank.
    bool fitsOnBlank(const LikeSegment& segment, const unsigned char* text) const {
        if (segment.lastLiteral == nullptr) return false;
        const unsigned char* const place = lastCharacters(segment.count - 1, text);
        if (place == nullptr) return false;
        const Fit found = fit(segment.begin, segment.count - 1, place);
        return found.result == Fit::Result::fits && equal(segment.lastLiteral, found.end);
    }

    // Where the last `count` characters of the text begin; null if it has fewer.
    const unsigned char* lastCharacters(std::size_t count, const unsigned char* text) const {
        if constexpr (requires { characters_.lastCharacters(count, text); })
            return characters_.lastCharacters(count, text);
        const unsigned char* ahead = text;
        for (; count != 0; --count) {
            if (*ahead == 0) return nullptr;
            ahead = characters_.next(ahead);
        }
        for (; *ahead != 0; ahead = characters_.next(ahead)) text = characters_.next(text);
        return text;
    }

    bool equal(const unsigned char* a, const unsigned char* b) const {
        const Compared compared = characters_.compare(a, b);
        return compared.status == NLS_OK && compared.sign == 0;
    }

    const Characters& characters_;
    const LikeSigns& signs_;
};

}  // namespace nls
