// Growing room for bytes that a conversion writes: growing leaves the new bytes as they are.
#pragma once

#include <cstring>
#include <memory>

#include "core/base/views.hpp"

namespace nls::tool {

class ByteBuffer {
public:
    ByteView view() const { return {bytes_.get(), size_}; }
    std::size_t size() const { return size_; }
    void clear() { size_ = 0; }

    // Room for `count` more bytes behind those in use.
    unsigned char* reserve(std::size_t count) {
        if (size_ + count > capacity_) {
            const std::size_t capacity = std::max(capacity_ * 2, size_ + count);
            std::unique_ptr<unsigned char[]> larger{new unsigned char[capacity]};
            if (size_ != 0) std::memcpy(larger.get(), bytes_.get(), size_);
            bytes_ = std::move(larger);
            capacity_ = capacity;
        }
        return bytes_.get() + size_;
    }
    // REQUIRES: reserved before, and written.
    void grow(std::size_t count) { size_ += count; }

    // Takes away the first bytes. REQUIRES: count <= size().
    void dropFront(std::size_t count) {
        if (count != 0 && count != size_) std::memmove(bytes_.get(), bytes_.get() + count, size_ - count);
        size_ -= count;
    }
    void append(ByteView bytes) {
        if (bytes.empty()) return;
        std::memcpy(reserve(bytes.size()), bytes.data(), bytes.size());
        size_ += bytes.size();
    }

private:
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

inline bool sameBytes(ByteView a, ByteView b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

}  // namespace nls::tool
