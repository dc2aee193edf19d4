#include <array>

#include "collation/ascii_case.hpp"
#include "convmap/case_pages.hpp"
#include "strings/like_follow.hpp"
#include "strings/like_lanes.hpp"
#include "strings/text_block_avx512.hpp"

namespace nls {
namespace {

using like::Characters;

struct Block {
    __m512i bytes;

    NLS_TARGET_AVX512 std::uint64_t equal(unsigned char byte) const { return lanesOf(bytes, byte); }
};
using Pairs = like::Pairs<Block>;
using Utf8 = like::Utf8<Block>;

// What the announced trailing bytes of a text are: those behind first bytes that announce one, two and three.
struct Leads {
    std::uint64_t one, two, three, more;
};

NLS_TARGET_AVX512 inline Leads leadsOf(const Charset& charset, __m512i bytes) {
    const __m512i counts = _mm512_and_si512(lookUpOnce(charset.lengths(), bytes), _mm512_set1_epi8(0x07));
    return {lanesOf(counts, 1), lanesOf(counts, 2), lanesOf(counts, 3),
            _mm512_cmpgt_epi8_mask(counts, _mm512_set1_epi8(3))};
}

// The bytes behind leads of one trailing byte, where such a byte may be a lead by its value: of leads in a row every
// second is one. The runs are told apart by the parity of where they begin, and a subtraction runs through each.
constexpr std::uint64_t trailsOfPairs(std::uint64_t leads) {
    constexpr std::uint64_t kOdd = 0xAAAAAAAAAAAAAAAAU;
    const std::uint64_t behind = leads << 1;
    return (((behind | kOdd) - leads) ^ kOdd) ^ leads;
}

// The characters of regular UTF-8: trailing bytes stand where they are announced, and nowhere else; ASCII announces
// none, and all other first bytes do, since one that stands alone could fold to ASCII. Elsewhere `length` is 0.
NLS_TARGET_AVX512 inline Characters utf8Characters(const Leads& leads, const TextBlock& block) {
    const std::uint64_t all = firstLanes(block.length);
    const std::uint64_t trails = _mm512_cmplt_epi8_mask(block.bytes, _mm512_set1_epi8(static_cast<char>(0xC0))) & all;
    const std::uint64_t starts = all & ~trails;
    const std::uint64_t one = leads.one & starts, two = leads.two & starts, three = leads.three & starts;
    const std::uint64_t announced = (one | two | three) << 1 | (two | three) << 2 | three << 3;
    const std::uint64_t ascii = all & ~_mm512_movepi8_mask(block.bytes);
    if (announced != trails || (leads.more & starts) != 0 || (one | two | three) != (starts & ~ascii)) return {0, 0, 0};
    return {block.length, starts | (all + 1), trails};
}

// Has ASCII its usual lower forms, and no others?
NLS_TARGET_AVX512 inline bool hasPlainAsciiForms(const nlsUnicodeCaseStruct& table) {
    const uint16_t* const forms = table.casePages[0] + caseIndexOf(0, CaseForm::lower);
    const AsciiForms& plain = kPlainAsciiForms[static_cast<unsigned>(CaseForm::lower)];
    constexpr std::size_t kEntries = kTextBlock / sizeof plain[0];
    static_assert(kAsciiPageEntries / 2 % kEntries == 0);
    __m512i any = _mm512_setzero_si512();
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kAsciiPageEntries / 2; i += kEntries) {
        const __m512i odd = _mm512_xor_si512(_mm512_loadu_si512(forms + i), _mm512_load_si512(&plain[i]));
        any = _mm512_or_si512(any, odd);
    }
    return _mm512_test_epi8_mask(any, any) == 0;
}

NLS_TARGET_AVX512 inline __m512i lowerAscii(__m512i bytes) {
    const __mmask64 capitals =
        _mm512_cmplt_epu8_mask(_mm512_sub_epi8(bytes, _mm512_set1_epi8('A')), _mm512_set1_epi8(26));
    return _mm512_or_si512(bytes, _mm512_maskz_set1_epi8(capitals, 0x20));
}

// The last two bytes of the lower forms of a page of characters, by the low six bits of the characters' last byte.
struct FormRow {
    __m512i before, last;
};

// The low and the high bytes of the words in two registers.
alignas(kTextBlock) constexpr std::array<std::array<unsigned char, kTextBlock>, 2> kEverySecond = [] {
    std::array<std::array<unsigned char, kTextBlock>, 2> places{};
    for (unsigned i = 0; i != 2 * kTextBlock; ++i) places[i % 2][i / 2] = static_cast<unsigned char>(i);
    return places;
}();

// `before`: the byte before the last one of these characters, which stay as they are where they have no form.
NLS_TARGET_AVX512 inline FormRow lowerFormsOf(const uint16_t* page, unsigned char before) {
    constexpr unsigned kLowerHalf = kCasePageEntries / 2, kEntries = kTextBlock / 2;
    alignas(kTextBlock) static constexpr std::array<uint16_t, kTextBlock> kLast = [] {
        std::array<uint16_t, kTextBlock> bytes{};
        for (unsigned i = 0; i != kTextBlock; ++i) bytes[i] = static_cast<uint16_t>(0x80 + i);
        return bytes;
    }();
    __m512i forms[2];
    for (unsigned i = 0; i != 2; ++i) {
        const __m512i found = _mm512_loadu_si512(page + kLowerHalf + i * kEntries);
        const __m512i own = _mm512_or_si512(_mm512_load_si512(&kLast[i * kEntries]),
                                            _mm512_set1_epi16(static_cast<short>(before << 8)));
        forms[i] = _mm512_mask_mov_epi16(found, _mm512_testn_epi16_mask(found, found), own);
    }
    return {_mm512_permutex2var_epi8(forms[0], _mm512_load_si512(kEverySecond[1].data()), forms[1]),
            _mm512_permutex2var_epi8(forms[0], _mm512_load_si512(kEverySecond[0].data()), forms[1])};
}

// Puts the lower forms of characters in their places. False: a form is longer or shorter than its character, or a
// character has three bytes and its page has forms. REQUIRES: ASCII has its usual forms.
NLS_TARGET_AVX512 inline bool lowerUtf8(const nlsUnicodeCaseStruct& table, const Leads& leads,
                                        const unsigned char* source, Utf8& text) {
    const __m512i bytes = text.bytes.bytes;
    __m512i forms = lowerAscii(bytes);
    std::uint64_t three = leads.two & text.characters.starts;
    if (three != 0) three &= lanesOf(bytes, 0xE1) | lanesOf(bytes, 0xE2) | lanesOf(bytes, 0xEF);
    for (; three != 0; three = _blsr_u64(three)) {
        const unsigned char* const place = source + _tzcnt_u64(three);
        const unsigned number = unsigned{place[0]} << 16 | unsigned{place[1]} << 8 | place[2];
        if (caseFormOf(table.casePages, number, CaseForm::lower) != number) return false;
    }
    std::uint64_t left = leads.one & text.characters.starts, lasts = 0;
    __m512i fronts = _mm512_setzero_si512();
    while (left != 0) {
        const unsigned char lead = source[_tzcnt_u64(left)];
        const std::uint64_t same = lanesOf(bytes, lead) & left;
        left &= ~same;
        const FormRow row = lowerFormsOf(table.casePages[lead], lead);
        forms = _mm512_mask_permutexvar_epi8(forms, same << 1, bytes, row.last);
        fronts = _mm512_mask_permutexvar_epi8(fronts, same << 1, bytes, row.before);
        lasts |= same << 1;
    }
    alignas(kTextBlock) static constexpr std::array<unsigned char, kTextBlock> kNext = [] {
        std::array<unsigned char, kTextBlock> places{};
        for (unsigned i = 0; i != kTextBlock; ++i) places[i] = static_cast<unsigned char>((i + 1) % kTextBlock);
        return places;
    }();
    text.bytes = {_mm512_mask_permutexvar_epi8(forms, lasts >> 1, _mm512_load_si512(kNext.data()), fronts)};
    return _mm512_mask_testn_epi8_mask(lasts, fronts, fronts) == 0;
}

// Has no character of the text that isn't ASCII an ASCII letter as its form? One of three bytes never has.
NLS_TARGET_AVX512 inline bool keepsOutOfAscii(const nlsUnicodeCaseStruct& table, const Leads& leads,
                                              const unsigned char* source, const Utf8& text) {
    constexpr unsigned kLowerHalf = kCasePageEntries / 2, kEntries = kTextBlock / 2;
    std::uint64_t left = leads.one & text.characters.starts;
    __mmask32 ascii = 0;
    do {  // once at least: whether a text is ASCII no branch foresees
        const unsigned char lead = source[_tzcnt_u64(left) % kTextBlock];
        const __mmask32 counts = left != 0 ? ~__mmask32{0} : 0;
        left &= ~text.bytes.equal(lead);
        for (unsigned i = 0; i != kCasePageEntries / 2; i += kEntries) {
            const __m512i forms = _mm512_loadu_si512(table.casePages[lead] + kLowerHalf + i);
            ascii |= counts &
                     _mm512_cmplt_epu16_mask(_mm512_sub_epi16(forms, _mm512_set1_epi16(1)), _mm512_set1_epi16(0x7F));
        }
    } while (left != 0);
    return ascii == 0;
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS inline bool isAscii(const unsigned char* text) {
    const TextBlock block = textBlockAt(text);
    return block.ended && (_mm512_movepi8_mask(block.bytes) & firstLanes(block.length)) == 0;
}

}  // namespace

NLS_TARGET_AVX512 LikeAnswer matchPairsAvx512(const Charset& charset, WeightMap weights, const LikeSigns& signs,
                                              const unsigned char* pattern, const unsigned char* text) {
    const TextBlock block = textBlockAt(text);
    if (!block.ended) return LikeAnswer::unknown;
    const std::uint64_t all = firstLanes(block.length);
    const Leads leads = leadsOf(charset, block.bytes);
    const std::uint64_t trails = trailsOfPairs(leads.one & all);
    const std::uint64_t starts = all & ~trails;
    Pairs pairs{{block.length, starts | (all + 1), trails},   charset,           weights, {block.bytes},
                {lookUpOnce(weights.entries(), block.bytes)}, leads.one & starts};
    const std::uint64_t odd = ((leads.two | leads.three | leads.more | pairs.weighed.equal(0)) & starts) |
                              (lanesOf(block.bytes, ' ') & trails) | (trails & ~all);
    return odd != 0 ? LikeAnswer::unknown : like::follow(pairs, charset, signs, pattern);
}

NLS_TARGET_AVX512 LikeAnswer matchUtf8Avx512(const Charset& charset, const nlsUnicodeCaseStruct* table,
                                             const LikeSigns& signs, const unsigned char* pattern,
                                             const unsigned char* text) {
    const TextBlock block = textBlockAt(text);
    if (!block.ended) return LikeAnswer::unknown;
    const Leads leads = leadsOf(charset, block.bytes);
    Utf8 utf8{utf8Characters(leads, block), charset, table, {block.bytes}};
    if (utf8.characters.length == 0) return LikeAnswer::unknown;
    if (table != nullptr) {
        if (!hasPlainAsciiForms(*table)) return LikeAnswer::unknown;
        if (isAscii(pattern) && keepsOutOfAscii(*table, leads, text, utf8))
            utf8.bytes = {lowerAscii(block.bytes)};
        else if (!lowerUtf8(*table, leads, text, utf8))
            return LikeAnswer::unknown;
    }
    return like::follow(utf8, charset, signs, pattern);
}

}  // namespace nls
