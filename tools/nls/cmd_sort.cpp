#include <cstdlib>

#include "tools/nls/commands.hpp"
#include "tools/nls/external_sort.hpp"
#include "tools/nls/json.hpp"
#include "tools/nls/line_reader.hpp"
#include "tools/nls/order_options.hpp"
#include "tools/nls/output.hpp"

namespace nls::tool {
namespace {

constexpr uint64_t mebibyte = uint64_t{1} << 20;

struct Options {
    OrderOptions order;
    std::vector<std::string> fields;
    std::string separator;
    std::string output;
    std::string folder;
    std::vector<std::string> files;
    uint64_t memory = 256 * mebibyte;
    bool unique = false;
    bool reverse = false;
    bool keys = false;
    bool zero = false;
};

std::vector<FieldRange> rangesOf(const std::vector<std::string>& texts) {
    std::vector<FieldRange> ranges;
    ranges.reserve(texts.size());
    for (const std::string& text : texts) ranges.push_back(parseFieldRange(text));
    return ranges;
}

std::string temporaryFolder(const std::string& given) {
    const char* const named = std::getenv("TMPDIR");
    return !given.empty() ? given : named != nullptr && *named != 0 ? named : "/tmp";
}

class Sort {
public:
    Sort(const Common& common, const Options& options)
        : common_(common),
          options_(options),
          session_(findDataFile(common.dataFile)),
          order_(session_, options.order.order, options.order.mode()),
          cutter_(order_.charset(), options.separator, rangesOf(options.fields)),
          end_(lineEndOf(order_.charset(), options.zero)),
          keyMaker_(order_),
          lineOrder_(order_, cutter_, options.reverse, options.keys ? &keyMaker_ : nullptr),
          progress_(workOf(options), !common.json),
          sort_(lineOrder_, options.unique, options.memory, temporaryFolder(options.folder), progress_),
          output_(options.output) {}

    Exit run() {
        for (const std::string& file : options_.files) readFile(file);
        uint64_t written = 0;
        sort_.finish([&](const SortedLine& line) {
            output_.write(line.line());
            ++written;
        });
        output_.keep();
        progress_.hide();
        if (common_.json) tellJson(written);
        return Exit::done;
    }

private:
    // Every byte once for the reading, and once for each time it comes back from a temporary file.
    static uint64_t workOf(const Options& options) {
        const uint64_t total = totalSize(options.files);
        return total * (1 + ExternalSort::passes(total, options.memory));
    }

    void readFile(const std::string& file) {
        Input input{file};
        LineReader reader{input, end_, progress_};
        unsigned char usedEnd = end_.usual;
        while (const std::optional<ByteView> line = reader.next()) {
            refuseUncomparable(*line, reader, input, order_.charset(), end_);
            if (end_.isEnd(line->back())) {
                usedEnd = line->back();
                sort_.add(*line);
            } else {
                addWithEnd(*line, usedEnd);
            }
        }
    }

    // The last line of a file may lack its end, which it needs where it goes.
    void addWithEnd(ByteView line, unsigned char end) {
        ByteBuffer whole;
        whole.append(line);
        whole.append({&end, 1});
        sort_.add(whole.view());
    }

    // Beside text on the standard output the answer goes to the standard error.
    void tellJson(uint64_t written) const {
        JsonWriter json;
        json.open('{').member("command", "sort").member("order", std::string_view(order_.name()));
        json.member("mode", std::string_view(options_.order.fold)).member("output", std::string_view(output_.name()));
        json.member("lines", sort_.lineCount()).member("written", written).member("keyed", sort_.keyedCount());
        json.member("runs", static_cast<uint64_t>(sort_.runCount())).member("exit", int64_t{0}).close('}');
        std::fprintf(output_.isStandardOutput() ? stderr : stdout, "%s\n", json.text().c_str());
    }

    const Common& common_;
    const Options& options_;
    Session session_;
    Order order_;
    FieldCutter cutter_;
    LineEnd end_;
    KeyMaker keyMaker_;
    LineOrder lineOrder_;
    Progress progress_;
    ExternalSort sort_;
    Output output_;
};

constexpr const char* footer =
    "The order is the library's, one comparison deciding for each two lines, but that blanks at the end of a line or "
    "field are cut off first; they never count in it. Equal lines stay as they came. "
    "Sorting does not look at whether text is valid; nls check does.\n"
    "What does not fit in the memory goes through temporary files, in the folder of --temp, else TMPDIR, else /tmp. A "
    "line takes 48 bytes and its own length, with --keys its key besides.\n"
    "--keys makes a sort key of each line once and compares these. The order is the same: where keys can't be relied "
    "on for it (Thai, a site's own sort, a text longer than a key can tell), texts are compared as without it.\n"
    "\n"
    "Examples:\n"
    "  nls sort -l 1252/swedish names.txt\n"
    "  nls sort -l ISO8859-1/german -f fold -u -o names names     in place, each name once\n"
    "  nls sort -l 1251/russian -t ';' -k 3 -k 1 people.csv       by the third field, then by the first\n"
    "  nls sort -l UTF-8 --keys --memory 2G -o sorted big.txt\n"
    "  nls convert -t 1250 names | nls sort -l 1250/czech | nls convert -f 1250\n";

}  // namespace

void addSort(const Command& program, const Common& common) {
    Command command = program.add("sort", "sort the lines of text by a collation");
    auto options = std::make_shared<Options>();
    addOrderOptions(command, options->order);
    command
        .option("-k,--field", options->fields,
                "sort by the Nth field, from 1, or by the fields N to M; what is equal by the first -k is "
                "told apart by the next")
        .shownAs("N[,M]")
        .oneForEachUse();
    command
        .option("-t,--separator", options->separator,
                "the text between two fields, as UTF-8 or \\t; without it runs of blanks and tabs")
        .shownAs("SEP");
    command.flag("-u,--unique", options->unique, "of lines that are equal write the first alone");
    command.flag("-r,--reverse", options->reverse, "the last first");
    command.flag("--keys", options->keys, "compare by sort keys: faster for much text, and takes more memory");
    command.flag("-z,--zero", options->zero, "lines end with a NUL");
    command.output(options->output);
    command.option("--memory", options->memory, "memory for lines, such as 64M or 2G; default: 256M")
        .shownAs("SIZE")
        .bytesFromTo(uint64_t{1} << 16, uint64_t{1} << 40);
    command.option("--temp", options->folder, "the folder for temporary files").shownAs("FOLDER");
    command.files(options->files, "files, sorted as one; - or none: standard input");
    command.footer(footer);
    command.runs([&common, options] { return Sort(common, *options).run(); });
}

}  // namespace nls::tool
