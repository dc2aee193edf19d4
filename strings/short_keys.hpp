// Keys of a short text, a byte for each byte: equal characters have equal keys. They are made in place of a copy's
// bytes. False: there are no such keys, and what they are made of is left half done.
// Tested by tests/strings/search_test.cpp and tests/strings/like_test.cpp.
#pragma once

#include "collation/ascii_case.hpp"
#include "collation/equal_run.hpp"
#include "collation/pair_off.hpp"
#include "collation/weights.hpp"
#include "convmap/case_pages.hpp"
#include "core/base/charset.hpp"
#include "strings/short_text.hpp"
#include "strings/utf8_block.hpp"

namespace nls {

// Of the first bytes of longer characters in plain blocks of UTF-8.
inline bool hasUsualLengths(const Charset& charset) {
    __m128i odd = _mm_setzero_si128();
#pragma GCC unroll 4
    for (unsigned i = 0xC0; i < 0x100; i += kShortLanes) {
        const __m128i trails = _mm_and_si128(run::load(charset.lengths() + i), run::load(&kCountedTrails[i]));
        odd = _mm_or_si128(odd, _mm_xor_si128(trails, run::load(&kUsualTrails[i])));
    }
    return _mm_movemask_epi8(_mm_cmpeq_epi8(odd, _mm_setzero_si128())) == 0xFFFF;
}

// UTF-8 by lower forms, as long as these leave each character its length.
class LowerFormKeys {
public:
    LowerFormKeys(const nlsAttribStruct& attrib, const uint16_t* const (&pages)[kCasePages])
        : attrib_(attrib),
          pages_(pages),
          hasPlainAscii_(isAsciiSingleByte(attrib_) && hasPlainAsciiForms(pages_, CaseForm::lower)) {}

    bool make(ShortText& text) const {
        const ByteBlock block{text.bytes};
        text.longer = 0;
        text.starts = firstBits(text.length);
        lowerAscii(text);
        const std::uint64_t high = block.high();
        if (high == 0) return hasPlainAscii_;
        const Utf8Block shape = readUtf8Block(block);
        text.starts &= shape.starts;
        if (!hasPlainAscii_ || !shape.plain || !hasUsualLengths(Charset{attrib_})) return false;
        const std::uint64_t twos = high & block.highBelow(0xE0) & text.starts;
        const std::uint64_t threes = (high & block.highBelow(0xE3)) | block.equal(0xEF);
        lowerThrees(text, threes & text.starts & ~twos);
        return lowerTwos(text, twos);
    }

private:
    static void lowerAscii(ShortText& text) {
#pragma GCC unroll 4
        for (unsigned i = 0; i != kShortParts; ++i)
            _mm_store_si128(text.part(i), run::SameButForAsciiCase::folded(_mm_load_si128(text.part(i))));
    }
    // False: a form isn't a regular character of two bytes, and could be taken for others.
    bool lowerTwos(ShortText& text, std::uint64_t firsts) const {
        constexpr unsigned kLowerHalf = kCasePageEntries / 2, kTrailBits = 0x3F;
        unsigned odd = 0;
        for (; firsts != 0; firsts &= firsts - 1) {
            unsigned char* const first = text.bytes + __builtin_ctzll(firsts);
            const unsigned own = unsigned{first[0]} << 8 | first[1];
            const unsigned entry = pages_[first[0]][kLowerHalf + (first[1] & kTrailBits)];
            const unsigned form = entry != 0 ? entry : own;
            odd |= (form ^ 0xC080U) & 0xE0C0U;
            first[0] = static_cast<unsigned char>(form >> 8);
            first[1] = static_cast<unsigned char>(form);
        }
        return odd == 0;
    }
    // A form keeps the first byte.
    void lowerThrees(ShortText& text, std::uint64_t firsts) const {
        for (; firsts != 0; firsts &= firsts - 1) {
            unsigned char* const first = text.bytes + __builtin_ctzll(firsts);
            const unsigned own = unsigned{first[0]} << 16 | unsigned{first[1]} << 8 | first[2];
            const unsigned form = caseFormOf(pages_, own, CaseForm::lower);
            first[1] = static_cast<unsigned char>(form >> 8);
            first[2] = static_cast<unsigned char>(form);
        }
    }

    const nlsAttribStruct& attrib_;
    const uint16_t* const (&pages_)[kCasePages];
    bool hasPlainAscii_;
};

// Characters of one and two bytes under byte tables: the weight of the first byte, and the second as it is. Its key is
// its weight, too, since that is looked up before it is known which bytes are second ones.
class WeightKeys {
public:
    WeightKeys(const Charset& charset, WeightMap weights) : charset_(charset), weights_(weights) {}

    bool make(ShortText& text) const {
        const unsigned char* const lengths = charset_.lengths();
        const WeightMap weights = weights_;
        const std::size_t length = text.length;
        std::uint64_t announced = 0;  // bit 0 of each length, shifted in from above
        unsigned any = 0;
        for (std::size_t i = 0; i != length; ++i) {
            const unsigned char byte = text.bytes[i];
            text.bytes[i] = weights.entry(byte);
            any |= lengths[byte];
            announced = announced >> 1 | std::uint64_t{lengths[byte]} << 63;
        }
        const std::uint64_t firsts = length == 0 ? 0 : announced >> (blockSize - length);
        const std::uint64_t seconds = pairOff(firsts, false, blockSize).lanes;
        text.starts = firstBits(length) & ~seconds;
        text.longer = firsts & text.starts;
        const bool expands = (ByteBlock{text.bytes}.equal(0) & text.starts) != 0;
        return (any & 6) == 0 && !expands && (seconds >> length & 1) == 0;
    }

private:
    Charset charset_;
    WeightMap weights_;
};

}  // namespace nls
