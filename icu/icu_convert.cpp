#include "icu/icu_convert.hpp"

#include <algorithm>
#include <cstring>

#include "icu/control.hpp"
#include "icu/converter.hpp"
#include "icu/pivot_overlap.hpp"

namespace nls {
namespace {

constexpr IcuStatus kIcuOverflow = 15;  // the length that is needed is told all the same

constexpr IcuConverted failure(nlsStatus status) {
    return {status, false, 0};
}
// Warnings count as failures, that of units that fill their room among them.
constexpr IcuConverted outcome(IcuStatus status, int32_t length) {
    return {status == kIcuOk ? NLS_OK : NLS_BAD_ARG, true, static_cast<uint32_t>(length)};
}

int32_t sizeForIcu(std::size_t size) {
    return static_cast<int32_t>(std::min<std::size_t>(size, INT32_MAX));
}

bool isOdd(const unsigned char* place) {
    return (reinterpret_cast<uintptr_t>(place) & 1U) != 0;
}

IcuUnit swapped(IcuUnit unit) {
    return static_cast<IcuUnit>(__builtin_bswap16(unit));
}
void swapUnits(IcuUnit* units, std::size_t count) {
    std::transform(units, units + count, units, swapped);
}

// Units in front of the zero unit, at most `most`.
std::size_t countUnits(const unsigned char* source, std::size_t most) {
    std::size_t count = 0;
    while (count != most && loadWord<uint16_t>(source + 2 * count) != 0) ++count;
    return count;
}

// --- UTF-16 to the charset ---

// Units at an odd address: read by way of a buffer, piece by piece, never through the middle of a pair. A converter with
// states begins each piece in its first one.
class OddUnits {
public:
    OddUnits(const unsigned char* source, std::size_t count, bool swap) : next_(source), left_(count), swap_(swap) {}

    IcuConverted convert(IcuConverter* converter, ByteSpan target) {
        std::size_t length = 0;
        bool failed = false, broken = false;
        do {
            const int32_t count = fetch();
            const std::size_t used = std::min(length, target.size());
            IcuStatus status = kIcuOk;
            length += static_cast<std::size_t>(convFuncs().ucnv_fromUChars(
                converter, target.data() + used, sizeForIcu(target.size() - used), piece_, count, &status));
            // Behind a piece that fills the target comes another, unless it is the last.
            failed |= status > kIcuOk || (left_ == 0 && status != kIcuOk);
            broken = status > kIcuOk && status != kIcuOverflow;
        } while (left_ != 0 && !broken);
        return {failed ? NLS_BAD_ARG : NLS_OK, true, static_cast<uint32_t>(length)};
    }

private:
    static constexpr std::size_t kPiece = 1000;

    int32_t fetch() {
        std::size_t count = std::min(left_, kPiece);
        for (std::size_t i = 0; i < count; ++i) {
            const auto unit = static_cast<IcuUnit>(loadWord<uint16_t>(next_ + 2 * i));
            piece_[i] = swap_ ? swapped(unit) : unit;
        }
        if (count < left_ && (piece_[count - 1] & 0xFC00U) == 0xD800U) --count;
        next_ += 2 * count;
        left_ -= count;
        return static_cast<int32_t>(count);
    }

    const unsigned char* next_;
    std::size_t left_;
    bool swap_;
    IcuUnit piece_[kPiece];
};

// The caller's units in the order of the machine, for a scope.
class UnitsInOrder {
public:
    UnitsInOrder(IcuUnit* units, std::size_t count) : units_(units), count_(count) { swapUnits(units_, count_); }
    UnitsInOrder(const UnitsInOrder&) = delete;
    UnitsInOrder& operator=(const UnitsInOrder&) = delete;
    ~UnitsInOrder() { swapUnits(units_, count_); }

private:
    IcuUnit* units_;
    std::size_t count_;
};

IcuConverted fromUnits(IcuConverter* converter, bool swap, ByteSpan target, const unsigned char* source,
                       uint32_t sourceLength) {
    const std::size_t count = swap || isOdd(source) ? countUnits(source, sourceLength) : 0;
    if (isOdd(source)) {
        if (!target.empty()) target = target.first(target.size() - 1);
        return OddUnits{source, count, swap}.convert(converter, target);
    }
    auto* const units = reinterpret_cast<IcuUnit*>(const_cast<unsigned char*>(source));
    const UnitsInOrder inOrder{units, swap ? count : 0};
    IcuStatus status = kIcuOk;
    const int32_t length =
        convFuncs().ucnv_fromUChars(converter, target.data(), sizeForIcu(target.size()), units, -1, &status);
    return outcome(status, length);
}

// --- The pivot ---

// Room in the tail of the target for so many units and a zero unit. At an odd address it begins a byte earlier.
class Pivot {
public:
    Pivot(ByteSpan target, uint32_t units)
        : target_(target), free_(int64_t{sizeForIcu(target.size())} - 2 * (int64_t{units} + 1)), units_(units) {}

