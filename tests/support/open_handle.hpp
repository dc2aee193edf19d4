// A handle on a data file in memory, with its block and its buffers.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "nls/handle.h"
#include "nls/objects.h"
#include "tests/support/memory_file.hpp"

namespace nls::test {

class OpenHandle {
public:
    static constexpr int32_t kPlenty = 1 << 20;

    explicit OpenHandle(std::vector<unsigned char> content, int32_t blockSize = kPlenty) : file(std::move(content)) {
        open(blockSize);
    }
    explicit OpenHandle(int32_t blockSize, std::vector<unsigned char> content, int cutRead) : file(std::move(content)) {
        file.cutRead = cutRead;
        open(blockSize);
    }

    bool isOpen() const { return handle != nullptr; }

    // A buffer of its own allocation, so that the sanitizer sees its end.
    nlsStatus grow(int32_t size = NLS_SMALLEST_BUFFER) {
        buffers_.emplace_back(static_cast<std::size_t>(size), static_cast<unsigned char>(kDirt));
        return nlsAddBuffer(handle, buffers_.back().data(), size);
    }

    // The locale without a collation; null where it can't be made.
    nlsLocale* locale(const char* charset) {
        nlsLocale* made = nullptr;
        return nlsCreateLocale(handle, charset, NLS_NO_COLLATION, nullptr, &made) == NLS_OK ? made : nullptr;
    }
    // Null where a locale or the conversion can't be made.
    nlsConversion* conversion(const char* from, const char* to) {
        nlsLocale* const source = locale(from);
        nlsLocale* const target = locale(to);
        nlsConversion* made = nullptr;
        if (source == nullptr || target == nullptr) return nullptr;
        return nlsCreateConversion(handle, source, target, &made) == NLS_OK ? made : nullptr;
    }

    MemoryFile file;
    nlsHandle* handle = nullptr;
    nlsStatus status = NLS_OK;

private:
    static constexpr uint64_t kDirt = 0xA5A5A5A5A5A5A5A5;  // what the library has to clear

    void open(int32_t blockSize) {
        block_.resize((static_cast<std::size_t>(blockSize) + 7) / 8, kDirt);
        status = nlsInit(file.handle(), block_.data(), blockSize, MemoryFile::read, &handle);
    }

    std::vector<uint64_t> block_;
    std::deque<std::vector<unsigned char>> buffers_;
};

}  // namespace nls::test
