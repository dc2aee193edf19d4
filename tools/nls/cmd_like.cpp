#include <cstring>

#include "tools/nls/commands.hpp"
#include "tools/nls/line_search.hpp"
#include "tools/nls/text_argument.hpp"

namespace nls::tool {
namespace {

struct Options {
    MatchOptions match;
    std::string escape;
};

// LIKE as the library has it, for lines in a charset.
class Like {
public:
    Like(const Common& common, const Options& options)
        : common_(common),
          options_(options),
          lines_(common, options.match, "like", "", false),
          single_(character("_", false)),
          multi_(character("%", false)),
          escape_(options.escape.empty() ? 0 : character(options.escape, options.match.raw)),
          pattern_(closed(argument(options.match.pattern, options.match.raw).view())) {}

    Exit run() {
        return lines_.run([this](ByteView text, Finding& finding) { look(text, finding); },
                          [this](const Line& line, const Finding& finding, bool selected) {
                              if (!selected || common_.json || options_.match.count) return;
                              lines_.printer().place(lines_.shownName(line), lines_.shownNumber(line));
                              lines_.printer().line(line.text, finding.matches);
                          });
    }

private:
    ByteBuffer argument(const std::string& text, bool raw) const {
        return textArgument(lines_.order().charset(), text, raw, Exit::usage);
    }

    static std::vector<unsigned char> closed(ByteView text) {
        std::vector<unsigned char> bytes(text.begin(), text.end());
        bytes.push_back(0);
        return bytes;
    }

    nlsLChar character(const std::string& text, bool raw) const {
        const std::vector<unsigned char> bytes = closed(argument(text, raw).view());
        const unsigned char* place = bytes.data();
        nlsLChar value = 0;
        const nlsStatus status = nlsCharToLChar(lines_.order().locale(), nullptr, &place, &value);
        if (status != NLS_END_OF_STRING || value == 0)
            throw Failure(Exit::usage, "--escape takes one character, and not \"" + text + "\"");
        return value;
    }

    void look(ByteView text, Finding& finding) {
        const void* const nul = text.empty() ? nullptr : std::memchr(text.data(), 0, text.size());
        if (nul != nullptr) {
            finding.verdict = Finding::Verdict::undecided;
            finding.fault = static_cast<std::size_t>(static_cast<const unsigned char*>(nul) - text.data());
            finding.consequence = "a NUL inside a line, where LIKE would end; the line is left out";
            return;
        }
        line_.assign(text.begin(), text.end());
        line_.push_back(0);
        const std::size_t sound = soundPrefix(lines_.order().locale(), {line_.data(), text.size()});
        if (sound != text.size()) {
            finding.fault = sound;
            finding.consequence = "not valid text; compared as it is";
        }
        finding.verdict = isLike() ? Finding::Verdict::match : Finding::Verdict::noMatch;
    }

    bool isLike() const {
        const Order& order = lines_.order();
        const int32_t verdict =
            nlsSqlLike(order.locale(), nullptr, pattern_.data(), line_.data(), order.mode(), escape_, single_, multi_);
        if (verdict == -1) {
            throw Failure(Exit::usage, "\"" + options_.match.pattern +
                                           "\": the escape stands in front of something else than _, % or itself");
        }
        if (verdict != 0 && verdict != 1) {
            throw Failure(Exit::usage, order.name() + " can't be compared by (status " + std::to_string(verdict) + ")");
        }
        return verdict == 1;
    }

    const Common& common_;
    const Options& options_;
    LineSearch lines_;
    nlsLChar single_, multi_, escape_;
    std::vector<unsigned char> pattern_;  // closed by a NUL
    std::vector<unsigned char> line_;     // the same
};

constexpr const char* footer =
    "The whole of a line has to match, by the collation: % stands for any characters, _ for one, and all else for "
    "itself. Blanks at the end of a line count. With an --escape, that character in front of %, _ or itself makes it "
    "an ordinary one.\n"
    "A line with a NUL is left out; text that isn't valid is compared as it is. Both are told on the standard error.\n"
    "Exit codes as grep has them: 0 a line matches, 1 none does, and above that trouble: 2 usage, 3 a line isn't valid "
    "text, 4 trouble with a file.\n"
    "\n"
    "Examples:\n"
    "  nls like -l 1252/swedish --fold '%son' names.txt\n"
    "  nls like -l UTF-8 '_\xE7\x94\xB0%' names.txt                  one character, whatever its bytes\n"
    "  nls like -l 1252 --escape '\\' '%100\\%%' report.txt\n";

}  // namespace

void addLike(const Command& program, const Common& common) {
    Command command = program.add("like", "lines that match a pattern of SQL's LIKE");
    auto options = std::make_shared<Options>();
    addMatchOptions(command, options->match);
    command.option("--escape", options->escape, "the character that makes the next of the pattern an ordinary one")
        .shownAs("C");
    command.footer(footer);
    command.runs([&common, options] { return Like(common, *options).run(); });
}

}  // namespace nls::tool
