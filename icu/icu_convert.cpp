#include "icu/icu_convert.hpp"

#include <algorithm>
#include <cstring>

#include "icu/control.hpp"
#include "icu/converter.hpp"
#include "icu/pivot_overlap.hpp"

namespace nls {
namespace {

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

// The caller's units from an odd address at an even one, for a scope: moved up by a byte, onto the first byte of the
// zero unit.
class UnitsMovedUp {
public:
    UnitsMovedUp(unsigned char* source, std::size_t count) : source_(source), size_(2 * count), behind_(source[size_]) {
        std::memmove(source_ + 1, source_, size_);
    }
    UnitsMovedUp(const UnitsMovedUp&) = delete;
    UnitsMovedUp& operator=(const UnitsMovedUp&) = delete;
    ~UnitsMovedUp() {
        std::memmove(source_, source_ + 1, size_);
        source_[size_] = behind_;
    }
    IcuUnit* get() const { return reinterpret_cast<IcuUnit*>(source_ + 1); }

private:
    unsigned char* source_;
    std::size_t size_;
    unsigned char behind_;
};

// `count` as ICU takes it: -1 is up to the zero unit.
IcuConverted encode(IcuConverter* converter, ByteSpan target, const IcuUnit* units, int32_t count) {
    IcuStatus status = kIcuOk;
    const int32_t length =
        convFuncs().ucnv_fromUChars(converter, target.data(), sizeForIcu(target.size()), units, count, &status);
    return outcome(status, length);
}

IcuConverted fromOddUnits(IcuConverter* converter, bool swap, ByteSpan target, const unsigned char* source,
                          std::size_t count) {
    constexpr std::size_t kInCall = 1000;  // so many are copied, and the caller's are left alone
    if (count > kInCall) {
        const UnitsMovedUp moved{const_cast<unsigned char*>(source), count};
        const UnitsInOrder inOrder{moved.get(), swap ? count : 0};
        return encode(converter, target, moved.get(), sizeForIcu(count));
    }
    IcuUnit units[kInCall];
    std::memcpy(units, source, 2 * count);
    if (swap) swapUnits(units, count);
    return encode(converter, target, units, sizeForIcu(count));
}

IcuConverted fromUnits(IcuConverter* converter, bool swap, ByteSpan target, const unsigned char* source,
                       uint32_t sourceLength) {
    const std::size_t count = swap || isOdd(source) ? countUnits(source, sourceLength) : 0;
    if (isOdd(source)) {
        if (!target.empty()) target = target.first(target.size() - 1);
        return fromOddUnits(converter, swap, target, source, count);
    }
    auto* const units = reinterpret_cast<IcuUnit*>(const_cast<unsigned char*>(source));
    const UnitsInOrder inOrder{units, swap ? count : 0};
    return encode(converter, target, units, -1);
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
    return encode(converter, target, pivot.place(), -1);
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
    const IcuConverted done = encode(utf8.get(), target, pivot.place(), -1);
    return done.status == NLS_OK ? done : failure(done.status);
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
