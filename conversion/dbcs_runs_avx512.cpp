// Sixteen characters at a time, ASCII and others in any mixture, one in each 32-bit lane.
//
// The bytes of a block are sorted out by masks of 64 bits: where characters begin, or end. Compressing the numbers 0 to
// 63 by such a mask gives the places of the next characters, and one shuffle by these places brings all bytes of a
// character into its lane. Compressing the finished forms by the bytes that they use closes the gaps between forms of
// one, two and three bytes. So nothing in a loop branches on the kind of a character, and where the next block begins
// depends on masks alone, not on look-ups.
//
// Loads and stores are masked: nothing is read behind the source, and nothing is written but what counts as written.
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"  // g++ 12's own header starts from an undefined register
#endif
#include <immintrin.h>

#include <algorithm>
#include <array>

#include "conversion/dbcs_lane_constants.hpp"
#include "conversion/dbcs_runs.hpp"

namespace nls {

namespace {

#define NLS_WIDE [[gnu::always_inline]] NLS_TARGET_AVX512 inline

constexpr unsigned kLanes = 16;
constexpr std::size_t kBlock = 64;   // bytes
constexpr std::ptrdiff_t kRest = 8;  // fewer bytes aren't worth a block

NLS_WIDE __m512i all(uint32_t value) {
    return _mm512_set1_epi32(static_cast<int>(value));
}
NLS_WIDE __m512i masked(__m512i values, uint32_t bits) {
    return _mm512_and_si512(values, all(bits));
}
NLS_WIDE uint64_t lowBits(std::size_t count) {
    return _bzhi_u64(~uint64_t{0}, static_cast<unsigned>(count));
}
NLS_WIDE unsigned countBits(uint64_t mask) {
    return static_cast<unsigned>(_mm_popcnt_u64(mask));
}
// The place of the bit that has `count` set bits of the mask below it; 64 if there is none.
NLS_WIDE std::size_t placeOfBit(uint64_t mask, unsigned count) {
    return static_cast<std::size_t>(_tzcnt_u64(_pdep_u64(uint64_t{1} << count, mask)));
}
// The lanes, in the order of the set bits of `taken`, whose bit is set in `mask` as well.
NLS_WIDE __mmask16 lanesOf(uint64_t mask, uint64_t taken) {
    return static_cast<__mmask16>(_pext_u64(mask, taken));
}

// For a value that a rare branch computes: hides it from the compiler, so that the branch stays one. A choice between
// two values would wait for both, and the next block would begin later.
NLS_WIDE uint64_t byBranch(uint64_t value) {
    __asm__ volatile("" : "+r"(value));
    return value;
}

// Entries of a 16-bit array at the places of `wanted` lanes, 0 in the others. A lane reads the entry behind it, too.
NLS_WIDE __m512i gather(__mmask16 wanted, const uint16_t* array, __m512i places) {
    return masked(_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), wanted, places, array, 2), kLane.word);
}

using BytePlaces = std::array<unsigned char, kBlock>;
alignas(64) constexpr BytePlaces kEachPlace = [] {
    BytePlaces places{};
    for (unsigned i = 0; i < kBlock; ++i) places[i] = static_cast<unsigned char>(i);
    return places;
}();
alignas(64) constexpr BytePlaces kFourTimesEach = [] {
    BytePlaces places{};
    for (unsigned i = 0; i < kBlock; ++i) places[i] = static_cast<unsigned char>(i / 4);
    return places;
}();

// For the bytes of `block` at the set bits of `taken`, a lane each: the bytes at their places moved by the four bytes
// of `distances`, which wrap at 64.
NLS_WIDE __m512i spread(__m512i block, uint64_t taken, uint32_t distances) {
    const __m512i places = _mm512_maskz_compress_epi8(taken, _mm512_load_si512(kEachPlace.data()));
    const __m512i inLanes = _mm512_permutexvar_epi8(_mm512_load_si512(kFourTimesEach.data()), places);
    return _mm512_permutexvar_epi8(_mm512_add_epi8(inLanes, all(distances)), block);
}

