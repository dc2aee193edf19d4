// Between UTF-16 and UCS4, 64 bytes of source at a time. Without surrogates each unit is widened or narrowed; pairs are
// folded in the place of the low surrogate, or split over the halves of a double word, and the places left over are
// squeezed out.
// Tested by tests/conversion/unicode_transforms_test.cpp.
#include <immintrin.h>

#include "conversion/avx512_basics.hpp"
#include "conversion/text_blocks.hpp"
#include "conversion/unicode_wide.hpp"

namespace nls {

namespace {

// --- UTF-16 to UCS4

constexpr std::size_t kUnits = 32;

NLS_TARGET_AVX512 inline __mmask32 unitsOf(__m512i units, int kind) {
    const __m512i field = _mm512_and_si512(units, _mm512_set1_epi16(static_cast<int16_t>(0xFC00)));
    return _mm512_cmpeq_epi16_mask(field, _mm512_set1_epi16(static_cast<int16_t>(kind)));
}

NLS_TARGET_AVX512 inline __m512i loadUnits(const unsigned char* place, uint64_t wanted, bool swap) {
    const __m512i units = _mm512_maskz_loadu_epi16(static_cast<__mmask32>(wanted), place);
    return swap ? swapUnits<2>(units) : units;
}

// The low and high halves of the values, in the place of each unit; of a pair, in that of the low surrogate.
struct Halves {
    __m512i low, high;
};

// 0x10000 plus ten bits of each surrogate. `before`: the units one place in front.
NLS_TARGET_AVX512 inline Halves foldPairs(__m512i units, __m512i before, __mmask32 pairs) {
    const __m512i tenBits = _mm512_set1_epi16(0x3FF);
    const __m512i both = _mm512_ternarylogic_epi32(tenBits, units, _mm512_slli_epi16(before, 10), 0xCA);
    const __m512i fourBits = _mm512_and_si512(_mm512_srli_epi16(before, 6), _mm512_set1_epi16(0x0F));
    return {_mm512_mask_mov_epi16(units, pairs, both), _mm512_maskz_add_epi16(pairs, fourBits, _mm512_set1_epi16(1))};
}

NLS_TARGET_AVX512 inline void storeValues(unsigned char* target, const Halves& values, __mmask32 wanted, bool swap) {
    const std::size_t count = static_cast<std::size_t>(_mm_popcnt_u32(wanted));
    const __m512i low = dealOutQwords(_mm512_maskz_compress_epi16(wanted, values.low));
    const __m512i high = dealOutQwords(_mm512_maskz_compress_epi16(wanted, values.high));
    const __m512i first = _mm512_unpacklo_epi16(low, high), second = _mm512_unpackhi_epi16(low, high);
    storeDwords(target, swap ? swapUnits<4>(first) : first, count);
    if (count > 16) storeDwords(target + 64, swap ? swapUnits<4>(second) : second, count - 16);
}

// Whole runs of units without surrogates, thirty-two at a time.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline void widenUnits(UnicodeWalk& walk) {
    const ByteOrder order = walk.order;
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const __m512i field = _mm512_set1_epi16(static_cast<int16_t>(order.swapSource ? 0x00F8 : 0xF800));
    const __m512i surrogate = _mm512_set1_epi16(static_cast<int16_t>(order.swapSource ? 0x00D8 : 0xD800));
    for (std::size_t runs = std::min(walk.source.left() / 64, walk.target.room() / 128); runs != 0; --runs) {
        const __m512i words = _mm512_loadu_si512(place);
        if (_mm512_cmpeq_epi16_mask(_mm512_and_si512(words, field), surrogate) != 0) break;
        const __m512i units = order.swapSource ? swapUnits<2>(words) : words;
        const __m512i first = _mm512_maskz_cvtepu16_epi32(0xFFFF, lowHalf(units));
        const __m512i second = _mm512_maskz_cvtepu16_epi32(0xFFFF, highHalf(units));
        _mm512_storeu_si512(target, order.swapTarget ? swapUnits<4>(first) : first);
        _mm512_storeu_si512(target + 64, order.swapTarget ? swapUnits<4>(second) : second);
        place += 64;
        target += 128;
    }
    walk.moveTo(place, target);
}

// A block of up to thirty-two units. False, and nothing taken, if it doesn't fit.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool foldUnits(UnicodeWalk& walk, PlainBlocks& plainBlocks) {
    const ByteOrder order = walk.order;
    const unsigned char* const place = walk.source.place();
    const std::size_t left = walk.source.left() / 2, count = std::min(left, kUnits);
    const uint64_t present = firstBits(count);
    const __m512i units = loadUnits(place, present, order.swapSource);
    const uint64_t highs = unitsOf(units, 0xD800), lows = unitsOf(units, 0xDC00);
    const uint64_t pairs = lows & (highs << 1);
    // A high surrogate in the last place waits for the next block, unless the text ends with it.
    const bool waits = left > count && endsInHighSurrogate(place, 2 * kUnits, order.swapSource);
    const std::size_t taken = count - (waits ? 1 : 0);
    const uint64_t wanted = firstBits(taken) & ~(pairs >> 1);
    const std::size_t written = 4 * static_cast<std::size_t>(_mm_popcnt_u64(wanted));
    if (written > walk.target.room()) return false;
    const __m512i before = loadUnits(place - 2, pairs, order.swapSource);
    storeValues(walk.target.place(), foldPairs(units, before, static_cast<__mmask32>(pairs)),
                static_cast<__mmask32>(wanted), order.swapTarget);
    walk.move(2 * taken, written);
    if (plainBlocks.count(pairs == 0)) widenUnits(walk);
    return true;
}

