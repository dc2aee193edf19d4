// nls words: text cut into words by the word-break table of a stored collation.
#include <algorithm>

#include "tools/nls/commands.hpp"
#include "tools/nls/line_reader.hpp"
#include "tools/nls/order_options.hpp"
#include "tools/nls/output.hpp"
#include "tools/nls/stored_locale.hpp"

namespace nls::tool {
namespace {

struct Options {
    std::string record, order, output;
    std::string fold = "exact";
    std::vector<std::string> files;
    bool zero = false;

    uint16_t mode() const { return fold == "fold" ? 0 : 1; }
};

// The record, or its words with the tables of another order.
stored::StoredCollation takeRecord(Session& session, const Options& options) {
    stored::StoredCollation stored = readStored(options.record);
    if (stored.wordBreak.empty()) throw Failure(Exit::badInput, "the record has no word-break table");
    if (options.order.empty()) return stored;
    constexpr int32_t longForm = NLS_LAST_SHORT_FORMAT + 1;
    const Order order{session, options.order, Fold::exact};
    const nlsStatus status = stored::takeFrom(*order.locale(), longForm, stored);
    if (status == NLS_OK) return stored;
    throw Failure(Exit::fileTrouble, order.name() + " can't be stored (status " + std::to_string(status) + ")");
}

class Words {
public:
    Words(const Common& common, const Options& options)
        : options_(options),
          session_(findDataFile(common.dataFile)),
          opened_(session_, takeRecord(session_, options)),
          charset_(session_, opened_.locale()->charsetName, TextCharset::Tables::ifAny),
          end_(lineEndOf(charset_, options.zero)),
          progress_(totalSize(options.files), !common.json),
          output_(options.output) {
        if (charset_.form() == TextCharset::Form::units16 || charset_.form() == TextCharset::Form::units32) {
            throw Failure(Exit::usage,
                          "text in " + charset_.name() + " can't be cut by lines; convert it to UTF-8 first");
        }
        uint32_t needed = 0;
        if (nlsIsSortNeeded(opened_.locale(), nullptr, &needed) == NLS_OK) areKeys_ = needed == 0;
    }

    Exit run() {
        for (const std::string& file : options_.files) {
            Input input{file};
            LineReader reader{input, end_, progress_};
            while (const std::optional<ByteView> line = reader.next()) {
                cutLine(line->first(line->size() - (end_.isEnd(line->back()) ? 1 : 0)));
            }
        }
        output_.keep();
        if (truncated_ == 0) return Exit::done;
        std::fprintf(stderr, "nls: %llu words were longer than 184 bytes, and are cut there\n",
                     static_cast<unsigned long long>(truncated_));
        return Exit::loss;
    }

private:
    // The library's texts end at a NUL, and so does a word.
    void cutLine(ByteView line) {
        while (!line.empty()) {
            const auto size = static_cast<std::size_t>(std::find(line.begin(), line.end(), 0) - line.begin());
            constexpr unsigned char nul[] = {0};
            text_.clear();
            text_.append(line.first(size));
            text_.append(nul);
            cutText();
            line = line.subspan(std::min(size + 1, line.size()));
        }
    }

    void cutText() {
        const unsigned char* cursor = text_.view().data();
        unsigned char word[4096];
        for (;;) {
            uint32_t length = 0;
            const nlsStatus status = nlsGetNextWord(opened_.locale(), nullptr, &cursor, options_.mode(), word,
                                                    int32_t{sizeof word}, &length);
            if (status == NLS_END_OF_STRING) return;
            if (status == NLS_WORD_TRUNCATED) ++truncated_;
            if (status != NLS_OK && status != NLS_WORD_TRUNCATED) {
                throw Failure(Exit::fileTrouble, "a word can't be cut (status " + std::to_string(status) + ")");
            }
            write({word, length});
        }
    }

    void write(ByteView word) {
        if (!areKeys_) {
            output_.write(word);
            output_.write({&end_.usual, 1});
            return;
        }
        std::string text;
        for (const unsigned char byte : word) text += {"0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]};
        text += '\n';
        output_.write({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    }

    const Options& options_;
    Session session_;
    StoredLocale opened_;
    TextCharset charset_;
    LineEnd end_;
    Progress progress_;
    Output output_;
    ByteBuffer text_;
    uint64_t truncated_ = 0;
    bool areKeys_ = false;
};

}  // namespace

void addWords(const Command& program, const Common& common) {
    Command command = program.add("words", "cut text into words, by a stored collation's word-break table");
    auto options = std::make_shared<Options>();
    command.option("--record", options->record, "the stored collation, as nls db export --word-break writes it")
        .shownAs("FILE")
        .required();
    command.option("-l,--order", options->order, "the charset and the collation, in place of those of the record")
        .shownAs("CHARSET/COLLATION");
    command.option("-f,--mode", options->fold, "of keys: exact, or fold: capitals and small letters are the same")
        .shownAs("MODE")
        .oneOf({"exact", "fold"})
        .showsDefault();
    command.flag("-z,--zero", options->zero, "lines end with a NUL, and words as well");
    command.output(options->output);
    command.files(options->files, "files; - or none: standard input");
    command.footer(
        "Each line is a text of its own; each word is written as a line. Where the charset is UTF-8, or the kind of "
        "the "
        "table 8 or more, a word is its sort key, in hex digits.\n"
        "Exit codes: 1 the record is damaged or has no table; 3 a word was longer than 184 bytes, and is cut.\n"
        "\n"
        "Example:\n"
        "  nls db export -l 1252/german --word-break table.bin -o german.nlscoll\n"
        "  nls words --record german.nlscoll in.txt\n");
    command.runs([&common, options] {
        try {
            return Words(common, *options).run();
        } catch (const Failure& failure) {
            // A record's names don't stand on the command line.
            if (failure.code() != Exit::usage || !options->order.empty()) throw;
            throw Failure(Exit::fileTrouble, options->record + ": " + failure.what());
        }
    });
}

}  // namespace nls::tool
