#include "strings/like_passing.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "chars/stepping.hpp"
#include "convmap/case_pages.hpp"

namespace nls {

void FirstBytes::begin(const unsigned char* text, const unsigned char* end) {
    end_ = end;
    if (!few_.isAny() && few_.count() != 0 && text != end) scan_.emplace(Probes{few_, {}, 0, {}, 0}, text, end);
}

const unsigned char* FirstBytes::find(const unsigned char* place) {
    if (!scan_) {
        while (place < end_ && !has_[*place]) ++place;
        return place;
    }
    if (place >= end_) return place;
    scan_->skipTo(place);
    const unsigned char* found = scan_->next();
    while (found != nullptr && found < place) found = scan_->next();
    return found == nullptr ? end_ : found;
}

namespace {

constexpr unsigned kByteValues = 256, kLanes = sizeof(__m128i);

__m128i sixteen(const unsigned char* entries) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(entries));
}

// Calls `take` with the number of each bit.
template <typename Take>
void forEachBit(unsigned bits, Take take) {
    for (; bits != 0; bits &= bits - 1) take(static_cast<unsigned>(std::countr_zero(bits)));
}

}  // namespace

FirstBytes bytesWeighing(WeightMap weights, unsigned char weight) {
    FirstBytes bytes;
    const __m128i zero = _mm_setzero_si128(), wanted = _mm_set1_epi8(static_cast<char>(weight));
    for (unsigned i = 0; i != kByteValues; i += kLanes) {
        const __m128i entries = sixteen(weights.entries() + i);
        const __m128i equal = _mm_or_si128(_mm_cmpeq_epi8(entries, wanted), _mm_cmpeq_epi8(entries, zero));
        unsigned lanes = weight == 0 ? 0xFFFF : static_cast<unsigned>(_mm_movemask_epi8(equal));
        if (i == 0) lanes &= ~1U;  // no text has a NUL
        forEachBit(lanes, [&](unsigned lane) { bytes.add(static_cast<unsigned char>(i + lane)); });
    }
    return bytes;
}

namespace {

constexpr unsigned kForms = sizeof(__m128i) / sizeof(uint16_t);  // looked at together

__m128i areForm(const uint16_t* forms, nlsLChar form) {
    const __m128i found = _mm_loadu_si128(reinterpret_cast<const __m128i*>(forms));
    return _mm_cmpeq_epi16(found, _mm_set1_epi16(static_cast<short>(form)));
}

// Is it a lower form on a page other than that of ASCII?
bool hasLowerForm(const uint16_t* page, nlsLChar form) {
    constexpr unsigned kHalf = kCasePageEntries / 2;
    __m128i any = _mm_setzero_si128();
    for (unsigned i = 0; i != kHalf; i += kForms) any = _mm_or_si128(any, areForm(page + kHalf + i, form));
    return _mm_movemask_epi8(any) != 0;
}

// Single bytes: those from 0x80 on have the forms of ASCII, or themselves.
void addSingleBytes(const nlsUnicodeCaseStruct& table, const Charset& charset, nlsLChar form, FirstBytes& bytes) {
    if (form > 0xFFFF) return;
    const auto add = [&](unsigned byte) {
        if (charset.trailCount(static_cast<unsigned char>(byte)) == 0) bytes.add(static_cast<unsigned char>(byte));
    };
    const uint16_t* const forms = table.casePages[0] + kAsciiPageEntries / 2;
    for (unsigned i = 0; i != kAsciiPageEntries / 2; i += kForms) {
        forEachBit(static_cast<unsigned>(_mm_movemask_epi8(areForm(forms + i, form))), [&](unsigned bit) {
            add(i + bit / 2);
            add((i + bit / 2) | 0x80);
        });
    }
    if (form <= 0xFF) add(form);
}

// Characters of several bytes. One of three bytes keeps its first byte, and so does any without a form; one of two has
// its forms on the page of its first byte.
void addLongOnes(const nlsUnicodeCaseStruct& table, const Charset& charset, nlsLChar form, FirstBytes& bytes) {
    for (unsigned shift = 8; shift != 32; shift += 8)
        if (form >> shift != 0 && form >> shift <= 0xFF) bytes.add(static_cast<unsigned char>(form >> shift));
    if (form > 0xFFFF) return;
    for (unsigned i = 0; i != kByteValues; i += kLanes) {
        const __m128i trails = _mm_and_si128(sixteen(charset.lengths() + i), _mm_set1_epi8(Charset::kTrailCountBits));
        const __m128i one = _mm_cmpeq_epi8(trails, _mm_set1_epi8(1));
        forEachBit(static_cast<unsigned>(_mm_movemask_epi8(one)), [&](unsigned lane) {
            const uint16_t* const page = table.casePages[i + lane];
            if (page != kNoCasePage && hasLowerForm(page, form)) bytes.add(static_cast<unsigned char>(i + lane));
        });
    }
}

}  // namespace

FirstBytes bytesOfForm(const nlsUnicodeCaseStruct& table, const Charset& charset, nlsLChar form) {
    FirstBytes bytes;
    addSingleBytes(table, charset, form, bytes);
    addLongOnes(table, charset, form, bytes);
    if (caseFormOf(table.casePages, '?', CaseForm::lower) != form) return bytes;
    constexpr unsigned kLongest = 3;  // trailing bytes; a character with more is "?"
    for (unsigned i = 0; i != kByteValues; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        if (charset.trailCount(byte) > kLongest) bytes.add(byte);
    }
    return bytes;
}

const unsigned char* endOfText(const unsigned char* text) {
    return text + std::strlen(reinterpret_cast<const char*>(text));
}

namespace {

const unsigned char* skipCharacters(const Charset& charset, std::size_t count, const unsigned char* text) {
    for (; count != 0; --count) text = characterEnd(charset, text);
    return text;
}

}  // namespace

// The part looked at doubles until it has enough characters, so all of them together are at most twice the last.
const unsigned char* lastCharactersOf(const Charset& charset, std::size_t count, const unsigned char* text) {
    const unsigned char* const end = endOfText(text);
    if (static_cast<std::size_t>(end - text) < count) return nullptr;
    const CharsetLengths lengths = lengthsOf(charset);
    for (std::size_t part = count;; part *= 2) {
        const bool all = static_cast<std::size_t>(end - text) <= part;
        const unsigned char* const begin = all ? text : CharacterStarts{lengths, text}.of(end - part);
        std::size_t has = 0;
        for (const unsigned char* place = begin; place != end; place = characterEnd(charset, place)) ++has;
        if (has >= count) return skipCharacters(charset, has - count, begin);
        if (all) return nullptr;
        part = std::max(part, static_cast<std::size_t>(end - begin));
    }
}

}  // namespace nls
