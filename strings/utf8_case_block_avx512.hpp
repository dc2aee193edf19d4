// Case in blocks of 64 bytes of regular UTF-8, for AVX-512.
//
// A form replaces the last two bytes of its character, and where it keeps the length all other bytes stay. The page of
// a character is chosen by the bytes before its last one, and its last one is the index into 64 entries: a row of forms
// fits two registers, one for each byte, and a shuffle looks up all characters of the row in a block at once. Text uses
// few rows; the page without forms needs no look-up.
#pragma once

#include <immintrin.h>

#include <array>
#include <cstdint>

#include "collation/ascii_case.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/cpu.hpp"
#include "strings/utf8_block.hpp"

namespace nls {

inline constexpr unsigned kRowEntries = kCasePageEntries / 2;
inline constexpr unsigned kCaseBlock = 64;

// As hasUsualUtf8CaseAvx512, in line.
NLS_TARGET_AVX512 inline bool hasUsualUtf8Case(const nlsAttribStruct& attrib, const nlsUnicodeCaseStruct& table,
                                               CaseForm form) {
    const uint16_t* const entries = table.casePages[0] + caseIndexOf(0, form);
    const AsciiForms& plain = kPlainAsciiForms[static_cast<unsigned>(form)];
    __m512i odd = _mm512_setzero_si512();
#pragma GCC unroll 4
    for (unsigned i = 0; i < 256; i += 64) {
        const __m512i lengths =
            _mm512_and_si512(_mm512_loadu_si512(attrib.lengthMap + i), _mm512_load_si512(&kCountedTrails[i]));
        const __m512i forms = _mm512_xor_si512(_mm512_loadu_si512(entries + i / 2), _mm512_load_si512(&plain[i / 2]));
        odd = _mm512_or_si512(odd,
                              _mm512_or_si512(forms, _mm512_xor_si512(lengths, _mm512_load_si512(&kUsualTrails[i]))));
    }
    return _mm512_test_epi64_mask(odd, odd) == 0;
}

// Rows of forms in the shape of the shuffles, made when a text first needs one.
class Rows {
public:
    Rows(const uint16_t* const (&pages)[kCasePages], CaseForm form)
        : pages_(pages), half_(static_cast<unsigned>(form) * kRowEntries) {}

    struct Row {
        __m512i before, last;  // by the low six bits of the last byte: the last two bytes of the form
    };

    bool isEmpty(unsigned page) const { return pages_[page] == kNoCasePage; }

    // `before`: the byte before the last one in characters of the page. REQUIRES: page isn't 0.
    NLS_TARGET_AVX512 Row of(unsigned page, unsigned char before) {
        Kept& kept = kept_[page % kKeptRows];
        uint8_t& inPlace = page_[page % kKeptRows];
        if (inPlace == page) return {_mm512_load_si512(kept.before), _mm512_load_si512(kept.last)};
        inPlace = static_cast<uint8_t>(page);
        const Row row = make(pages_[page] + half_, before);
        _mm512_store_si512(kept.before, row.before);
        _mm512_store_si512(kept.last, row.last);
        return row;
    }

private:
    static constexpr unsigned kKeptRows = 16;

    struct alignas(64) Kept {
        unsigned char before[kRowEntries], last[kRowEntries];
    };

    // The low and the high bytes of the words in two registers.
    alignas(64) static constexpr std::array<std::array<unsigned char, kCaseBlock>, 2> kEverySecond = [] {
        std::array<std::array<unsigned char, kCaseBlock>, 2> places{};
        for (unsigned i = 0; i < 2 * kCaseBlock; ++i) places[i % 2][i / 2] = static_cast<unsigned char>(i);
        return places;
    }();
    alignas(64) static constexpr std::array<uint16_t, kRowEntries> kLast = [] {
        std::array<uint16_t, kRowEntries> bytes{};
        for (unsigned i = 0; i < kRowEntries; ++i) bytes[i] = static_cast<uint16_t>(0x80 + i);
        return bytes;
    }();

    // A character without a form is its own.
    NLS_TARGET_AVX512 static Row make(const uint16_t* entries, unsigned char before) {
        constexpr unsigned kWords = 32;
        __m512i forms[2];
        for (unsigned i = 0; i < 2; ++i) {
            const __m512i found = _mm512_loadu_si512(entries + i * kWords);
            const __m512i own = _mm512_or_si512(_mm512_load_si512(&kLast[i * kWords]),
                                                _mm512_set1_epi16(static_cast<short>(before << 8)));
            forms[i] = _mm512_mask_mov_epi16(found, _mm512_testn_epi16_mask(found, found), own);
        }
        return {_mm512_permutex2var_epi8(forms[0], _mm512_load_si512(kEverySecond[1].data()), forms[1]),
                _mm512_permutex2var_epi8(forms[0], _mm512_load_si512(kEverySecond[0].data()), forms[1])};
    }

