#include "icu/pivot_overlap.hpp"

#include <algorithm>
#include <climits>

#include "icu/control.hpp"

namespace nls {
namespace {

bool isHighSurrogate(IcuUnit unit) {
    return (unit & 0xFC00U) == 0xD800U;
}
bool isLowSurrogate(IcuUnit unit) {
    return (unit & 0xFC00U) == 0xDC00U;
}

bool isPair(IcuUnit first, IcuUnit second) {
    return isHighSurrogate(first) && isLowSurrogate(second);
}

constexpr std::size_t kMostBytesOfUnit = 16;  // of any converter

class CharsetOutput {
public:
    CharsetOutput(IcuConverter* converter, std::size_t free) : converter_(converter), free_(free) {}

    // Does the output overrun what hasn't been read? Of a charset whose bytes for a text are those of its parts, one
    // behind the other. If not, notes what the units add.
    bool partsOverrun(const IcuUnit* units, std::size_t count) {
        const std::size_t after = written_ + lengthOf(units, count);
        if (after <= free_ + 2 * read_) return take(count, after);
        const std::size_t half = middle(units, 0, count);
        if (half == 0) return after > free_ + 2 * (read_ + count) || take(count, after);
        return partsOverrun(units, half) || partsOverrun(units + half, count - half);
    }

    // The same for a charset with states, by the lengths of what stands in front: those of the first `from` and `to`
    // units. A text that would take long is said to overrun.
    bool prefixesOverrun(const IcuUnit* units, std::size_t from, std::size_t to, std::size_t lengthTo) {
        constexpr unsigned kMostCalls = 200;
        if (lengthTo <= free_ + 2 * from) return false;
        const std::size_t half = middle(units, from, to);
        if (half == from) return lengthTo > free_ + 2 * to;
        if (++calls_ > kMostCalls) return true;
        return prefixesOverrun(units, from, half, lengthOf(units, half)) || prefixesOverrun(units, half, to, lengthTo);
    }

    std::size_t lengthOf(const IcuUnit* units, std::size_t count) const {
        IcuStatus status = kIcuOk;
        const int32_t length =
            convFuncs().ucnv_fromUChars(converter_, nullptr, 0, units, static_cast<int32_t>(count), &status);
        return static_cast<std::size_t>(length > 0 ? length : 0);
    }

    // A charset with states needs less for a character behind another of its script than for the first. One character
    // for each script that such charsets have states for; above U+FFFF none has.
    bool hasStates() const {
        constexpr IcuUnit kProbes[] = {u'a',      u'\u00E9', u'\u03B1', u'\u044F', u'\u05D0', u'\u0628', u'\u0915',
                                       u'\u0995', u'\u0B95', u'\u0E01', u'\u3042', u'\u65E5', u'\u7B80', u'\uD55C'};
        return std::ranges::any_of(kProbes, [this](IcuUnit probe) {
            const IcuUnit twice[] = {probe, probe};
            return lengthOf(twice, 2) != 2 * lengthOf(&probe, 1);
        });
    }

    // Some charsets with states have a header, which is written before a unit is read.
    bool headerOverruns() const {
        constexpr IcuUnit kPlain = u'a';
        return lengthOf(&kPlain, 1) > free_ + 1;
    }

    // ICU writes Latin-1 and ASCII sixteen bytes at a time, and only then looks whether all of them stand for their
    // units; if not it reads the sixteen once more. Behind the first sixteen the output is far enough from the units.
    bool groupOverruns(const IcuUnit* units, std::size_t count) const {
        constexpr std::size_t kGroup = 16;
        if (count < kGroup || free_ >= kGroup) return false;
        const auto isWithout = [this](IcuUnit unit) { return byteOf(unit) != unit; };
        return std::any_of(units, units + kGroup, isWithout) && isLatin();
    }

private:
    // The byte of a unit; more than any byte where it takes several.
    unsigned byteOf(IcuUnit unit) const {
        unsigned char bytes[kMostBytesOfUnit];
        IcuStatus status = kIcuOk;
        const int32_t length = convFuncs().ucnv_fromUChars(converter_, bytes, sizeof bytes, &unit, 1, &status);
        return length == 1 ? bytes[0] : UINT_MAX;
    }
    // Latin-1 or ASCII, told from the charsets that share half of it by a letter or a sign of each.
    bool isLatin() const {
        constexpr unsigned kSubstitute = 0x1A;
        constexpr IcuUnit kOthers[] = {u'\u20AC', u'\u0101', u'\u0151', u'\u015F', u'\u0127', u'\u1E81', u'\u021B',
                                       u'\u03B1', u'\u044F', u'\u05D0', u'\u0628', u'\u0E01', u'\u0192', u'\u2550'};
        const auto isMissing = [this](IcuUnit unit) { return byteOf(unit) == kSubstitute; };
        return byteOf(u'a') == 'a' && (byteOf(u'\u00E9') == 0xE9 || isMissing(u'\u00E9')) &&
               std::ranges::all_of(kOthers, isMissing);
    }
    // Where to part a text, not inside a pair; its start if it can't be.
    static std::size_t middle(const IcuUnit* units, std::size_t from, std::size_t to) {
        std::size_t half = from + (to - from) / 2;
        if (half != from && isPair(units[half - 1], units[half])) ++half;
        return half == to ? from : half;
    }
    bool take(std::size_t units, std::size_t written) {
        read_ += units;
        written_ = written;
        return false;
    }

    IcuConverter* converter_;
    std::size_t free_, read_ = 0, written_ = 0;
    unsigned calls_ = 0;
};

std::size_t utf8Length(IcuUnit unit) {
    if (unit < 0x80) return 1;
    return unit < 0x800 ? 2 : 3;
}

}  // namespace

// A pair of surrogates takes four bytes, written when both have been read.
bool utf8OverrunsPivot(const IcuUnit* units, std::size_t count, std::size_t free) {
    std::size_t written = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const bool pair = i + 1 < count && isPair(units[i], units[i + 1]);
        written += pair ? 4 : utf8Length(units[i]);
        i += pair;
        if (written > free + 2 * (i + 1)) return true;
    }
    return false;
}

bool charsetOverrunsPivot(IcuConverter* converter, const IcuUnit* units, std::size_t count, std::size_t free) {
    CharsetOutput output{converter, free};
    if (output.groupOverruns(units, count)) return true;
    const std::size_t whole = output.lengthOf(units, count);
    if (whole <= free) return false;
    if (!output.hasStates()) return output.partsOverrun(units, count);
    return output.headerOverruns() || output.prefixesOverrun(units, 0, count, whole);
}

}  // namespace nls
