#include "tools/nls/line_search.hpp"

#include <unistd.h>

#include "tools/nls/hex_text.hpp"
#include "tools/nls/report.hpp"

namespace nls::tool {
namespace {

// Only a part of a line of 2^31 bytes is handed out.
constexpr std::size_t longestLine = (std::size_t{1} << 31) - 64;

// Characters in front of a byte, plus 1.
std::size_t columnOf(const Order& order, ByteView text, std::size_t byte) {
    std::size_t column = 1;
    for (std::size_t at = 0; at < byte; ++column) at += (order.attrib().lengthMap[text[at]] & 7U) + 1;
    return column;
}

}  // namespace

LineSearch::LineSearch(const Common& common, const MatchOptions& options, const char* name, const std::string& output,
                       bool edits)
    : common_(common),
      options_(options),
      name_(name),
      edits_(edits),
      session_(findDataFile(common.dataFile)),
      order_(session_, options.order.order, options.order.mode()),
      end_(lineEndOf(order_.charset(), options.zero)),
      progress_(totalSize(options.files), !common.json && isatty(STDOUT_FILENO) == 0),
      output_(output),
      printer_(output_, order_.charset(), options.color, end_.usual) {}

Exit LineSearch::run(const Look& look, const Show& show) {
    json_.open('{').member("command", name_).member("order", std::string_view(order_.name()));
    json_.member("mode", std::string_view(options_.order.fold)).key("files").open('[');
    for (const std::string& file : options_.files) searchOrTell(file, look, show);
    output_.keep();
    progress_.hide();
    if (common_.json) finishJson();
    return exit();
}

// A file that can't be read doesn't keep the others from being searched.
void LineSearch::searchOrTell(const std::string& file, const Look& look, const Show& show) {
    if (edits_) {
        Input input{file};
        tellCounts(input.name(), searchFile(input, look, show));
        return;
    }
    std::optional<Input> input;
    try {
        input.emplace(file);
        tellCounts(input->name(), searchFile(*input, look, show));
    } catch (const Failure& failure) {
        if (!failure.isTold() || failure.code() != Exit::fileTrouble) throw;
        progress_.hide();
        anyTrouble_ = true;
        std::fprintf(stderr, "nls: %s\n", failure.what());
        if (common_.json) {
            json_.open('{').member("file", std::string_view(file));
            json_.member("error", std::string_view(failure.what())).close('}');
        }
    }
}

LineSearch::Counts LineSearch::searchFile(Input& input, const Look& look, const Show& show) {
    Counts counts;
    LineReader reader{input, end_, progress_};
    Finding finding{};
    while (const std::optional<ByteView> whole = reader.next()) {
        const std::size_t size = whole->size() - (end_.isEnd(whole->back()) ? 1 : 0);
        const Line line{input.name(), reader.lineNumber(), whole->first(size), whole->subspan(size)};
        if (whole->size() >= longestLine) {
            throw Failure(Exit::fileTrouble, line.file + ":" + std::to_string(line.number) +
                                                 ": a line of 2 GiB or more can't be searched");
        }
        finding.matches.clear();
        finding.fault.reset();
        look(line.text, finding);
        const bool selected =
            finding.verdict == (options_.invert ? Finding::Verdict::noMatch : Finding::Verdict::match);
        if (finding.fault) tellFault(line, reader.offset(), finding, counts);
        ++counts.lines;
        counts.selected += selected ? 1 : 0;
        counts.matches += finding.matches.size();
        show(line, finding, selected);
    }
    return counts;
}

// The first of a file in full; the rest as a number.
void LineSearch::tellFault(const Line& line, uint64_t offset, const Finding& finding, Counts& counts) {
    anyFault_ = true;
    if (++counts.faulty != 1 || common_.json) return;
    progress_.hide();
    const std::string where = line.file + ":" + std::to_string(line.number) + ":" +
                              std::to_string(columnOf(order_, line.text, *finding.fault)) + ": byte " +
                              std::to_string(offset + *finding.fault);
    std::fprintf(stderr, "nls: %s (%s): %s\n", where.c_str(), hexOf(line.text.subspan(*finding.fault, 1)).c_str(),
                 finding.consequence);
}

void LineSearch::tellCounts(const std::string& file, const Counts& counts) {
    anySelected_ = anySelected_ || counts.selected != 0;
    if (common_.json) {
        json_.open('{').member("file", std::string_view(file)).member("lines", counts.lines);
        json_.member("selected", counts.selected).member("matches", counts.matches);
        json_.member("linesNotValid", counts.faulty).close('}');
        return;
    }
    if (counts.faulty > 1) {
        progress_.hide();
        std::fprintf(stderr, "nls: %s: ... and %s more\n", file.c_str(), counted(counts.faulty - 1, "line").c_str());
    }
    if (!options_.count) return;
    printer_.place(options_.files.size() > 1 ? file : std::string{}, 0);
    printer_.number(counts.selected);
}

// Beside text on the standard output the answer goes to the standard error.
void LineSearch::finishJson() {
    json_.close(']').member("exit", static_cast<int64_t>(exit())).close('}');
    std::fprintf(edits_ && output_.isStandardOutput() ? stderr : stdout, "%s\n", json_.text().c_str());
}

Exit LineSearch::exit() const {
    if (anyTrouble_) return Exit::fileTrouble;
    if (anyFault_) return Exit::loss;
    return anySelected_ ? Exit::done : Exit::nothingFound;
}

}  // namespace nls::tool
