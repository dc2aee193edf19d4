#include <gtest/gtest.h>

#include <cstring>

#include "nls/handle.h"
#include "tests/support/guarded_buffer.hpp"

namespace {

TEST(TlsBlock, NullAsksForTheSizeThatIsEnoughAnywhere) {
    uint32_t size = 7;
    nlsTlsBlock other;
    nlsTlsBlock* block = &other;
    EXPECT_EQ(nlsTlsInit(1, nullptr, &size, &block), NLS_BUF_SMALL);
    EXPECT_EQ(size, 48U);
    EXPECT_EQ(block, nullptr);
}

TEST(TlsBlock, StartsAtTheFirstMultipleOf8AndStaysInside) {
    nls::test::GuardedBuffer guarded{72};
    for (uint32_t place = 0; place < 57 * 8; ++place) {
        const uint32_t room = place / 8;
        unsigned char* const buffer = guarded.atEnd(room + place % 8);  // every address modulo 8 comes by
        std::memset(buffer, 0xA5, room);
        const uint32_t pad = (8 - static_cast<uint32_t>(reinterpret_cast<uintptr_t>(buffer) % 8)) % 8;
        uint32_t size = room;
        nlsTlsBlock* block = nullptr;
        const nlsStatus status = nlsTlsInit(0x1122334455667788, buffer, &size, &block);
        if (room < pad + 40) {
            EXPECT_EQ(status, NLS_BUF_SMALL);
            EXPECT_EQ(size, pad + 48);
            EXPECT_EQ(block, nullptr);
            continue;
        }
        ASSERT_EQ(status, NLS_OK);
        EXPECT_EQ(size, room);
        EXPECT_EQ(reinterpret_cast<unsigned char*>(block), buffer + pad);
        nlsTlsBlock expected;
        std::memset(&expected, 0, sizeof expected);
        expected.ownerWord = 0x1122334455667788;
        EXPECT_EQ(std::memcmp(block, &expected, sizeof expected), 0);
        EXPECT_EQ(nlsTlsClose(block), NLS_OK);
    }
    EXPECT_EQ(nlsTlsClose(nullptr), NLS_OK);
}

}  // namespace
