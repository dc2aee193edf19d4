// The order of characters' own values in one block of 64 bytes, which holds nearly all values of a column.
//
// Nothing foretells where two texts differ, so the way to an answer has few branches that go either way: first a pair
// of ASCII letters, where many texts part; then the first place where bytes differ, found in the block; then the
// character that this place belongs to, in either text, and its form. Whatever is out of the ordinary is left to the
// plain walk. Tested by tests/collation/unicode_compare_test.cpp.
#include <algorithm>
#include <array>

#include "collation/equal_run.hpp"
#include "collation/unicode_compare.hpp"
#include "collation/weight_rows_avx512.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "core/base/views.hpp"
// What the blocks of the case service ask of a locale.
#include "strings/utf8_case.hpp"

namespace nls {
namespace {

using Byte = unsigned char;

constexpr std::size_t kBlock = 64;

NLS_TARGET_AVX512 NLS_BLOCKS_INLINE inline __m512i load(const Byte* place, std::size_t count) {
    return _mm512_maskz_loadu_epi8(firstLanes(count), place);
}

// Lanes of two blocks of `count` bytes.
struct Stops {
    uint64_t nuls;  // in which a text has a NUL
    uint64_t all;   // those, and where the bytes differ
};

NLS_TARGET_AVX512 inline Stops stopsOf(__m512i a, __m512i b, std::size_t count) {
    const __m512i lower = _mm512_min_epu8(a, b);
    const uint64_t nuls = _mm512_mask_testn_epi8_mask(firstLanes(count), lower, lower);
    return {nuls, nuls | _mm512_cmpneq_epi8_mask(a, b)};
}

// The bytes that both texts have up to their limits. REQUIRES: limits.
inline std::size_t roomIn(Text a, Text b) {
    return static_cast<std::size_t>(std::min(a.limit - a.place, b.limit - b.place));
}

// Whether the first `count` bytes of each text fill no more than a block, inside one page.
inline bool fitBlock(const Byte* a, const Byte* b, std::size_t count) {
    const auto first = [](const Byte* place) { return reinterpret_cast<std::uintptr_t>(place); };
    const auto crossed = (first(a) ^ (first(a) + count - 1)) | (first(b) ^ (first(b) + count - 1));
    return count <= kBlock && crossed < kSmallestPage;
}

inline Text behind(Text text, std::size_t bytes) {
    return {text.place + bytes, text.limit};
}

// How the form of a character is looked up, by its first byte.
struct LeadRow {
    uint8_t shift;   // of its first four bytes as a number, to leave the character
    uint8_t trails;  // as in UTF-8; kOther where a look-up takes more than this
    uint8_t page;
    uint8_t half;      // where the lower-case forms of the page begin
    uint8_t index;     // the bits of the character that count on from there
    uint8_t outside;   // bits that lead behind the end of the page, where there is no form
    uint16_t counted;  // the bits of an entry that count: none where there are no forms
};
constexpr uint8_t kOther = kBlock;

constexpr LeadRow leadRow(unsigned lead) {
    constexpr uint8_t kFirstLower = kCasePageEntries / 2, kFirstAsciiLower = kAsciiPageEntries / 2;
    if (lead < 0xC0) return {24, 0, 0, kFirstAsciiLower, 0x7F, 0, 0xFFFF};
    if (lead < 0xE0) return {16, 1, static_cast<uint8_t>(lead), kFirstLower, 0x3F, 0x40, 0xFFFF};
    const bool hasForms = lead >= 0xF0 || caseKeyOf(lead << 16).exists;
    return {8, static_cast<uint8_t>(hasForms ? kOther : 2), 0, 0, 0x3F, 0, 0};
}
constexpr std::array<LeadRow, 256> kLeadRows = [] {
    std::array<LeadRow, 256> rows{};
    for (unsigned lead = 0; lead < 256; ++lead) rows[lead] = leadRow(lead);
    return rows;
}();

// The lower-case form of a character, or the character.
inline uint32_t formOf(const nlsUnicodeCaseStruct& table, const LeadRow& lead, uint32_t character) {
    const uint32_t entry = table.casePages[lead.page][lead.half + (character & lead.index)] & lead.counted;
    return entry == 0 ? character : entry;
}

// Not 0: the texts begin with two ASCII characters whose forms differ. Else nothing is known yet.
inline int decidedByFirstAscii(const nlsLocale& locale, Byte a, Byte b) {
    const unsigned x = a, y = b;
    const unsigned borrows = (x - 1) | (y - 1) | ((x ^ y) - 1);  // above bit 7 for a NUL, or two of the same
    if (((borrows >> 8 | x | y) & 0x80U) != 0) return 0;
    const auto& lengths = locale.attrib->lengthMap;
    if (((lengths[x] | lengths[y]) & 0x07U) != 0) return 0;
    const nlsUnicodeCaseStruct& table = unicodeCaseTable(*locale.caseTable);
    return orderOf(formOf(table, kLeadRows[0], x), formOf(table, kLeadRows[0], y));
}

using Lanes = std::array<signed char, kBlock>;
constexpr Lanes lanesFrom(unsigned first) {
    Lanes lanes{};
    for (unsigned i = 0; i < kBlock; ++i) lanes[i] = static_cast<signed char>((first + i) % kBlock);
    return lanes;
}
alignas(64) constexpr Lanes kLanes = lanesFrom(0), kNextLanes = lanesFrom(1);

// Where the character begins that the byte at `place` belongs to: the first byte that reaches that far, unless it
// belongs to an earlier one in turn, as in broken text; then kBlock.
NLS_TARGET_AVX512 inline std::size_t startOfCharacter(const nlsAttribStruct& attrib, __m512i bytes, std::size_t place) {
    const __m512i trails = _mm512_and_si512(weigh(rowsOf(attrib.lengthMap), bytes), _mm512_set1_epi8(0x07));
    const __m512i reach = _mm512_add_epi8(trails, _mm512_load_si512(kLanes.data()));
    const auto firstToReach = [&](std::size_t lane) NLS_TARGET_AVX512 {
        return _tzcnt_u64(_mm512_cmpge_epi8_mask(reach, _mm512_set1_epi8(static_cast<char>(lane))));
    };
    const std::size_t start = firstToReach(place);
    return firstToReach(start) == start ? start : kBlock;
}

// A block with its letters folded: ASCII and characters of two bytes.
struct FoldedBlock {
    __m512i bytes;
    uint64_t starts;    // first bytes of characters
    std::size_t whole;  // bytes of whole characters
    bool plain;         // regular text, of which folding has left every character its length; else nothing above holds
};

// Whether folding has left the first bytes of characters, the trailing ones and ASCII where they were.
NLS_TARGET_AVX512 inline bool keepsShape(__m512i bytes, __m512i folded, uint64_t leads) {
    const __m512i changed = _mm512_xor_si512(bytes, folded);
    return (_mm512_test_epi8_mask(changed, _mm512_set1_epi8(static_cast<char>(0xC0))) |
            _mm512_mask_test_epi8_mask(leads, changed, _mm512_set1_epi8(0x20))) == 0;
}

// The 64 entries of a page are 128 bytes, so the last six bits of a character find both bytes of its form.
NLS_TARGET_AVX512 inline __m512i foldTwoBytes(const nlsUnicodeCaseStruct& table, const Byte* place, __m512i bytes,
                                              uint64_t leads) {
    const __m512i low = _mm512_add_epi8(bytes, bytes), high = _mm512_or_si512(low, _mm512_set1_epi8(1));
    __m512i last = bytes, first = _mm512_setzero_si512();
    uint64_t changed = 0;
    while (leads != 0) {
        const Byte lead = place[_tzcnt_u64(leads)];
        const uint64_t same = leads & _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(lead)));
        leads &= ~same;
        const uint16_t* const forms = table.casePages[lead] + kCasePageEntries / 2;
        const __m512i front = _mm512_loadu_si512(forms), back = _mm512_loadu_si512(forms + kCasePageEntries / 4);
        const __m512i ofLow = _mm512_permutex2var_epi8(front, low, back);
        const __m512i ofHigh = _mm512_permutex2var_epi8(front, high, back);
        const __m512i any = _mm512_or_si512(ofLow, ofHigh);
        const uint64_t found = _mm512_mask_test_epi8_mask(same << 1, any, any);
        last = _mm512_mask_mov_epi8(last, found, ofLow);
        first = _mm512_mask_mov_epi8(first, found, ofHigh);
        changed |= found;
    }
    // Each first byte stands where the last one does: one lane too high.
    return _mm512_mask_permutexvar_epi8(last, changed >> 1, _mm512_load_si512(kNextLanes.data()), first);
}

