#include <gtest/gtest.h>

#include "nls/chars.h"
#include "nls/status.h"
#include "tests/support/hand_charsets.hpp"

namespace {

using nls::test::HandLocale;

TEST(CharClass, EveryByteInEveryCharset) {
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        for (unsigned b = 0; b < 256; ++b) {
            const auto byte = static_cast<unsigned char>(b);
            const uint32_t trails = charset.attrib.lengthMap[b] & 7U;
            uint32_t value = 999;
            const nlsStatus kind = nlsGetCharProperty(locale.get(), nullptr, &byte, nullptr, &value);
            if (charset.attrib.alphaMap[b] != 0) {
                EXPECT_TRUE(kind == -1 && value == 1) << charset.name << b;
            } else if (trails != 0) {
                EXPECT_TRUE(kind == -1 && value == trails + 1) << charset.name << b;
            } else if (b >= '0' && b <= '9') {
                EXPECT_TRUE(kind == -2 && value == b - '0') << charset.name << b;
            } else {
                EXPECT_TRUE(kind == 0 && value == b) << charset.name << b;
            }
        }
    }
}

}  // namespace
