// The parts of a line that a sort goes by.
#pragma once

#include <string>
#include <vector>

#include "tools/nls/text_charset.hpp"

namespace nls::tool {

// Fields `first` to `last`, counted from 1, with the separators between them; `last` 0: to the end of the line.
struct FieldRange {
    uint32_t first;
    uint32_t last;
};
// "3", "3,5" or "3," as a range. Throws for anything else.
FieldRange parseFieldRange(const std::string& text);

class FieldCutter {
public:
    // `separator` is UTF-8, or "\t" for a tab; empty: any number of blanks and tabs separates fields, and those in
    // front of the first are no part of it. Without `ranges` the whole line counts. Throws if the charset lacks the
    // separator.
    FieldCutter(const TextCharset& charset, const std::string& separator, const std::vector<FieldRange>& ranges);

    std::size_t rangeCount() const { return ranges_.size(); }
    // Empty where the line has no such field. REQUIRES: a line without its end, and range < rangeCount().
    ByteView cut(ByteView line, std::size_t range) const;

private:
    struct Separation {
        std::size_t begin, end;
    };
    Separation nextSeparation(ByteView line, std::size_t from) const;
    std::size_t separatorAt(ByteView rest) const;

    const nlsAttribStruct* attrib_;
    ByteBuffer separator_;
    ByteBuffer blanks_;  // blank and tab of the charset, where no separator is named
    std::vector<FieldRange> ranges_;
};

}  // namespace nls::tool
