// Runs a fuzz target over the files and folders given as arguments: its kept corpus, or inputs that once failed. This
// stands in for libFuzzer where the compiler has none.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace {

std::size_t runs = 0;

void runFile(const std::filesystem::path& path) {
    std::ifstream file{path, std::ios::binary};
    const std::vector<char> bytes{std::istreambuf_iterator<char>{file}, {}};
    std::fprintf(stderr, "%s: %zu bytes\n", path.c_str(), bytes.size());  // the last line names what fails
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    ++runs;
}

}  // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        if (std::filesystem::is_directory(arguments[i])) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator{arguments[i]})
                if (entry.is_regular_file()) runFile(entry.path());
        } else {
            runFile(arguments[i]);
        }
    }
    if (runs == 0) {
        std::fprintf(stderr, "usage: %s FILE-OR-FOLDER...\n", arguments[0]);
        return 2;
    }
    std::fprintf(stderr, "%zu inputs\n", runs);
    return 0;
}
