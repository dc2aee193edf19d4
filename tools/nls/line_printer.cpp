#include "tools/nls/line_printer.hpp"

#include <unistd.h>

#include <cstdlib>

#include "tools/nls/text_argument.hpp"

namespace nls::tool {
namespace {

// The colours that grep has by itself.
constexpr const char* kColors[] = {"\033[01;31m", "\033[35m", "\033[32m", "\033[36m"};
constexpr const char* kNoColor = "\033[m";

bool wantsColors(const std::string& when) {
    if (when != "auto") return when == "always";
    const char* const refused = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == 0);
}

}  // namespace

LinePrinter::LinePrinter(Output& output, const TextCharset& charset, const std::string& when, unsigned char lineEnd)
    : output_(output),
      charset_(charset),
      colors_(wantsColors(when)),
      onTerminal_(output.isStandardOutput() && isatty(STDOUT_FILENO) != 0),
      lineEnd_(lineEnd) {}

void LinePrinter::place(const std::string& file, uint64_t number) {
    if (!file.empty()) {
        colored(Color::file, file);
        colored(Color::mark, ":");
    }
    if (number != 0) {
        colored(Color::number, std::to_string(number));
        colored(Color::mark, ":");
    }
}

void LinePrinter::line(ByteView text, const std::vector<Span>& matches) {
    std::size_t done = 0;
    for (const Span& match : matches) {
        if (!colors_ || match.begin == match.end) continue;
        output_.write(text.subspan(done, match.begin - done));
        colored(Color::match, text.subspan(match.begin, match.end - match.begin));
        done = match.end;
    }
    output_.write(text.subspan(done));
    endLine();
}

void LinePrinter::match(ByteView text) {
    colored(Color::match, text);
    endLine();
}

void LinePrinter::number(uint64_t number) {
    plain(std::to_string(number));
    endLine();
}

void LinePrinter::plain(const std::string& text) {
    output_.write(inCharset(text).view());
}

void LinePrinter::colored(Color color, ByteView text) {
    if (colors_) output_.write(bytesOf(kColors[static_cast<int>(color)]));
    output_.write(text);
    if (colors_) output_.write(bytesOf(kNoColor));
}

void LinePrinter::colored(Color color, const std::string& text) {
    const ByteBuffer bytes = inCharset(text);
    colored(color, bytes.view());
}

// A terminal is to see each line when it is found.
void LinePrinter::endLine() {
    output_.write({&lineEnd_, 1});
    if (onTerminal_) output_.keep();
}

// A file's name that isn't UTF-8, or that the charset can't hold, stays as it is.
ByteBuffer LinePrinter::inCharset(const std::string& text) const {
    ByteBuffer bytes;
    if (!validUtf8(bytesOf(text)) || !charset_.encode(bytesOf(text), bytes)) {
        bytes.clear();
        bytes.append(bytesOf(text));
    }
    return bytes;
}

}  // namespace nls::tool
