#include "chars/find_char.hpp"

#include <cstring>

#include "chars/stepping.hpp"
#include "collation/char_equality.hpp"  // against the arrows: a character is found where it compares equal
#include "collation/weights.hpp"        // against the arrows: and where entries decide alone, these are looked at
#include "core/base/views.hpp"

namespace nls {
namespace {

// A character as its bytes, closed by a NUL. A zero byte within the value closes them too.
class SpelledOut {
public:
    // REQUIRES: value != 0.
    explicit SpelledOut(nlsLChar value) {
        unsigned char* next = bytes_;
        for (unsigned shift = 32; shift != 0; shift -= 8) {
            if (value >> (shift - 8) != 0) *next++ = static_cast<unsigned char>(value >> (shift - 8));
        }
    }
    const unsigned char* bytes() const { return bytes_; }
    int32_t length() const { return static_cast<int32_t>(untilNul(bytes_).size()); }

private:
    unsigned char bytes_[5] = {};
};

// The comparison of the character sought with one of the text.
class Sought {
public:
    Sought(const nlsLocale& locale, nlsTlsBlock* tls, nlsLChar value, uint16_t mode)
        : locale_(locale), tls_(tls), mode_(mode), spelled_(value), length_(spelled_.length()) {}

    // Do table entries decide alone? Then no comparison fails, and every character of the text is one byte.
    bool decidedByEntries() const { return length_ == 1 && equalByEntries(locale_, mode_); }
    unsigned char firstByte() const { return *spelled_.bytes(); }

    Compared compareWith(const unsigned char* place) const {
        if (locale_.coll == nullptr) return {NLS_BAD_COLLATION, 0};
        if (isByteMode(mode_) && firstPairMayDecide(locale_)) {
            const WeightMap weights = WeightMap::of(*locale_.coll, mode_);
            if (const int sign = decidedByFirstPair(weights, spelled_.bytes(), place)) return {NLS_OK, sign};
        }
        const auto size = static_cast<int32_t>(Charset{*locale_.attrib}.trailCount(*place)) + 1;
        return compareLimited(locale_, tls_, spelled_.bytes(), place, length_, size, mode_);
    }

private:
    const nlsLocale& locale_;
    nlsTlsBlock* tls_;
    uint16_t mode_;
    SpelledOut spelled_;
    int32_t length_;
};

// Has the search ended at this character, found or failed?
bool endsAt(Compared compared) {
    return compared.status != NLS_OK || static_cast<uint16_t>(compared.sign) == 0;
}

const unsigned char* terminatorOf(const unsigned char* text) {
    return text + untilNul(text).size();
}

const unsigned char* firstOfEntry(WeightMap weights, unsigned char entry, const unsigned char* text) {
    while (*text != 0 && weights.entry(*text) != entry) ++text;
    return *text != 0 ? text : nullptr;
}

// A NUL among the bytes is an empty text, which equals a blank.
const unsigned char* lastEqual(WeightMap weights, unsigned char sought, const unsigned char* text,
                               const unsigned char* end) {
    const unsigned char entry = weights.entry(sought);
    while (end != text) {
        --end;
        if (*end != 0 ? weights.entry(*end) == entry : sought == ' ') return end;
    }
    return nullptr;
}

}  // namespace

FoundChar findCharForward(const nlsLocale& locale, nlsTlsBlock* tls, nlsLChar sought, const unsigned char* text,
                          uint16_t mode) {
    if (sought == 0) return {NLS_OK, terminatorOf(text)};
    const Sought character{locale, tls, sought, mode};
    if (character.decidedByEntries()) {
        const WeightMap weights = WeightMap::of(*locale.coll, mode);
        return {NLS_OK, firstOfEntry(weights, weights.entry(character.firstByte()), text)};
    }
    const Charset charset{*locale.attrib};
    for (; *text != 0; text = characterEnd(charset, text)) {
        const Compared compared = character.compareWith(text);
        if (endsAt(compared)) return {compared.status, text};
    }
    return {NLS_OK, nullptr};
}

FoundChar findCharBackward(const nlsLocale& locale, nlsTlsBlock* tls, nlsLChar sought, const unsigned char* text,
                           std::size_t length, uint16_t mode) {
    if (sought == 0) return {NLS_OK, terminatorOf(text)};
    const Sought character{locale, tls, sought, mode};
    const Charset charset{*locale.attrib};
    const unsigned char* place = text + length;
    // A step back over UTF-8 goes by the form of the bytes, whatever the table says of their lengths.
    if (!charset.isUtf8() && character.decidedByEntries())
        return {NLS_OK, lastEqual(WeightMap::of(*locale.coll, mode), character.firstByte(), text, place)};
    for (StepsBack steps{charset, text, place}; place != text;) {
        place = steps.from(place);
        const Compared compared = character.compareWith(place);
        if (endsAt(compared)) return {compared.status, place};
    }
    return {NLS_OK, nullptr};
}

}  // namespace nls