// --- to UTF-8

// Which bytes of a block begin a pair and which end one. A byte that may be a first byte is one unless it's second
// itself: in a run of such bytes they alternate, and a subtraction that borrows through the run tells them apart.
struct Pairing {
    uint64_t firsts, seconds;
};
NLS_WIDE Pairing pairUp(uint64_t candidates) {
    constexpr uint64_t kOdd = 0xAAAAAAAAAAAAAAAA;
    const uint64_t marked = ((candidates << 1 | kOdd) - candidates) ^ kOdd;
    return {marked & candidates, marked ^ candidates};
}

// The bytes of a block that an axis holds.
NLS_WIDE uint64_t bytesOn(const GridAxis& axis, __m512i bytes) {
    return _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, all(axis.first[0])), all(axis.width[0])) |
           _mm512_cmple_epu8_mask(_mm512_sub_epi8(bytes, all(axis.first[1])), all(axis.width[1]));
}

// The code points of pairs in the grid; clears the lanes of `covered` that have none or a substitute.
NLS_WIDE __m512i unitsOfPairs(const DbcsIndex& index, const uint16_t* array, __m512i pairs, __mmask16& covered) {
    const GridAxis& axes = index.pairWords;
    const __mmask32 upper = _mm512_cmpge_epu16_mask(pairs, all(axes.first[1]));
    const __m512i offsets = _mm512_mask_mov_epi16(all(axes.offset[0]), upper, all(axes.offset[1]));
    const __m512i places = _mm512_madd_epi16(_mm512_sub_epi16(pairs, offsets), all(index.pairWeights));
    const __m512i numbers = _mm512_add_epi32(places, all(index.firstNumber));
    covered = _mm512_mask_cmplt_epu32_mask(covered, numbers, all(index.numberCount));
    const __m512i units = gather(covered, array, numbers);
    covered = _mm512_mask_cmplt_epu32_mask(covered, units, all(kLane.replacement));
    return units;
}

// The bytes of UTF-8 of each lane, first byte lowest, zeros behind the last: the bits of each byte are brought to its
// place by one shift of all bytes, and the marks of the form put in.
NLS_WIDE __m512i utf8Forms(__m512i units, __mmask16 ascii) {
    const __m512i three =
        _mm512_ternarylogic_epi32(_mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x0020262C0000060C), units),
                                  all(kLane.bits3), all(kLane.marks3), 0xEA);
    const __m512i two =
        _mm512_ternarylogic_epi32(_mm512_multishift_epi64_epi8(_mm512_set1_epi64(0x0000202600000006), units),
                                  all(kLane.bits2), all(kLane.marks2), 0xEA);
    const __m512i upToThree = _mm512_mask_mov_epi32(three, _mm512_cmplt_epu32_mask(units, all(kLane.end2)), two);
    return _mm512_mask_mov_epi32(upToThree, ascii, units);
}

// --- from UTF-8

// The sound characters at the front of a block, by their last bytes: those of up to three bytes in front of the first
// byte that isn't what the one before it announced.
struct Utf8Ends {
    uint64_t ascii, three, all;
};
NLS_WIDE Utf8Ends findEnds(__m512i bytes, uint64_t high, uint64_t inside) {
    const uint64_t trails = _mm512_cmplt_epi8_mask(bytes, all(kLane.trailEnd));
    const uint64_t fours = _mm512_cmpge_epu8_mask(bytes, all(kLane.fours));
    const uint64_t threes = _mm512_cmpge_epu8_mask(bytes, all(kLane.threes)) & ~fours;
    const uint64_t twos = high & ~trails & ~threes & ~fours, ascii = ~high & inside;
    const uint64_t expected = (twos | threes) << 1 | threes << 2;
    const uint64_t wrong = ((expected ^ trails) | fours) & inside;
    uint64_t ends = (ascii | twos << 1 | threes << 2) & inside;
    if (__builtin_expect(wrong != 0, false)) ends = byBranch(ends & (wrong - 1) & ~wrong);
    return {ascii, threes << 2, ends};
}

