// The text that a message file is compiled from: UTF-8, a line each.
//
//     # a comment
//     charset SHIFT-JIS
//     1001 File not found: "%s"
//     1002 Two\nlines, a \\ and a byte of the charset, \x1B
//
// Numbers are those of signed 32 bits. A text begins behind one blank, and may be empty.
#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace nls::mkmessages {

// What is refused, with the line that it stands in.
class Refused : public std::runtime_error {
public:
    Refused(std::size_t line, const std::string& what)
        : std::runtime_error("line " + std::to_string(line) + ": " + what) {}
};

// A piece of a text: characters in UTF-8, to be converted, or bytes of the charset, to be taken as they are.
struct Piece {
    std::string text;
    bool raw;
};

struct Message {
    std::size_t line;
    std::vector<Piece> pieces;
};

struct Source {
    std::string charset;
    std::map<int32_t, Message> messages;
};

Source readSource(std::istream& lines);

}  // namespace nls::mkmessages
