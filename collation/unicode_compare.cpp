#include "collation/unicode_compare.hpp"

#include "collation/equal_run.hpp"
#include "collation/lchar_text.hpp"
#include "collation/lower_case.hpp"
#include "core/base/cpu.hpp"

namespace nls {
namespace {

int signOf(uint32_t a, uint32_t b) {
    return int{a > b} - int{a < b};  // without a branch: nothing foretells it
}

void advance(Text& a, Text& b, std::size_t count) {
    a.place += count;
    b.place += count;
}

// Whether no character that begins in front of `place` reaches behind it, whatever characters begin there.
bool isBoundary(const Charset& charset, const unsigned char* place, const unsigned char* start) {
    constexpr std::ptrdiff_t kLongestTrail = 7;
    if (place == start) return true;
    const std::ptrdiff_t farthest = place - start;
    bool crossed = false;
    for (std::ptrdiff_t back = 1; back <= kLongestTrail; ++back) {
        // The first byte stands in for those in front of it: if it reaches further than they would, it crosses as well.
        const unsigned char byte = place[-(back < farthest ? back : farthest)];
        crossed |= charset.trailCount(byte) >= back;
    }
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

// Most pairs of a column do; a look at the first bytes is cheaper than a skip.
bool differAtOnce(Text a, Text b) {
    if (a.place == a.limit || b.place == b.limit) return false;
    return *a.place != *b.place && *a.place != 0 && *b.place != 0;
}

}  // namespace

int compareBytes(Text a, Text b) {
    if (differAtOnce(a, b)) return signOf(*a.place, *b.place);
    advance(a, b, equalRun(a.place, b.place, leftInBoth(a, b)));
    if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
    if (b.atEnd()) return onlyBlanksLeft(a) ? 0 : 1;
    return signOf(*a.place, *b.place);
}

// Equal bytes are equal characters and need no look-up, so a skip over them goes back to where the last of them begins.
// Behind a character that differs in case others will, and the walk goes by characters until some are equal again.
int compareFoldedUtf8(const nlsLocale& locale, Text a, Text b) {
    constexpr unsigned kWorthSkip = 4;
    const Charset charset{*locale.attrib};
    const LowerCase lowerCase{locale};
    bool mayFoldAscii = true, foldsAscii = false;
    for (unsigned equalInRow = differAtOnce(a, b) ? 0 : kWorthSkip;;) {
        if (equalInRow >= kWorthSkip) {
            equalInRow = 0;
            const std::size_t same = equalRun(a.place, b.place, leftInBoth(a, b));
            if (Text{a.place + same, a.limit}.atEnd() && Text{b.place + same, b.limit}.atEnd()) return 0;
            if (same != 0)
                advance(a, b, static_cast<std::size_t>(characterAt(charset, a.place + same, a.place) - a.place));
        }
        if (a.atEnd()) return onlyBlanksLeft(b) ? 0 : -1;
        if (b.atEnd()) return onlyBlanksLeft(a) ? 0 : 1;
        const nlsLChar ofA = nextLChar(charset, a), ofB = nextLChar(charset, b);
        if (ofA == ofB) {
            ++equalInRow;
            continue;
        }
        if (const int sign = signOf(lowerCase(ofA), lowerCase(ofB))) return sign;
        equalInRow = 0;
        if (ofA >= 0x80) continue;  // in its script others follow
        if (mayFoldAscii) foldsAscii = lowerCase.isPlainOnAscii(), mayFoldAscii = false;
        if (foldsAscii) advance(a, b, equalAsciiRun(a.place, b.place, leftInBoth(a, b)));
    }
}

int compareUnicode(const nlsLocale& locale, Text a, Text b, uint16_t mode) {
    const auto hasBytes = [](Text text) { return text.limit != nullptr && text.place != text.limit; };
    const bool folds = mode == 0 && locale.attrib != nullptr;
    if (hasBytes(a) && hasBytes(b) && cpuLevel() >= CpuLevel::avx512)
        return folds ? compareFoldedUtf8Avx512(locale, a, b) : compareBytesAvx512(a, b);
    return folds ? compareFoldedUtf8(locale, a, b) : compareBytes(a, b);
}

}  // namespace nls
