// Lines as grep shows them: the file and the number in front where they are wanted, matches in colour.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/nls/output.hpp"
#include "tools/nls/text_charset.hpp"
#include "tools/nls/text_search.hpp"

namespace nls::tool {

class LinePrinter {
public:
    // What is written besides lines is written in the charset as well, save for the colours. `when` is auto, always or
    // never. `lineEnd` closes what isn't a whole line.
    LinePrinter(Output& output, const TextCharset& charset, const std::string& when, unsigned char lineEnd);

    // "file:12:"; an empty name or the number 0 is left out.
    void place(const std::string& file, uint64_t number);
    // The text with its matches in colour, and the byte that ends it.
    void line(ByteView text, const std::vector<Span>& matches);
    // One match as a line of its own.
    void match(ByteView text);
    // Plain text of ASCII, and the end of a line.
    void number(uint64_t number);

private:
    enum class Color { match, file, number, mark };

    void plain(const std::string& text);
    void colored(Color color, ByteView text);
    void colored(Color color, const std::string& text);
    void endLine();
    ByteBuffer inCharset(const std::string& text) const;

    Output& output_;
    const TextCharset& charset_;
    bool colors_;
    bool onTerminal_;
    unsigned char lineEnd_;
};

}  // namespace nls::tool
