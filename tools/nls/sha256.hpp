// The digest SHA-256, as FIPS 180-4 tells it.
// Tested by tests/tools/nls_sort_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/base/views.hpp"

namespace nls::tool {

class Sha256 {
public:
    void add(ByteView bytes);
    // In small hex digits. Nothing may be added afterwards.
    std::string finish();

private:
    void addBlock(const unsigned char* block);

    std::array<uint32_t, 8> state_ = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                      0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
    std::array<unsigned char, 64> block_{};
    uint64_t length_ = 0;  // bytes added so far
};

}  // namespace nls::tool