// A text of up to thirty-two units without surrogates. False, and nothing taken, if it has some or doesn't fit.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline bool widenShort(ByteView source, ByteSpan target, ByteOrder order) {
    const std::size_t count = source.size() / 2;
    const __m512i units = loadUnits(source.data(), firstBits(count), order.swapSource);
    const __m512i field = _mm512_and_si512(units, _mm512_set1_epi16(static_cast<int16_t>(0xF800)));
    const bool surrogates = _mm512_cmpeq_epi16_mask(field, _mm512_set1_epi16(static_cast<int16_t>(0xD800))) != 0;
    if (surrogates || 4 * count > target.size()) return false;
    const __m512i first = _mm512_maskz_cvtepu16_epi32(0xFFFF, lowHalf(units));
    storeDwords(target.data(), order.swapTarget ? swapUnits<4>(first) : first, count);
    if (count <= 16) return true;
    const __m512i second = _mm512_maskz_cvtepu16_epi32(0xFFFF, highHalf(units));
    storeDwords(target.data() + 64, order.swapTarget ? swapUnits<4>(second) : second, count - 16);
    return true;
}

// --- UCS4 to UTF-16

constexpr std::size_t kValues = 16;

// Double words with one unit in the low half, or the two of a pair. `kept`: the halves that count.
struct SplitPairs {
    __m512i units;
    __mmask32 kept;
};

NLS_TARGET_AVX512 inline SplitPairs splitPairs(__m512i values, __mmask16 wanted) {
    const __m512i last = _mm512_set1_epi32(0x10FFFF), replacement = _mm512_set1_epi32(0xFFFD);
    values = _mm512_mask_mov_epi32(values, _mm512_cmpgt_epu32_mask(values, last), replacement);
    const __mmask16 pairs = _mm512_cmpgt_epu32_mask(values, _mm512_set1_epi32(0xFFFF));
    // 0xD800 - 0x40 plus all but the low ten bits, and 0xDC00 with these.
    const __m512i high = _mm512_add_epi32(_mm512_maskz_srli_epi32(0xFFFF, values, 10), _mm512_set1_epi32(0xD7C0));
    const __m512i low = _mm512_or_si512(_mm512_and_si512(values, _mm512_set1_epi32(0x3FF)), _mm512_set1_epi32(0xDC00));
    const __m512i both = _mm512_or_si512(high, _mm512_maskz_slli_epi32(0xFFFF, low, 16));
    const uint32_t kept = _pdep_u32(wanted, 0x55555555) | _pdep_u32(wanted & pairs, 0xAAAAAAAA);
    return {_mm512_mask_mov_epi32(values, pairs, both), kept};
}

