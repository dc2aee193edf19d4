#include "strings/like_passing.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "chars/stepping.hpp"
#include "convmap/case_pages.hpp"

namespace nls {

void FirstBytes::add(unsigned char byte) {
    if (has_[byte]) return;
    has_[byte] = true;
    if (count_ < kFew) few_[count_] = byte;
    ++count_;
}

const unsigned char* FirstBytes::find(const unsigned char* text, const unsigned char* end) const {
    if (count_ == 0) return end;
    if (count_ > kFew) return findOneByOne(text, end);
    constexpr std::ptrdiff_t kBlock = sizeof(__m128i);
    // With fewer of them one is asked for twice.
    const auto row = [this](std::size_t i) { return _mm_set1_epi8(static_cast<char>(few_[std::min(i, count_ - 1)])); };
    const __m128i a = row(0), b = row(1), c = row(2);
    for (; end - text >= kBlock; text += kBlock) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        const __m128i found =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, a), _mm_cmpeq_epi8(bytes, b)), _mm_cmpeq_epi8(bytes, c));
        if (const auto lanes = static_cast<unsigned>(_mm_movemask_epi8(found))) return text + std::countr_zero(lanes);
    }
    return findOneByOne(text, end);
}

const unsigned char* FirstBytes::findOneByOne(const unsigned char* text, const unsigned char* end) const {
    while (text != end && !has_[*text]) ++text;
    return text;
}

FirstBytes bytesWeighing(WeightMap weights, unsigned char weight) {
    FirstBytes bytes;
    for (unsigned i = 1; i != 256; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        const unsigned char own = weights.entry(byte);
        if (weight == 0 || own == 0 || own == weight) bytes.add(byte);
    }
    return bytes;
}

namespace {

// Has a page the low 16 bits of a form among its lower forms?
bool hasLowerForm(const uint16_t* page, unsigned entries, nlsLChar form) {
    const uint16_t* const forms = page + entries / 2;
    return std::find(forms, page + entries, static_cast<uint16_t>(form)) != page + entries;
}

// May a character of several bytes, or what is left of it in front of the NUL, have a form? One of three bytes keeps
// its first byte; one of two bytes has its forms on the page of its first byte.
bool longMayHaveForm(const nlsUnicodeCaseStruct& table, unsigned char first, nlsLChar form) {
    for (unsigned shift = 8; shift != 32; shift += 8)
        if (form >> shift == first) return true;
    const uint16_t* const page = table.casePages[first];
    return form <= 0xFFFF && page != kNoCasePage && hasLowerForm(page, entriesOfCasePage(first), form);
}

}  // namespace

FirstBytes bytesOfForm(const nlsUnicodeCaseStruct& table, const Charset& charset, nlsLChar form) {
    constexpr unsigned kLongest = 3;  // trailing bytes; a character with more is "?"
    const bool ofQuestionMark = caseFormOf(table.casePages, '?', CaseForm::lower) == form;
    FirstBytes bytes;
    for (unsigned i = 1; i != 256; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        const unsigned trails = charset.trailCount(byte);
        if (caseFormOf(table.casePages, byte, CaseForm::lower) == form || (trails > kLongest && ofQuestionMark) ||
            (trails != 0 && longMayHaveForm(table, byte, form)))
            bytes.add(byte);
    }
    return bytes;
}

CharsetLengths lengthsOf(const Charset& charset) {
    unsigned longest = 0;
    for (unsigned byte = 0; byte != 256; ++byte)
        longest = std::max(longest, charset.trailCount(static_cast<unsigned char>(byte)));
    return {charset, longest};
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
