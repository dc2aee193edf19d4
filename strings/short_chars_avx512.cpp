// The short search where characters have more than one byte, as long as equal ones have the same number of bytes.
//
// Pattern and text, of at most 63 bytes each, are made into keys, a byte for each byte, by which characters are equal
// exactly when their keys are: the bytes themselves, those of the lower forms, or the weights of first bytes. What is
// known of a byte beside is a bit. Where there are no such keys, the search in full takes over.
#include <algorithm>
#include <array>

#include "collation/weight_rows_avx512.hpp"
#include "core/base/charset.hpp"
#include "strings/search.hpp"
#include "strings/short_search.hpp"
#include "strings/text_block_avx512.hpp"
#include "strings/utf8_case_block_avx512.hpp"

namespace nls {
namespace {

// As far as 64 bytes can be read: those bytes, and lanes of NULs and of what stands in front of the first of them.
struct ShortText {
    __m512i bytes;
    std::uint64_t nuls, inside;

    bool ends() const { return nuls != 0; }
    NLS_TARGET_AVX512 std::size_t length() const { return _tzcnt_u64(nuls); }
};

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS inline ShortText shortTextAt(const unsigned char* place) {
    __m512i bytes;
    if (const std::size_t room = leftInPage(place); room >= kTextBlock)
        bytes = _mm512_loadu_si512(place);
    else
        bytes = _mm512_mask_loadu_epi8(_mm512_set1_epi8(1), firstLanes(room), place);
    const std::uint64_t nuls = _mm512_testn_epi8_mask(bytes, bytes);
    return {bytes, nuls, (nuls - 1) & ~nuls};
}

alignas(kTextBlock) constexpr std::array<unsigned char, kTextBlock> kLanes = [] {
    std::array<unsigned char, kTextBlock> lanes{};
    for (unsigned i = 0; i != kTextBlock; ++i) lanes[i] = static_cast<unsigned char>(i);
    return lanes;
}();

// Masked, because GCC 12 warns of what its plain form leaves open.
NLS_TARGET_AVX512 inline __m512i lanesAt(__m512i places, __m512i bytes) {
    return _mm512_maskz_permutexvar_epi8(~__mmask64{0}, places, bytes);
}

// The bytes from lane `first` on, and behind the last lane those from lane 0 on.
NLS_TARGET_AVX512 inline __m512i lanesFrom(std::size_t first, __m512i bytes) {
    const __m512i from = _mm512_set1_epi8(static_cast<char>(first));
    return lanesAt(_mm512_add_epi8(_mm512_load_si512(kLanes.data()), from), bytes);
}

struct Keys {
    __m512i bytes;          // none is 0 but that of the NUL
    std::uint64_t starts;   // of characters, at least where they may be taken for other bytes
    std::uint64_t longer;   // first bytes whose keys don't tell them from single ones
    std::uint64_t unknown;  // any: there are no such keys
};

struct Trails {
    std::uint64_t bits;    // trailing bytes
    std::uint64_t firsts;  // bytes that could be first ones of longer characters
    std::uint64_t unknown;
};

// Where text has characters of three bytes and more, no trailing byte may look like a first one.
template <bool kPairsAlone>
NLS_TARGET_AVX512 inline Trails trailsOf(const WeightRows& lengths, __m512i bytes, std::uint64_t inside) {
    const __m512i lengthOf = weigh(lengths, bytes);
    const auto having = [&](char bits) NLS_TARGET_AVX512 -> std::uint64_t {
        return _mm512_mask_test_epi8_mask(inside, lengthOf, _mm512_set1_epi8(bits));
    };
    const std::uint64_t firsts = having(Charset::kTrailCountBits), ofThree = having(6);
    const std::uint64_t announced = firsts << 1 | ofThree << 2 | (having(1) & ofThree) << 3;
    if (!kPairsAlone && ((announced & firsts) == 0 || ofThree != 0))
        return {announced, firsts, (announced & (firsts | ~inside)) | having(4)};
    const std::uint64_t seconds = pairOff(firsts, false, kTextBlock).lanes;
    return {seconds, firsts, (seconds & ~inside) | ofThree};
}

// Characters are their bytes.
class ByteKeys {
public:
    static constexpr bool kMistakesLengths = false;