// The words at even places of two registers, and those at odd ones.
NLS_TARGET_AVX512 inline __m512i evenWords() {
    alignas(64) static constexpr std::array<uint16_t, 32> kPlaces = [] {
        std::array<uint16_t, 32> places{};
        for (unsigned i = 0; i < 32; ++i) places[i] = static_cast<uint16_t>(2 * i);
        return places;
    }();
    return _mm512_load_si512(kPlaces.data());
}
NLS_TARGET_AVX512 inline __m512i oddWords() {
    return _mm512_or_si512(evenWords(), _mm512_set1_epi16(1));
}

// Whole runs of values up to U+FFFF, thirty-two at a time.
[[gnu::always_inline]] NLS_TARGET_AVX512 inline void narrowValues(UnicodeWalk& walk) {
    const ByteOrder order = walk.order;
    const unsigned char* place = walk.source.place();
    unsigned char* target = walk.target.place();
    const __m512i beyond = _mm512_set1_epi32(static_cast<int32_t>(order.swapSource ? 0x0000FFFF : 0xFFFF0000));
    for (std::size_t runs = std::min(walk.source.left() / 128, walk.target.room() / 64); runs != 0; --runs) {
        const __m512i first = _mm512_loadu_si512(place), second = _mm512_loadu_si512(place + 64);
        if (_mm512_test_epi32_mask(_mm512_or_si512(first, second), beyond) != 0) break;
        // In swapped values the unit is the high half, and swapped itself.
        const __m512i places = order.swapSource ? oddWords() : evenWords();
        const __m512i units = _mm512_permutex2var_epi16(first, places, second);
        _mm512_storeu_si512(target, order.swapSource != order.swapTarget ? swapUnits<2>(units) : units);
        place += 128;
        target += 64;
    }
    walk.moveTo(place, target);
}

}  // namespace

NLS_TARGET_AVX512 WideTaken utf16ToUcs4Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    if (source.size() <= 2 * kUnits && widenShort(source, target, order)) return {source.size(), 2 * source.size()};
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    PlainBlocks plainBlocks;
    bool going = true;
    while (going && !walk.source.atEnd()) going = foldUnits(walk, plainBlocks);
    return takenBy(walk, source);
}

NLS_TARGET_AVX512 WideTaken ucs4ToUtf16Avx512(ByteView source, ByteSpan target, ByteOrder order) {
    UnicodeWalk walk{ByteReader{source}, ByteWriter{target}, order};
    PlainBlocks plainBlocks;
    while (!walk.source.atEnd()) {
        const std::size_t count = std::min(walk.source.left() / 4, kValues);
        const __mmask16 wanted = static_cast<__mmask16>(firstBits(count));
        __m512i values = _mm512_maskz_loadu_epi32(wanted, walk.source.place());
        if (order.swapSource) values = swapUnits<4>(values);
        const SplitPairs halves = splitPairs(values, wanted);
        const std::size_t written = static_cast<std::size_t>(_mm_popcnt_u32(halves.kept));
        if (2 * written > walk.target.room()) break;
        const __m512i units = _mm512_maskz_compress_epi16(halves.kept, halves.units);
        const __m512i ordered = order.swapTarget ? swapUnits<2>(units) : units;
        _mm512_mask_storeu_epi16(walk.target.place(), static_cast<__mmask32>(firstBits(written)), ordered);
        walk.move(4 * count, 2 * written);
        if (plainBlocks.count(written == count)) narrowValues(walk);
    }
    return takenBy(walk, source);
}

}  // namespace nls
