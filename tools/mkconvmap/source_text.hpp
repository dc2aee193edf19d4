// The description language as text: lines of fields, and errors that say where.
//
// A line holds fields between blanks; "#" at the start of a field makes the rest of the line a comment. The first field
// is the keyword. Numbers are hexadecimal and have no prefix, unless a keyword says otherwise.
// Tested by tests/tools/refusals_test.cpp.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace nls::mkconvmap {

// Line 0 is the file as a whole.
struct Place {
    std::string file;
    int line = 0;
};

// what() reads "file:line: reason".
class DescriptionError : public std::runtime_error {
public:
    DescriptionError(const Place& place, const std::string& reason);
};

// The file itself is the trouble, not what it says.
class UnreadableFile : public DescriptionError {
public:
    explicit UnreadableFile(const std::string& file) : DescriptionError({file, 0}, "the file can't be read") {}
};

[[noreturn]] void fail(const Place& place, const std::string& reason);

struct Line {
    Place place;
    std::vector<std::string> fields;  // never empty

    const std::string& keyword() const { return fields.front(); }
    // Field `index`; fails with "KEYWORD needs WHAT" where the line is shorter.
    const std::string& field(std::size_t index, std::string_view what) const;
    // Fails where fields stand behind the first `count`.
    void endsAfter(std::size_t count) const;
};

// The lines of a file that hold something. Fails where the file can't be read and where a control character stands in
// it.
std::vector<Line> readSource(const std::filesystem::path& file);

// A hexadecimal, and a decimal, number not above `most`.
uint32_t hexNumber(const Place& place, const std::string& field, uint32_t most);
uint32_t decimalNumber(const Place& place, const std::string& field, uint32_t most);

struct ByteRange {
    uint8_t first;
    uint8_t last;
};
// "8E" or "A1-FE".
ByteRange byteRange(const Place& place, const std::string& field);

// A name as the contents of the data file can hold it: 1 to 19 printing ASCII characters.
const std::string& checkedName(const Place& place, const std::string& field);

// Upper-case hexadecimal with at least `digits` digits, and "U+" with at least four.
std::string hexText(uint32_t value, int digits);
std::string codePointText(uint32_t codePoint);

}  // namespace nls::mkconvmap
