#include <algorithm>
#include <charconv>

#include "tools/nls/commands.hpp"
#include "tools/nls/input.hpp"
#include "tools/nls/line_reader.hpp"
#include "tools/nls/output.hpp"

namespace nls::tool {
namespace {

constexpr int64_t longestLine = INT32_MAX;

struct Options {
    std::string charset = "UTF-8";
    std::string bytes;
    std::string output;
    std::vector<std::string> files;
    bool zero = false;
};

// Bytes of a line; the first is 1.
struct Range {
    int64_t start, count;
};

std::optional<int64_t> numberOf(std::string_view text) {
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || number < 0) return std::nullopt;
    return std::min(number, longestLine);
}

// START,COUNT, or START for all from there on.
Range parseRange(const std::string& text) {
    const std::size_t comma = text.find(',');
    const std::optional<int64_t> start = numberOf(text.substr(0, comma));
    const std::optional<int64_t> count = comma == std::string::npos ? longestLine : numberOf(text.substr(comma + 1));
    if (!start || *start == 0 || !count) {
        throw Failure(Exit::usage, "\"" + text + "\" is no range: START,COUNT in bytes, the first of a line being 1");
    }
    return {*start, *count};
}

class Cut {
public:
    Cut(const Common& common, const Options& options)
        : options_(options),
          range_(parseRange(options.bytes)),
          session_(findDataFile(common.dataFile)),
          charset_(session_, options.charset, TextCharset::Tables::ifAny),
          end_(lineEndOf(charset_, options.zero)),
          progress_(totalSize(options.files), !common.json),
          output_(options.output) {
        if (charset_.form() == TextCharset::Form::units16 || charset_.form() == TextCharset::Form::units32) {
            throw Failure(Exit::usage,
                          "text in " + charset_.name() + " can't be cut by lines; convert it to UTF-8 first");
        }
    }

    Exit run() {
        for (const std::string& file : options_.files) {
            Input input{file};
            LineReader reader{input, end_, progress_};
            while (const std::optional<ByteView> line = reader.next()) cutLine(*line);
        }
        output_.keep();
        return Exit::done;
    }

private:
    void cutLine(ByteView line) {
        const std::size_t size = line.size() - (end_.isEnd(line.back()) ? 1 : 0);
        cutText(line.first(size));
        output_.write(line.subspan(size));
    }

    // The library's texts end at a NUL. One inside a line is a character like any other.
    void cutText(ByteView text) {
        const int64_t behind = range_.start + range_.count;
        for (int64_t done = 0;;) {  // bytes of the line in front of `text`
            const std::size_t size = untilNul(text);
            const int64_t first = std::max<int64_t>(range_.start - done, 1);
            cutPiece(text.first(size), first, behind - done - first);
            if (size == text.size()) return;
            done += static_cast<int64_t>(size) + 1;
            if (done >= range_.start && done < behind) output_.write(text.subspan(size, 1));
            text = text.subspan(size + 1);
        }
    }
    static std::size_t untilNul(ByteView text) {
        return static_cast<std::size_t>(std::find(text.begin(), text.end(), 0) - text.begin());
    }

    void cutPiece(ByteView piece, int64_t first, int64_t count) {
        const auto size = static_cast<int64_t>(piece.size());
        if (first > size || count < 1) return;
        constexpr unsigned char nul[] = {0};
        source_.clear();
        source_.append(piece);
        source_.append(nul);
        target_.clear();
        nlsStr cut{target_.reserve(piece.size() + 1), static_cast<int32_t>(size) + 1, 0};
        uint32_t chars = 0;
        const nlsStatus status =
            nlsSubstr(charset_.locale(), nullptr, source_.view().data(), static_cast<int32_t>(first),
                      static_cast<int32_t>(std::min(count, size)), &chars, &cut);
        if (status != NLS_OK) {
            throw Failure(Exit::fileTrouble,
                          charset_.name() + ": text can't be cut (status " + std::to_string(status) + ")");
        }
        output_.write({cut.buf, cut.strLength});
    }

    const Options& options_;
    Range range_;
    Session session_;
    TextCharset charset_;
    LineEnd end_;
    Progress progress_;
    Output output_;
    ByteBuffer source_, target_;
};

}  // namespace

void addCut(const Command& program, const Common& common) {
    Command command = program.add("cut", "cut bytes out of lines, but never a character");
    auto options = std::make_shared<Options>();
    command.option("-f,--from-code,--from", options->charset, "the charset").shownAs("CHARSET").showsDefault();
    command.option("-b,--bytes", options->bytes, "from byte START of each line on, at most COUNT bytes, or all")
        .shownAs("START[,COUNT]")
        .required();
    command.flag("-z,--zero", options->zero, "lines end with a NUL");
    command.output(options->output);
    command.files(options->files, "files, written one behind the other; - or none: standard input");
    command.footer(
        "The first byte of a line is 1. A character that lies across either end of the range is left out whole, so no "
        "line has more than COUNT bytes. Whether text is valid isn't looked at; nls check does.\n"
        "\n"
        "Examples:\n"
        "  nls cut -f UTF-8 -b 1,20 names.txt            what fits into a column of 20 bytes\n"
        "  nls cut -f SHIFT-JIS -b 11 in.txt             from the 11th byte on\n");
    command.runs([&common, options] { return Cut(common, *options).run(); });
}

}  // namespace nls::tool
