#include "tools/mkconvmap/ucs2_grid.hpp"

namespace nls::mkconvmap {

namespace {

constexpr uint16_t kNoGap = 0xFFFF;
constexpr ByteRange kAbsent{0xFF, 0x00};

uint32_t sizeOf(const std::vector<ByteRange>& ranges) {
    uint32_t size = 0;
    for (const ByteRange range : ranges) size += range.last - range.first + 1U;
    return size;
}

// How many bytes of the ranges lie in front of `byte`; nothing where it lies in none.
std::optional<uint32_t> indexIn(const std::vector<ByteRange>& ranges, uint8_t byte) {
    uint32_t before = 0;
    for (const ByteRange range : ranges) {
        if (byte >= range.first && byte <= range.last) return before + byte - range.first;
        before += range.last - range.first + 1U;
    }
    return std::nullopt;
}

// The bytes between the first and the second range, which the numbering leaves out.
uint8_t gapBehindFirst(const std::vector<ByteRange>& ranges) {
    return ranges.size() < 2 ? uint8_t{0} : static_cast<uint8_t>(ranges[1].first - ranges[0].last - 1);
}

void checkRanges(const Place& place, const std::vector<ByteRange>& ranges, const std::string& what) {
    if (ranges.empty()) fail(place, "the grid has no " + what + " bytes");
    if (ranges.size() > 2 && what == "trail") {
        fail(place,
             "three ranges of trail bytes don't invert: the way back adds the gap of the second range to trail "
             "bytes of the third. Join two of them; the codes between stay holes");
    }
    if (ranges.size() > 2) fail(place, "the format holds two ranges of " + what + " bytes");
    if (ranges.size() == 2 && ranges[1].first <= ranges[0].last) {
        fail(place, "the ranges of " + what + " bytes overlap or aren't ascending");
    }
}

}  // namespace

Grid::Grid(const Place& place, std::vector<ByteRange> leads, std::vector<ByteRange> trails)
    : leads_(std::move(leads)), trails_(std::move(trails)), columns_(sizeOf(trails_)) {
    checkRanges(place, leads_, "lead");
    checkRanges(place, trails_, "trail");
    if (columns_ > 255) fail(place, "a row has " + std::to_string(columns_) + " trail bytes; the format holds 255");
}

std::optional<uint16_t> Grid::number(uint16_t code) const {
    const auto row = indexIn(leads_, static_cast<uint8_t>(code >> 8));
    const auto column = indexIn(trails_, static_cast<uint8_t>(code));
    if (!row || !column) return std::nullopt;
    return static_cast<uint16_t>(1 + *row * columns_ + *column);
}

void Grid::describe(nlsUcs2Map& record) const {
    const auto rangeOf = [](const std::vector<ByteRange>& ranges, std::size_t at) {
        return at < ranges.size() ? ranges[at] : kAbsent;
    };
    record.sjisZero = kNoGap;
    record.cjisBase = 0;
    record.gapAfter = kNoGap;
    record.gapSize = 0;
    record.leadFirst1 = rangeOf(leads_, 0).first;
    record.leadLast1 = rangeOf(leads_, 0).last;
    record.leadFirst2 = rangeOf(leads_, 1).first;
    record.leadLast2 = rangeOf(leads_, 1).last;
    record.trailFirst1 = rangeOf(trails_, 0).first;
    record.trailLast1 = rangeOf(trails_, 0).last;
    record.trailFirst2 = rangeOf(trails_, 1).first;
    record.trailLast2 = rangeOf(trails_, 1).last;
    record.trailFirst3 = record.trailLast3 = trails_.empty() ? kAbsent.first : trails_.back().last;
    record.leadGap = gapBehindFirst(leads_);
    record.trailGap2 = gapBehindFirst(trails_);
    record.trailGap3 = 0;
    // A row is never empty, not even that of a map without a grid: the reader divides by it.
    record.trailsPerRow = static_cast<uint8_t>(columns_ == 0 ? 1 : columns_);
}

}  // namespace nls::mkconvmap
