#include "tools/nls/commands.hpp"
#include "tools/nls/line_search.hpp"
#include "tools/nls/text_argument.hpp"

namespace nls::tool {
namespace {

struct Options {
    MatchOptions match;
    std::string replacement;
    std::string output;
    bool replaces = false;
    bool only = false;
};

class Find {
public:
    Find(const Common& common, const Options& options)
        : common_(common),
          options_(options),
          lines_(common, options.match, "find", options.output, options.replaces),
          search_(lines_.order(), argument(options.match.pattern).view()),
          replacement_(argument(options.replacement)) {}

    Exit run() {
        return lines_.run([this](ByteView text, Finding& finding) { look(text, finding); },
                          [this](const Line& line, const Finding& finding, bool selected) {
                              if (options_.replaces) {
                                  replace(line, finding);
                              } else if (selected && !common_.json && !options_.match.count) {
                                  show(line, finding);
                              }
                          });
    }

private:
    ByteBuffer argument(const std::string& text) const {
        return textArgument(lines_.order().charset(), text, options_.match.raw, Exit::usage);
    }

    // Whoever wants lines alone is content with the first match of each.
    TextSearch::Matches wanted() const {
        const bool first = (options_.match.count || options_.match.invert) && !common_.json;
        return first ? TextSearch::Matches::first : TextSearch::Matches::all;
    }

    void look(ByteView text, Finding& finding) {
        finding.fault = search_.search(text, wanted(), finding.matches);
        finding.verdict = finding.matches.empty() ? Finding::Verdict::noMatch : Finding::Verdict::match;
        if (finding.fault) finding.consequence = "not valid text, and passed over";
    }

    void show(const Line& line, const Finding& finding) {
        LinePrinter& printer = lines_.printer();
        if (!options_.only) {
            printer.place(lines_.shownName(line), lines_.shownNumber(line));
            printer.line(line.text, finding.matches);
            return;
        }
        for (const Span& match : finding.matches) {
            if (match.begin == match.end) continue;
            printer.place(lines_.shownName(line), lines_.shownNumber(line));
            printer.match(line.text.subspan(match.begin, match.end - match.begin));
        }
    }

    // All that isn't part of a match stays as it is, valid or not.
    void replace(const Line& line, const Finding& finding) {
        std::size_t done = 0;
        for (const Span& match : finding.matches) {
            lines_.output().write(line.text.subspan(done, match.begin - done));
            lines_.output().write(replacement_.view());
            done = match.end;
        }
        lines_.output().write(line.text.subspan(done));
        lines_.output().write(line.end);
    }

    const Common& common_;
    const Options& options_;
    LineSearch lines_;
    TextSearch search_;
    ByteBuffer replacement_;
};

constexpr const char* footer =
    "A match is a run of characters that are equal to those of PATTERN under the collation, each compared alone: with "
    "--fold capitals and small letters, and in many collations more. No match begins or ends inside a character. An "
    "empty PATTERN is found once, at the end of each line.\n"
    "Lines may have any length below 2 GiB. A NUL is never part of a match. Bytes that are no characters are passed "
    "over and told on the standard error; --replace keeps them.\n"
    "Exit codes as grep has them: 0 found, 1 not found, and above that trouble: 2 usage, 3 text that isn't valid was "
    "passed over, 4 trouble with a file.\n"
    "\n"
    "Examples:\n"
    "  nls find -l 1252/german --fold stra\xC3\x9F"
    "e letter.txt\n"
    "  nls find -l SHIFT-JIS -n \xE8\xA1\xA8 *.txt             never the second byte of another character\n"
    "  nls find -l UTF-8 --fold -o \xD0\xBC\xD0\xBE\xD1\x81\xD0\xBA\xD0\xB2\xD0\xB0 in.txt       the matches as they "
    "stand there\n"
    "  nls find -l UTF-8 --replace Zorn --output in.txt Zern in.txt      in place\n";

}  // namespace

void addFind(const Command& program, const Common& common) {
    Command command = program.add("find", "find text in lines, or replace it, by a collation");
    auto options = std::make_shared<Options>();
    addMatchOptions(command, options->match);
    command.flag("-o,--only-matching", options->only, "each match as a line, and no more").excludes("--invert");
    const Option replace =
        command.option("--replace", options->replacement, "write all lines, with TEXT in place of each match")
            .shownAs("TEXT")
            .excludes("--only-matching")
            .excludes("--count")
            .excludes("--invert")
            .excludes("--line-number");
    command.option("--output", options->output, "with --replace: write to FILE, which appears when all is done")
        .shownAs("FILE")
        .needs("--replace");
    command.footer(footer);
    command.runs([&common, options, replace] {
        options->replaces = replace.isGiven();
        return Find(common, *options).run();
    });
}

}  // namespace nls::tool
