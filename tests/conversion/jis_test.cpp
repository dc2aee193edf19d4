// Shift-JIS and EUC by rule: the published rule itself, and sizes below one. Whole texts of any size, at each level of
// the processor: tests/real.
#include <gtest/gtest.h>

#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/reference/jis.hpp"

namespace nls {
namespace {

TEST(Jis, RuleOnPublishedPairsAndAllOthers) {
    constexpr uint32_t rows[][4] = {{0x88, 0x9F, 0x30, 0x21}, {0x81, 0x40, 0x21, 0x21}, {0xE0, 0x40, 0x5F, 0x21},
                                    {0x81, 0x7E, 0x21, 0x5F}, {0x81, 0x80, 0x21, 0x60}, {0xEF, 0xFC, 0x7E, 0x7E}};
    for (const auto& [s1, s2, j1, j2] : rows) {
        uint32_t first = s1, second = s2;
        sjis2jis(&first, &second);
        EXPECT_EQ(first << 8 | second, j1 << 8 | j2) << s1 << " " << s2;
        jis2sjis(&first, &second);
        EXPECT_EQ(first << 8 | second, s1 << 8 | s2);
    }
    for (uint32_t pair = 0; pair < 0x10000; ++pair) {
        uint32_t first = pair >> 8, second = pair & 0xFF, wantFirst = first, wantSecond = second;
        sjis2jis(&first, &second);
        reference::sjisToJis(wantFirst, wantSecond);
        ASSERT_EQ(first << 8 | second, wantFirst << 8 | wantSecond) << pair;
        first = wantFirst = pair >> 8, second = wantSecond = pair & 0xFF;
        jis2sjis(&first, &second);
        reference::jisToSjis(wantFirst, wantSecond);
        ASSERT_EQ(first << 8 | second, wantFirst << 8 | wantSecond) << pair;
    }
}

TEST(Jis, SizesBelowOne) {
    uint32_t outLen = 7;
    EXPECT_EQ(ccSJIS2EUCBytes(nullptr, 0, nullptr, 0, &outLen), NLS_OK);
    EXPECT_EQ(outLen, 0U);
    const unsigned char text[] = "a";
    unsigned char target[4] = {0x5A};
    EXPECT_EQ(ccEUC2SJISBytes(target, -3, text, 1, &outLen), NLS_BUF_SMALL);
    EXPECT_EQ(ccSJIS2EUCBytes(target, 4, text, -1, &outLen), NLS_BAD_ARG);
    EXPECT_EQ(outLen, 0U);
    EXPECT_EQ(target[0], 0x5A);
}

}  // namespace
}  // namespace nls
