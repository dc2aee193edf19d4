#include "strings/each_match.hpp"

#include <emmintrin.h>

#include <algorithm>

#include "strings/finder.hpp"
#include "strings/probe_choice.hpp"
#include "strings/str_record.hpp"

namespace nls {
namespace {

constexpr unsigned kByteValues = 256, kLanes = 16;
constexpr uint16_t kFolding = 0;

struct Work {
    ByteView pattern;
    const unsigned char *text, *end;
    CharsetLengths lengths;
    const MatchTaker& taker;
};

__m128i sixteen(const unsigned char* entries) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(entries));
}

unsigned longestTrail(const nlsAttribStruct& attrib) {
    const __m128i count = _mm_set1_epi8(7);
    __m128i most = _mm_setzero_si128();
    for (unsigned i = 0; i < kByteValues; i += kLanes) {
        most = _mm_max_epu8(most, _mm_and_si128(sixteen(attrib.lengthMap + i), count));
    }
    unsigned char lanes[kLanes];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lanes), most);
    return *std::max_element(lanes, lanes + kLanes);
}

// The text is known to be whole, or not, before its first match is told: a character cut short at its end comes first.
template <typename Rule>
nlsStatus eachMatch(const Rule& rule, const Probes& probes, const Work& work) {
    Finder<Rule> finder{rule, work.pattern, probes, work.lengths, work.text, work.end};
    bool isWhole = work.lengths.longestTrail == 0;
    for (;;) {
        const Span match = finder.next();
        if (!isWhole) {
            const unsigned char* const end = finder.textEnd(match.start == nullptr ? work.text : match.start);
            if (end - work.text > INT32_MAX) return NLS_BAD_ARG;
            if (!endsWhole(work.lengths, {work.text, end})) return NLS_PARTIAL_CHAR;
            isWhole = true;
        }
        if (match.start == nullptr) return NLS_OK;
        if (match.end - work.text > INT32_MAX) return NLS_BAD_ARG;
        switch (work.taker.take(work.taker.context, match)) {
            case GoOn::stop:
                return NLS_OK;
            case GoOn::behindMatch:
                finder.goOnAt(match.end);
                break;
            case GoOn::atNextCharacter:
                break;
        }
    }
}

// Is each character of a pattern equal to characters of its own length alone? Its matches then have its bytes, but for
// the values of first bytes.
class InStep {
public:
    InStep(WeightMap weights, const Charset& charset, const unsigned char* lengthMap)
        : weights_(weights), charset_(charset) {
        for (unsigned i = 0; i < kBlocks; ++i)
            single_[i] =
                _mm_cmpeq_epi8(_mm_and_si128(sixteen(lengthMap + i * kLanes), _mm_set1_epi8(7)), _mm_setzero_si128());
    }
    // The entries of first bytes of two must not be those of single bytes, as far as the pattern has them. An expansion
    // must not begin a longer character, nor must the letter that it stands for weigh as one that does.
    bool holds(ByteView pattern) const {
        if (weights_.entry(' ') == 0 || charset_.trailCount('s') != 0 || anyOfLongerWith(0)) return false;
        unsigned char known = 0;  // an entry that has been asked for
        for (std::size_t i = 0; i < pattern.size(); i += charset_.trailCount(pattern[i]) + std::size_t{1}) {
            const unsigned char entry = weights_.entry(pattern[i]);
            if (i != 0 && entry == known) continue;
            known = entry;
            if (charset_.trailCount(pattern[i]) != 0 ? anySingleWith(entry) : anyOfLongerWith(entry)) return false;
            if (entry == 0 && anyOfLongerWith(weights_.ofLetterS())) return false;
        }
        return true;
    }

private:
    static constexpr unsigned kBlocks = kByteValues / kLanes;

    __m128i having(unsigned block, unsigned char entry) const {
        return _mm_cmpeq_epi8(sixteen(weights_.entries() + block * kLanes), _mm_set1_epi8(static_cast<char>(entry)));
    }
    bool anySingleWith(unsigned char entry) const {
        __m128i any = _mm_setzero_si128();
        for (unsigned i = 0; i < kBlocks; ++i) any = _mm_or_si128(any, _mm_and_si128(single_[i], having(i, entry)));
        return _mm_movemask_epi8(any) != 0;
    }
    bool anyOfLongerWith(unsigned char entry) const {
        __m128i any = _mm_setzero_si128();
        for (unsigned i = 0; i < kBlocks; ++i) any = _mm_or_si128(any, _mm_andnot_si128(single_[i], having(i, entry)));
        return _mm_movemask_epi8(any) != 0;
    }

    WeightMap weights_;
    Charset charset_;
    __m128i single_[kBlocks];  // all bits for a byte that is a character of its own
};

