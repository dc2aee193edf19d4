// The rules of LIKE behind a `multi` for a short text, whatever processor compares its bytes: a bit for each byte tells
// where the next element of the pattern may stand, and every element moves all bits at once.
//
// What the loops of several processors share is always inlined, and so takes the instructions of the loop it is in.
// `Block` says with equal(byte) which of 64 bytes are equal to one. Tested by tests/strings/like_test.cpp.
#pragma once

#include "chars/lchar.hpp"
#include "collation/weights.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "strings/like_pattern.hpp"

#define NLS_FOLLOW_INLINE [[gnu::always_inline]] inline

namespace nls::like {

// Lanes of characters in a text of at most 63 bytes.
struct Characters {
    std::size_t length;
    std::uint64_t starts;  // of characters, and the NUL
    std::uint64_t trails;  // all other bytes

    // The starts behind the characters of some starts: a bit that is added to a run of trails leaves it at its end.
    NLS_FOLLOW_INLINE std::uint64_t behind(std::uint64_t some) const {
        const std::uint64_t next = some << 1;
        return (((next & trails) + trails) & ~trails & starts) | (next & starts);
    }
};

// Where a literal stands, and its bytes; none if that isn't known.
struct Stands {
    std::uint64_t lanes;
    unsigned width;
};
inline constexpr Stands kUnknown{0, 0};

NLS_FOLLOW_INLINE LCharRead readElement(const Charset& charset, const unsigned char* place) {
    if (charset.trailCount(*place) == 0) return {*place, place + 1};
    return readLChar(charset, place);
}

// Behind a `multi`, which the pattern isn't the end of. `Text` has `characters`, and tells where a literal stands.
template <typename Text>
NLS_FOLLOW_INLINE LikeAnswer follow(const Text& text, const Charset& charset, const LikeSigns& signs,
                                    const unsigned char* pattern) {
    const Characters& characters = text.characters;
    std::uint64_t fits = characters.starts;
    bool behindSingle = false, onBlank = false;
    while (*pattern != 0) {
        if (fits == 0 && !onBlank) return LikeAnswer::no;
        const unsigned char* literal = pattern;
        LCharRead read = readElement(charset, pattern);
        pattern = read.next;
        if (read.value == signs.escape) {
            literal = pattern;
            read = *literal != 0 ? readElement(charset, literal) : LCharRead{0, literal};
            const bool allowed = read.value == signs.single || read.value == signs.multi || read.value == signs.escape;
            if (read.value == 0 || !allowed) return LikeAnswer::no;
            pattern = read.next;
        } else if (read.value == signs.single) {
            fits = characters.behind(fits);
            behindSingle = true;
            onBlank = false;
            continue;
        } else if (read.value == signs.multi) {
            if (*pattern == 0) return onBlank ? LikeAnswer::unknown : fits != 0 ? LikeAnswer::yes : LikeAnswer::no;
            if ((fits & ~(~std::uint64_t{0} << characters.length)) == 0) return LikeAnswer::no;
            fits = characters.starts & (0 - (fits & (0 - fits)));
            behindSingle = onBlank = false;
            continue;
        }
        const Stands stands = text.stands(literal, read);
        if (stands.width == 0) return LikeAnswer::unknown;
        fits = (fits & stands.lanes) << stands.width & characters.starts;
        onBlank = behindSingle && *literal == ' ';
        behindSingle = false;
    }
    if (onBlank) return LikeAnswer::unknown;
    return (fits >> characters.length & 1) != 0 ? LikeAnswer::yes : LikeAnswer::no;
}

// Characters of one and two bytes under byte tables. REQUIRES: no text with an expansion, nor a blank as a second byte.
template <typename Block>
struct Pairs {
    Characters characters;
    const Charset& charset;
    WeightMap weights;
    Block bytes, weighed;
    std::uint64_t leads;  // first bytes of two

    NLS_FOLLOW_INLINE Stands stands(const unsigned char* literal, const LCharRead& read) const {
        const unsigned char weight = weights.entry(*literal);
        const unsigned trails = charset.trailCount(*literal);
        if (weight == 0 || trails > 1) return kUnknown;  // an expansion
        const std::uint64_t same = weighed.equal(weight);
        if (trails == 0) return {same & ~leads, 1};
        if (read.next != literal + 2 || literal[1] == ' ') return kUnknown;  // may equal a single byte
        return {same & leads & bytes.equal(literal[1]) >> 1, 2};
    }
};

// Bytes of UTF-8, or with a table those of the lower forms of its characters.
// REQUIRES: ASCII has its usual lower forms then, and no others.
template <typename Block>
struct Utf8 {
    Characters characters;
    const Charset& charset;
    const nlsUnicodeCaseStruct* table;
    Block bytes;

    NLS_FOLLOW_INLINE Stands stands(const unsigned char* literal, const LCharRead& read) const {
        if (table != nullptr && *literal < 0x80 && read.next == literal + 1) {
            const bool isCapital = *literal >= 'A' && *literal <= 'Z';
            return {bytes.equal(static_cast<unsigned char>(isCapital ? *literal | 0x20 : *literal)), 1};
        }
        if (table != nullptr) return standsByForm(caseFormOf(table->casePages, read.value, CaseForm::lower));
        const unsigned width = charset.trailCount(*literal) + 1;
        if (read.next != literal + width || width > 4) return kUnknown;
        std::uint64_t lanes = bytes.equal(*literal);
        for (unsigned i = 1; i != width; ++i) lanes &= bytes.equal(literal[i]) >> i;
        return {lanes, width};
    }

private:
    NLS_FOLLOW_INLINE Stands standsByForm(nlsLChar form) const {
        const unsigned width = form == 0 ? 0 : 4 - static_cast<unsigned>(__builtin_clz(form)) / 8;
        const auto first = static_cast<unsigned char>(form >> 8 * (width - 1) % 32);
        if (width == 0 || charset.trailCount(first) + 1 != width) return kUnknown;  // no form that text has
        std::uint64_t lanes = bytes.equal(first);
        for (unsigned i = 1; i != width; ++i)
            lanes &= bytes.equal(static_cast<unsigned char>(form >> 8 * (width - 1 - i))) >> i;
        return {lanes, width};
    }
};

}  // namespace nls::like
