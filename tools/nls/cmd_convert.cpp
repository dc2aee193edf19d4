#include <algorithm>

#include "tools/nls/commands.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/output.hpp"
#include "tools/nls/report.hpp"

namespace nls::tool {
namespace {

enum class Policy { stop, substitute, drop };

struct Options {
    std::string from = "UTF-8";
    std::string to = "UTF-8";
    std::string output;
    std::vector<std::string> files;
    bool substitute = false;
    bool drop = false;
    bool lossless = false;
    bool silent = false;
    bool list = false;
    bool verbose = false;  // accepted as iconv does; the progress bar shows by itself
    uint64_t limit = 20;
};

class Conversion {
public:
    Conversion(const Common& common, Options options)
        : common_(common),
          options_(std::move(options)),
          session_(findDataFile(common.dataFile)),
          from_(session_, options_.from),
          to_(session_, options_.to),
          policy_(options_.substitute ? Policy::substitute
                  : options_.drop     ? Policy::drop
                                      : Policy::stop),
          report_(stderr, options_.limit, reportForm()),
          progress_(totalSize(options_.files), !common.json && !options_.silent),
          output_(options_.output) {}

    Exit run() {
        for (const std::string& file : options_.files) {
            Input input{file};
            convertFile(input);
            if (stopped_) break;
        }
        progress_.hide();
        if (!stopped_ || !output_.isFile()) output_.keep();
        report_.finish();
        const Exit code = report_.count() == 0 ? Exit::done : stopped_ ? Exit::badInput : Exit::loss;
        tell(code);
        return code;
    }

private:
    // After a stop the rest is still looked through for the count, if its end is sure to come.
    void convertFile(Input& input) {
        Converter converter{from_, &to_, options_.lossless};
        forEachPiece(input, converter, progress_, [&](const Piece& piece, const Place& place) {
            if (piece.good) {
                if (!stopped_) output_.write(piece.output);
                return true;
            }
            report_.add(input.name(), piece, place, converter, consequence(), progress_);
            if (policy_ == Policy::stop) stopped_ = true;
            if (policy_ == Policy::substitute) output_.write(to_.substitute());
            return !stopped_ || input.isRegular();
        });
    }

    Report::Form reportForm() const {
        if (common_.json) return Report::Form::kept;
        return options_.silent && policy_ != Policy::stop ? Report::Form::counted : Report::Form::lines;
    }

    const char* consequence() const {
        switch (policy_) {
            case Policy::substitute:
                return "a substitute stands in its place";
            case Policy::drop:
                return "dropped";
            default:
                return "";
        }
    }

    void tell(Exit code) const {
        if (common_.json) {
            tellJson(code);
        } else if (stopped_) {
            const std::string what = output_.isFile() ? "; " + output_.name() + " is not written" : "";
            std::fprintf(stderr, "nls: %s not converted%s%s\n", counted(report_.count(), "character").c_str(),
                         what.c_str(),
                         options_.lossless ? "" : " (--subst goes on with substitutes, -c drops such characters)");
        } else if (code == Exit::loss && !options_.silent) {
            std::fprintf(stderr, "nls: %s\n",
                         policy_ == Policy::drop ? (counted(report_.count(), "character") + " dropped").c_str()
                                                 : (counted(report_.count(), "substitute") + " in the output").c_str());
        }
    }

    // Beside text on the standard output the answer goes to the standard error.
    void tellJson(Exit code) const {
        JsonWriter json;
        json.open('{').member("command", "convert").member("from", std::string_view(from_.name()));
        json.member("to", std::string_view(to_.name())).member("output", std::string_view(output_.name()));
        json.member("complete", !stopped_).member("problemCount", report_.count()).key("problems");
        report_.writeTo(json);
        json.member("exit", static_cast<int64_t>(code)).close('}');
        std::fprintf(output_.isStandardOutput() ? stderr : stdout, "%s\n", json.text().c_str());
    }

    const Common& common_;
    Options options_;
    Session session_;
    TextCharset from_;
    TextCharset to_;
    Policy policy_;
    Report report_;
    Progress progress_;
    Output output_;
    bool stopped_ = false;
};

// What iconv's users write behind a name.
void takeSuffixes(Options& options) {
    for (std::string* name : {&options.from, &options.to}) {
        const std::size_t slashes = name->find("//");
        if (slashes == std::string::npos) continue;
        const std::string suffix = name->substr(slashes);
        name->resize(slashes);
        if (suffix.find("TRANSLIT") != std::string::npos) {
            throw Failure(Exit::usage, "//TRANSLIT is not offered; --subst puts a substitute, -c drops the character");
        }
        if (suffix.find("IGNORE") != std::string::npos) options.drop = true;
    }
}

}  // namespace

void addConvert(const Command& program, const Common& common) {
    Command command = program.add("convert", "convert text from one charset to another");
    auto options = std::make_shared<Options>();
    command.option("-f,--from-code,--from", options->from, "the charset of the input")
        .shownAs("CHARSET")
        .showsDefault();
    command.option("-t,--to-code,--to", options->to, "the charset of the output").shownAs("CHARSET").showsDefault();
    command.output(options->output);
    command.flag("--subst", options->substitute, "put a substitute for what doesn't convert, and go on");
    command.flag("-c", options->drop, "drop what doesn't convert, and go on").excludes("--subst");
    command.flag("--lossless", options->lossless, "refuse what would not come back the same when converted back")
        .excludes("--subst")
        .excludes("-c");
    command.option("--limit", options->limit, "tell this many characters in full, the rest as a number; 0: all")
        .shownAs("N")
        .showsDefault();
    command.flag("-s,--silent,--quiet", options->silent, "no progress, and no word on what was lost");
    command.flag("--verbose", options->verbose, "taken for iconv's sake");
    command.flag("-l,--list", options->list, "list the charsets");
    command.files(options->files, "files, converted one behind the other; - or none: standard input");
    command.footer(
        "By default the first character that doesn't convert ends the conversion: exit code 1, and FILE is not "
        "written.\n"
        "\n"
        "Examples:\n"
        "  nls convert -f SHIFT-JIS -t UTF-8 in.txt > out.txt\n"
        "  nls convert -t 1252 --subst -o out.txt in.txt   exit code 3 if there were substitutes\n"
        "  nls convert -f IBM037 -t UTF-8 -o book book     in place\n"
        "  nls convert -f EUCJIS -t UTF-8 --lossless -o out.txt in.txt\n");
    command.runs([&common, options] {
        if (options->list) return listCharsets(common);
        takeSuffixes(*options);
        return Conversion(common, *options).run();
    });
}

}  // namespace nls::tool