// The code points of lanes that hold the last byte of a form, the one before it and the one before that, lowest first.
NLS_WIDE __m512i unitsOfForms(__m512i forms, __mmask16 ascii, __mmask16 three) {
    const __m512i shorter = _mm512_mask_mov_epi32(all(kLane.twoSpelled), ascii, all(kLane.oneSpelled));
    const __m512i bits = _mm512_and_si512(forms, _mm512_mask_mov_epi32(shorter, three, all(kLane.threeSpelled)));
    return _mm512_madd_epi16(_mm512_maddubs_epi16(bits, all(kLane.pairWeights)), all(kLane.halfWeights));
}

NLS_WIDE __m512i bytesOfPlaces(const AxisBack& axis, __m512i places) {
    const __mmask16 later = _mm512_cmpgt_epu32_mask(places, all(axis.split));
    const __m512i bytes = _mm512_add_epi32(places, all(axis.offset));
    return _mm512_mask_add_epi32(bytes, later, bytes, all(axis.delta));
}

// Code points as places in the dense block.
struct BlockPlaces {
    __m512i places;
    __mmask16 inside;
};
NLS_WIDE BlockPlaces placesInBlock(const DbcsIndex& index, __m512i units, __mmask16 wanted) {
    const __m512i places = _mm512_sub_epi32(units, all(index.directFirst));
    return {places, _mm512_mask_cmplt_epu32_mask(wanted, places, all(index.directCount))};
}

// Codes of the dense block, first byte low; clears the lanes of `covered` that have none.
NLS_WIDE __m512i codesInBlock(const DbcsIndex& index, const uint16_t* cells, __m512i places, __mmask16& covered) {
    const __m512i inGrid = _mm512_add_epi32(gather(covered, cells, places), all(kLane.minusOne));
    covered = _mm512_mask_cmplt_epu32_mask(covered, inGrid, all(index.placeEnd));
    const __m128i shift = _mm_cvtsi32_si128(static_cast<int>(index.rowShift));
    const __m512i rows = _mm512_srl_epi32(_mm512_mulhi_epu16(inGrid, all(index.rowFactor)), shift);
    const __m512i columns = _mm512_sub_epi32(inGrid, _mm512_mullo_epi16(rows, all(index.columns)));
    return _mm512_or_si512(bytesOfPlaces(index.leadsBack, rows),
                           _mm512_slli_epi32(bytesOfPlaces(index.trailsBack, columns), 8));
}

// Codes of the pages, as they stand in text; clears the lanes of `covered` that have none.
NLS_WIDE __m512i codesInPages(const DbcsIndex& index, __m512i units, __mmask16& covered) {
    const __m512i keys = _mm512_srli_epi32(units, 8), low = masked(units, kLane.byte);
    const __mmask16 first = _mm512_mask_cmpeq_epi32_mask(covered, keys, all(index.pageKeys[0]));
    const __mmask16 second = _mm512_mask_cmpeq_epi32_mask(covered, keys, all(index.pageKeys[1]));
    const __mmask16 third = _mm512_mask_cmpeq_epi32_mask(covered, keys, all(index.pageKeys[2]));
    static_assert(DbcsIndex::kPageCount == 3);
    const __m512i upToSecond = _mm512_mask_add_epi32(low, second, low, all(kLane.pageSize));
    const __m512i places = _mm512_mask_add_epi32(upToSecond, third, low, all(kLane.twoPages));
    const __m512i codes = gather(static_cast<__mmask16>(first | second | third), index.pages[0], places);
    covered = _mm512_test_epi32_mask(codes, codes);
    return codes;
}

// --- the blocks

