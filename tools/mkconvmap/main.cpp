// mkconvmap: compiles the descriptions under data/ into convmap.cp.
#include <unicode/uclean.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <fstream>

#include "tools/mkconvmap/compile.hpp"

namespace {

int run(const std::string& list, const std::string& output) {
    using namespace nls::mkconvmap;
    const CompiledMap map = compileMap(readMap(list));
    const std::vector<unsigned char> image = map.file.build();
    std::ofstream{output, std::ios::binary}.write(reinterpret_cast<const char*>(image.data()), image.size());
    std::printf("%zu entries, %zu bytes\n", map.file.entries().size(), image.size());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Compiles descriptions of charsets into a convmap.cp data file."};
    std::string list, output;
    app.add_option("LIST", list)->required();
    app.add_option("-o,--output", output)->required();
    CLI11_PARSE(app, argc, argv);
    try {
        return run(list, output);
    } catch (const nls::mkconvmap::DescriptionError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
