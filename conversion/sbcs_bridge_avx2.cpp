// The single-byte bridges, 32 bytes at a time (AVX2): look-ups in rows of 16 bytes, squeezing by shuffles from a table.
#include <immintrin.h>

#include <array>

#include "conversion/byte_rows_avx2.hpp"
#include "conversion/sbcs_walk.hpp"
#include "conversion/squeeze_tables.hpp"

namespace nls {

namespace {

// Row m moves the bytes whose bits are set in m to the front, in their order; the rest of the row doesn't matter.
constexpr auto kKept = [] {
    std::array<std::array<unsigned char, 8>, 256> rows{};
    for (unsigned mask = 0; mask < 256; ++mask)
        for (unsigned place = 0, kept = 0; place < 8; ++place)
            if ((mask >> place & 1) != 0) rows[mask][kept++] = static_cast<unsigned char>(place);
    return rows;
}();

NLS_TARGET_AVX2 inline unsigned countBits(uint32_t mask) {
    return static_cast<unsigned>(_mm_popcnt_u32(mask));
}
NLS_TARGET_AVX2 inline uint32_t signs(__m256i bytes) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(bytes));
}
NLS_TARGET_AVX2 inline __m256i all(int byte) {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

NLS_TARGET_AVX2 inline uint32_t atLeast(__m256i bytes, int least) {
    return signs(_mm256_cmpeq_epi8(_mm256_max_epu8(bytes, all(least)), bytes));
}

NLS_TARGET_AVX2 inline __m256i load(const unsigned char* place) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place));
}
NLS_TARGET_AVX2 inline void store(unsigned char* place, __m256i bytes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(place), bytes);
}

// --- To UTF-8 ---

// The first and second bytes of the forms of the bytes from 0x80 on.
struct UpperForms {
    unsigned char first[128], second[128];
};

// False where this way won't do: ASCII doesn't stay what it is, or a byte beyond it has no form of two or three bytes.
NLS_TARGET_AVX2 bool splitForms(const SbcsWords& words, UpperForms& forms) {
    unsigned strange = 0;
    for (unsigned c = 0; c < 128; ++c) {
        const uint32_t word = words.utf8[128 + c];
        forms.first[c] = static_cast<unsigned char>(word);
        forms.second[c] = static_cast<unsigned char>(word >> 8);
        strange |= static_cast<unsigned>(forms.first[c] < 0xC0) | static_cast<unsigned>(forms.first[c] >= 0xF0) |
                   (words.utf8[c] ^ c);
    }
    return strange == 0;
}

// Eight characters as pairs; `mask` tells which of them take two bytes. Writes 16 bytes, of which the text may take 8.
NLS_TARGET_AVX2 inline void writePairs(BridgeWalk& walk, __m128i pairs, uint32_t mask) {
    const __m128i shuffle =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(kTwoByteSqueeze.shuffle[mask & 0xFF].data()));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(walk.target), _mm_shuffle_epi8(pairs, shuffle));
    walk.target += 8 + countBits(mask & 0xFF);
}

NLS_TARGET_AVX2 inline void writeUpToTwo(BridgeWalk& walk, __m256i first, __m256i second, uint32_t two) {
    const __m256i even = _mm256_unpacklo_epi8(first, second), odd = _mm256_unpackhi_epi8(first, second);
    writePairs(walk, _mm256_castsi256_si128(even), two);
    writePairs(walk, _mm256_castsi256_si128(odd), two >> 8);
    writePairs(walk, _mm256_extracti128_si256(even, 1), two >> 16);
    writePairs(walk, _mm256_extracti128_si256(odd, 1), two >> 24);
}

// Word by word. Writes up to 3 bytes behind the text.
NLS_TARGET_AVX2 inline void writeWords(BridgeWalk& walk, const SbcsWords& words) {
    for (int i = 0; i < 32; ++i) {
        const uint32_t word = words.utf8[walk.source[i]];
        __builtin_memcpy(walk.target, &word, sizeof word);
        walk.target += kFormLength[word & 0xFF];
    }
}

