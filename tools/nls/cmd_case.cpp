#include "tools/nls/commands.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/order_name.hpp"
#include "tools/nls/output.hpp"
#include "tools/nls/report.hpp"

namespace nls::tool {
namespace {

enum class Case { upper, lower };

struct Options {
    std::string charset;
    std::string output;
    std::vector<std::string> files;
};

class CaseChange {
public:
    CaseChange(const Common& common, const Options& options, Case wanted)
        : options_(options),
          wanted_(wanted),
          session_(findDataFile(common.dataFile)),
          charset_(session_, parseOrderName(options.charset).charset),
          locale_(findLocale()),
          report_(stderr, 1, Report::Form::lines),
          progress_(totalSize(options.files), !common.json),
          output_(options.output) {}

    Exit run() {
        for (const std::string& file : options_.files) {
            if (!changeFile(file)) return Exit::badInput;
        }
        output_.keep();
        return Exit::done;
    }

private:
    const nlsLocale* findLocale() {
        const OrderName name = parseOrderName(options_.charset);
        return session_.locale(charset_.name(), "", name.collation.empty() ? "basic" : name.collation);
    }

    // Stops at the first character that is none: its neighbours could change with it.
    bool changeFile(const std::string& file) {
        Input input{file};
        Converter converter{charset_, nullptr, false};
        return forEachPiece(input, converter, progress_, [&](const Piece& piece, const Place& place) {
            if (!piece.good) {
                report_.add(input.name(), piece, place, converter, "", progress_);
                const std::string what = output_.isFile() ? "; " + output_.name() + " is not written" : "";
                std::fprintf(stderr, "nls: stopped there%s; nls convert -c drops what is no character\n", what.c_str());
                return false;
            }
            changePiece(piece.source);
            return true;
        });
    }

    // The library takes texts up to their NUL; a NUL in the text has no case.
    void changePiece(ByteView text) {
        constexpr unsigned char nul[] = {0};
        while (!text.empty()) {
            const void* const found = std::memchr(text.data(), 0, text.size());
            const std::size_t length =
                found == nullptr ? text.size()
                                 : static_cast<std::size_t>(static_cast<const unsigned char*>(found) - text.data());
            changeText(text.first(length));
            if (found != nullptr) output_.write(nul);
            text = text.subspan(found == nullptr ? length : length + 1);
        }
    }

    void changeText(ByteView text) {
        if (text.empty()) return;
        constexpr unsigned char nul[] = {0};
        source_.clear();
        source_.append(text);
        source_.append(nul);
        target_.clear();
        // No form is longer than two characters of its kind.
        const std::size_t room = text.size() * 2 + 1;
        nlsStr from{source_.reserve(0) - source_.size(), 0, 0};
        nlsStr to{target_.reserve(room), static_cast<int32_t>(room), 0};
        const nlsStatus status = wanted_ == Case::upper ? nlsUpperCase(locale_, nullptr, &from, &to)
                                                        : nlsLowerCase(locale_, nullptr, &from, &to);
        if (status != NLS_OK) {
            throw Failure(Exit::fileTrouble,
                          charset_.name() + ": the case can't be changed (status " + std::to_string(status) + ")");
        }
        output_.write({to.buf, to.strLength});
    }

    const Options& options_;
    Case wanted_;
    Session session_;
    TextCharset charset_;
    const nlsLocale* locale_;
    Report report_;
    Progress progress_;
    Output output_;
    ByteBuffer source_;
    ByteBuffer target_;
};

void addCase(const Command& program, const Common& common, Case wanted, const char* name, const char* what,
             const char* examples) {
    Command command = program.add(name, what);
    auto options = std::make_shared<Options>();
    command.option("-l,--charset", options->charset, "the charset of the text, and the case table to go by")
        .shownAs("CHARSET[/TABLE]")
        .required();
    command.output(options->output);
    command.files(options->files, "files, written one behind the other; - or none: standard input");
    command.footer(std::string("The case table left out is \"basic\". Each letter becomes one letter: \xC3\x9F stays "
                               "as it is. Exit code 1 if the text isn't valid in its charset.\n\nExamples:\n") +
                   examples);
    command.runs([&common, options, wanted] { return CaseChange(common, *options, wanted).run(); });
}

}  // namespace

void addUpper(const Command& program, const Common& common) {
    addCase(program, common, Case::upper, "upper", "write text in capitals",
            "  nls upper -l UTF-8 in.txt\n  nls upper -l 1254/turkish -o out.txt in.txt\n");
}

void addLower(const Command& program, const Common& common) {
    addCase(program, common, Case::lower, "lower", "write text in small letters",
            "  nls lower -l KOI8-R in.txt\n  nls lower -l UTF-8/turkish -o out.txt in.txt\n");
}

}  // namespace nls::tool
