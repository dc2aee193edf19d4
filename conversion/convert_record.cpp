#include "conversion/convert_record.hpp"

#include <cstring>

#include "conversion/conv_type.hpp"
#include "nls/status.h"

namespace nls {

namespace {

constexpr EngineAnswer kRefused{NLS_BAD_ARG, kUncounted};

enum class Terminator { left, counted };

// Bytes of a source that the interface counts in a signed word.
bool canCount(const nlsStr& from, Terminator terminator) {
    return from.strLength <= uint32_t{INT32_MAX} - (terminator == Terminator::counted ? 1U : 0U);
}

bool hasSource(const nlsStr& from, Terminator terminator) {
    return canCount(from, terminator) &&
           (from.buf != nullptr || (terminator == Terminator::left && from.strLength == 0));
}

bool hasRoom(const nlsStr& to) {
    return to.buf != nullptr || to.bufSize <= 0;
}

ByteView textOf(const nlsStr& from, Terminator terminator) {
    return {from.buf, std::size_t{from.strLength} + (terminator == Terminator::counted ? 1U : 0U)};
}

ByteSpan roomOf(const nlsStr& to) {
    return firstBytes(to.buf, to.bufSize);
}

nlsStatus noted(const EngineAnswer& answer, nlsStr& to) {
    if (answer.counted()) to.strLength = static_cast<uint32_t>(answer.length);
    return answer.status;
}

// False, and nothing written, where the terminator doesn't fit.
bool terminate(nlsStr& to, std::size_t width) {
    const ByteSpan room = roomOf(to);
    if (std::size_t{to.strLength} + width > room.size()) return false;
    std::memset(room.data() + to.strLength, 0, width);
    return true;
}

}  // namespace

EngineAnswer convertWithTerminator(ConvTable table, const nlsStr& from, ByteSpan target) {
    if (!hasSource(from, Terminator::counted)) return kRefused;
    return convert(table, {target, textOf(from, Terminator::counted), {}});
}

nlsStatus convertIntoRecord(ConvTable table, ByteView source, nlsStr& to) {
    if (!hasRoom(to)) return NLS_BAD_ARG;
    return noted(convert(table, {roomOf(to), source, {}}), to);
}

nlsStatus convertAndCheck(ConvTable table, const nlsStr& from, nlsStr& to) {
    if (!hasSource(from, Terminator::counted) || !hasRoom(to)) return NLS_BAD_ARG;
    const nlsStatus status = noted(convert(table, {roomOf(to), textOf(from, Terminator::counted), {}, true}), to);
    const ByteSpan room = roomOf(to);
    const std::size_t length = to.strLength;
    if (length != 0 && length <= room.size() && room[length - 1] == 0) --to.strLength;
    return status;
}

nlsStatus convertAndTerminate(ConvTable table, const nlsStr& from, const nlsStr* scratch, nlsStr& to) {
    const bool twoSteps = table.type() == ConvType::twoStep;
    if (twoSteps && scratch == nullptr) return NLS_BAD_ARG;
    if (!hasSource(from, Terminator::left) || !hasRoom(to)) return NLS_BAD_ARG;
    const ByteSpan middle = twoSteps && scratch->buf != nullptr ? roomOf(*scratch) : ByteSpan{};
    const nlsStatus status = noted(convert(table, {roomOf(to), textOf(from, Terminator::left), middle}), to);
    const ConvType finalType = (twoSteps ? table.secondStep() : table).type();
    return terminate(to, rowOf(finalType).terminator) ? status : NLS_BUF_SMALL;
}

}  // namespace nls
