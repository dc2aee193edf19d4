// Lines of files looked at one by one: which are selected, what is told of them, and how the command ends.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "tools/nls/commands.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/line_printer.hpp"
#include "tools/nls/line_reader.hpp"
#include "tools/nls/match_options.hpp"

namespace nls::tool {

// What was found in a line.
struct Finding {
    enum class Verdict { match, noMatch, undecided };

    Verdict verdict;
    std::vector<Span> matches;         // for those who show or count them
    std::optional<std::size_t> fault;  // the first byte that was not looked at as text
    const char* consequence;           // of the fault
};

// A line without the byte that ends it.
struct Line {
    const std::string& file;
    uint64_t number;  // from 1
    ByteView text;
    ByteView end;  // empty at the end of a file that lacks it
};

class LineSearch {
public:
    // REQUIRES: a finding as the last line left it, but for the matches, which are none.
    using Look = std::function<void(ByteView text, Finding& finding)>;
    // For each line with its finding; whether it is selected, all in all.
    using Show = std::function<void(const Line& line, const Finding& finding, bool selected)>;

    // `name` is the command's. With `edits` every file has to be read in full: trouble with one ends the command.
    LineSearch(const Common& common, const MatchOptions& options, const char* name, const std::string& output,
               bool edits);

    const Order& order() const { return order_; }
    LinePrinter& printer() { return printer_; }
    Output& output() { return output_; }
    // The name to show in front of a line; empty for one file alone.
    std::string shownName(const Line& line) const { return options_.files.size() > 1 ? line.file : std::string{}; }
    uint64_t shownNumber(const Line& line) const { return options_.numbers ? line.number : 0; }

    Exit run(const Look& look, const Show& show);

private:
    struct Counts {
        uint64_t lines = 0, selected = 0, matches = 0, faulty = 0;
    };

    void searchOrTell(const std::string& file, const Look& look, const Show& show);
    Counts searchFile(Input& input, const Look& look, const Show& show);
    void tellFault(const Line& line, uint64_t offset, const Finding& finding, Counts& counts);
    void tellCounts(const std::string& file, const Counts& counts);
    void finishJson();
    Exit exit() const;

    const Common& common_;
    const MatchOptions& options_;
    const char* name_;
    bool edits_;
    Session session_;
    Order order_;
    LineEnd end_;
    Progress progress_;
    Output output_;
    LinePrinter printer_;
    JsonWriter json_;
    bool anySelected_ = false;
    bool anyFault_ = false;
    bool anyTrouble_ = false;
};

}  // namespace nls::tool
