#include <gtest/gtest.h>

#include "convmap/file_reader.hpp"

namespace {

uint32_t answer;
int calls;
uint64_t lastPlace;

uint32_t readFixed(uint32_t fileHandle, uint32_t offset, void*, uint32_t length) {
    ++calls;
    lastPlace = uint64_t{fileHandle} << 32 | offset;
    return answer == 0xFFFF ? length : answer;
}

TEST(FileReader, TakesExactlyTheBytesAskedForOrFails) {
    const nls::FileReader file{readFixed, 77};
    unsigned char buffer[64];
    constexpr uint64_t kEnd = uint64_t{1} << 32;
    const struct {
        const char* why;
        uint64_t offset;
        std::size_t length;
        uint32_t answer;  // FFFF: what was asked for
        bool called, read;
    } rows[] = {
        {"all of it", 5, 64, 0xFFFF, true, true},
        {"one less", 5, 64, 63, true, false},
        {"none", 5, 64, 0, true, false},
        {"one more", 5, 64, 65, true, false},
        {"an error as -1", 5, 64, 0xFFFFFFFF, true, false},
        {"up to the last position", kEnd - 64, 64, 0xFFFF, true, true},
        {"past it", kEnd - 63, 64, 0xFFFF, false, false},
        {"behind it", kEnd + 5, 1, 0xFFFF, false, false},
    };
    for (const auto& row : rows) {
        answer = row.answer;
        calls = 0;
        EXPECT_EQ(file.read(row.offset, {buffer, row.length}), row.read) << row.why;
        EXPECT_EQ(calls, row.called ? 1 : 0) << row.why;
        if (row.called) {
            EXPECT_EQ(lastPlace, uint64_t{77} << 32 | row.offset) << row.why;
        }
    }
}

}  // namespace
