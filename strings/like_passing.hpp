// A long text is passed over by the bytes that may begin the first and the last literal of a segment of LIKE, many at a
// time and without regard to characters; only where one is found are the characters around it told apart.
//
// Tested by tests/strings/like_test.cpp.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "collation/weights.hpp"
#include "core/base/charset.hpp"
#include "nls/records.h"
#include "strings/character_starts.hpp"
#include "strings/like_pattern.hpp"
#include "strings/probes.hpp"

namespace nls {

// The first bytes of all whole characters that may equal a literal; more are allowed, and cost time.
class FirstBytes {
public:
    void add(unsigned char byte) {
        has_[byte] = true;
        few_.add(byte);
    }
    // Looks for them in a text from now on.
    void begin(const unsigned char* text, const unsigned char* end);
    // The first of them at a place or behind it, or the end; the place itself from the end on. REQUIRES: no place asked
    // for before was behind this one.
    const unsigned char* from(const unsigned char* place) {
        if (found_ < place) found_ = find(place);
        return found_;
    }

private:
    const unsigned char* find(const unsigned char* place);

    std::array<bool, 256> has_{};
    ByteClass few_ = ByteClass::none();
    std::optional<ProbeScan> scan_;  // while they are few
    const unsigned char *found_ = nullptr, *end_ = nullptr;
};

// Of all bytes with a weight, and of those that have none, since they may be longer; 0 is the weight of all.
FirstBytes bytesWeighing(WeightMap weights, unsigned char weight);

// Of all whole characters of UTF-8 with a lower form.
FirstBytes bytesOfForm(const nlsUnicodeCaseStruct& table, const Charset& charset, nlsLChar form);

// The NUL of a text.
const unsigned char* endOfText(const unsigned char* text);

// Where the last `count` characters of a text begin; null if it has fewer.
const unsigned char* lastCharactersOf(const Charset& charset, std::size_t count, const unsigned char* text);

// What passes over a text where a segment can't begin, once it hasn't begun at one place. Short ways aren't worth it to
// prepare: `Characters` has
//   mayEqual(literal)    the FirstBytes
//   charset()
template <typename Characters>
class LikePassing {
public:
    LikePassing(const Characters& characters, const LikeSigns& signs, const LikeSegment& segment)
        : characters_(characters), signs_(signs), segment_(segment), tries_(segment.count) {}

    // The first place from a character on where the segment may begin, or the end of the text. REQUIRES: the places
    // never go back.
    const unsigned char* operator()(const unsigned char* text) {
        if (tries_ < kPlainTries) {
            tries_ += segment_.count;  // what it has cost to look at one place
            const LikeElement first = readLikeElement(characters_, signs_, segment_.begin);
            if (first.kind != LikeKind::literal) return text;
            for (; *text != 0 && tries_ < kPlainTries; ++tries_) {
                if (characters_.compare(first.literal, text).sign == 0) return text;
                text = characters_.next(text);
            }
            if (*text == 0) return text;
        }
        if (*text == 0) return text;
        if (end_ == nullptr) prepare(text);
        return passWide(text);
    }

private:
    static constexpr std::size_t kPlainTries = 32;

    void prepare(const unsigned char* text) {
        end_ = endOfText(text);
        const CharsetLengths lengths = lengthsOf(characters_.charset());
        starts_ = CharacterStarts{lengths, text};
        longest_ = lengths.longestTrail + std::size_t{1};
        const unsigned char* const whole = starts_.of(end_);  // a character that the NUL cuts short may equal anything
        starts_ = CharacterStarts{lengths, text};
        const unsigned char* place = segment_.begin;
        const unsigned char *first = nullptr, *last = nullptr;
        for (std::size_t i = 0; i != segment_.count; ++i) {
            const LikeElement element = readLikeElement(characters_, signs_, place);
            place = element.next;
            if (element.kind != LikeKind::literal) continue;
            if (i == 0) first = element.literal;
            last = element.literal;
            lastIndex_ = i;
        }
        hasFirst_ = first != nullptr;
        if (hasFirst_) (first_ = characters_.mayEqual(first)).begin(text, whole);
        if (lastIndex_ != 0) (last_ = characters_.mayEqual(last)).begin(text, whole);
    }

    const unsigned char* passWide(const unsigned char* text) {
        const std::size_t reach = lastIndex_ * longest_;  // how far behind the first the last literal may stand
        for (;;) {
            if (static_cast<std::size_t>(end_ - text) < segment_.count) return end_;
            const unsigned char* last = end_;
            if (lastIndex_ != 0) {
                last = last_.from(text + lastIndex_);
                if (last == end_) return end_;
                if (static_cast<std::size_t>(last - text) > reach) text = characterFrom(last - reach);
            }
            if (!hasFirst_) return text;
            const unsigned char* const found = first_.from(text);
            if (found == end_) return end_;
            text = characterFrom(found);
            if (text == found && (lastIndex_ == 0 || last >= text + lastIndex_)) return text;
        }
    }

    // The first character that begins at a place or behind it.
    const unsigned char* characterFrom(const unsigned char* place) {
        const unsigned char* const first = starts_.of(place);
        return first == place ? place : characters_.next(first);
    }

    const Characters& characters_;
    const LikeSigns& signs_;
    const LikeSegment& segment_;
    std::size_t tries_;
    const unsigned char* end_ = nullptr;  // null: nothing is prepared
    CharacterStarts starts_{{characters_.charset(), 0}, nullptr};
    std::size_t longest_ = 0;    // bytes of a character
    std::size_t lastIndex_ = 0;  // 0: no literal behind the first element
    bool hasFirst_ = false;      // the first element is a literal
    FirstBytes first_, last_;
};

}  // namespace nls
