// mkconvmap: compiles the descriptions under data/ into convmap.cp.
//
// The file appears under its name only when it is whole and the library has read it back as described.
// Exit codes: 0 done, 1 a description that is refused, 2 usage, 4 file trouble.
#include <unicode/uclean.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tools/mkconvmap/compile.hpp"
#include "tools/mkconvmap/read_back.hpp"
#include "tools/mkconvmap/report.hpp"

namespace {

using namespace nls::mkconvmap;
using Image = std::vector<unsigned char>;

enum ExitCode { kDone = 0, kRefused = 1, kUsage = 2, kFileTrouble = 4 };

struct Options {
    std::string list;
    std::filesystem::path output;
    std::filesystem::path listing;
};

class FileTrouble : public std::runtime_error {
public:
    FileTrouble(const std::filesystem::path& file, const std::string& what)
        : std::runtime_error(file.string() + ": " + what) {}
};

void write(const std::filesystem::path& file, const void* bytes, std::size_t count) {
    std::ofstream stream{file, std::ios::binary | std::ios::trunc};
    stream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    stream.close();
    if (!stream) throw FileTrouble(file, "the file can't be written");
}

Image read(const std::filesystem::path& file) {
    std::ifstream stream{file, std::ios::binary};
    Image image{std::istreambuf_iterator<char>{stream}, {}};
    if (stream.bad() || !stream.is_open()) throw FileTrouble(file, "the file can't be read back");
    return image;
}

// The file under a name of its own until it is known to be good; it goes away if it isn't.
class Draft {
public:
    explicit Draft(const std::filesystem::path& output) : output_(output), draft_(output.string() + ".new") {}
    ~Draft() {
        std::error_code ignored;
        std::filesystem::remove(draft_, ignored);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const std::filesystem::path& path() const { return draft_; }
    void publish() const {
        std::error_code error;
        std::filesystem::rename(draft_, output_, error);
        if (error) throw FileTrouble(output_, error.message());
    }

private:
    std::filesystem::path output_, draft_;
};

void compile(const Options& options) {
    const CompiledMap map = compileMap(readMap(options.list));
    const Image image = map.file.build();
    const Draft draft{options.output};
    write(draft.path(), image.data(), image.size());
    const ArenaUse use = readBack(map, read(draft.path()));
    if (!options.listing.empty()) {
        const std::string listing = listingOf(map, image, use);
        write(options.listing, listing.data(), listing.size());
    }
    draft.publish();
    std::fputs(summaryOf(map, image, use).c_str(), stdout);
}

int run(const Options& options) {
    try {
        compile(options);
        return kDone;
    } catch (const UnreadableFile& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return kFileTrouble;
    } catch (const DescriptionError& error) {
        std::fprintf(stderr, "%s\n", error.what());
    } catch (const ReadBackError& error) {
        std::fprintf(stderr, "%s: the library misreads the finished file: %s\n", options.list.c_str(), error.what());
    } catch (const FileTrouble& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return kFileTrouble;
    }
    return kRefused;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Compiles descriptions of charsets, collations and case tables into a data file."};
    Options options;
    app.add_option("LIST", options.list, "What goes into the file, in order")->required();
    app.add_option("-o,--output", options.output, "The data file to write")->required();
    app.add_option("--listing", options.listing, "Write one line for each entry to this file");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kUsage;
    }
    const int code = run(options);
    u_cleanup();
    return code;
}
