// The bump allocator.
//
// An arena is a place of the next free byte and a count of bytes left behind it, both kept by someone else: by a
// handle, for all that lives as long as the handle, or by a caller who builds a table in a buffer of his own. Memory is
// taken by moving the place on; nothing is ever given back. Every byte is zero until it is taken, because whoever
// supplied the buffer cleared it, so a record starts with null pointers and empty names.
//
// Tested by tests/core/arena_test.cpp.
#pragma once

#include <cstdint>
#include <type_traits>

namespace nls {

class Arena {
public:
    Arena(unsigned char*& next, uint32_t& left) : next_(&next), left_(&left) {}

    // `size` bytes at a multiple of `alignment`, or null, and nothing changed, where they aren't left. The alignment is
    // taken of the low 32 bits of the address; 0 counts as 1. Asking for 0 bytes gives a place that isn't null.
    void* take(uint64_t size, uint32_t alignment) const;

    // Bytes that are still free. Some of them may go to alignment.
    uint32_t left() const { return *left_; }

    // One record, or `count` of them in a row; all bytes zero.
    template <typename T>
    T* make() const {
        return array<T>(1);
    }
    template <typename T>
    T* array(uint64_t count) const {
        static_assert(std::is_trivial_v<T>);
        return static_cast<T*>(take(count * sizeof(T), alignof(T)));
    }

private:
    unsigned char** next_;
    uint32_t* left_;
};

}  // namespace nls