// REQUIRES: the charset and the table have the usual lengths and the usual ASCII.
NLS_TARGET_AVX512 NLS_BLOCKS_INLINE inline FoldedBlock foldBlock(const nlsUnicodeCaseStruct& table, const Byte* place,
                                                                 std::size_t count) {
    const auto from = [](__m512i bytes, unsigned first) NLS_TARGET_AVX512 {
        return static_cast<uint64_t>(_mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(first))));
    };
    const __m512i bytes = load(place, count);
    const uint64_t high = _mm512_movepi8_mask(bytes), leads = from(bytes, 0xC0), three = from(bytes, 0xE0);
    const uint64_t four = from(bytes, 0xF0), odd = from(bytes, 0xF5) | (leads & ~from(bytes, 0xC2));
    const uint64_t announced = leads << 1 | three << 2 | four << 3, trails = high & ~leads;
    std::size_t whole = count;
    if (leads != 0) {
        const std::size_t last = 63 - _lzcnt_u64(leads);
        if (last + 2 + (three >> last & 1) + (four >> last & 1) > count) whole = last;
    }
    const uint64_t wrong = _bzhi_u64(odd | (announced ^ trails), static_cast<unsigned>(whole));
    const __mmask64 capitals =
        _mm512_cmplt_epu8_mask(_mm512_sub_epi8(bytes, _mm512_set1_epi8('A')), _mm512_set1_epi8(26));
    const __m512i ascii = _mm512_mask_add_epi8(bytes, capitals, bytes, _mm512_set1_epi8(0x20));
    const uint64_t two = _bzhi_u64(leads & ~three, static_cast<unsigned>(whole));
    const __m512i folded = two == 0 ? ascii : foldTwoBytes(table, place, ascii, two);
    return {folded, ~trails, whole, wrong == 0 && keepsShape(bytes, folded, leads)};
}

