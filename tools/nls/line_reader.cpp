#include "tools/nls/line_reader.hpp"

#include <algorithm>
#include <cstring>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 17;
constexpr std::size_t longestLine = (std::size_t{1} << 31) - 64;

// The length of the line at the start of `text`, with its end; 0 if the end isn't there.
std::size_t lineLength(ByteView text, LineEnd end) {
    if (text.empty()) return 0;
    if (end.usual == end.other) {
        const void* const found = std::memchr(text.data(), end.usual, text.size());
        if (found == nullptr) return 0;
        return static_cast<std::size_t>(static_cast<const unsigned char*>(found) - text.data()) + 1;
    }
    const auto found = std::find_if(text.begin(), text.end(), [&](unsigned char byte) { return end.isEnd(byte); });
    return found == text.end() ? 0 : static_cast<std::size_t>(found - text.begin()) + 1;
}

}  // namespace

LineEnd lineEndOf(const TextCharset& charset, bool endsWithNul) {
    if (endsWithNul) return {0, 0};
    ByteBuffer lf;
    ByteBuffer nextLine;
    constexpr unsigned char lfText[] = {'\n'};
    constexpr unsigned char nextLineText[] = {0xC2, 0x85};
    const unsigned char usual = charset.encode(lfText, lf) && lf.size() == 1 ? lf.view()[0] : '\n';
    if (usual == '\n' || !charset.encode(nextLineText, nextLine)) return {usual, usual};
    return {usual, nextLine.view()[0]};
}

std::optional<ByteView> LineReader::next() {
    begin_ += last_;
    offset_ += last_;
    std::size_t searched = 0;
    for (;;) {
        const ByteView rest = buffer_.view().subspan(begin_);
        std::size_t length = lineLength(rest.subspan(searched), end_);
        if (length == 0) {
            searched = rest.size();
            if (searched < longestLine && fill()) continue;
            length = rest.size();
            searched = 0;
        }
        last_ = searched + length;
        if (last_ == 0) return std::nullopt;
        ++lineNumber_;
        return buffer_.view().subspan(begin_, last_);
    }
}

// Moves what is left to the front and reads more behind it. False at the end of the file.
bool LineReader::fill() {
    if (atEnd_) return false;
    buffer_.dropFront(begin_);
    begin_ = 0;
    const std::size_t got = input_.read(buffer_.reserve(chunkSize), chunkSize);
    buffer_.grow(got);
    progress_.add(got);
    atEnd_ = got == 0;
    return !atEnd_;
}

void refuseUncomparable(ByteView line, const LineReader& reader, const Input& input, const TextCharset& charset,
                        LineEnd end) {
    const std::string where = input.name() + ":" + std::to_string(reader.lineNumber()) + ":";
    if (line.size() >= longestLine) throw Failure(Exit::badInput, where + " a line of 2 GiB or more can't be compared");
    if (end.isEnd(0)) return;
    const void* const found = std::memchr(line.data(), 0, line.size());
    if (found == nullptr) return;
    const auto before = static_cast<std::size_t>(static_cast<const unsigned char*>(found) - line.data());
    std::size_t column = 1;
    for (std::size_t at = 0; at < before; ++column) at += (charset.locale()->attrib->lengthMap[line[at]] & 7U) + 1;
    throw Failure(Exit::badInput, where + std::to_string(column) + ": byte " +
                                      std::to_string(reader.offset() + before) +
                                      " (0x00): a NUL inside a line, where comparison would end; --zero takes lines "
                                      "that end with a NUL");
}

}  // namespace nls::tool
