// A data file in memory behind a read callback, which can be told to fail.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "nls/base.h"

namespace nls::test {

class MemoryFile {
public:
    explicit MemoryFile(std::vector<unsigned char> content) : bytes(std::move(content)) {
        auto& files = openFiles();
        const auto slot = std::find(files.begin(), files.end(), nullptr);
        if (slot == files.end()) std::abort();
        *slot = this;
        handle_ = static_cast<uint32_t>(slot - files.begin());
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { openFiles()[handle_] = nullptr; }

    uint32_t handle() const { return handle_; }

    // The callback: as much as the file has, one byte less on the read `cutRead`, `answerOver` too many on top.
    static uint32_t read(uint32_t fileHandle, uint32_t offset, void* buffer, uint32_t length) {
        MemoryFile& file = *openFiles().at(fileHandle);
        const int number = file.reads++;
        if (file.onRead != nullptr) file.onRead(file.onReadArgument);
        const std::size_t size = file.bytes.size();
        std::size_t count = offset >= size ? 0 : std::min<std::size_t>(length, size - offset);
        if (number == file.cutRead && count != 0) --count;
        if (count != 0) std::memcpy(buffer, file.bytes.data() + offset, count);
        return static_cast<uint32_t>(count) + (number == file.overRead ? 1 : 0);
    }

    std::vector<unsigned char> bytes;
    int reads = 0;
    int cutRead = -1;   // number of the read that comes a byte short
    int overRead = -1;  // number of the read that answers a byte too many
    void (*onRead)(void* argument) = nullptr;
    void* onReadArgument = nullptr;

private:
    static std::array<MemoryFile*, 8>& openFiles() {
        static std::array<MemoryFile*, 8> files = {};
        return files;
    }

    uint32_t handle_ = 0;
};

}  // namespace nls::test
