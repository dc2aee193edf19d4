// The short search where characters have more than one byte, on any processor: as strings/short_chars_avx512.cpp does
// it, 16 bytes at once and the rest byte by byte.
//
// Copies of pattern and text, of at most 63 bytes each, are made into keys, a byte for each byte: the bytes themselves,
// those of the lower forms, or weights. Equal characters have equal keys; where the pattern's keys stand in the text,
// the rest that a match needs is asked. Where there are no such keys, the search in full takes over.
#include <algorithm>

#include "collation/ascii_case.hpp"
#include "collation/equal_run.hpp"
#include "collation/pair_off.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "strings/character_starts.hpp"
#include "strings/search.hpp"
#include "strings/short_search.hpp"
#include "strings/short_text.hpp"
#include "strings/utf8_block.hpp"

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

// UTF-8 by lower forms, as long as these leave each character its length.
class FormKeys {
public:
    static constexpr bool kMistakesLengths = false;

    FormKeys(const nlsLocale& locale, uint16_t)
        : attrib_(*locale.attrib),
          pages_(unicodeCaseTable(*locale.caseTable).casePages),
          hasPlainAscii_(isAsciiSingleByte(attrib_) && hasPlainAsciiForms(pages_, CaseForm::lower)) {}

    bool make(ShortText& text) const {
        const ByteBlock block{text.bytes};
        text.longer = 0;
        text.starts = firstBits(text.length);
        lowerAscii(text);
        const std::uint64_t high = block.high();
        if (high == 0) return hasPlainAscii_;
        const Utf8Block shape = readUtf8Block(block);
        text.starts &= shape.starts;
        const std::uint64_t mayHaveForms = (high & block.highBelow(0xE3)) | block.equal(0xEF);
        return hasPlainAscii_ && shape.plain && hasUsualLengths() && lowerLonger(text, text.starts & mayHaveForms);
    }
    static bool confirms(const Texts&, const unsigned char*, const ShortText&) { return true; }

private:
    static void lowerAscii(ShortText& text) {
#pragma GCC unroll 4
        for (unsigned i = 0; i != kShortParts; ++i)
            _mm_store_si128(text.part(i), run::SameButForAsciiCase::folded(_mm_load_si128(text.part(i))));
    }
    // Of the first bytes of longer characters in plain blocks.
    bool hasUsualLengths() const {
        __m128i odd = _mm_setzero_si128();
#pragma GCC unroll 4
        for (unsigned i = 0xC0; i < 0x100; i += kShortLanes) {
            const __m128i trails = _mm_and_si128(run::load(attrib_.lengthMap + i), run::load(&kCountedTrails[i]));
            odd = _mm_or_si128(odd, _mm_xor_si128(trails, run::load(&kUsualTrails[i])));
        }
        return _mm_movemask_epi8(_mm_cmpeq_epi8(odd, _mm_setzero_si128())) == 0xFFFF;
    }
    // A form replaces the last two bytes. One of two bytes that aren't regular could be taken for other characters.
    bool lowerLonger(ShortText& text, std::uint64_t firsts) const {
        const auto& pages = pages_;
        unsigned odd = 0;
        for (; firsts != 0; firsts &= firsts - 1) {
            unsigned char* const first = text.bytes + __builtin_ctzll(firsts);
            const bool ofThree = *first >= 0xE0;
            unsigned char* const last = first + 1 + ofThree;
            const unsigned top = ofThree ? unsigned{*first} << 16 : 0;
            const unsigned form = caseFormOf(pages, top | unsigned{last[-1]} << 8 | *last, CaseForm::lower);
            odd |= ofThree ? 0 : (form ^ 0xC080U) & 0xE0C0U;
            last[-1] = static_cast<unsigned char>(form >> 8);
            *last = static_cast<unsigned char>(form);
        }
        return odd == 0;
    }

    const nlsAttribStruct& attrib_;
    const uint16_t* const (&pages_)[kCasePages];
    bool hasPlainAscii_;
};

// Characters of one and two bytes under byte tables: the weight of the first byte, and the second as it is. Its key is
// its weight, too, since that is looked up before it is known which bytes are second ones.
class WeightKeys {
public:
    static constexpr bool kMistakesLengths = true;

    WeightKeys(const nlsLocale& locale, uint16_t mode)
        : charset_(*locale.attrib), weights_(WeightMap::of(*locale.coll, mode)) {}

    bool make(ShortText& text) const {
        const unsigned char* const lengths = charset_.lengths();
        const WeightMap weights = weights_;
        const std::size_t length = text.length;
        std::uint64_t announced = 0;  // bit 0 of each length, shifted in from above
        unsigned any = 0;
        for (std::size_t i = 0; i != length; ++i) {
            const unsigned char byte = text.bytes[i];
            text.bytes[i] = weights.entry(byte);
            any |= lengths[byte];
            announced = announced >> 1 | std::uint64_t{lengths[byte]} << 63;
        }
        const std::uint64_t firsts = length == 0 ? 0 : announced >> (blockSize - length);
        const std::uint64_t seconds = pairOff(firsts, false, blockSize).lanes;
        text.starts = firstBits(length) & ~seconds;
        text.longer = firsts & text.starts;
        const bool expands = (ByteBlock{text.bytes}.equal(0) & text.starts) != 0;
        return (any & 6) == 0 && !expands && (seconds >> length & 1) == 0;
    }
    bool confirms(const Texts& texts, const unsigned char* match, const ShortText& ofPattern) const {
        for (std::uint64_t longer = ofPattern.longer; longer != 0; longer &= longer - 1) {
            const auto second = static_cast<std::size_t>(__builtin_ctzll(longer)) + 1;
            if (match[second] != texts.pattern[second]) return false;
        }
        return true;
    }

private:
    Charset charset_;
    WeightMap weights_;
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
    return searchBy<WeightKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

}  // namespace nls
