// What plain x86-64 (SSE2) does wide: blocks of 16 units whose every unit turns into one unit.
//
// That is ASCII where UTF-8 is read or written, and all that isn't a surrogate, or beyond U+FFFF, between UTF-16 and
// UCS4. Such a block has a fixed size on both sides, so whole blocks go as far as source and room reach.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <emmintrin.h>

#include <algorithm>

#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

constexpr int kUnits = 16;

__m128i load(const unsigned char* place) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(place));
}
void store(unsigned char* place, __m128i bytes) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(place), bytes);
}

// Sixteen units as words. `odd` has bits where a unit doesn't turn into one unit.
struct Words {
    __m128i first, second;
    __m128i odd;
};

// --- reading

template <int kUnit>
__m128i swapped(__m128i units) {
    const __m128i byteSwapped = _mm_or_si128(_mm_slli_epi16(units, 8), _mm_srli_epi16(units, 8));
    if constexpr (kUnit == 2) return byteSwapped;
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(byteSwapped, 0xB1), 0xB1);
}
template <int kUnit>
__m128i loadUnits(const unsigned char* place, bool swap) {
    return swap ? swapped<kUnit>(load(place)) : load(place);
}

template <int kUnit>
Words loadWords(const unsigned char* place, bool swap);

template <>
Words loadWords<1>(const unsigned char* place, bool) {
    const __m128i zero = _mm_setzero_si128(), text = load(place);
    return {_mm_unpacklo_epi8(text, zero), _mm_unpackhi_epi8(text, zero), zero};
}

template <>
Words loadWords<2>(const unsigned char* place, bool swap) {
    return {loadUnits<2>(place, swap), loadUnits<2>(place + 16, swap), _mm_setzero_si128()};
}

// The low halves of double words. SSE2 packs signed values alone, so the halves are spread by their sign first.
__m128i lowHalves(__m128i a, __m128i b) {
    return _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(a, 16), 16), _mm_srai_epi32(_mm_slli_epi32(b, 16), 16));
}

template <>
Words loadWords<4>(const unsigned char* place, bool swap) {
    const __m128i a = loadUnits<4>(place, swap), b = loadUnits<4>(place + 16, swap);
    const __m128i c = loadUnits<4>(place + 32, swap), d = loadUnits<4>(place + 48, swap);
    const __m128i all = _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d));
    return {lowHalves(a, b), lowHalves(c, d), _mm_srli_epi32(all, 16)};
}

// --- judging

bool anyBit(__m128i bits) {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(bits, _mm_setzero_si128())) != 0xFFFF;
}

bool isAscii(const Words& words) {
    const __m128i bits = _mm_and_si128(_mm_or_si128(words.first, words.second), _mm_set1_epi16(~0x7F));
    return !anyBit(_mm_or_si128(bits, words.odd));
}

__m128i surrogates(__m128i words) {
    return _mm_cmpeq_epi16(_mm_and_si128(words, _mm_set1_epi16(static_cast<int16_t>(0xF800))),
                           _mm_set1_epi16(static_cast<int16_t>(0xD800)));
}

bool isWithoutSurrogates(const Words& words) {
    return !anyBit(_mm_or_si128(surrogates(words.first), surrogates(words.second)));
}

bool isBmp(const Words& words) {
    return !anyBit(words.odd);
}

// --- writing

template <int kUnit>
void storeWords(unsigned char* place, const Words& words, bool swap);

template <>
void storeWords<1>(unsigned char* place, const Words& words, bool) {
    store(place, _mm_packus_epi16(words.first, words.second));
}

template <>
void storeWords<2>(unsigned char* place, const Words& words, bool swap) {
    store(place, swap ? swapped<2>(words.first) : words.first);
    store(place + 16, swap ? swapped<2>(words.second) : words.second);
}

template <>
void storeWords<4>(unsigned char* place, const Words& words, bool swap) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i parts[4] = {_mm_unpacklo_epi16(words.first, zero), _mm_unpackhi_epi16(words.first, zero),
                              _mm_unpacklo_epi16(words.second, zero), _mm_unpackhi_epi16(words.second, zero)};
    for (int part = 0; part < 4; ++part) store(place + 16 * part, swap ? swapped<4>(parts[part]) : parts[part]);
}

template <int kFrom, int kTo, bool (*kFits)(const Words&)>
WideTaken takeBlocks(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    const unsigned char* place = walk.source.place();
    unsigned char* out = walk.target.place();
    std::size_t blocks = std::min(walk.source.left() / (kUnits * kFrom), walk.target.room() / (kUnits * kTo));
    for (; blocks != 0; --blocks) {
        const Words words = loadWords<kFrom>(place, walk.order.swapSource);
        if (!kFits(words)) break;
        storeWords<kTo>(out, words, walk.order.swapTarget);
        place += kUnits * kFrom;
        out += kUnits * kTo;
    }
    walk.moveTo(place, out);
    return takenBy(walk, source);
}

}  // namespace

WideTaken utf8ToUtf16Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<1, 2, isAscii>(source, target, order);
}
WideTaken utf8ToUcs4Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<1, 4, isAscii>(source, target, order);
}
WideTaken utf16ToUtf8Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<2, 1, isAscii>(source, target, order);
}
WideTaken ucs4ToUtf8Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<4, 1, isAscii>(source, target, order);
}
WideTaken utf16ToUcs4Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<2, 4, isWithoutSurrogates>(source, target, order);
}
WideTaken ucs4ToUtf16Baseline(ByteView source, ByteSpan target, ByteOrder order) {
    return takeBlocks<4, 2, isBmp>(source, target, order);
}

}  // namespace nls
