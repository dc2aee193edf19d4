// A pattern of LIKE as a row of elements, and as segments between the wildcards `multi`.
#pragma once

#include <cstddef>

#include "nls/base.h"

namespace nls {

// The characters with a meaning of their own, as LChars. An `escape` of 0 is none; where `escape` is one of the others,
// that is no wildcard.
struct LikeSigns {
    nlsLChar escape;
    nlsLChar single;
    nlsLChar multi;
};

// Is a byte that is a character a wildcard `multi`, whatever follows?
constexpr bool isMulti(const LikeSigns& signs, unsigned char byte) {
    return byte == signs.multi && byte != signs.single && byte != signs.escape && byte != 0;
}

enum LikeVerdict : int32_t { kLikeBadPattern = -1, kLikeNoMatch = 0, kLikeMatch = 1 };

// What a faster way says, if it says anything.
enum class LikeAnswer { no, yes, unknown };
// REQUIRES: it isn't unknown.
constexpr LikeVerdict verdictOf(LikeAnswer answer) {
    return answer == LikeAnswer::yes ? kLikeMatch : kLikeNoMatch;
}

enum class LikeKind {
    literal,  // also the end of a pattern, as a literal of its NUL
    single,
    multi,
    bad,  // an escape in front of what needs none
};

struct LikeElement {
    LikeKind kind;
    const unsigned char* literal;  // the character to compare, behind its escape
    const unsigned char* next;
};

// A wildcard is known by its value, whatever that is: with 0 for `single` the end of an empty pattern is one.
template <typename Characters>
[[gnu::always_inline]] inline LikeElement readLikeElement(const Characters& characters, const LikeSigns& signs,
                                                          const unsigned char* place) {
    const auto read = characters.read(place);
    if (read.value == signs.escape && signs.escape != 0) {
        const auto escaped = characters.read(read.next);
        const bool allowed =
            escaped.value == signs.single || escaped.value == signs.multi || escaped.value == signs.escape;
        if (escaped.value == 0 || !allowed) return {LikeKind::bad, nullptr, nullptr};
        return {LikeKind::literal, read.next, escaped.next};
    }
    if (read.value == signs.single) return {LikeKind::single, nullptr, read.next};
    if (read.value == signs.multi) return {LikeKind::multi, nullptr, read.next};
    return {LikeKind::literal, place, read.next};
}

// What stands between a `multi` and the next, or the end.
struct LikeSegment {
    enum class End {
        text,       // the pattern ends here, so the segment stands at the end of the text
        lastMulti,  // any rest of the text will do
        multi,      // some text must be left
        bad,        // no text matches
    };
    const unsigned char* begin;
    std::size_t count;                 // elements
    const unsigned char* lastLiteral;  // the last element, if it is a literal behind a `single`; else null
    const unsigned char* next;         // behind the `multi`
    End end;
};

template <typename Characters>
LikeSegment readLikeSegment(const Characters& characters, const LikeSigns& signs, const unsigned char* begin) {
    LikeSegment segment{begin, 0, nullptr, nullptr, LikeSegment::End::text};
    bool behindSingle = false;
    for (const unsigned char* place = begin; *place != 0; ++segment.count) {
        const LikeElement element = readLikeElement(characters, signs, place);
        place = element.next;
        if (element.kind == LikeKind::bad) {
            segment.end = LikeSegment::End::bad;
            break;
        }
        if (element.kind == LikeKind::multi) {
            segment.next = place;
            segment.end = *place == 0 ? LikeSegment::End::lastMulti : LikeSegment::End::multi;
            break;
        }
        segment.lastLiteral = behindSingle ? element.literal : nullptr;  // null for a wildcard
        behindSingle = element.kind == LikeKind::single;
    }
    return segment;
}

}  // namespace nls
