#include "tools/nls/commands.hpp"
#include "tools/nls/line_reader.hpp"
#include "tools/nls/order_key.hpp"
#include "tools/nls/order_options.hpp"
#include "tools/nls/output.hpp"

namespace nls::tool {
namespace {

struct Options {
    OrderOptions order;
    std::string output;
    std::vector<std::string> files;
    bool hex = false;
    bool zero = false;
};

class Keys {
public:
    Keys(const Common& common, const Options& options)
        : options_(options),
          session_(findDataFile(common.dataFile)),
          order_(session_, options.order.order, options.order.mode()),
          end_(lineEndOf(order_.charset(), options.zero)),
          progress_(totalSize(options.files), !common.json),
          output_(options.output) {}

    Exit run() {
        for (const std::string& file : options_.files) writeKeys(file);
        output_.keep();
        return Exit::done;
    }

private:
    void writeKeys(const std::string& file) {
        Input input{file};
        LineReader reader{input, end_, progress_};
        while (const std::optional<ByteView> line = reader.next()) {
            refuseUncomparable(*line, reader, input, order_.charset(), end_);
            const bool hasEnd = end_.isEnd(line->back());
            key_.clear();
            if (!librarySortKey(order_, line->first(line->size() - (hasEnd ? 1 : 0)), true, source_, key_)) {
                throw Failure(Exit::badInput,
                              input.name() + ":" + std::to_string(reader.lineNumber()) + ": " + whyNoKey());
            }
            options_.hex ? writeHex() : writeBytes();
        }
    }

    const char* whyNoKey() const {
        return order_.kind() == OrderKind::icu
                   ? "this line has no key: through ICU a text of at most 399 units of UTF-16 has one"
                   : "the key of this line is longer than 32 KiB, more than the library can tell";
    }

    void writeBytes() {
        constexpr unsigned char nul[] = {0};
        key_.append(nul);
        output_.write(key_.view());
    }

    void writeHex() {
        std::string text;
        for (const unsigned char byte : key_.view()) text += {digits[byte >> 4], digits[byte & 15]};
        text += '\n';
        output_.write({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    }

    static constexpr char digits[] = "0123456789ABCDEF";

    const Options& options_;
    Session session_;
    Order order_;
    LineEnd end_;
    Progress progress_;
    Output output_;
    ByteBuffer source_;
    ByteBuffer key_;
};

}  // namespace

void addKey(const Command& program, const Common& common) {
    Command command = program.add("key", "write the sort keys of lines");
    auto options = std::make_shared<Options>();
    addOrderOptions(command, options->order);
    command.flag("--hex", options->hex, "each key as a line of hex digits");
    command.flag("-z,--zero", options->zero, "lines end with a NUL");
    command.output(options->output);
    command.files(options->files, "files; - or none: standard input");
    command.footer(
        "A key is bytes without a NUL, and a NUL behind them: compared byte by byte they stand in the order of the "
        "texts. Blanks at the end of a line don't count.\n"
        "\n"
        "Examples:\n"
        "  nls key -l 1252/swedish --hex names.txt\n"
        "  nls key -l 1252/swedish names.txt | LC_ALL=C sort -z -c     is the file in order?\n");
    command.runs([&common, options] { return Keys(common, *options).run(); });
}

}  // namespace nls::tool
