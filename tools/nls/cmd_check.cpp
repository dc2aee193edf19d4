#include "tools/nls/commands.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/report.hpp"

namespace nls::tool {
namespace {

struct Options {
    std::string from = "UTF-8";
    std::vector<std::string> files;
    uint64_t limit = 20;
};

class Check {
public:
    Check(const Common& common, const Options& options)
        : common_(common),
          options_(options),
          session_(findDataFile(common.dataFile)),
          from_(session_, options.from),
          progress_(totalSize(options.files), !common.json) {}

    Exit run() {
        if (common_.json) json_.open('{').member("command", "check").key("files").open('[');
        for (const std::string& file : options_.files) checkOrTell(file);
        if (common_.json) {
            json_.close(']').member("exit", static_cast<int64_t>(worst_)).close('}');
            print(json_.text() + "\n");
        }
        return worst_;
    }

private:
    // A file that can't be read doesn't keep the others from being checked.
    void checkOrTell(const std::string& file) {
        try {
            Input input{file};
            checkFile(input);
        } catch (const Failure& failure) {
            progress_.hide();
            worst_ = Exit::fileTrouble;
            std::fprintf(stderr, "nls: %s\n", failure.what());
            if (common_.json) {
                json_.open('{').member("file", std::string_view(file));
                json_.member("error", std::string_view(failure.what())).close('}');
            }
        }
    }

    void checkFile(Input& input) {
        Report report{stdout, options_.limit, common_.json ? Report::Form::kept : Report::Form::lines};
        Converter converter{from_, nullptr, false};
        uint64_t characters = 0;
        forEachPiece(input, converter, progress_, [&](const Piece& piece, const Place& place) {
            if (piece.good) {
                characters += countCodePoints(piece.text);
            } else {
                report.add(input.name(), piece, place, converter, "", progress_);
            }
            return true;
        });
        progress_.hide();
        report.finish();
        if (report.count() != 0 && worst_ == Exit::done) worst_ = Exit::badInput;
        tell(input.name(), report, characters);
    }

    void tell(const std::string& name, const Report& report, uint64_t characters) {
        if (common_.json) {
            json_.open('{').member("file", std::string_view(name)).member("charset", std::string_view(from_.name()));
            json_.member("valid", report.count() == 0).member("characters", characters);
            json_.member("problemCount", report.count()).key("problems");
            report.writeTo(json_);
            json_.close('}');
        } else if (report.count() == 0) {
            print(name + ": valid " + from_.name() + ", " + counted(characters, "character") + "\n");
        } else {
            print(name + ": not valid " + from_.name() + ": " + counted(report.count(), "bad place") + " among " +
                  counted(characters, "character") + "\n");
        }
    }

    const Common& common_;
    const Options& options_;
    Session session_;
    TextCharset from_;
    Progress progress_;
    JsonWriter json_;
    Exit worst_ = Exit::done;
};

}  // namespace

void addCheck(const Command& program, const Common& common) {
    Command command = program.add("check", "is text valid in its charset, and where not?");
    auto options = std::make_shared<Options>();
    command.option("-f,--from-code,--from", options->from, "the charset").shownAs("CHARSET").showsDefault();
    command.option("--limit", options->limit, "tell this many places of a file, the rest as a number; 0: all")
        .shownAs("N")
        .showsDefault();
    command.files(options->files, "files; - or none: standard input");
    command.footer(
        "Exit code 1 if a file isn't valid.\n\nExamples:\n  nls check -f UTF-8 *.txt\n"
        "  nls check -f SHIFT-JIS --limit 0 in.txt\n");
    command.runs([&common, options] { return Check(common, *options).run(); });
}

}  // namespace nls::tool
