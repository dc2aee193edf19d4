#include "icu/pivot_overlap.hpp"

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

class CharsetOutput {
public:
    CharsetOutput(IcuConverter* converter, std::size_t free) : converter_(converter), free_(free) {}

    // Does the output of these units overrun what hasn't been read? If not, notes what it adds.
    bool overruns(const IcuUnit* units, std::size_t count) {
        IcuStatus status = kIcuOk;
        const int32_t length =
            convFuncs().ucnv_fromUChars(converter_, nullptr, 0, units, static_cast<int32_t>(count), &status);
        const std::size_t after = written_ + static_cast<std::size_t>(length > 0 ? length : 0);
        if (after <= free_ + 2 * read_) return take(count, after);
        std::size_t half = count / 2;
        if (half != 0 && isPair(units[half - 1], units[half])) ++half;
        if (half == 0 || half == count) return after > free_ + 2 * (read_ + count) || take(count, after);
        return overruns(units, half) || overruns(units + half, count - half);
    }

private:
    bool take(std::size_t units, std::size_t written) {
        read_ += units;
        written_ = written;
        return false;
    }

    IcuConverter* converter_;
    std::size_t free_, read_ = 0, written_ = 0;
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
    return count != 0 && CharsetOutput{converter, free}.overruns(units, count);
}

}  // namespace nls