    const uint16_t* const (&pages_)[kCasePages];
    unsigned half_;
    std::array<uint8_t, kKeptRows> page_{};  // 0: none yet
    Kept kept_[kKeptRows];
};

// One bit for each byte of a block.
struct Shape {
    uint64_t leads;  // first bytes of longer characters
    uint64_t two;    // of those of two bytes
    uint64_t three;  // of those of three bytes
    uint64_t four;   // and of more
    uint64_t wrong;  // not as in regular UTF-8
};

// `high`: the bytes from 0x80 on.
NLS_TARGET_AVX512 inline Shape shapeOf(__m512i bytes, uint64_t high) {
    const uint64_t trails = _mm512_cmplt_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xC0)));
    const uint64_t leads = high & ~trails;
    const uint64_t from3 = _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xE0)));
    const uint64_t from4 = _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xF0)));
    const uint64_t odd = _mm512_cmpge_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xF5))) |
                         (leads & _mm512_cmplt_epu8_mask(bytes, _mm512_set1_epi8(static_cast<char>(0xC2))));
    return {leads, leads & ~from3, from3 & ~from4, from4, odd | (trails ^ (leads << 1 | from3 << 2 | from4 << 3))};
}

// Bytes of regular whole characters at the front of a block of `size` bytes.
NLS_TARGET_AVX512 inline unsigned wholeOf(const Shape& shape, unsigned size) {
    const unsigned regular = static_cast<unsigned>(_tzcnt_u64(shape.wrong));
    const unsigned whole = regular > size ? size : regular;
    const uint64_t leadsInFront = _bzhi_u64(shape.leads, whole);
    if (leadsInFront == 0) return whole;
    const auto last = static_cast<unsigned>(63 - _lzcnt_u64(leadsInFront));
    const uint64_t longer = shape.three | shape.four;
    const unsigned length = 2 + static_cast<unsigned>((longer >> last & 1) + (shape.four >> last & 1));
    return last + length > whole ? last : whole;
}

// What a block becomes. `whole` goes down where a form changes its length.
struct Mapped {
    __m512i bytes;
    unsigned whole;
};

// The page of characters of three bytes by the first two. REQUIRES: the first has forms, the second trails.
inline unsigned pageOfThree(unsigned char first, unsigned char second) {
    return casePageOf(caseKeyOf(unsigned{first} << 16 | unsigned{second} << 8 | 0x80).key);
}

// The longer characters of a block. `bytes` are the block, `source` the same in memory, `mapped` has its ASCII done.
NLS_TARGET_AVX512 inline Mapped mapLonger(Rows& rows, const unsigned char* source, __m512i bytes, const Shape& shape,
                                          unsigned whole, __m512i mapped) {
    const auto equal = [&](unsigned char byte) NLS_TARGET_AVX512 {
        return static_cast<uint64_t>(_mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(static_cast<char>(byte))));
    };
    const uint64_t withForms = shape.three & (equal(0xE1) | equal(0xE2) | equal(0xEF));
    uint64_t todo = _bzhi_u64(shape.two | withForms << 1, whole);  // the bytes before the last
    uint64_t lasts = 0;
    __m512i before = _mm512_setzero_si512();  // those of the forms, at the place of the last byte
    while (todo != 0) {
        const auto place = static_cast<unsigned>(_tzcnt_u64(todo));
        uint64_t same = todo & equal(source[place]);
        unsigned page = source[place];
        if ((shape.leads >> place & 1) == 0) {
            same &= equal(source[place - 1]) << 1;
            page = pageOfThree(source[place - 1], source[place]);
        }
        todo &= ~same;
        if (rows.isEmpty(page)) continue;
        const Rows::Row row = rows.of(page, source[place]);
        mapped = _mm512_mask_permutexvar_epi8(mapped, same << 1, bytes, row.last);
        before = _mm512_mask_permutexvar_epi8(before, same << 1, bytes, row.before);
        lasts |= same << 1;
    }
    alignas(64) static constexpr std::array<unsigned char, kCaseBlock> kNext = [] {
        std::array<unsigned char, kCaseBlock> places{};
        for (unsigned i = 0; i < kCaseBlock; ++i) places[i] = static_cast<unsigned char>((i + 1) % kCaseBlock);
        return places;
    }();
    mapped = _mm512_mask_permutexvar_epi8(mapped, lasts >> 1, _mm512_load_si512(kNext.data()), before);
    const uint64_t shorter = _mm512_mask_testn_epi8_mask(lasts, before, before);
    if (shorter == 0) return {mapped, whole};
    const uint64_t leadsInFront = shape.leads & (_blsmsk_u64(shorter) >> 1);
    return {mapped, static_cast<unsigned>(63 - _lzcnt_u64(leadsInFront))};
}

// With the case of A to Z, or a to z, changed.
NLS_TARGET_AVX512 inline __m512i mapAscii(CaseForm form, __m512i bytes) {
    const __m512i fromA = _mm512_sub_epi8(bytes, _mm512_set1_epi8(form == CaseForm::lower ? 'A' : 'a'));
    const __mmask64 letters = _mm512_cmplt_epu8_mask(fromA, _mm512_set1_epi8(26));
    return _mm512_xor_si512(bytes, _mm512_maskz_mov_epi8(letters, _mm512_set1_epi8(0x20)));
}

// The front of `size` bytes of a block, as far as it can be mapped; `source` holds the same bytes. REQUIRES: the usual
// lengths and ASCII, as hasUsualUtf8Case finds them; no bytes behind `size` but NULs.
NLS_TARGET_AVX512 inline Mapped mapBlock(Rows& rows, CaseForm form, const unsigned char* source, __m512i bytes,
                                         unsigned size) {
    const Mapped mapped{mapAscii(form, bytes), size};
    const uint64_t high = _mm512_movepi8_mask(bytes);
    if (high == 0) return mapped;
    const Shape shape = shapeOf(bytes, high);
    return mapLonger(rows, source, bytes, shape, wholeOf(shape, size), mapped.bytes);
}

}  // namespace nls