// --- From UTF-8 ---

// Two neighbouring pages: page `number` and the next, `number` being even.
struct PagePair {
    unsigned number;
    ByteRows rows;
};

NLS_TARGET_AVX2 inline PagePair pagePair(const SbcsPages& pages, unsigned page) {
    return {page & ~1U, byteRows(pages.page[page & ~1U], pages.page[page | 1])};
}

// Last bytes of the characters that end in a block; none where its trailing bytes aren't those that its lead bytes
// announce, or where a character of four bytes or of none stands in it.
NLS_TARGET_AVX2 inline uint32_t lastBytes(__m256i bytes) {
    const uint32_t upper = signs(bytes), lead = atLeast(bytes, 0xC0), lead3 = atLeast(bytes, 0xE0);
    const uint32_t announced = lead << 1 | lead3 << 2;
    if (announced != (upper & ~lead) || atLeast(bytes, 0xF0) != 0) return 0;
    return ~upper | (lead ^ lead3) << 1 | lead3 << 2;
}

NLS_TARGET_AVX2 bool keepsAscii(const unsigned char* page) {
    unsigned differences = 0;
    for (unsigned c = 0; c < 128; ++c) differences |= page[c] ^ c;
    return differences == 0;
}

class FromUtf8 {
public:
    NLS_TARGET_AVX2 FromUtf8(const SbcsPages& pages, BridgeWalk& walk)
        : pages_(pages),
          walk_(walk),
          asciiStays_(keepsAscii(pages.page[0])),
          ascii_(byteRows(pages.page[0], pages.page[0] + 64)),
          hot_(pagePair(pages, 0xC2)) {}

    // False where the block must go the plain way. REQUIRES: the text and the room that fromUtf8Avx2 asks for.
    NLS_TARGET_AVX2 bool block() {
        const __m256i bytes = load(walk_.source);
        if (asciiStays_ && signs(bytes) == 0) {
            store(walk_.target, bytes);
            walk_.target += 32;
            walk_.source += 32;
            return true;
        }
        const uint32_t last = lastBytes(bytes);
        if (last == 0) return false;
        const __m256i mapped = _mm256_or_si256(ascii(bytes), characters(bytes, last & signs(bytes)));
        write(substituteZeros(mapped, bytes, last), last);
        walk_.source += 32 - _lzcnt_u32(last);  // behind the last character that ends here
        return true;
    }

private:
    // The entries of the ASCII bytes; 0 elsewhere.
    NLS_TARGET_AVX2 __m256i ascii(__m256i bytes) const {
        if (!asciiStays_) return lookUp(ascii_, bytes);
        return _mm256_andnot_si256(_mm256_cmpgt_epi8(_mm256_setzero_si256(), bytes), bytes);
    }

    // The entries of characters of several bytes at their last bytes, which are those of `multi`; 0 at ASCII bytes.
    NLS_TARGET_AVX2 __m256i characters(__m256i bytes, uint32_t multi) {
        const __m256i oneLaneBack = _mm256_permute2x128_si256(bytes, bytes, 0x08);
        const __m256i before = _mm256_alignr_epi8(bytes, oneLaneBack, 15);
        const __m256i page = _mm256_and_si256(before, all(0xFE));
        // The low six bits of the byte, in bit 6 the lowest bit of the byte before it, and bit 7 for ASCII.
        const __m256i inPage = _mm256_or_si256(_mm256_and_si256(bytes, all(0x3F)),
                                               _mm256_and_si256(_mm256_slli_epi16(before, 6), all(0x40)));
        const __m256i index = _mm256_or_si256(inPage, _mm256_andnot_si256(bytes, all(0x80)));
        __m256i mapped = onPages(hot_, page, index);
        const uint32_t hits = multi & pageHits(hot_, page);
        for (uint32_t rest = multi & ~hits; rest != 0;) {
            const PagePair pair = pagePair(pages_, walk_.source[_tzcnt_u32(rest) - 1]);
            mapped = _mm256_or_si256(mapped, onPages(pair, page, index));
            rest &= ~pageHits(pair, page);
            if (hits == 0) hot_ = pair;
        }
        return mapped;
    }
    NLS_TARGET_AVX2 static __m256i isPage(const PagePair& pair, __m256i page) {
        return _mm256_cmpeq_epi8(page, all(static_cast<int>(pair.number)));
    }
    NLS_TARGET_AVX2 static uint32_t pageHits(const PagePair& pair, __m256i page) { return signs(isPage(pair, page)); }
    NLS_TARGET_AVX2 static __m256i onPages(const PagePair& pair, __m256i page, __m256i index) {
        return lookUp(pair.rows, _mm256_or_si256(index, _mm256_andnot_si256(isPage(pair, page), all(0x80))));
    }