    bool fits() const { return free_ > 0; }
    // REQUIRES of what follows: it fits.
    IcuUnit* place() const { return reinterpret_cast<IcuUnit*>(target_.data() + free()); }
    std::size_t free() const {
        const auto free = static_cast<std::size_t>(free_);
        return isOdd(target_.data() + free) ? free - 1 : free;
    }
    int32_t room() const { return sizeForIcu(std::size_t{units_} + 1); }

private:
    ByteSpan target_;
    int64_t free_;
    uint32_t units_;
};

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

// A text never has more units than bytes, so one that ends in its length can be told twice the room; in another ICU has
// to be held to what there is.
int32_t roomTold(const Pivot& pivot, const unsigned char* source, uint32_t sourceLength) {
    const std::size_t most = std::size_t{sourceLength} + 1;
    const bool ends = strnlen(reinterpret_cast<const char*>(source), most) < most;
    return ends ? sizeForIcu(2 * most) : pivot.room();
}

// No converter makes more of a unit.
bool mayOverrun(std::size_t count, std::size_t free) {
    constexpr std::size_t kMostBytes = 16, kStates = 10;
    return (count + kStates) * kMostBytes > free;
}

IcuConverted fromUtf8(IcuConverter* converter, ByteSpan target, const unsigned char* source, uint32_t sourceLength) {
    if (isContinuation(*source)) return failure(NLS_BAD_ARG);
    const Pivot pivot{target, sourceLength};
    if (!pivot.fits()) return failure(NLS_BUF_SMALL);
    const Utf8Converter utf8;
    if (!utf8.isOpen()) return failure(NLS_NO_CONV_TABLE);
    IcuStatus status = kIcuOk;
    const auto count = static_cast<std::size_t>(convFuncs().ucnv_toUChars(
        utf8.get(), pivot.place(), roomTold(pivot, source, sourceLength), source, -1, &status));
    if (status != kIcuOk) return failure(NLS_BAD_ARG);
    if (mayOverrun(count, pivot.free()) && charsetOverrunsPivot(converter, pivot.place(), count, pivot.free()))
        return failure(NLS_BUF_SMALL);
    const int32_t length =
        convFuncs().ucnv_fromUChars(converter, target.data(), sizeForIcu(target.size()), pivot.place(), -1, &status);
    return outcome(status, length);
}

// --- The charset to Unicode ---

IcuConverted toUnits(IcuConverter* converter, bool swap, ByteSpan target, const unsigned char* source) {
    const std::size_t shift = isOdd(target.data()) && !target.empty() ? 1 : 0;
    auto* const units = reinterpret_cast<IcuUnit*>(target.data() + shift);
    IcuStatus status = kIcuOk;
    const int32_t count =
        convFuncs().ucnv_toUChars(converter, units, sizeForIcu((target.size() - shift) / 2), source, -1, &status);
    if (status != kIcuOk) return failure(NLS_BAD_ARG);
    const auto length = 2 * static_cast<std::size_t>(count);
    if (swap) swapUnits(units, length / 2);
    if (shift != 0) std::memmove(target.data(), units, length);
    return {NLS_OK, true, static_cast<uint32_t>(length)};
}

IcuConverted toUtf8(IcuConverter* converter, ByteSpan target, const unsigned char* source, uint32_t sourceLength) {
    const Pivot pivot{target, sourceLength};
    if (!pivot.fits()) return failure(NLS_BUF_SMALL);
    const Utf8Converter utf8;
    if (!utf8.isOpen()) return failure(NLS_NO_CONV_TABLE);
    IcuStatus status = kIcuOk;
    const int32_t count = convFuncs().ucnv_toUChars(converter, pivot.place(), pivot.room(), source, -1, &status);
    if (status != kIcuOk) return failure(NLS_BAD_ARG);
    if (utf8OverrunsPivot(pivot.place(), static_cast<std::size_t>(count), pivot.free())) return failure(NLS_BUF_SMALL);
    const int32_t length =
        convFuncs().ucnv_fromUChars(utf8.get(), target.data(), sizeForIcu(target.size()), pivot.place(), -1, &status);
    return status == kIcuOk ? outcome(status, length) : failure(NLS_BAD_ARG);
}

}  // namespace

IcuConverted convertByIcu(ConvTable table, ByteSpan target, const unsigned char* source, uint32_t sourceLength) {
    auto* const converter = static_cast<IcuConverter*>(table.icuConverter());
    if (converter == nullptr) return failure(NLS_NO_CONV_TABLE);
    const bool utf8 = table.hasUtf8Side();
    if (table.type() == ConvType::unicodeToIcu)
        return utf8 ? fromUtf8(converter, target, source, sourceLength)
                    : fromUnits(converter, table.swapsSource(), target, source, sourceLength);
    return utf8 ? toUtf8(converter, target, source, sourceLength)
                : toUnits(converter, table.swapsTarget(), target, source);
}

}  // namespace nls
