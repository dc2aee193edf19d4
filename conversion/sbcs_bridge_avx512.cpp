// The single-byte bridges, 64 bytes at a time, with look-ups in registers and squeezing by mask (AVX-512 VBMI, VBMI2).
#include <immintrin.h>

#include <array>

#include "conversion/sbcs_walk.hpp"
#include "core/base/cpu.hpp"

namespace nls {

namespace {

// Indices of a byte permutation, by place.
template <typename IndexOf>
constexpr std::array<unsigned char, 64> indices(IndexOf indexOf) {
    std::array<unsigned char, 64> all{};
    for (unsigned place = 0; place < 64; ++place) all[place] = static_cast<unsigned char>(indexOf(place));
    return all;
}

NLS_TARGET_AVX512 inline __m512i load(const std::array<unsigned char, 64>& bytes) {
    return _mm512_loadu_si512(bytes.data());
}

NLS_TARGET_AVX512 inline __m512i all(int byte) {
    return _mm512_set1_epi8(static_cast<char>(byte));
}

NLS_TARGET_AVX512 inline uint64_t lowBits(std::size_t count) {
    return count >= 64 ? ~0ULL : _bzhi_u64(~0ULL, static_cast<unsigned>(count));
}

NLS_TARGET_AVX512 inline unsigned countBits(uint64_t mask) {
    return static_cast<unsigned>(_mm_popcnt_u64(mask));
}

// Writes the bytes of the mask in a row, and nothing behind them.
NLS_TARGET_AVX512 inline void squeeze(BridgeWalk& walk, uint64_t mask, __m512i bytes) {
    const unsigned count = countBits(mask);
    _mm512_mask_storeu_epi8(walk.target, lowBits(count), _mm512_maskz_compress_epi8(mask, bytes));
    walk.target += count;
}

// Whether the next bytes, up to 64, are all ASCII.
NLS_TARGET_AVX512 inline bool asciiAhead(const BridgeWalk& walk) {
    return _mm512_movepi8_mask(_mm512_maskz_loadu_epi8(lowBits(walk.left()), walk.source)) == 0;
}

// Copies up to 64 bytes. False, and nothing written, where they don't fit, or there are none. REQUIRES: asciiAhead.
NLS_TARGET_AVX512 inline bool copyAscii(BridgeWalk& walk) {
    const std::size_t count = walk.left() < 64 ? walk.left() : 64;
    const uint64_t valid = lowBits(count);
    if (walk.room() < count || count == 0) return false;
    _mm512_mask_storeu_epi8(walk.target, valid, _mm512_maskz_loadu_epi8(valid, walk.source));
    walk.target += count;
    walk.source += count;
    return true;
}

// --- To UTF-8 ---

// The first, second or third bytes of all 256 forms, by byte.
struct Plane {
    __m512i part[4];
};

// Byte `place` of each of 64 words.
NLS_TARGET_AVX512 inline __m512i planePart(const uint32_t* words, unsigned place) {
    static constexpr auto kEvery4th = indices([](unsigned i) { return i * 4; });
    const __m512i index = _mm512_add_epi8(load(kEvery4th), all(static_cast<int>(place)));
    const __m512i low = _mm512_permutex2var_epi8(_mm512_loadu_si512(words), index, _mm512_loadu_si512(words + 16));
    const __m512i high =
        _mm512_permutex2var_epi8(_mm512_loadu_si512(words + 32), index, _mm512_loadu_si512(words + 48));
    return _mm512_maskz_shuffle_i64x2(0xFF, low, high, 0x44);  // the lower halves of both
}

// Where ASCII stays what it is, only the upper half of a plane is made, and looked at: what a look-up yields for ASCII
// doesn't matter.
template <bool kAsciiStays>
NLS_TARGET_AVX512 inline Plane makePlane(const SbcsWords& words, unsigned place) {
    Plane plane;
    for (unsigned part = 0; part < 4; ++part)
        plane.part[part] = kAsciiStays && part < 2 ? _mm512_setzero_si512() : planePart(words.utf8 + 64 * part, place);
    return plane;
}

template <bool kAsciiStays>
NLS_TARGET_AVX512 inline __m512i lookUp(const Plane& plane, __m512i bytes, __mmask64 upper) {
    const __m512i high = _mm512_permutex2var_epi8(plane.part[2], bytes, plane.part[3]);
    if (kAsciiStays) return high;
    return _mm512_mask_blend_epi8(upper, _mm512_permutex2var_epi8(plane.part[0], bytes, plane.part[1]), high);
}

// 64 forms: their bytes by place, and which have a second and a third one.
struct Forms {
    __m512i first, second;
    uint64_t valid, two, three;
};

NLS_TARGET_AVX512 inline void writeUpToTwo(BridgeWalk& walk, const Forms& forms) {
    static constexpr auto kFirstTwo = indices([](unsigned i) { return i / 2 + (i % 2 != 0 ? 64 : 0); });
    constexpr uint64_t kFirsts = 0x5555'5555'5555'5555, kSeconds = kFirsts << 1;
    for (unsigned from = 0; from < 64; from += 32) {
        const __m512i index = _mm512_add_epi8(load(kFirstTwo), all(static_cast<int>(from)));
        const uint64_t mask = _pdep_u64(forms.valid >> from, kFirsts) | _pdep_u64(forms.two >> from, kSeconds);
        squeeze(walk, mask, _mm512_permutex2var_epi8(forms.first, index, forms.second));
    }
}

NLS_TARGET_AVX512 inline void writeUpToThree(BridgeWalk& walk, const Forms& forms, __m512i third) {
    static constexpr auto kFirstTwo = indices([](unsigned i) { return i / 4 + (i % 2 != 0 ? 64 : 0); });
    static constexpr auto kThird = indices([](unsigned i) { return i / 4; });
    constexpr uint64_t kFirsts = 0x1111'1111'1111'1111, kSeconds = kFirsts << 1, kThirds = kFirsts << 2;
    for (unsigned from = 0; from < 64; from += 16) {
        const __m512i shift = all(static_cast<int>(from));
        const __m512i two =
            _mm512_permutex2var_epi8(forms.first, _mm512_add_epi8(load(kFirstTwo), shift), forms.second);
        const __m512i form = _mm512_mask_permutexvar_epi8(two, kThirds, _mm512_add_epi8(load(kThird), shift), third);
        const uint64_t mask = _pdep_u64(forms.valid >> from, kFirsts) | _pdep_u64(forms.two >> from, kSeconds) |
                              _pdep_u64(forms.three >> from, kThirds);
        squeeze(walk, mask, form);
    }
}

struct Planes {
    Plane first, second, third;
    bool usable;  // no form has four bytes; where ASCII stays, no other form has one
};

template <bool kAsciiStays>
NLS_TARGET_AVX512 inline Planes makePlanes(const SbcsWords& words) {
    Planes planes{makePlane<kAsciiStays>(words, 0), makePlane<kAsciiStays>(words, 1), {}, true};
    uint64_t one = 0, three = 0, four = 0;
    for (unsigned part = kAsciiStays ? 2 : 0; part < 4; ++part) {
        one |= _mm512_cmplt_epu8_mask(planes.first.part[part], all(0xC0));
        three |= _mm512_cmpge_epu8_mask(planes.first.part[part], all(0xE0));
        four |= _mm512_cmpge_epu8_mask(planes.first.part[part], all(0xF0));
    }
    if (three != 0) planes.third = makePlane<kAsciiStays>(words, 2);
    planes.usable = four == 0 && !(kAsciiStays && one != 0);
    return planes;
}

// Up to 64 characters. False, and nothing written, where they don't fit with one byte to spare, which the last form
// needs.
template <bool kAsciiStays>
NLS_TARGET_AVX512 inline bool writeBlock(const Planes& planes, BridgeWalk& walk) {
    const std::size_t count = walk.left() < 64 ? walk.left() : 64;
    Forms forms;
    forms.valid = lowBits(count);
    const __m512i bytes = _mm512_maskz_loadu_epi8(forms.valid, walk.source);
    const __mmask64 upper = _mm512_movepi8_mask(bytes);
    forms.first = lookUp<kAsciiStays>(planes.first, bytes, upper);
    if (kAsciiStays) forms.first = _mm512_mask_blend_epi8(upper, bytes, forms.first);
    forms.two = kAsciiStays ? upper : _mm512_cmpge_epu8_mask(forms.first, all(0xC0)) & forms.valid;
    forms.three = _mm512_cmpge_epu8_mask(forms.first, all(0xE0)) & forms.valid;
    if (walk.room() <= count + countBits(forms.two) + countBits(forms.three)) return false;
    forms.second = lookUp<kAsciiStays>(planes.second, bytes, upper);
    if (forms.three == 0)
        writeUpToTwo(walk, forms);
    else
        writeUpToThree(walk, forms, lookUp<kAsciiStays>(planes.third, bytes, upper));
    walk.source += count;
    return true;
}

template <bool kAsciiStays>
NLS_TARGET_AVX512 void toUtf8Blocks(const SbcsWords& words, BridgeWalk& walk) {
    BridgeWalk at = walk;  // in registers
    while (kAsciiStays && asciiAhead(at) && copyAscii(at)) {
    }
    if (at.source != at.sourceEnd) {
        const Planes planes = makePlanes<kAsciiStays>(words);
        while (planes.usable && at.source != at.sourceEnd)
            if (!(kAsciiStays && asciiAhead(at) && copyAscii(at)) && !writeBlock<kAsciiStays>(planes, at)) break;
    }
    walk = at;
}

NLS_TARGET_AVX512 bool asciiStays(const SbcsWords& words) {
    static constexpr auto kWords = [] {
        std::array<uint32_t, 128> ascii{};
        for (uint32_t c = 0; c < 128; ++c) ascii[c] = c;
        return ascii;
    }();
    __m512i differences = _mm512_setzero_si512();
    for (unsigned c = 0; c < 128; c += 16) {
        const __m512i word = _mm512_loadu_si512(words.utf8 + c), want = _mm512_loadu_si512(kWords.data() + c);
        differences = _mm512_or_si512(differences, _mm512_xor_si512(word, want));
    }
    return _mm512_test_epi8_mask(differences, differences) == 0;
}

// --- From UTF-8 ---

// Two neighbouring pages: page `number` and the next, `number` being even.
struct PagePair {
    __m512i number, even, odd;
};

NLS_TARGET_AVX512 inline PagePair pagePair(const SbcsPages& pages, unsigned page) {
    return {all(static_cast<int>(page & ~1U)), _mm512_loadu_si512(pages.page[page & ~1U]),
            _mm512_loadu_si512(pages.page[page | 1])};
}

// The lead bytes of a block. Blocks follow each other without regard to characters: what the lead bytes of one announce
// for the next is carried over, so that no block has to wait for the length of the one before it.
struct Leads {
    uint64_t two = 0, three = 0;  // of characters of two bytes, of three