    NLS_TARGET_AVX512 ByteKeys(const nlsLocale& locale, uint16_t) : lengths_(rowsOf(locale.attrib->lengthMap)) {}

    NLS_TARGET_AVX512 Keys of(__m512i bytes, std::uint64_t inside) const {
        const Trails trails = trailsOf<false>(lengths_, bytes, inside);
        return {bytes, inside & ~trails.bits, 0, trails.unknown};
    }

private:
    WeightRows lengths_;
};

// UTF-8 by lower forms, as long as these leave each character its length: what begins one is told from the bytes.
class FormKeys {
public:
    static constexpr bool kMistakesLengths = false;

    NLS_TARGET_AVX512 FormKeys(const nlsLocale& locale, uint16_t)
        : unknown_(!hasUsualUtf8Case(*locale.attrib, unicodeCaseTable(*locale.caseTable), CaseForm::lower)),
          rows_(unicodeCaseTable(*locale.caseTable).casePages, CaseForm::lower) {}

    NLS_TARGET_AVX512 Keys of(__m512i bytes, std::uint64_t inside) {
        bytes = _mm512_maskz_mov_epi8(inside, bytes);
        alignas(kTextBlock) unsigned char source[kTextBlock];
        _mm512_store_si512(source, bytes);
        const Shape shape = shapeOf(bytes, _mm512_movepi8_mask(bytes));
        if (shape.wrong != 0) return {bytes, inside, 0, shape.wrong};
        const Mapped mapped = mapLonger(rows_, source, bytes, shape, kTextBlock, mapAscii(CaseForm::lower, bytes));
        // A form that isn't regular could be taken for other characters; one that is shorter begins with 0.
        const __m512i changed = _mm512_xor_si512(bytes, mapped.bytes);
        const std::uint64_t firsts = _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xC0)));
        const std::uint64_t odd = _mm512_test_epi8_mask(changed, _mm512_set1_epi8(static_cast<char>(0xC0))) |
                                  _mm512_mask_test_epi8_mask(firsts, changed, _mm512_set1_epi8(0x20));
        return {mapped.bytes, inside, 0, unknown_ | odd};
    }

private:
    std::uint64_t unknown_;
    Rows rows_;
};

// The same for a pattern of ASCII: it has no equals but ASCII, where no character of two bytes has a form of one.
class AsciiFormKeys {
public:
    static constexpr bool kMistakesLengths = false;

    NLS_TARGET_AVX512 AsciiFormKeys(const nlsLocale& locale, uint16_t)
        : table_(unicodeCaseTable(*locale.caseTable)),
          unknown_(!hasUsualUtf8Case(*locale.attrib, table_, CaseForm::lower)) {}

    NLS_TARGET_AVX512 Keys of(__m512i bytes, std::uint64_t inside) const {
        bytes = _mm512_maskz_mov_epi8(inside, bytes);
        const Shape shape = shapeOf(bytes, _mm512_movepi8_mask(bytes));
        std::uint64_t unknown = unknown_ | shape.wrong;
        // Without a branch for the first of the first bytes: many a text has one, and many a text has none.
        std::uint64_t two = shape.two;
        do {
            const __m512i at = _mm512_set1_epi8(static_cast<char>(_tzcnt_u64(two)));
            const __m512i lead = lanesAt(at, bytes);
            const auto page = static_cast<unsigned char>(_mm512_cvtsi512_si32(lead));
            unknown |= two == 0 ? 0 : formsOfOne(table_.casePages[page]);
            two &= ~_mm512_cmpeq_epi8_mask(bytes, lead);
        } while (two != 0);
        return {mapAscii(CaseForm::lower, bytes), inside, 0, unknown};
    }

private:
    // Lower forms below 0x80, of a page other than 0.
    NLS_TARGET_AVX512 static std::uint64_t formsOfOne(const uint16_t* page) {
        const auto in = [page](unsigned first) NLS_TARGET_AVX512 -> std::uint64_t {
            const __m512i forms = _mm512_loadu_si512(page + kCasePageEntries / 2 + first);
            const __m512i fromOne = _mm512_sub_epi16(forms, _mm512_set1_epi16(1));  // 0 is none
            return _mm512_cmplt_epu16_mask(fromOne, _mm512_set1_epi16(0x7F));
        };
        return in(0) | in(kCasePageEntries / 4);
    }

