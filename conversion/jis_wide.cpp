#include "conversion/jis_wide.hpp"

#include <emmintrin.h>

#include <bit>
#include <cstring>

namespace nls {

namespace {

using Bytes = __m128i;
constexpr std::size_t kBlock = 16;

Bytes all(unsigned value) {
    return _mm_set1_epi8(static_cast<char>(value));
}
// All bits of the bytes that lie in a range.
Bytes within(Bytes bytes, unsigned first, unsigned last) {
    const Bytes above = _mm_sub_epi8(bytes, all(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(above, all(last - first)), above);
}
Bytes select(Bytes mask, Bytes yes, Bytes no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}
// `yes` where the mask is set, else 0.
Bytes where(Bytes mask, unsigned yes) {
    return _mm_and_si128(mask, all(yes));
}
unsigned bitsOf(Bytes mask) {
    return static_cast<unsigned>(_mm_movemask_epi8(mask));
}
// The mask of bytes that has the given bits.
Bytes maskOf(unsigned bits) {
    const Bytes twice = _mm_cvtsi32_si128(static_cast<int>(bits));
    const Bytes doubled = _mm_unpacklo_epi8(twice, twice);
    const Bytes halves = _mm_shuffle_epi32(_mm_shufflelo_epi16(doubled, 0x50), 0x50);
    const Bytes eachBit = _mm_set1_epi64x(static_cast<long long>(0x8040201008040201));
    return _mm_cmpeq_epi8(_mm_and_si128(halves, eachBit), eachBit);
}
// For each byte the one behind it, and the one in front; 0 at the ends.
Bytes nextOf(Bytes bytes) {
    return _mm_srli_si128(bytes, 1);
}
Bytes formerOf(Bytes bytes) {
    return _mm_slli_si128(bytes, 1);
}

// Which bytes of a block begin a pair and which end one, when the block begins at a character. A byte that may be a
// first byte is one unless it's second itself: in a run of such bytes they alternate, and a subtraction that borrows
// through the run tells them apart.
struct Pairs {
    unsigned firsts, seconds;
};
Pairs pairUp(unsigned candidates) {
    constexpr unsigned kOdd = 0xAAAAAAAA;
    const unsigned marked = ((candidates << 1 | kOdd) - candidates) ^ kOdd;
    return {marked & candidates, marked ^ candidates};
}

// One spelling of the grid into the other. A pair whose second byte is outside goes out as it stands.
struct SjisToEuc {
    static Bytes leads(Bytes bytes) { return _mm_or_si128(within(bytes, 0x81, 0x9F), within(bytes, 0xE0, 0xEF)); }
    static Bytes kana(Bytes bytes) { return within(bytes, 0xA1, 0xDF); }
    static Bytes trails(Bytes bytes) { return within(bytes, 0x40, 0xFC); }

    // 2 * (lead - 0x70 or 0xB0) + 0x80, less 1 for an odd row; the first range of leads is told by bit 0x40.
    static Bytes newLeads(Bytes bytes) {
        const Bytes fromE0 = _mm_cmpeq_epi8(_mm_and_si128(bytes, all(0x40)), all(0x40));
        const Bytes squeezed = _mm_sub_epi8(_mm_sub_epi8(bytes, all(0x70)), where(fromE0, 0x40));
        const Bytes odd = within(nextOf(bytes), 0x00, 0x9E);
        return _mm_add_epi8(_mm_add_epi8(_mm_add_epi8(squeezed, squeezed), all(0x80)), odd);
    }
    // trail + 0x80, less 0x7E above 0x9E, 0x20 from 0x80 on, 0x1F below.
    static Bytes newTrails(Bytes bytes) {
        const Bytes odd = within(bytes, 0x00, 0x9E), low = within(bytes, 0x00, 0x7F);
        return _mm_sub_epi8(_mm_add_epi8(bytes, all(0x02)), _mm_add_epi8(where(odd, 0xA2), low));
    }
};

struct EucToSjis {
    static Bytes leads(Bytes bytes) { return within(bytes, 0xA1, 0xFE); }
    static Bytes kana(Bytes bytes) { return _mm_cmpeq_epi8(bytes, all(0x8E)); }
    static Bytes trails(Bytes bytes) { return leads(bytes); }

    // (row + 1) / 2 + 0x70, 0xB0 from row 0x5F on; a row is its byte less 0x80.
    static Bytes newLeads(Bytes bytes) {
        const Bytes rows = _mm_and_si128(bytes, all(0x7F));
        const Bytes halves = _mm_avg_epu8(rows, _mm_setzero_si128());
        return _mm_add_epi8(_mm_add_epi8(halves, all(0x70)), where(within(rows, 0x5F, 0x7F), 0x40));
    }
    // column + 0x7E in an even row; else + 0x1F, and 0x20 from column 0x60 on.
    static Bytes newTrails(Bytes bytes) {
        const Bytes columns = _mm_and_si128(bytes, all(0x7F)), high = within(columns, 0x60, 0x7F);
        const Bytes odd = _mm_cmpeq_epi8(_mm_and_si128(formerOf(bytes), all(0x01)), all(0x01));
        const Bytes inOdd = _mm_sub_epi8(_mm_add_epi8(columns, all(0x1F)), high);
        return select(odd, inOdd, _mm_add_epi8(columns, all(0x7E)));
    }
};

struct Block {
    Bytes bytes;
    std::size_t count;  // from the front on, up to the first half-width kana or the pair that the end cuts off
    bool kana;
};
template <typename Rule>
Block convertBlock(Bytes bytes, std::size_t size) {
    const Pairs pairs = pairUp(bitsOf(Rule::leads(bytes)));
    const unsigned end = 1U << size;
    const unsigned kana = bitsOf(Rule::kana(bytes)) & ~pairs.seconds, cutOff = pairs.firsts & end >> 1;
    const Bytes inGrid = Rule::trails(bytes);
    const Bytes firsts = _mm_and_si128(maskOf(pairs.firsts), nextOf(inGrid));
    const Bytes seconds = _mm_and_si128(maskOf(pairs.seconds), inGrid);
    const Bytes result = select(firsts, Rule::newLeads(bytes), select(seconds, Rule::newTrails(bytes), bytes));
    return {result, static_cast<std::size_t>(std::countr_zero(kana | cutOff | end)), kana != 0};
}

void storeFront(unsigned char* target, Bytes bytes, std::size_t count) {
    unsigned char room[kBlock];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(room), bytes);
    std::memcpy(target, room, count);
}

// A part of a block, by way of memory of its own.
template <typename Rule>
std::size_t convertRest(ByteView source, ByteSpan target) {
    unsigned char room[kBlock] = {};
    std::memcpy(room, source.data(), source.size());
    const Block block = convertBlock<Rule>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(room)), source.size());
    storeFront(target.data(), block.bytes, block.count);
    return block.count;
}

template <typename Rule>
Run convertBlocks(ByteView source, ByteSpan target) {
    constexpr std::size_t kWorthIt = 6;
    std::size_t done = 0;
    while (source.size() - done >= kBlock && target.size() - done >= kBlock) {
        const Block block =
            convertBlock<Rule>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source.data() + done)), kBlock);
        // The place of a first byte that the block cuts off may be stored to if its pair is sure to come there.
        const bool pairFollows = source.size() - done > kBlock && target.size() - done > kBlock;
        if (block.count == kBlock || (!block.kana && pairFollows)) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(target.data() + done), block.bytes);
        } else {
            storeFront(target.data() + done, block.bytes, block.count);
        }
        done += block.count;
        if (block.kana) return {done, done};
    }
    const std::size_t left = source.size() - done;
    if (left >= kWorthIt && left < kBlock && target.size() - done >= left)
        done += convertRest<Rule>(source.subspan(done), target.subspan(done));
    return {done, done};
}

}  // namespace

Run sjisToEucBlocks(ByteView source, ByteSpan target) {
    return convertBlocks<SjisToEuc>(source, target);
}

Run eucToSjisBlocks(ByteView source, ByteSpan target) {
    return convertBlocks<EucToSjis>(source, target);
}

}  // namespace nls