// Behind a character that differs in case, where others will: folds both blocks. REQUIRES: the texts stand between
// characters.
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareFoldedBlocks(const nlsLocale& locale, Text a,
                                                                                   Text b) {
    if (a.atEnd() || b.atEnd()) return decideAtEnd(a, b);
    const nlsUnicodeCaseStruct& table = unicodeCaseTable(*locale.caseTable);
    if (!hasUsualUtf8CaseAvx512(*locale.attrib, table, CaseForm::lower)) return compareFoldedUtf8(locale, a, b);
    const std::size_t room = std::min({roomIn(a, b), leftInBothPages(a.place, b.place), kBlock});
    const Stops stops = stopsOf(load(a.place, room), load(b.place, room), room);
    const std::size_t count = std::min<std::size_t>(_tzcnt_u64(stops.nuls), room);
    const FoldedBlock ofA = foldBlock(table, a.place, count), ofB = foldBlock(table, b.place, count);
    if (!ofA.plain || !ofB.plain) return compareFoldedUtf8(locale, a, b);
    const std::size_t whole = std::min(ofA.whole, ofB.whole);
    const uint64_t differ = _bzhi_u64(_mm512_cmpneq_epi8_mask(ofA.bytes, ofB.bytes), static_cast<unsigned>(whole));
    // As far as the blocks are the same, characters begin at the same places.
    const std::size_t same = differ == 0 ? whole : 63 - _lzcnt_u64(ofA.starts & ofB.starts & _blsmsk_u64(differ));
    a.place += same;
    b.place += same;
    return a.atEnd() || b.atEnd() ? decideAtEnd(a, b) : compareFoldedUtf8(locale, a, b);
}

