// A file read line by line, whatever the lines' lengths.
#pragma once

#include <optional>

#include "tools/nls/byte_buffer.hpp"
#include "tools/nls/input.hpp"

namespace nls::tool {

// The bytes that end a line: LF as the charset writes it, in EBCDIC the next-line control as well, or a NUL.
struct LineEnd {
    unsigned char usual;
    unsigned char other;  // the same as `usual` where there is but one

    bool isEnd(unsigned char byte) const { return byte == usual || byte == other; }
};
LineEnd lineEndOf(const TextCharset& charset, bool endsWithNul);

class LineReader {
public:
    LineReader(Input& input, LineEnd end, Progress& progress) : input_(input), end_(end), progress_(progress) {}

    // The next line with the byte that ends it; only the last of a file may lack that. It lives until the next call.
    std::optional<ByteView> next();
    // Of the line that was handed out last: its number from 1, and the offset of its first byte from 0.
    uint64_t lineNumber() const { return lineNumber_; }
    uint64_t offset() const { return offset_; }

private:
    bool fill();

    Input& input_;
    LineEnd end_;
    Progress& progress_;
    ByteBuffer buffer_;
    std::size_t begin_ = 0;  // of what hasn't been handed out
    std::size_t last_ = 0;   // size of the line handed out last
    uint64_t lineNumber_ = 0;
    uint64_t offset_ = 0;
    bool atEnd_ = false;
};

// Throws where a line can't be compared: it holds a NUL, where comparison would end, or 2^31 bytes.
void refuseUncomparable(ByteView line, const LineReader& reader, const Input& input, const TextCharset& charset,
                        LineEnd end);

}  // namespace nls::tool
