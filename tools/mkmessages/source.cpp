#include "tools/mkmessages/source.hpp"

#include <charconv>
#include <string_view>

namespace nls::mkmessages {

namespace {

// The text with its escapes as pieces.
class Unescaped {
public:
    Unescaped(std::string_view text, std::size_t line) : rest_(text), line_(line) {
        while (!rest_.empty()) {
            const char first = take();
            first == '\\' ? takeEscape() : put(first, false);
        }
    }
    std::vector<Piece> pieces() && { return std::move(pieces_); }

private:
    char take() {
        if (rest_.empty()) throw Refused(line_, "an escape is cut short");
        const char first = rest_.front();
        rest_.remove_prefix(1);
        return first;
    }
    void put(char byte, bool raw) {
        if (pieces_.empty() || pieces_.back().raw != raw) pieces_.push_back({{}, raw});
        pieces_.back().text += byte;
    }
    void takeEscape() {
        switch (const char kind = take()) {
            case 'n':
                return put('\n', false);
            case 't':
                return put('\t', false);
            case '\\':
                return put('\\', false);
            case 'x':
                return takeByte();
            default:
                throw Refused(line_, std::string("there is no escape \\") + kind);
        }
    }
    void takeByte() {
        const char digits[] = {take(), take()};
        unsigned value = 0;
        const auto [end, error] = std::from_chars(digits, digits + 2, value, 16);
        if (error != std::errc{} || end != digits + 2 || value == 0)
            throw Refused(line_, "\\x wants two hex digits, not 00");
        put(static_cast<char>(value), true);
    }

    std::string_view rest_;
    std::size_t line_;
    std::vector<Piece> pieces_;
};

void takeMessage(Source& source, std::string_view text, std::size_t line) {
    int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{}) throw Refused(line, "no number of a message");
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (!text.empty() && text.front() != ' ') throw Refused(line, "no blank behind the number");
    if (!text.empty()) text.remove_prefix(1);
    if (!source.messages.try_emplace(number, Message{line, Unescaped{text, line}.pieces()}).second)
        throw Refused(line, "message " + std::to_string(number) + " is there already");
}

}  // namespace

Source readSource(std::istream& lines) {
    constexpr std::string_view kCharset = "charset ";
    Source source;
    std::string text;
    for (std::size_t line = 1; std::getline(lines, text); ++line) {
        if (text.empty() || text.front() == '#') continue;
        if (!text.starts_with(kCharset)) {
            takeMessage(source, text, line);
        } else if (source.charset.empty()) {
            source.charset = text.substr(kCharset.size());
        } else {
            throw Refused(line, "a second charset");
        }
    }
    if (source.charset.empty()) throw Refused(0, "no charset is named");
    return source;
}

}  // namespace nls::mkmessages
