// A segment is looked for at all places of a block of 64 bytes at once: one comparison for each of its elements tells
// where the element stands, and moved by its place in the segment, where the segment would begin.
#include <algorithm>

#include "strings/like_bytes.hpp"
#include "strings/text_block_avx512.hpp"

namespace nls {
namespace {

constexpr std::size_t kBlock = kTextBlock;

// Where in a block the element stands that is `i` places behind the beginning of its segment: where that begins.
NLS_TARGET_AVX512 inline std::uint64_t beginsOf(__m512i weights, unsigned char weight, std::size_t i) {
    return lanesOf(weights, weight) >> i;
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS LikeAnswer matchShortAvx512(WeightMap weights, const LikeSigns& signs,
                                                                     const unsigned char* pattern,
                                                                     const unsigned char* text) {
    const TextBlock block = textBlockAt(text);
    if (!block.ended) return LikeAnswer::unknown;
    const std::size_t length = block.length;
    const __m512i weighed = lookUpOnce(weights.entries(), block.bytes);
    for (std::size_t place = 0;;) {
        std::uint64_t begins = firstLanes(length) >> place << place;
        std::size_t count = 0;
        bool behindSingle = false, onBlank = false;
        unsigned char byte;
        for (; (byte = *pattern) != 0; ++count) {
            ++pattern;
            if (byte == signs.escape) {
                byte = *pattern++;
                const bool allowed = byte == signs.single || byte == signs.multi || byte == signs.escape;
                if (byte == 0 || !allowed) return LikeAnswer::no;
            } else if (byte == signs.single) {
                if (count > length) return LikeAnswer::no;
                behindSingle = true;
                onBlank = false;
                continue;
            } else if (byte == signs.multi) {
                break;
            }
            if (count > length) return LikeAnswer::no;
            if (count == 2 && begins == 0) return LikeAnswer::no;  // one place, which most texts leave alike
            begins &= beginsOf(weighed, weights.entry(byte), count);
            onBlank = behindSingle && byte == ' ';
            behindSingle = false;
        }
        const bool last = byte == 0 || *pattern == 0;
        if (last && onBlank) return LikeAnswer::unknown;
        if (count > length - place) return LikeAnswer::no;
        if (byte == 0) return (begins >> (length - count) & 1) != 0 ? LikeAnswer::yes : LikeAnswer::no;
        begins &= firstLanes(length - count + 1);
        if (begins == 0) return LikeAnswer::no;
        if (last) return LikeAnswer::yes;
        place = _tzcnt_u64(begins) + count;
    }
}

namespace {

// The first elements of a segment.
struct Opening {
    static constexpr std::size_t kMost = 32;
    unsigned char weights[kMost];
    std::uint64_t singles = 0;
    std::size_t count;
};

Opening openingOf(WeightMap weights, const LikeSigns& signs, const LikeSegment& segment) {
    Opening opening;
    opening.count = std::min(segment.count, Opening::kMost);
    const unsigned char* place = segment.begin;
    for (std::size_t i = 0; i != opening.count; ++i, ++place) {
        if (*place == signs.escape)
            ++place;
        else if (*place == signs.single)
            opening.singles |= std::uint64_t{1} << i;
        opening.weights[i] = weights.entry(*place);
    }
    return opening;
}

// Where in a block it begins. The last element comes first: the others are most alike where a search takes long.
NLS_TARGET_AVX512 inline std::uint64_t beginsOf(const Opening& opening, __m512i weighed) {
    std::uint64_t begins = ~std::uint64_t{0};
    for (std::size_t i = opening.count; i != 0 && begins != 0;) {
        --i;
        if ((opening.singles >> i & 1) == 0) begins &= beginsOf(weighed, opening.weights[i], i);
    }
    return begins;
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS const unsigned char* passOverAvx512(WeightMap weights, const LikeSigns& signs,
                                                                             const LikeSegment& segment,
                                                                             const unsigned char* text) {
    if (segment.count == 0) return text;
    const WeightRows rows = rowsOf(weights);
    const Opening opening = openingOf(weights, signs, segment);
    // Where the next block begins doesn't wait for what this one holds.
    const std::size_t places = kBlock - opening.count + 1;
    for (;; text += places) {
        const TextBlock block = textBlockAt(text);
        if (block.ended && block.length < opening.count) return text;  // too little is left
        const std::uint64_t begins = beginsOf(opening, weigh(rows, block.bytes)) & firstLanes(places);
        if (block.ended) {
            const std::size_t last = block.length - opening.count;
            return text + std::min(std::size_t{_tzcnt_u64(begins)}, last);
        }
        if (begins != 0) return text + _tzcnt_u64(begins);
    }
}

// Blocks that begin at a multiple of their size never cross into another page.
NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS const unsigned char* endOfTextAvx512(const unsigned char* text) {
    const TextBlock first = textBlockAt(text);
    if (first.ended) return text + first.length;
    const std::size_t behindBlock = reinterpret_cast<std::uintptr_t>(text) & (kBlock - 1);
    text += kBlock - behindBlock;
    constexpr std::size_t kAtOnce = 4;
    for (; (reinterpret_cast<std::uintptr_t>(text) & (kAtOnce * kBlock - 1)) != 0; text += kBlock) {
        const __m512i bytes = _mm512_load_si512(text);
        if (const __mmask64 ends = _mm512_testn_epi8_mask(bytes, bytes)) return text + _tzcnt_u64(ends);
    }
    for (;; text += kAtOnce * kBlock) {
        __m512i least = _mm512_load_si512(text);
        for (std::size_t i = 1; i != kAtOnce; ++i) least = _mm512_min_epu8(least, _mm512_load_si512(text + i * kBlock));
        if (_mm512_testn_epi8_mask(least, least) == 0) continue;
        for (;; text += kBlock) {
            const __m512i bytes = _mm512_load_si512(text);
            if (const __mmask64 ends = _mm512_testn_epi8_mask(bytes, bytes)) return text + _tzcnt_u64(ends);
        }
    }
}

}  // namespace nls
