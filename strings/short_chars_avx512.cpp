// The short search where characters have more than one byte, as long as matches have the bytes that the pattern has,
// but for the values of first bytes. A text of at most 63 bytes is in a register, and so is what is known of it: a bit
// for each byte.
#include "collation/equal_run.hpp"
#include "collation/weight_rows_avx512.hpp"
#include "core/base/charset.hpp"
#include "strings/search.hpp"
#include "strings/short_search.hpp"

namespace nls {
namespace {

constexpr std::size_t kBlock = 64;
constexpr unsigned kParts = 4;  // of a map of bytes

// The second bytes of pairs: in each run of bytes that can be first ones they pair off from the left. One addition
// carries a bit from where a run begins to the byte behind it; runs that begin at even places apart from the others.
std::uint64_t secondsOf(std::uint64_t firsts) {
    constexpr std::uint64_t kEven = 0x5555555555555555;
    const std::uint64_t starts = firsts & ~(firsts << 1);
    const std::uint64_t carriedEven = firsts + (starts & kEven), carriedOdd = firsts + (starts & ~kEven);
    const std::uint64_t inEven = firsts & ~carriedEven, inOdd = firsts & ~carriedOdd;
    const std::uint64_t behindEven = carriedEven & ~firsts, behindOdd = carriedOdd & ~firsts;
    return ((inEven | behindEven) & ~kEven) | ((inOdd | behindOdd) & kEven);
}

struct Trails {
    bool known, pairsAlone;
    std::uint64_t bits;
};

// Where text has characters of three bytes and more, no trailing byte may look like a first one.
NLS_TARGET_AVX512 inline Trails trailsOf(const nlsAttribStruct& attrib, __m512i bytes, std::uint64_t inText) {
    const __m512i counts = _mm512_and_si512(weigh(rowsOf(WeightMap{attrib.lengthMap}), bytes), _mm512_set1_epi8(7));
    const auto atLeast = [&](char count) NLS_TARGET_AVX512 -> std::uint64_t {
        return inText & _mm512_cmpge_epu8_mask(counts, _mm512_set1_epi8(count));
    };
    const std::uint64_t firsts = atLeast(1), ofThree = atLeast(2);
    if (ofThree == 0) return {true, true, secondsOf(firsts)};
    const std::uint64_t announced = firsts << 1 | ofThree << 2 | atLeast(3) << 3;
    return {(announced & firsts) == 0 && atLeast(4) == 0, false, announced};
}

// Which bytes begin longer characters, and what they have for entries.
struct Tables {
    __m512i entries[kParts];
    std::uint64_t longer[kParts];
};

NLS_TARGET_AVX512 inline Tables tablesOf(WeightMap weights, const nlsAttribStruct& attrib) {
    Tables tables;
    for (unsigned i = 0; i < kParts; ++i) {
        tables.entries[i] = _mm512_loadu_si512(weights.entries() + i * kBlock);
        tables.longer[i] =
            _mm512_test_epi8_mask(_mm512_loadu_si512(attrib.lengthMap + i * kBlock), _mm512_set1_epi8(7));
    }
    return tables;
}

// Does no byte of the other kind, single or first of two, have the entry?
NLS_TARGET_AVX512 inline bool staysInStep(const Tables& tables, unsigned char entry, bool isLonger) {
    std::uint64_t other = 0;
    for (unsigned i = 0; i < kParts; ++i) {
        const std::uint64_t having =
            _mm512_cmpeq_epi8_mask(tables.entries[i], _mm512_set1_epi8(static_cast<char>(entry)));
        other |= having & (isLonger ? ~tables.longer[i] : tables.longer[i]);
    }
    return other == 0;
}

struct Candidates {
    bool known;
    std::uint64_t starts;
    std::size_t length;  // of a match
};

// The pattern is read to its end even where no candidate is left: it must be whole. With `weights` null characters are
// their bytes.
NLS_TARGET_AVX512 inline Candidates candidatesOf(const nlsAttribStruct& attrib, const WeightMap* weights,
                                                 const unsigned char* pattern, __m512i bytes, std::uint64_t starts) {
    constexpr Candidates kUnknown{false, 0, 0};
    const Charset charset{attrib};
    Tables tables;
    __m512i entries = bytes;
    if (weights != nullptr) {
        tables = tablesOf(*weights, attrib);
        entries = weigh(rowsOf(*weights), bytes);
        if (!staysInStep(tables, 0, false) || charset.trailCount('s') != 0) return kUnknown;
    }
    const auto having = [](__m512i lanes, unsigned char value) NLS_TARGET_AVX512 -> std::uint64_t {
        return _mm512_cmpeq_epi8_mask(lanes, _mm512_set1_epi8(static_cast<char>(value)));
    };
    std::size_t at = 0;
    while (pattern[at] != 0) {
        const unsigned trails = charset.trailCount(pattern[at]);
        if (at + trails >= kBlock || (weights != nullptr && trails > 1)) return kUnknown;
        const unsigned char first = weights != nullptr ? weights->entry(pattern[at]) : pattern[at];
        if (weights != nullptr && (first == 0 || !staysInStep(tables, first, trails != 0))) return kUnknown;
        starts &= having(entries, first) >> at++;
        for (unsigned i = 0; i < trails; ++i, ++at) {
            if (pattern[at] == 0) return kUnknown;
            starts &= having(bytes, pattern[at]) >> at;
        }
    }
    return {true, starts, at};
}

}  // namespace

NLS_TARGET_AVX512 NLS_READS_WHOLE_BLOCKS nlsStatus searchShortChars(const nlsLocale* locale, nlsTlsBlock* tls,
                                                                    const unsigned char* pattern,
                                                                    const unsigned char* text, uint16_t mode,
                                                                    uint32_t* pos, uint32_t* end,
                                                                    const unsigned char** found) {
    const nlsAttribStruct& attrib = *locale->attrib;
    const std::size_t room = leftInPage(text);
    const __m512i bytes = _mm512_maskz_loadu_epi8(firstLanes(room < kBlock ? room : kBlock), text);
    std::uint64_t nuls = _mm512_testn_epi8_mask(bytes, bytes);
    if (room < kBlock) nuls &= firstLanes(room);
    if (nuls == 0 || *pattern == 0) return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    const std::uint64_t inText = (nuls - 1) & ~nuls;  // the bytes in front of the first NUL
    const Trails trails = trailsOf(attrib, bytes, inText);
    const WeightMap weights = WeightMap::of(*locale->coll, mode);
    const bool byTables = kindOf(*locale->coll) != CollKind::unicode;
    if (!trails.known || (byTables && !trails.pairsAlone) || (trails.bits & ~inText) != 0)
        return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    const Candidates candidates =
        candidatesOf(attrib, byTables ? &weights : nullptr, pattern, bytes, inText & ~trails.bits);
    if (!candidates.known) return searchAndTell(locale, tls, pattern, text, mode, pos, end, found);
    const std::uint64_t starts = candidates.starts & inText >> (candidates.length - 1);
    if (starts == 0) {
        tellNone(pos, found);
        return NLS_OK;
    }
    const unsigned char* const start = text + _tzcnt_u64(starts);
    tellMatch({start, start + candidates.length}, text, pos, end, found);
    return NLS_OK;
}

}  // namespace nls
