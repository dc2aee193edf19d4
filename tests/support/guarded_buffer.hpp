// A buffer that ends at a page which faults, and begins behind one: a read or a write past either end ends the test.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace nls::test {

class GuardedBuffer {
public:
    // Room for `capacity` bytes between two pages without access.
    explicit GuardedBuffer(std::size_t capacity)
        : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))), pages_((capacity + page_ - 1) / page_ + 1) {
        void* const block = mmap(nullptr, (pages_ + 2) * page_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED) std::abort();
        block_ = static_cast<unsigned char*>(block);
        if (mprotect(block_ + page_, pages_ * page_, PROT_READ | PROT_WRITE) != 0) std::abort();
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer() { munmap(block_, (pages_ + 2) * page_); }

    // The last `size` bytes in front of the faulting page.
    unsigned char* atEnd(std::size_t size) { return block_ + (pages_ + 1) * page_ - size; }
    unsigned char* atEnd(const void* bytes, std::size_t size) {
        if (size != 0) std::memcpy(atEnd(size), bytes, size);
        return atEnd(size);
    }
    // The first bytes behind the faulting page.
    unsigned char* atStart() { return block_ + page_; }

private:
    std::size_t page_;
    std::size_t pages_;
    unsigned char* block_;
};

}  // namespace nls::test