// Of the block that both texts begin with.
struct Difference {
    uint32_t place;  // of the first bytes that differ
    uint32_t whole;  // the bytes in front of any NUL and of both limits
};

// Out of line, so that texts which are decided before needn't make room for its registers.
[[gnu::noinline]] NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareFromDifference(const nlsLocale& locale, Text a,
                                                                                     Text b, Difference at) {
    const Charset charset{*locale.attrib};
    const nlsUnicodeCaseStruct& table = unicodeCaseTable(*locale.caseTable);
    const bool inFirst = at.place <= charset.trailCount(*a.place);
    const std::size_t start = inFirst ? 0 : startOfCharacter(*locale.attrib, load(a.place, at.whole), at.place);
    if (start == kBlock || at.whole < sizeof(uint32_t)) [[unlikely]]
        return compareFoldedUtf8(locale, a, b);
    const Byte leadA = a.place[start], leadB = b.place[start];
    const LeadRow &rowA = kLeadRows[leadA], &rowB = kLeadRows[leadB];
    // The word that begins with the character, but none from behind the end.
    const std::size_t word = std::min<std::size_t>(start, at.whole - sizeof(uint32_t)), early = 8 * (start - word);
    const uint32_t ofA = __builtin_bswap32(loadWord<uint32_t>(a.place + word)) << early >> rowA.shift;
    const uint32_t ofB = __builtin_bswap32(loadWord<uint32_t>(b.place + word)) << early >> rowB.shift;
    const std::size_t last = start + std::max(rowA.trails, rowB.trails);
    const unsigned odd = (charset.trailCount(leadA) ^ rowA.trails) | (charset.trailCount(leadB) ^ rowB.trails) |
                         (ofA & rowA.outside) | (ofB & rowB.outside);
    if (odd != 0 || last >= at.whole) [[unlikely]]
        return compareFoldedUtf8(locale, a, b);
    if (const int sign = orderOf(formOf(table, rowA, ofA), formOf(table, rowB, ofB))) return sign;
    return compareFoldedBlocks(locale, behind(a, start + rowA.trails + 1), behind(b, start + rowB.trails + 1));
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareBytesAvx512(Text a, Text b) {
    const std::size_t room = roomIn(a, b);
    if (!fitBlock(a.place, b.place, room)) [[unlikely]]
        return compareBytes(a, b);
    const Stops stops = stopsOf(load(a.place, room), load(b.place, room), room);
    // Where nothing stops, the first bytes, which are the same, stand in.
    const std::size_t stop = _tzcnt_u64(stops.all) % kBlock;
    const unsigned runsOut = unsigned{stops.all == 0} & unsigned{a.limit - a.place != b.limit - b.place};
    if ((runsOut | (stops.nuls >> stop & 1)) != 0) [[unlikely]]
        return compareBytes(a, b);
    return orderOf(a.place[stop], b.place[stop]);
}

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS int compareFoldedUtf8Avx512(const nlsLocale& locale, Text a, Text b) {
    if (locale.caseTable == nullptr || !Charset{*locale.attrib}.isUtf8()) [[unlikely]]
        return compareFoldedUtf8(locale, a, b);
    if (const int sign = decidedByFirstAscii(locale, *a.place, *b.place)) return sign;
    const std::size_t room = roomIn(a, b);
    if (!fitBlock(a.place, b.place, room)) [[unlikely]]
        return compareFoldedUtf8(locale, a, b);
    const Stops stops = stopsOf(load(a.place, room), load(b.place, room), room);
    if ((unsigned{stops.all == 0} & unsigned{a.limit - a.place == b.limit - b.place}) != 0) return 0;
    const Difference at{static_cast<uint32_t>(_tzcnt_u64(stops.all)),
                        static_cast<uint32_t>(std::min<std::size_t>(_tzcnt_u64(stops.nuls), room))};
    if (at.place >= at.whole) [[unlikely]]  // one text ends, perhaps inside a character of the other
        return compareFoldedUtf8(locale, a, b);
    return compareFromDifference(locale, a, b, at);
}

}  // namespace nls