// Bytes of the lanes that text will take up: a lane's first byte always, of the others those that aren't 0.
constexpr uint64_t kFirstBytes = 0x1111111111111111;
NLS_WIDE uint64_t bytesInUse(__m512i forms, unsigned count) {
    return (_mm512_test_epi8_mask(forms, forms) | kFirstBytes) & lowBits(4 * std::size_t{count});
}
// The same, told by the number of lanes and by those that take more than one byte.
template <unsigned Length>
NLS_WIDE uint64_t bytesExpected(unsigned count, __mmask16 longer) {
    const uint64_t firsts = _pdep_u64(longer, kFirstBytes);
    return (kFirstBytes & lowBits(4 * std::size_t{count})) | firsts << 1 | (Length == 3 ? firsts << 2 : 0);
}

class Blocks {
public:
    NLS_WIDE Blocks(ByteView source, ByteSpan target)
        : from_(source.data()), fromEnd_(from_ + source.size()), to_(target.data()), toEnd_(to_ + target.size()) {}

    NLS_WIDE bool worthIt() const { return fromEnd_ - from_ >= kRest; }
    NLS_WIDE std::size_t size() const { return std::min(static_cast<std::size_t>(fromEnd_ - from_), kBlock); }
    NLS_WIDE std::size_t room() const { return static_cast<std::size_t>(toEnd_ - to_); }
    NLS_WIDE const unsigned char* place() const { return from_; }

    // False when there is no room for the block, which is all ASCII.
    NLS_WIDE bool copy(__m512i bytes) {
        const std::size_t count = size();
        if (room() < count) return false;
        _mm512_mask_storeu_epi8(to_, lowBits(count), bytes);
        from_ += count;
        to_ += count;
        return true;
    }
    // The bytes in use of the first `count` lanes, lowest byte first. They stand for `consumed` bytes. False, and
    // nothing written, when they don't fit or are none. What is in use depends on the look-ups, but nearly always it's
    // what was expected of them, and the branch on that lets the next block find its place before they are done.
    NLS_WIDE bool write(__m512i forms, uint64_t expected, unsigned count, std::size_t consumed) {
        uint64_t used = expected;
        __asm__("" : "+r"(used));  // to the compiler another value, so that it doesn't take the late one for both
        if (const uint64_t found = bytesInUse(forms, count); __builtin_expect(found != expected, false)) {
            used = byBranch(found);
        }
        const std::size_t length = countBits(used);
        if (length == 0 || length > room()) return false;
        _mm512_mask_storeu_epi8(to_, lowBits(length), _mm512_maskz_compress_epi8(used, forms));
        from_ += consumed;
        to_ += length;
        return true;
    }
    NLS_WIDE Run reached(ByteView source, ByteSpan target) const {
        return {static_cast<std::size_t>(from_ - source.data()), static_cast<std::size_t>(to_ - target.data())};
    }

private:
    const unsigned char *from_, *fromEnd_;
    unsigned char *to_, *toEnd_;
};

// Lanes in front of the first that isn't covered. As a rule all are, and the branch on that lets the next block begin
// before the look-ups of this one are done.
NLS_WIDE unsigned leadingLanes(unsigned covered) {
    return static_cast<unsigned>(_tzcnt_u32(~covered));
}

}  // namespace