    // No mapping: "?". NUL alone is what its page says.
    NLS_TARGET_AVX2 __m256i substituteZeros(__m256i mapped, __m256i bytes, uint32_t last) {
        const __m256i none = _mm256_setzero_si256();
        const __m256i zeros = _mm256_andnot_si256(_mm256_cmpeq_epi8(bytes, none), _mm256_cmpeq_epi8(mapped, none));
        if ((signs(zeros) & last) == 0) return mapped;
        walk_.substituted = true;
        return _mm256_blendv_epi8(mapped, all('?'), zeros);
    }

    NLS_TARGET_AVX2 void write(__m256i mapped, uint32_t last) {
        alignas(32) unsigned char bytes[32];
        store(bytes, mapped);
        for (unsigned from = 0; from < 32; from += 8) {
            const uint32_t kept = last >> from & 0xFF;
            const __m128i shuffle = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kKept[kept].data()));
            const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes + from));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(walk_.target), _mm_shuffle_epi8(eight, shuffle));
            walk_.target += countBits(kept);
        }
    }

    const SbcsPages& pages_;
    BridgeWalk& walk_;
    bool asciiStays_;
    ByteRows ascii_;
    PagePair hot_;  // the pair that the last block needed
};

}  // namespace

NLS_TARGET_AVX2 void toUtf8Avx2(const SbcsWords& words, BridgeWalk& walk) {
    UpperForms forms;
    if (!splitForms(words, forms)) return;
    const ByteRows first = byteRows(forms.first, forms.first + 64), second = byteRows(forms.second, forms.second + 64);
    BridgeWalk at = walk;  // in registers
    // Of what is written behind a block's text, at most 8 bytes, the next 8 characters or the overflow ending cover
    // all.
    while (at.left() >= 32 + 8 && at.room() >= 32 * 3 + 16) {
        const __m256i bytes = load(at.source);
        const uint32_t two = signs(bytes);
        if (two == 0) {
            store(at.target, bytes);
            at.target += 32;
        } else {
            const __m256i upper = _mm256_xor_si256(bytes, all(0x80));  // ASCII yields 0
            const __m256i leads = lookUp(first, upper);
            if (atLeast(leads, 0xE0) != 0)
                writeWords(at, words);
            else
                writeUpToTwo(at, _mm256_blendv_epi8(bytes, leads, bytes), lookUp(second, upper), two);
        }
        at.source += 32;
    }
    walk = at;
}

NLS_TARGET_AVX2 void fromUtf8Avx2(const SbcsPages& pages, BridgeWalk& walk) {
    BridgeWalk at = walk;  // in registers
    FromUtf8 blocks{pages, at};
    // A block writes up to 8 bytes behind its text. 40 bytes more of text cover them: they are 9 characters at least.
    while (at.left() >= 32 + 40 && at.room() >= 32 + 8 && blocks.block()) {
    }
    walk = at;
}

}  // namespace nls