    const nlsUnicodeCaseStruct& table_;
    std::uint64_t unknown_;
};

// Characters of one and two bytes under byte tables: the weight of the first byte, and the second as it is.
class WeightKeys {
public:
    static constexpr bool kMistakesLengths = true;

    NLS_TARGET_AVX512 WeightKeys(const nlsLocale& locale, uint16_t mode)
        : lengths_(rowsOf(locale.attrib->lengthMap)), weights_(rowsOf(WeightMap::of(*locale.coll, mode))) {}

    NLS_TARGET_AVX512 Keys of(__m512i bytes, std::uint64_t inside) const {
        const Trails trails = trailsOf<true>(lengths_, bytes, inside);
        const std::uint64_t starts = inside & ~trails.bits;
        const __m512i weighed = _mm512_mask_mov_epi8(bytes, starts, weigh(weights_, bytes));
        const std::uint64_t expansions = _mm512_mask_testn_epi8_mask(starts, weighed, weighed);
        return {weighed, starts, starts & trails.firsts, trails.unknown | expansions};
    }

private:
    WeightRows lengths_, weights_;
};

// Where the key stands that the pattern has at `at`, counted from where the pattern then stands.
NLS_TARGET_AVX512 inline std::uint64_t having(const Keys& text, const Keys& pattern, std::size_t at) {
    const __m512i key = lanesAt(_mm512_set1_epi8(static_cast<char>(at)), pattern.bytes);
    return _mm512_cmpeq_epi8_mask(text.bytes, key) >> at;
}

struct BothKeys {
    Keys text, pattern;
};

// The keys of both made at once, in a block that has the pattern from lane `first` on, with a NUL behind each of them.
template <typename Way>
NLS_TARGET_AVX512 inline BothKeys keysTogether(Way& way, const ShortText& text, const ShortText& pattern,
                                               std::size_t first) {
    const std::uint64_t inPattern = pattern.inside << first;
    const __m512i atEnd = lanesFrom(kTextBlock - first, pattern.bytes);
    const __m512i both = _mm512_mask_mov_epi8(_mm512_maskz_mov_epi8(text.inside, text.bytes), inPattern, atEnd);
    const Keys keys = way.of(both, text.inside | inPattern);
    return {{keys.bytes, keys.starts & text.inside, keys.longer, keys.unknown},
            {lanesFrom(first, keys.bytes), 0, keys.longer >> first, 0}};
}

struct Candidates {
    std::uint64_t starts;
    std::uint64_t unknown;  // any: a longer character may be equal to a single byte
};

// Those that have three keys of the pattern, taken together: hardly any other text comes as far, so that what follows
// can be foretold. Where lengths may be mistaken these are the first ones, each compared as far as lengths are known.
template <typename Way>
NLS_TARGET_AVX512 inline Candidates candidatesOf(const Keys& text, const Keys& pattern, std::size_t length) {
    if constexpr (!Way::kMistakesLengths)
        return {text.starts & having(text, pattern, 0) & having(text, pattern, length / 2) &
                    having(text, pattern, length - 1),
                0};
    std::uint64_t left = text.starts, mistaken = 0;
#pragma GCC unroll 3
    for (std::size_t i = 0; i != 3; ++i) {
        const std::size_t at = std::min(i, length - 1);
        left &= having(text, pattern, at);
        mistaken |= left & (text.longer ^ (0 - (pattern.longer >> at & 1))) >> at;
    }
    return {left, mistaken};
}

