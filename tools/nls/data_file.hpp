// Finding and reading convmap.cp.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace nls::tool {

// Where this program's file stands; empty if the system doesn't tell.
std::filesystem::path programFolder();

// The data file to use: `given` if it isn't empty; else the file that the environment's ZELCONV names; else convmap.cp
// in the directory that QRD names, if it is there; else the one of this program's own installation or build. Throws
// where there is none, and tells the places.
std::string findDataFile(const std::string& given);

// An open file, closed at the end of the scope. Throws if it can't be opened.
class OpenFile {
public:
    explicit OpenFile(const std::string& path);
    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return descriptor_; }
    const std::string& path() const { return path_; }

private:
    std::string path_;
    int descriptor_;
};

// A read callback of the library: `fileHandle` is a descriptor.
extern "C" uint32_t nlsToolRead(uint32_t fileHandle, uint32_t offset, void* buffer, uint32_t length);

}  // namespace nls::tool