    // Bytes at the end of the block that belong to a character which ends in the next.
    unsigned pending() const {
        if ((three >> 62 & 1) != 0) return 2;
        return ((two | three) >> 63) != 0 ? 1 : 0;
    }
};

// A block as masks. `sound`: the bytes from 0x80 on that are no lead bytes are just those that lead bytes announce.
// They needn't look like trailing bytes: one from F0 on is a good last byte too. Characters of four bytes are never
// sound.
struct Shape {
    __mmask64 upper;  // bytes beyond ASCII
    uint64_t last;    // last bytes of characters
    Leads leads;
    bool sound;
};

NLS_TARGET_AVX512 inline Shape shapeOf(__m512i bytes, uint64_t valid, const Leads& before) {
    Shape shape;
    shape.upper = _mm512_movepi8_mask(bytes);
    shape.leads.two = _mm512_cmpeq_epi8_mask(_mm512_and_si512(bytes, all(0xE0)), all(0xC0));
    shape.leads.three = _mm512_cmpeq_epi8_mask(_mm512_and_si512(bytes, all(0xF0)), all(0xE0));
    const uint64_t ofTwo = shape.leads.two << 1 | before.two >> 63;
    const uint64_t ofThree = shape.leads.three << 1 | before.three >> 63;
    const uint64_t lastOfThree = shape.leads.three << 2 | before.three >> 62;
    const uint64_t others = shape.upper & ~(shape.leads.two | shape.leads.three);
    shape.sound = ((ofTwo | ofThree | lastOfThree) & valid) == others;
    shape.last = (~shape.upper | ofTwo | lastOfThree) & valid;
    return shape;
}

NLS_TARGET_AVX512 inline bool asciiStays(const unsigned char* page) {
    static constexpr auto kAscii = indices([](unsigned i) { return i; });
    const __m512i ascii = load(kAscii), upper = _mm512_add_epi8(ascii, all(64));
    return (_mm512_cmpneq_epi8_mask(_mm512_loadu_si512(page), ascii) |
            _mm512_cmpneq_epi8_mask(_mm512_loadu_si512(page + 64), upper)) == 0;
}

// Each byte at the place behind its own.
NLS_TARGET_AVX512 inline __m512i oneBack(__m512i bytes) {
    static constexpr auto kBefore = indices([](unsigned i) { return i + 63; });
    return _mm512_maskz_permutexvar_epi8(~0ULL, load(kBefore), bytes);
}

// The byte in front of the first place of a mask, or for an empty mask any byte of the block: a page to look at, needed
// or not, costs less than a test that can't be guessed. The byte in front of a block belongs to the text, if the block
// begins inside a character.
NLS_TARGET_AVX512 inline unsigned byteBefore(const unsigned char* block, uint64_t mask) {
    const uint64_t some = mask + (mask == 0 ? 2 : 0);
    return block[static_cast<std::ptrdiff_t>(_tzcnt_u64(some)) - 1];
}

// A walk over blocks, as it stands between two of them.
struct FromUtf8 {
    BridgeWalk at;
    bool asciiStays;  // known of texts of whole blocks; the rest of a text is looked up in any case
    Leads leads;      // of the last block, as if it had ended at its 64th byte
    bool hotKnown;
    PagePair hot;  // the pair that was needed last
};

// The entries at last bytes of characters of several; `before` is the byte in front of each byte. The pair that was
// needed last is looked up first.
NLS_TARGET_AVX512 inline __m512i lookUpPages(const SbcsPages& pages, FromUtf8& walk, __m512i mapped, __m512i bytes,
                                             __m512i before, const Shape& shape) {
    const __m512i page = _mm512_and_si512(before, all(0xFE));
    // The low six bits of the byte, and in bit 6 the lowest bit of the byte before it.
    const __m512i index = _mm512_ternarylogic_epi32(all(0x3F), bytes, _mm512_slli_epi16(before, 6), 0xCA);
    uint64_t rest = shape.last & shape.upper;
    if (!walk.hotKnown) walk.hot = pagePair(pages, byteBefore(walk.at.source, rest));
    walk.hotKnown = true;
    // What stands at other places doesn't matter, so the first pair is laid over all bytes beyond ASCII.
    mapped = _mm512_mask_blend_epi8(shape.upper, mapped, _mm512_permutex2var_epi8(walk.hot.even, index, walk.hot.odd));
    rest &= ~_mm512_cmpeq_epi8_mask(page, walk.hot.number);
    while (rest != 0) {
        walk.hot = pagePair(pages, byteBefore(walk.at.source, rest));
        const __mmask64 hits = _mm512_cmpeq_epi8_mask(page, walk.hot.number);
        mapped =
            _mm512_mask_blend_epi8(rest & hits, mapped, _mm512_permutex2var_epi8(walk.hot.even, index, walk.hot.odd));
        rest &= ~hits;
    }
    return mapped;
}

// No mapping: "?". NUL alone is what its page says.
NLS_TARGET_AVX512 inline __m512i substituteZeros(BridgeWalk& walk, __m512i mapped, __m512i bytes, uint64_t last) {
    const uint64_t zeros = _mm512_mask_testn_epi8_mask(last, mapped, mapped);
    if (zeros == 0) return mapped;
    const uint64_t substitutes = _mm512_mask_test_epi8_mask(zeros, bytes, bytes);
    walk.substituted |= substitutes != 0;
    return _mm512_mask_mov_epi8(mapped, substitutes, all('?'));
}

// A block of 64 bytes, or the shorter rest of the text, whose first byte is at `start`. False, and nothing written,
// where the block is odd, holds the end of no character, or doesn't fit.
template <bool kWhole>
NLS_TARGET_AVX512 inline bool convertBlock(const SbcsPages& pages, const unsigned char* start, FromUtf8& walk) {
    const std::size_t count = kWhole ? 64 : walk.at.left();
    const uint64_t valid = kWhole ? ~0ULL : lowBits(count);
    const __m512i bytes = _mm512_maskz_loadu_epi8(valid, walk.at.source);
    const Shape shape = shapeOf(bytes, valid, walk.leads);
    if (!shape.sound || shape.last == 0 || walk.at.room() < countBits(shape.last)) return false;
    __m512i mapped = bytes;
    if (!kWhole || !walk.asciiStays) {
        const unsigned char* const page = pages.page[0];
        mapped = _mm512_permutex2var_epi8(_mm512_loadu_si512(page), bytes, _mm512_loadu_si512(page + 64));
    }
    if (!kWhole || (shape.last & shape.upper) != 0) {
        const __m512i before =
            walk.at.source == start ? oneBack(bytes) : _mm512_maskz_loadu_epi8(valid, walk.at.source - 1);
        mapped = lookUpPages(pages, walk, mapped, bytes, before, shape);
    }
    squeeze(walk.at, shape.last, substituteZeros(walk.at, mapped, bytes, shape.last));
    walk.at.source += count;
    walk.leads = {shape.leads.two << (64 - count) % 64, shape.leads.three << (64 - count) % 64};
    return true;
}

}  // namespace

NLS_TARGET_AVX512 void toUtf8Avx512(const SbcsWords& words, BridgeWalk& walk) {
    if (asciiStays(words))
        toUtf8Blocks<true>(words, walk);
    else
        toUtf8Blocks<false>(words, walk);
}

NLS_TARGET_AVX512 void fromUtf8Avx512(const SbcsPages& pages, BridgeWalk& walk) {
    // Word by word: a wide load of what the caller has just stored in words would have to wait for it.
    const BridgeWalk at{walk.source, walk.sourceEnd, walk.target, walk.targetEnd, walk.substituted};
    FromUtf8 blocks{at, at.left() >= 64 && asciiStays(pages.page[0]), {}, false, {}};
    bool going = true;
    while (going && blocks.at.source != blocks.at.sourceEnd) {
        // The likeliest test comes first: whether a block ends inside a character can't be guessed.
        if (blocks.at.left() < 64)
            going = convertBlock<false>(pages, walk.source, blocks);
        else if (blocks.asciiStays && asciiAhead(blocks.at) && blocks.leads.pending() == 0 && copyAscii(blocks.at))
            blocks.leads = Leads{};
        else
            going = convertBlock<true>(pages, walk.source, blocks);
    }
    blocks.at.source -= blocks.leads.pending();
    walk = blocks.at;
}

}  // namespace nls