// The first place where all keys are those of the pattern. The text's end is one that no pattern has.
NLS_TARGET_AVX512 inline Candidates firstOf(std::uint64_t candidates, const Keys& text, const Keys& pattern,
                                            std::size_t length) {
    for (; candidates != 0; candidates = _blsr_u64(candidates)) {
        const std::size_t at = _tzcnt_u64(candidates);
        const std::uint64_t different =
            _mm512_mask_cmpneq_epi8_mask(firstLanes(length), lanesFrom(at, text.bytes), pattern.bytes);
        const std::uint64_t mistaken = ((text.longer >> at) ^ pattern.longer) & firstLanes(length);
        if (_tzcnt_u64(mistaken) < _tzcnt_u64(different)) return {0, mistaken};
        if (different == 0) break;
    }
    return {candidates, 0};
}

struct Outcome {
    std::uint64_t starts;   // with the first match as the lowest; none
    std::uint64_t unknown;  // any: the search in full must find it
};

template <typename Way>
NLS_TARGET_AVX512 inline Outcome searchKeys(const BothKeys& keys, std::size_t length) {
    const Candidates some = candidatesOf<Way>(keys.text, keys.pattern, length);
    const Candidates match = firstOf(some.starts, keys.text, keys.pattern, length);
    return {match.starts, keys.text.unknown | keys.pattern.unknown | some.unknown | match.unknown};
}

// Where both don't fit a block: out of line, so that others needn't make room for its registers.
template <typename Way>
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS Outcome searchApart(const nlsLocale& locale, uint16_t mode,
                                                                               const unsigned char* pattern,
                                                                               const unsigned char* text) {
    Way way{locale, mode};
    const ShortText ofText = shortTextAt(text), ofPattern = shortTextAt(pattern);
    return searchKeys<Way>({way.of(ofText.bytes, ofText.inside), way.of(ofPattern.bytes, ofPattern.inside)},
                           ofPattern.length());
}

template <typename Way>
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS inline nlsStatus searchBy(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                   const unsigned char* pattern,
                                                                   const unsigned char* text, uint16_t mode,
                                                                   uint32_t* pos, uint32_t* end,
                                                                   const unsigned char** found) {
    const ShortText ofText = shortTextAt(text), ofPattern = shortTextAt(pattern);
    if (!ofText.ends() || !ofPattern.ends() || ofPattern.inside == 0)
        return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    const std::size_t length = ofPattern.length(), first = kTextBlock - 1 - length;
    Outcome outcome;
    if (ofText.length() < first) {
        Way way{*locale, mode};
        outcome = searchKeys<Way>(keysTogether(way, ofText, ofPattern, first), length);
    } else {
        outcome = searchApart<Way>(*locale, mode, pattern, text);
    }
    if (outcome.unknown != 0) return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    if (outcome.starts == 0) {
        tellNone(pos, found);
        return NLS_OK;
    }
    const unsigned char* const start = text + _tzcnt_u64(outcome.starts);
    tellMatch({start, start + length}, text, pos, end, found);
    return NLS_OK;
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus searchShortByBytes(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                      const unsigned char* pattern,
                                                                      const unsigned char* text, uint16_t mode,
                                                                      uint32_t* pos, uint32_t* end,
                                                                      const unsigned char** found) {
    return searchBy<ByteKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

// Another function, since it needs much room.
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS static nlsStatus searchByAnyForms(
    const nlsLocale* locale, nlsTlsBlock* tls, const unsigned char* pattern, const unsigned char* text, uint16_t mode,
    uint32_t* pos, uint32_t* end, const unsigned char** found) {
    return searchBy<FormKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus searchShortByForms(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                      const unsigned char* pattern,
                                                                      const unsigned char* text, uint16_t mode,
                                                                      uint32_t* pos, uint32_t* end,
                                                                      const unsigned char** found) {
    const ShortText ofPattern = shortTextAt(pattern);
    if ((_mm512_movepi8_mask(ofPattern.bytes) & ofPattern.inside) != 0)
        return searchByAnyForms(locale, tls, pattern, text, mode, pos, end, found);
    return searchBy<AsciiFormKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus searchShortByWeights(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                        const unsigned char* pattern,
                                                                        const unsigned char* text, uint16_t mode,
                                                                        uint32_t* pos, uint32_t* end,
                                                                        const unsigned char** found) {
    return searchBy<WeightKeys>(locale, tls, pattern, text, mode, pos, end, found);
}

}  // namespace nls