NLS_TARGET_AVX512 Run runToUtf8Avx512(const DbcsTable& table, const DbcsIndex& index, ByteView source,
                                      ByteSpan target) {
    if (!index.asciiPasses || !index.pairsInGrid) return {0, 0};
    Blocks blocks{source, target};
    while (blocks.worthIt()) {
        const uint64_t inside = lowBits(blocks.size()), followed = inside >> 1;
        const __m512i bytes = _mm512_maskz_loadu_epi8(inside, blocks.place());
        const uint64_t high = _mm512_movepi8_mask(bytes);
        if (high == 0) {
            if (!blocks.copy(bytes)) break;
            continue;
        }
        const Pairing pairing = pairUp(bytesOn(index.leadBytes, bytes));
        const uint64_t cutOff = pairing.firsts & ~followed, starts = inside & ~pairing.seconds & ~cutOff;
        // Up to the start behind the sixteenth, or up to where the whole characters of the block end.
        std::size_t consumed = placeOfBit(starts, kLanes);
        if (__builtin_expect(consumed == kBlock, false))
            consumed = byBranch(static_cast<std::size_t>(_tzcnt_u64(cutOff | ~inside)));
        const uint64_t taken = starts & lowBits(consumed);
        const unsigned wanted = countBits(taken);
        const __m512i pairs = masked(spread(bytes, taken, kLane.toSecond), kLane.evenBytes);
        const __mmask16 ascii = lanesOf(~high, taken);
        const __mmask16 pairs16 = lanesOf(pairing.firsts & bytesOn(index.trailBytes, bytes) >> 1, taken);
        __mmask16 covered = pairs16;
        const __m512i codePoints = unitsOfPairs(index, table.maps[2].cjisToUcs, pairs, covered);
        const __m512i units = _mm512_mask_mov_epi32(codePoints, ascii, masked(pairs, kLane.word));
        const unsigned leading = leadingLanes(covered | ascii);
        const __m512i forms = utf8Forms(units, ascii);
        if (leading < wanted) {
            blocks.write(forms, 0, leading, placeOfBit(starts, leading));
            break;
        }
        if (!blocks.write(forms, bytesExpected<3>(wanted, pairs16), wanted, consumed)) break;
    }
    return blocks.reached(source, target);
}

NLS_TARGET_AVX512 Run runFromUtf8Avx512(const DbcsTable& table, const DbcsIndex& index, ByteView source,
                                        ByteSpan target) {
    if (!index.asciiPasses || !index.codesInBlock) return {0, 0};
    Blocks blocks{source, target};
    while (blocks.worthIt()) {
        const uint64_t inside = lowBits(blocks.size());
        const __m512i bytes = _mm512_maskz_loadu_epi8(inside, blocks.place());
        const uint64_t high = _mm512_movepi8_mask(bytes);
        if (high == 0) {
            if (!blocks.copy(bytes)) break;
            continue;
        }
        const Utf8Ends ends = findEnds(bytes, high, inside);
        if (ends.all == 0) break;
        std::size_t consumed = placeOfBit(ends.all, kLanes - 1) + 1;
        if (__builtin_expect(consumed > kBlock, false))  // fewer characters, at the end of text and in odd text
            consumed = byBranch(kBlock - static_cast<std::size_t>(_lzcnt_u64(ends.all)));
        const uint64_t taken = ends.all & lowBits(consumed);
        const unsigned wanted = countBits(taken);
        const __mmask16 ascii = lanesOf(ends.ascii, taken);
        const __mmask16 others = lanesOf(~ends.ascii, taken);
        const __m512i spelled = spread(bytes, taken, kLane.toFormer);
        const __m512i units = unitsOfForms(spelled, ascii, lanesOf(ends.three, taken));
        const BlockPlaces block = placesInBlock(index, units, others);
        __mmask16 direct = block.inside;
        auto inPages = static_cast<__mmask16>(others & ~direct);
        __m512i forms = codesInBlock(index, table.maps[2].ucsCells, block.places, direct);
        forms = _mm512_mask_mov_epi32(forms, ascii, units);
        if (inPages != 0) {
            const __m512i codes = codesInPages(index, units, inPages);
            forms = _mm512_mask_mov_epi32(forms, inPages, codes);
        }
        const unsigned leading = leadingLanes(static_cast<unsigned>(ascii | direct | inPages));
        if (leading < wanted) {
            if (leading != 0) blocks.write(forms, 0, leading, placeOfBit(ends.all, leading - 1) + 1);
            break;
        }
        if (!blocks.write(forms, bytesExpected<2>(wanted, others), wanted, consumed)) break;
    }
    return blocks.reached(source, target);
}

}  // namespace nls
