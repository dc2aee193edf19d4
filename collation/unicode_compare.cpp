#include "collation/unicode_compare.hpp"

#include "collation/ascii_case.hpp"
#include "collation/equal_prefix.hpp"
#include "collation/lchar_text.hpp"

namespace nls {
namespace {

int signOf(uint32_t a, uint32_t b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

void advance(Text& a, Text& b, std::size_t count) {
    a.place += count;
    b.place += count;
}

// Folds characters of one locale to lower case.
class LowerCase {
public:
    explicit LowerCase(const nlsLocale& locale)
        : table_(locale.caseTable != nullptr && Charset{*locale.attrib}.isUtf8() ? &unicodeCaseTable(*locale.caseTable)
                                                                                 : nullptr),
          attrib_(locale.attrib) {}

    nlsLChar operator()(nlsLChar value) const {
        return table_ == nullptr ? value : caseFormOf(table_->casePages, value, CaseForm::lower);
    }

    bool isPlainOnAscii() const {
        return table_ != nullptr && hasPlainAsciiForms(table_->casePages, CaseForm::lower) &&
               isAsciiSingleByte(*attrib_);
    }

private:
    const nlsUnicodeCaseStruct* table_;  // null: no character has a form
    const nlsAttribStruct* attrib_;
};

// Whether no character that begins in front of `place` reaches behind it, whatever characters begin there.
bool isBoundary(const Charset& charset, const unsigned char* place, const unsigned char* start) {
    constexpr std::ptrdiff_t kLongestTrail = 7;
    const std::ptrdiff_t bytesInFront = place - start < kLongestTrail ? place - start : kLongestTrail;
    bool crossed = false;
    for (std::ptrdiff_t back = 1; back <= bytesInFront; ++back) crossed |= charset.trailCount(place[-back]) >= back;
    return !crossed;
}

// The first byte of the character that `place` belongs to, which isn't read. `start` is the first byte of one.
const unsigned char* characterAt(const Charset& charset, const unsigned char* place, const unsigned char* start) {
    const unsigned char* first = place;
    while (!isBoundary(charset, first, start)) --first;
    while (first != place) {
        const unsigned char* const next = first + charset.trailCount(*first) + 1;
        if (next > place) break;
        first = next;
    }
    return first;
}

}  // namespace

int compareBytes(Text a, Text b) {
    advance(a, b, equalPrefix(a, b));
    if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
    if (b.atEnd()) return onlyBlanksLeft(a) ? 0 : 1;
    return signOf(*a.place, *b.place);
}

// Most pairs differ in one of their first characters, so the walk comes first; the skips set in when there is
// something to skip. Equal bytes are equal characters, so a skip over them goes back to where the last one begins; its
// characters need no look-up.
int compareFoldedUtf8(const nlsLocale& locale, Text a, Text b) {
    constexpr unsigned kWorthSkip = 4;
    const Charset charset{*locale.attrib};
    const LowerCase lowerCase{locale};
    bool mayFoldAscii = true, foldsAscii = false;
    for (unsigned equalInRow = 0;;) {
        if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
        if (b.atEnd()) return onlyBlanksLeft(a) ? 0 : 1;
        const nlsLChar ofA = nextLChar(charset, a), ofB = nextLChar(charset, b);
        if (ofA == ofB) {
            if (++equalInRow != kWorthSkip) continue;
            equalInRow = 0;
            const std::size_t same = equalPrefix(a, b);
            if (same != 0)
                advance(a, b, static_cast<std::size_t>(characterAt(charset, a.place + same, a.place) - a.place));
            continue;
        }
        if (const int sign = signOf(lowerCase(ofA), lowerCase(ofB))) return sign;
        equalInRow = 0;
        if (mayFoldAscii) foldsAscii = lowerCase.isPlainOnAscii(), mayFoldAscii = false;
        if (foldsAscii) advance(a, b, equalAsciiPrefix(a, b));
    }
}

}  // namespace nls
