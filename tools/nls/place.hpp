// Where in a file some text stands.
#pragma once

#include <algorithm>
#include <cstdint>

#include "tools/nls/unicode_check.hpp"

namespace nls::tool {

// The characters that end a line, in text as UTF-8: LF, and in EBCDIC the next-line control too.
class LineEnds {
public:
    explicit LineEnds(bool withNextLine) : withNextLine_(withNextLine) {}

    std::size_t count(ByteView text) const {
        auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
        if (withNextLine_) {
            for (std::size_t end = 2; end <= text.size(); ++end) lines += isNextLine(text, end) ? 1 : 0;
        }
        return lines;
    }
    // What stands behind the last of them; all of the text if there is none.
    ByteView lastLine(ByteView text) const {
        std::size_t begin = text.size();
        while (begin != 0 && text[begin - 1] != '\n' && !(withNextLine_ && isNextLine(text, begin))) --begin;
        return text.subspan(begin);
    }

private:
    // Whether U+0085 ends at `end`.
    static bool isNextLine(ByteView text, std::size_t end) {
        return end >= 2 && text[end - 2] == 0xC2 && text[end - 1] == 0x85;
    }

    bool withNextLine_;
};

struct Place {
    uint64_t offset = 0;  // bytes, from 0
    uint64_t line = 1;    // from 1
    uint64_t column = 1;  // characters, from 1

    // Moves behind `bytes` bytes of the file, which are `text` as UTF-8.
    void advance(std::size_t bytes, ByteView text, const LineEnds& ends) {
        offset += bytes;
        const std::size_t lines = ends.count(text);
        if (lines != 0) {
            text = ends.lastLine(text);
            line += lines;
            column = 1;
        }
        column += countCodePoints(text);
    }
    // Moves behind a piece that is no character; it counts as one column.
    void skip(std::size_t bytes) {
        offset += bytes;
        ++column;
    }
};

}  // namespace nls::tool
