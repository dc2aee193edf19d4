#include <algorithm>

#include "tools/nls/commands.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/report.hpp"

namespace nls::tool {
namespace {

struct Options {
    std::string from = "UTF-8";
    std::vector<std::string> files;
};

struct Counts {
    uint64_t bytes = 0;
    uint64_t characters = 0;
    uint64_t columns = 0;
    uint64_t lines = 0;

    Counts& operator+=(const Counts& more) {
        bytes += more.bytes;
        characters += more.characters;
        columns += more.columns;
        lines += more.lines;
        return *this;
    }
};

// Counts of one piece of text under a locale. The library counts up to a NUL, so a NUL is stepped over; line ends and
// NULs are characters without a column.
class PieceCounter {
public:
    explicit PieceCounter(const nlsLocale* locale) : locale_(locale) {}

    Counts count(ByteView text) {
        copy_.assign(reinterpret_cast<const char*>(text.data()), text.size());
        Counts counts;
        for (std::size_t pos = 0; pos < copy_.size(); ++pos) {
            const auto* const start = reinterpret_cast<const unsigned char*>(copy_.c_str()) + pos;
            const auto length = static_cast<int32_t>(nlsStrlen(start));
            uint32_t columns = 0;
            uint32_t characters = 0;
            nlsCountColumns(locale_, nullptr, start, length, &columns);
            nlsCountChars(locale_, nullptr, start, length, &characters);
            counts.columns += columns;
            counts.characters += characters;
            pos += static_cast<std::size_t>(length);
            if (pos < copy_.size()) ++counts.characters;
        }
        return counts;
    }

private:
    const nlsLocale* locale_;
    std::string copy_;
};

class Count {
public:
    Count(const Common& common, const Options& options)
        : common_(common),
          options_(options),
          session_(findDataFile(common.dataFile)),
          from_(session_, options.from),
          // Text of 16- and 32-bit units can't be walked by bytes; its UTF-8 form can.
          countsText_(!from_.isLegacy()),
          counter_(countsText_ ? session_.locale("UTF-8") : from_.locale()),
          progress_(totalSize(options.files), !common.json) {}

    Exit run() {
        if (common_.json) {
            json_.open('{').member("command", "count").key("files").open('[');
        } else {
            print("       bytes   characters      columns  file\n");
        }
        Counts total;
        for (const std::string& file : options_.files) total += countOrTell(file);
        if (common_.json) {
            json_.close(']').member("exit", static_cast<int64_t>(worst_)).close('}');
            print(json_.text() + "\n");
        } else if (options_.files.size() > 1) {
            tell("total", total, 0);
        }
        return worst_;
    }

private:
    Counts countOrTell(const std::string& file) {
        try {
            Input input{file};
            return countFile(input);
        } catch (const Failure& failure) {
            progress_.hide();
            worst_ = Exit::fileTrouble;
            std::fprintf(stderr, "nls: %s\n", failure.what());
            if (common_.json) {
                json_.open('{').member("file", std::string_view(file));
                json_.member("error", std::string_view(failure.what())).close('}');
            }
            return {};
        }
    }

    Counts countFile(Input& input) {
        Counts counts;
        Report report{stderr, 1, common_.json ? Report::Form::counted : Report::Form::lines};
        Converter converter{from_, nullptr, false};
        forEachPiece(input, converter, progress_, [&](const Piece& piece, const Place& place) {
            if (piece.good) {
                counts += countPiece(piece);
            } else {
                report.add(input.name(), piece, place, converter, "", progress_);
            }
            counts.bytes += piece.source.size();
            return true;
        });
        progress_.hide();
        report.finish();
        if (report.count() != 0 && worst_ == Exit::done) worst_ = Exit::badInput;
        tell(input.name(), counts, report.count());
        return counts;
    }

    Counts countPiece(const Piece& piece) {
        Counts counts = counter_.count(countsText_ ? piece.text : piece.source);
        counts.lines = from_.lineEnds().count(piece.text);
        const auto returns = std::count(piece.text.begin(), piece.text.end(), '\r');
        counts.columns -= std::min(counts.columns, counts.lines + static_cast<uint64_t>(returns));
        return counts;
    }

    void tell(const std::string& name, const Counts& counts, uint64_t bad) {
        if (common_.json) {
            json_.open('{').member("file", std::string_view(name)).member("bytes", counts.bytes);
            json_.member("characters", counts.characters).member("columns", counts.columns);
            json_.member("lines", counts.lines).member("badPlaces", bad).close('}');
            return;
        }
        char numbers[80];
        std::snprintf(numbers, sizeof numbers, "%12llu %12llu %12llu  ", static_cast<unsigned long long>(counts.bytes),
                      static_cast<unsigned long long>(counts.characters),
                      static_cast<unsigned long long>(counts.columns));
        print(numbers + name + "\n");
    }

    const Common& common_;
    const Options& options_;
    Session session_;
    TextCharset from_;
    bool countsText_;
    PieceCounter counter_;
    Progress progress_;
    JsonWriter json_;
    Exit worst_ = Exit::done;
};

}  // namespace

void addCount(const Command& program, const Common& common) {
    Command command = program.add("count", "count bytes, characters and screen columns");
    auto options = std::make_shared<Options>();
    command.option("-f,--from-code,--from", options->from, "the charset").shownAs("CHARSET").showsDefault();
    command.files(options->files, "files; - or none: standard input");
    command.footer(
        "Columns are those of all lines together; line ends fill none. What isn't valid counts in bytes alone,\n"
        "and makes the exit code 1.\n\nExample:\n  nls count -f EUCJIS in.txt\n");
    command.runs([&common, options] { return Count(common, *options).run(); });
}

}  // namespace nls::tool
