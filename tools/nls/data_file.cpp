#include "tools/nls/data_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "tools/nls/failure.hpp"

namespace nls::tool {
namespace {

namespace fs = std::filesystem;

const char* environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != 0 ? value : nullptr;
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

// Where share/nls/convmap.cp lies seen from this program: installed as bin/nls, or built as tools/nls/nls.
std::vector<fs::path> besideProgram() {
    const fs::path folder = programFolder();
    if (folder.empty()) return {};
    return {(folder / "../share/nls/convmap.cp").lexically_normal(),
            (folder / "../../share/nls/convmap.cp").lexically_normal()};
}

}  // namespace

fs::path programFolder() {
    std::error_code failed;
    const fs::path program = fs::read_symlink("/proc/self/exe", failed);
    return failed ? fs::path{} : program.parent_path();
}

std::string findDataFile(const std::string& given) {
    if (!given.empty()) return given;
    if (const char* const file = environment("ZELCONV")) return file;
    std::vector<fs::path> places = besideProgram();
    if (const char* const folder = environment("QRD")) places.insert(places.begin(), fs::path(folder) / "convmap.cp");
    std::string tried;
    for (const fs::path& place : places) {
        if (isThere(place)) return place;
        tried += (tried.empty() ? "" : ", ") + place.string();
    }
    throw Failure(Exit::fileTrouble,
                  "no convmap.cp at " + tried + "; name it with -D FILE or in the environment as ZELCONV");
}

OpenFile::OpenFile(const std::string& path) : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) throw fileFailure(path);
}

OpenFile::~OpenFile() {
    close(descriptor_);
}

uint32_t nlsToolRead(uint32_t fileHandle, uint32_t offset, void* buffer, uint32_t length) {
    uint32_t done = 0;
    while (done < length) {
        const ssize_t got = pread(static_cast<int>(fileHandle), static_cast<char*>(buffer) + done, length - done,
                                  static_cast<off_t>(offset) + done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        done += static_cast<uint32_t>(got);
    }
    return done;
}

}  // namespace nls::tool
