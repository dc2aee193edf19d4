// Where a pattern stands in a line of text, by the library's search.
//
// The library searches text up to its NUL, and counts all of it first. So a line is searched between its NULs, and a
// long one in windows, which overlap by as much as a match can take; each search begins behind the last match. Bytes
// that aren't characters of the charset are passed over. Tested by tests/tools/nls_find_test.cpp.
#pragma once

#include <optional>
#include <vector>

#include "tools/nls/order.hpp"

namespace nls::tool {

// Bytes of a line, from 0.
struct Span {
    std::size_t begin, end;
};

class TextSearch {
public:
    enum class Matches { first, all };

    // The pattern is text of the order's charset.
    TextSearch(const Order& order, ByteView pattern);

    // Puts the matches behind those in `spans`, from left to right; they don't overlap. An empty pattern is found at
    // the end of the line. The answer: where the first byte stands that wasn't looked at, since it is part of no
    // character. REQUIRES: less than 2^31 bytes.
    std::optional<std::size_t> search(ByteView line, Matches matches, std::vector<Span>& spans);

private:
    bool searchBetweenNuls(std::size_t begin, std::size_t end, Matches matches, std::vector<Span>& spans);
    bool searchSound(std::size_t begin, std::size_t end, Matches matches, std::vector<Span>& spans);
    std::optional<Span> firstIn(std::size_t begin, std::size_t end);
    std::size_t wholeCharacters(std::size_t begin, std::size_t atMost) const;

    const Order& order_;
    std::vector<unsigned char> pattern_;  // closed by a NUL
    std::vector<unsigned char> line_;     // the same
    std::size_t step_;                    // where the next window begins
    std::size_t window_;                  // bytes
    std::optional<std::size_t> fault_;
};

// The bytes at the start of a text without NULs that are characters of the charset, one after the other: all of it, or
// as far as the library takes it for well-formed. REQUIRES: a NUL behind the text, and less than 2^31 bytes.
std::size_t soundPrefix(const nlsLocale* locale, ByteView text);

}  // namespace nls::tool
