#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "core/base/arena.hpp"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::OpenHandle;

// The same computation with whole numbers: the pad up to the next multiple, and what is left.
struct Books {
    uint64_t address, left;

    bool take(uint64_t size, uint64_t alignment, uint64_t& place) {
        uint64_t pad = 0;
        if (alignment > 1)
            while (((address & 0xFFFFFFFF) + pad) % alignment != 0) ++pad;
        if (pad + size > left) return false;
        place = address + pad;
        address += pad + size;
        left -= pad + size;
        return true;
    }
};

TEST(Arena, KeepsTheBooksOfAnyRequests) {
    std::mt19937 random{7};
    std::vector<unsigned char> buffer(4096);
    for (int round = 0; round < 200; ++round) {
        unsigned char* cursor = buffer.data() + random() % 16;
        auto remaining = static_cast<uint32_t>(random() % 4000);
        Books books{reinterpret_cast<uintptr_t>(cursor), remaining};
        for (int i = 0; i < 60; ++i) {
            const auto size = static_cast<int32_t>(random() % (i % 8 == 0 ? 4000 : 90));
            const uint32_t alignment = std::array<uint32_t, 7>{1, 2, 3, 4, 8, 24, 64}[random() % 7];
            uint64_t place = 0;
            const bool fits = books.take(static_cast<uint64_t>(size), alignment, place);
            void* memory = nullptr;
            ASSERT_EQ(getBufMem(size, alignment, &cursor, &remaining, &memory), fits ? NLS_OK : NLS_BUF_SMALL);
            ASSERT_EQ(reinterpret_cast<uintptr_t>(memory), fits ? place : 0);
            ASSERT_EQ(reinterpret_cast<uintptr_t>(cursor), books.address);
            ASSERT_EQ(remaining, books.left);
        }
    }
}

TEST(Arena, TakesNothingForWhatItCannotServe) {
    alignas(8) unsigned char buffer[64] = {};
    const struct {
        const char* why;
        uint32_t skipped, left;
        int32_t size;
        uint32_t alignment;
        bool served;
    } rows[] = {
        {"exactly what is left", 0, 64, 64, 1, true},
        {"one byte more", 0, 64, 65, 1, false},
        {"the pad counts", 1, 63, 57, 8, false},
        {"with the pad just enough", 1, 63, 56, 8, true},
        {"nothing, of nothing left", 8, 0, 0, 8, true},
        {"nothing, but the pad doesn't fit", 1, 6, 0, 8, false},
        {"a negative size", 0, 64, -1, 1, false},
        {"a negative size that its pad would bring back to 0", 4, 60, -4, 8, false},
        {"the smallest size", 0, 64, INT32_MIN, 8, false},
        {"size and pad past 32 bits", 1, 63, INT32_MAX, 0x80000001U, false},
        {"alignment 0 is any address", 3, 61, 61, 0, true},
    };
    for (const auto& row : rows) {
        unsigned char* cursor = buffer + row.skipped;
        uint32_t remaining = row.left;
        void* memory = buffer;
        EXPECT_EQ(getBufMem(row.size, row.alignment, &cursor, &remaining, &memory), row.served ? 0 : 2) << row.why;
        if (!row.served) {
            EXPECT_TRUE(cursor == buffer + row.skipped && remaining == row.left && memory == buffer) << row.why;
        }
    }
}

TEST(Arena, OfAHandleAnswersWithItsOwnStatus) {
    OpenHandle open{nls::test::smallWorld().build(), 25000};
    void* memory = nullptr;
    EXPECT_EQ(nlsGetMem(open.handle, 3, 1, &memory), NLS_OK);
    const auto left = static_cast<int32_t>(open.handle->freeBytes);
    EXPECT_EQ(nlsGetMem(open.handle, left + 1, 1, &memory), NLS_NO_MEM);
    EXPECT_EQ(nlsGetMem(open.handle, left, 1, &memory), NLS_OK);
    EXPECT_EQ(open.handle->freeBytes, 0U);
    EXPECT_EQ(nlsClose(open.handle), NLS_OK);
    EXPECT_EQ(nlsGetMem(open.handle, 0, 1, &memory), NLS_BAD_HANDLE);
    EXPECT_EQ(nlsGetMem(nullptr, 0, 1, &memory), NLS_BAD_HANDLE);
}

}  // namespace
