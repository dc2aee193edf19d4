#include "tools/nls/sort_fields.hpp"

#include <algorithm>
#include <charconv>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr uint32_t wholeLine = 0;

const char* readNumber(const char* from, const char* to, uint32_t& number) {
    const std::from_chars_result read = std::from_chars(from, to, number);
    return read.ec == std::errc() && number != 0 ? read.ptr : nullptr;
}

}  // namespace

FieldRange parseFieldRange(const std::string& text) {
    FieldRange range{0, 0};
    const char* const end = text.data() + text.size();
    const char* place = readNumber(text.data(), end, range.first);
    if (place == end) return {range.first, range.first};
    if (place != nullptr && *place == ',') {
        if (place + 1 == end) return range;
        place = readNumber(place + 1, end, range.last);
        if (place == end && range.last >= range.first) return range;
    }
    throw Failure(Exit::usage, "\"" + text + "\" names no field: write 2 for the second, 2,4 for the second to the " +
                                   "fourth, 2, for the second to the end of the line");
}

FieldCutter::FieldCutter(const TextCharset& charset, const std::string& separator,
                         const std::vector<FieldRange>& ranges)
    : attrib_(charset.locale()->attrib), ranges_(ranges) {
    if (ranges_.empty()) ranges_.push_back({wholeLine, wholeLine});
    const std::string text = separator == "\\t" ? "\t" : separator;
    const bool isNamed = !text.empty();
    for (const std::string& piece : isNamed ? std::vector<std::string>{text} : std::vector<std::string>{" ", "\t"}) {
        const ByteView bytes{reinterpret_cast<const unsigned char*>(piece.data()), piece.size()};
        if (!validUtf8(bytes) || !charset.encode(bytes, isNamed ? separator_ : blanks_)) {
            throw Failure(Exit::usage, charset.name() + " has no separator \"" + separator + "\"");
        }
    }
}

// Bytes of the separator at the start of `rest`; 0 if none is there.
std::size_t FieldCutter::separatorAt(ByteView rest) const {
    if (separator_.size() != 0) {
        const bool found =
            rest.size() >= separator_.size() && sameBytes(rest.first(separator_.size()), separator_.view());
        return found ? separator_.size() : 0;
    }
    const ByteView blanks = blanks_.view();
    const auto isBlank = [&](unsigned char byte) {
        return std::find(blanks.begin(), blanks.end(), byte) != blanks.end();
    };
    return static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), isBlank) - rest.begin());
}

// Goes character by character, since a byte of a separator can be the second of a character as well.
FieldCutter::Separation FieldCutter::nextSeparation(ByteView line, std::size_t from) const {
    for (std::size_t at = from; at < line.size(); at += (attrib_->lengthMap[line[at]] & 7U) + std::size_t{1}) {
        const std::size_t size = separatorAt(line.subspan(at));
        if (size != 0) return {at, at + size};
    }
    return {line.size(), line.size()};
}

ByteView FieldCutter::cut(ByteView line, std::size_t range) const {
    const FieldRange wanted = ranges_[range];
    if (wanted.first == wholeLine) return line;
    std::size_t begin = separator_.size() == 0 ? separatorAt(line) : 0;
    for (uint32_t field = 1; field < wanted.first; ++field) {
        const Separation gap = nextSeparation(line, begin);
        if (gap.begin == line.size()) return {};
        begin = gap.end;
    }
    if (wanted.last == 0) return line.subspan(begin);
    std::size_t end = begin;
    for (uint32_t field = wanted.first; field <= wanted.last; ++field) {
        const Separation gap = nextSeparation(line, field == wanted.first ? begin : end);
        if (field == wanted.last || gap.begin == line.size()) return line.subspan(begin, gap.begin - begin);
        end = gap.end;
    }
    return line.subspan(begin, end - begin);
}

}  // namespace nls::tool