bool hasTrailingBlank(const Charset& charset, ByteView text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t next = std::min(text.size(), i + charset.trailCount(text[i]) + 1);
        while (++i < next)
            if (text[i] == ' ') return true;
    }
    return false;
}

FastAnswer byUnicode(const Comparing& by, const Work& work) {
    constexpr unsigned kTrailsOfWord = 3;
    const Charset& charset = work.lengths.charset;
    const bool hasForms = by.locale.caseTable != nullptr && charset.isUtf8();
    if (by.mode != kFolding || (!hasForms && work.lengths.longestTrail <= kTrailsOfWord)) {
        const ExactRule rule{charset};
        return {true, eachMatch(rule, probesOf(rule, work.pattern), work)};
    }
    const FoldRule rule{charset, hasForms ? &unicodeCaseTable(*by.locale.caseTable) : nullptr};
    // Which characters fold to the same is a long question; a short text is walked in less.
    constexpr std::size_t kShort = 512;
    const std::size_t length =
        work.end != nullptr ? static_cast<std::size_t>(work.end - work.text) : boundedLength(work.text, kShort);
    return {true, eachMatch(rule, length < kShort ? Probes{} : probesOf(rule, work.pattern), work)};
}

// Through the comparison itself, which must know when characters are equal, and must not fail.
FastAnswer byComparison(const Comparing& by, const Work& work) {
    const Charset& charset = work.lengths.charset;
    const CharacterEquality equality{by.locale, by.tls, by.mode};
    if (WeightMap::of(*by.locale.coll, by.mode).entry(' ') == 0) return {false, NLS_OK};
    if (equality(work.pattern.data(), work.pattern.data()).status != NLS_OK) return {false, NLS_OK};
    const ByteView text = work.end == nullptr ? untilNul(work.text) : ByteView{work.text, work.end};
    if (hasTrailingBlank(charset, work.pattern) || hasTrailingBlank(charset, text)) return {false, NLS_OK};
    return {true, eachMatch(ComparedRule{charset, equality}, Probes{}, work)};
}

FastAnswer byTables(const Comparing& by, const Work& work) {
    const Charset& charset = work.lengths.charset;
    const WeightMap weights = WeightMap::of(*by.locale.coll, by.mode);
    if (work.lengths.longestTrail == 0) {
        if (!equalByEntries(by.locale, by.mode)) return byComparison(by, work);
        const ByteRule rule{weights};
        return {true, eachMatch(rule, probesOf(rule, work.pattern), work)};
    }
    if (work.lengths.longestTrail != 1 || charset.comparesViaSjis() ||
        !InStep{weights, charset, by.locale.attrib->lengthMap}.holds(work.pattern))
        return byComparison(by, work);
    const PairRule rule{weights, charset};
    return {true, eachMatch(rule, probesOf(rule, work.pattern), work)};
}

}  // namespace

FastAnswer eachMatchFast(const Comparing& by, ByteView pattern, const unsigned char* text, const unsigned char* end,
                         const MatchTaker& taker) {
    if (by.locale.coll == nullptr) return {false, NLS_OK};
    const CharsetLengths lengths{Charset{*by.locale.attrib}, longestTrail(*by.locale.attrib)};
    const Work work{pattern, text, end, lengths, taker};
    // A charset that isn't marked as multi-byte counts bytes for characters.
    if (lengths.longestTrail != 0 && !lengths.charset.isMultiByte()) return {false, NLS_OK};
    if (!endsWhole(lengths, pattern)) return {true, NLS_PARTIAL_CHAR};
    if (kindOf(*by.locale.coll) == CollKind::unicode) return byUnicode(by, work);
    if (!comparesByTables(*by.locale.coll) || !isByteMode(by.mode)) return {false, NLS_OK};
    // Its comparison knows no longer characters.
    if (lengths.longestTrail != 0 && comparesSingleBytes(by.locale)) return {false, NLS_OK};
    return byTables(by, work);
}

bool stepsAlikeBothWays(const nlsAttribStruct& attrib, ByteView text) {
    const Charset charset{attrib};
    const auto follows = [](unsigned char byte) { return (byte & 0xC0U) == 0x80U; };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t trails = charset.trailCount(text[i]);
        if (charset.isUtf8() ? follows(text[i]) : trails > 1) return false;
        const std::size_t next = std::min(text.size(), i + trails + 1);
        while (++i < next)
            if (charset.isUtf8() ? !follows(text[i]) : charset.trailCount(text[i]) > 1) return false;
    }
    return true;
}

const unsigned char* firstByteOf(const nlsAttribStruct& attrib, const unsigned char* place,
                                 const unsigned char* start) {
    return CharacterStarts{{Charset{attrib}, longestTrail(attrib)}, start}.of(place);
}

}  // namespace nls
