// The short search where characters have more than one byte, on any processor: as strings/short_chars_avx512.cpp does
// it, 16 bytes at once and the rest byte by byte.
//
// Copies of pattern and text, of at most 63 bytes each, are made into keys, a byte for each byte: the bytes themselves,
// those of the lower forms, or weights. Equal characters have equal keys; where the pattern's keys stand in the text,
// the rest that a match needs is asked. Where there are no such keys, the search in full takes over.
#include <algorithm>

#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "strings/character_starts.hpp"
#include "strings/search.hpp"
#include "strings/short_keys.hpp"
#include "strings/short_search.hpp"

namespace nls {
namespace {

struct Texts {
    const unsigned char *text, *pattern;  // of the caller
};

// Characters are their bytes. Whether one begins is only asked where the bytes of the pattern stand.
class ByteKeys {
public:
    static constexpr bool kMistakesLengths = false;

    ByteKeys(const nlsLocale& locale, uint16_t) : lengths_{Charset{*locale.attrib}, Charset::kTrailCountBits} {}

    bool make(ShortText& text) const {
        text.starts = firstBits(text.length);
        text.longer = 0;
        return endsWhole(lengths_, text.view());
    }
    bool confirms(const Texts& texts, const unsigned char* match, const ShortText&) const {
        return CharacterStarts{lengths_, texts.text}.of(match) == match;
    }

private:
    CharsetLengths lengths_;
};

// UTF-8 by lower forms.
struct FormKeys : LowerFormKeys {
    static constexpr bool kMistakesLengths = false;

    FormKeys(const nlsLocale& locale, uint16_t)
        : LowerFormKeys(*locale.attrib, unicodeCaseTable(*locale.caseTable).casePages) {}

    static bool confirms(const Texts&, const unsigned char*, const ShortText&) { return true; }
};

// Characters of one and two bytes under byte tables: second bytes are compared as they are.
struct PairKeys : WeightKeys {
    static constexpr bool kMistakesLengths = true;

    PairKeys(const nlsLocale& locale, uint16_t mode)
        : WeightKeys(Charset{*locale.attrib}, WeightMap::of(*locale.coll, mode)) {}

    static bool confirms(const Texts& texts, const unsigned char* match, const ShortText& ofPattern) {
        for (std::uint64_t longer = ofPattern.longer; longer != 0; longer &= longer - 1) {
            const auto second = static_cast<std::size_t>(__builtin_ctzll(longer)) + 1;
            if (match[second] != texts.pattern[second]) return false;
        }
        return true;
    }
};

struct Candidates {
    std::uint64_t starts;
    std::uint64_t unknown;  // any: a longer character may be equal to a single byte
};

// Those that have three keys of the pattern, taken together. Where lengths may be mistaken these are the first ones,
// each compared as far as lengths are known.
template <typename Way>
inline Candidates candidatesOf(const ShortText& text, const ShortText& pattern) {
    const ByteBlock keys{text.bytes};
    const std::size_t last = pattern.length - 1;
    const auto having = [&](std::size_t at) { return keys.equal(pattern.bytes[at]) >> at; };
    if constexpr (!Way::kMistakesLengths)
        return {text.starts & having(0) & having(pattern.length / 2) & having(last), 0};
    std::uint64_t left = text.starts, mistaken = 0;
#pragma GCC unroll 3
    for (std::size_t i = 0; i != 3; ++i) {
        const std::size_t at = std::min(i, last);
        left &= having(at);
        mistaken |= left & (text.longer >> at ^ (0 - (pattern.longer >> at & 1)));
    }
    return {left, mistaken};
}

enum class Equal { no, yes, unknown };

// The text's end is a key that no pattern has.
inline Equal areEqual(const ShortText& text, std::size_t at, const ShortText& pattern) {
    for (std::size_t i = 0; i != pattern.length; ++i) {
        if (text.bytes[at + i] != pattern.bytes[i]) return Equal::no;
        if (((text.longer >> (at + i) ^ pattern.longer >> i) & 1) != 0) return Equal::unknown;
    }
    return Equal::yes;
}

struct Outcome {
    bool known;
    Span match;  // its start is null where there is none
};

template <typename Way>
inline Outcome find(const nlsLocale& locale, uint16_t mode, const Texts& texts) {
    constexpr Outcome kUnknown{false, {}};
    ShortText text, pattern;
    copyShort(texts.text, text);
    copyShort(texts.pattern, pattern);
    if (!text.isWhole() || !pattern.isWhole() || pattern.length == 0) return kUnknown;
    const Way way{locale, mode};
    if (!way.make(text) || !way.make(pattern)) return kUnknown;
    const Candidates some = candidatesOf<Way>(text, pattern);
    if (some.unknown != 0) return kUnknown;
    for (std::uint64_t starts = some.starts; starts != 0; starts &= starts - 1) {
        const auto at = static_cast<std::size_t>(__builtin_ctzll(starts));
        const unsigned char* const match = texts.text + at;
        const Equal equal = areEqual(text, at, pattern);
        if (equal == Equal::unknown) return kUnknown;
        if (equal == Equal::yes && way.confirms(texts, match, pattern)) return {true, {match, match + pattern.length}};
    }
    return {true, {nullptr, nullptr}};
}

template <typename Way>
inline nlsStatus searchBy(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                          const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                          const unsigned char** found) {
    const Outcome outcome = find<Way>(*locale, mode, {text, pattern});
    if (!outcome.known) return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    if (outcome.match.start == nullptr)
        tellNone(pos, found);
    else
        tellMatch(outcome.match, text, pos, end, found);
    return NLS_OK;
}

}  // namespace

nlsStatus searchShortByBytesPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                  const unsigned char** found) {
    return searchBy<ByteKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

nlsStatus searchShortByFormsPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                  const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                  const unsigned char** found) {
    return searchBy<FormKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

nlsStatus searchShortByWeightsPlain(const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern,
                                    const unsigned char* text, uint16_t mode, uint32_t* pos, uint32_t* end,
                                    const unsigned char** found) {
    return searchBy<PairKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

}  // namespace nls
