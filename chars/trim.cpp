#include "chars/trim.hpp"

#include <algorithm>

#include "chars/find_char.hpp"
#include "chars/lchar.hpp"
#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"  // against the arrows: members of a set are what the collation takes for equal
#include "collation/weights.hpp"        // against the arrows: and where entries decide alone, these are looked at
#include "strings/counting.hpp"         // against the arrows: the search in a set counts characters first
#include "strings/str_record.hpp"       // against the arrows: the bytes in front of a NUL

namespace nls {
namespace {

constexpr unsigned char blankAlone[] = " ";

// The members of a set where entries of a weight map decide alone.
class EntrySet {
public:
    EntrySet(WeightMap weights, const unsigned char* set) : weights_(weights) {
        for (; *set != 0; ++set) word(*set) |= bit(*set);
    }
    bool has(unsigned char byte) { return (word(byte) & bit(byte)) != 0; }

private:
    uint64_t& word(unsigned char byte) { return words_[weights_.entry(byte) >> 6]; }
    uint64_t bit(unsigned char byte) const { return uint64_t{1} << (weights_.entry(byte) & 63U); }

    WeightMap weights_;
    uint64_t words_[4] = {};
};

// The search for a piece of text in the set, character by character. A piece is what a step back went over: one
// character as a rule, but a cut-short one or several where the text isn't well-formed.
class SetSearch {
public:
    SetSearch(const nlsLocale& locale, const unsigned char* set, uint16_t mode)
        : locale_(locale), charset_(*locale.attrib), set_(set), mode_(mode), inSet_(countOf(untilNul(set))) {}

    // `sign` 0: found.
    Compared find(ByteView piece) const {
        piece = piece.first(boundedLength(piece.data(), static_cast<int64_t>(piece.size())));
        const Counted inPiece = countOf(piece);
        if (inPiece.status != NLS_OK) return {inPiece.status, 0};
        if (inSet_.status != NLS_OK) return {inSet_.status, 0};
        if (piece.empty()) return {NLS_OK, 0};  // found behind the set's last character
        const unsigned char* place = set_;
        for (uint32_t left = inSet_.count; left != 0 && left >= inPiece.count; --left) {
            const Compared compared = compareAt(place, piece);
            if (compared.status != NLS_OK || static_cast<uint16_t>(compared.sign) == 0) return compared;
            place = characterEnd(charset_, place);
        }
        return {NLS_OK, 1};
    }

private:
    Counted countOf(ByteView text) const { return text.empty() ? Counted{NLS_OK, 0} : countChars(charset_, text); }

    // The characters of the piece with those of the set from a place on.
    Compared compareAt(const unsigned char* place, ByteView piece) const {
        while (!piece.empty()) {
            if (locale_.coll == nullptr) return {NLS_BAD_COLLATION, 0};
            const std::size_t size = std::min<std::size_t>(charset_.trailCount(piece[0]) + 1, piece.size());
            const Compared compared = compareLimited(locale_, nullptr, piece.data(), place, static_cast<int32_t>(size),
                                                     static_cast<int32_t>(charset_.trailCount(*place)) + 1, mode_);
            if (compared.status != NLS_OK || static_cast<uint16_t>(compared.sign) != 0) return compared;
            piece = piece.subspan(size);
            place = characterEnd(charset_, place);
        }
        return {NLS_OK, 0};
    }

    const nlsLocale& locale_;
    Charset charset_;
    const unsigned char* set_;
    uint16_t mode_;
    Counted inSet_;
};

const unsigned char* endByEntries(EntrySet members, ByteView text) {
    const unsigned char* end = text.data() + text.size();
    while (end != text.data() && (end[-1] == 0 || members.has(end[-1]))) --end;
    return end;
}

}  // namespace

TrimPlace trimLeft(const nlsLocale& locale, nlsTlsBlock* tls, const unsigned char* set, const unsigned char* text,
                   uint16_t mode) {
    if (set == nullptr) set = blankAlone;
    if (equalByEntries(locale, mode)) {
        EntrySet members{WeightMap::of(*locale.coll, mode), set};
        while (*text != 0 && members.has(*text)) ++text;
        return {NLS_OK, text};
    }
    nlsLChar known = 0;  // the last member: most texts begin with a run of one
    while (*text != 0) {
        const LCharRead character = readLChar(Charset{*locale.attrib}, text);
        if (character.value != known) {
            const FoundChar member = findCharForward(locale, tls, character.value, set, mode);
            if (member.status != NLS_OK || member.place == nullptr) return {member.status, text};
            known = character.value;
        }
        text = character.next;
    }
    return {NLS_OK, text};
}

TrimPlace trimRight(const nlsLocale& locale, const unsigned char* set, ByteView text, uint16_t mode) {
    if (set == nullptr) set = blankAlone;
    const Charset charset{*locale.attrib};
    // A step back over UTF-8 goes by the form of the bytes, whatever the table says of their lengths.
    if (!charset.isUtf8() && equalByEntries(locale, mode))
        return {NLS_OK, endByEntries(EntrySet{WeightMap::of(*locale.coll, mode), set}, text)};
    const SetSearch search{locale, set, mode};
    const unsigned char* end = text.data() + text.size();
    StepsBack steps{charset, text.data(), end};
    ByteView known;  // the last member: most texts end with a run of one
    while (end != text.data()) {
        const ByteView last{steps.from(end), end};
        if (!std::ranges::equal(last, known)) {
            const Compared member = search.find(last);
            if (member.status != NLS_OK) return {member.status, nullptr};
            if (static_cast<uint16_t>(member.sign) != 0) break;
            known = last;
        }
        end = last.data();
    }
    return {NLS_OK, end};
}

}  // namespace nls
