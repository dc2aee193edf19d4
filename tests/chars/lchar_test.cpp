#include "chars/lchar.hpp"

#include <gtest/gtest.h>

#include "nls/chars.h"
#include "nls/status.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace {

using nls::test::HandLocale;

TEST(LChar, ReadsEveryShortStringInsideItsPage) {
    nls::test::GuardedBuffer page{16};
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        nls::test::forAllStrings(nls::test::edgeBytes, 4, [&](const std::string& text) {
            const unsigned char* const start = page.atEnd(text.c_str(), text.size() + 1);
            std::size_t want = 0;
            uint32_t value = 0;
            if (!text.empty()) {
                const std::size_t trails = charset.attrib.lengthMap[*start] & 7U;
                for (; want < text.size() && want <= trails; ++want) value = value * 256 + start[want];
                if (trails > 3) value = '?';
            }
            const unsigned char* place = start;
            uint32_t lchar = 1;
            const nlsStatus status = nlsCharToLChar(locale.get(), nullptr, &place, &lchar);
            ASSERT_EQ(lchar, value) << charset.name;
            ASSERT_EQ(place, start + want) << charset.name;
            ASSERT_EQ(status, want == text.size() ? NLS_END_OF_STRING : NLS_OK);
        });
    }
}

struct Written {
    nlsStatus status;
    uint16_t count;
    std::ptrdiff_t moved;
    std::string bytes;  // of the target, which begins as three of 0x07
    bool operator==(const Written&) const = default;
};

Written write(HandLocale& locale, uint32_t lchar) {
    unsigned char target[4] = {7, 7, 7, 7};
    unsigned char* place = target;
    uint16_t count = 99;
    const nlsStatus status = nlsLCharToChar(locale.get(), nullptr, lchar, &place, &count);
    EXPECT_EQ(target[3], 7) << std::hex << lchar;
    return {status, count, place - target, std::string(target, target + 3)};
}

// The write as it is told, step by step.
Written slowWrite(const nlsAttribStruct& attrib, uint32_t lchar) {
    const Written refused{17, 0, 0, "\7\7\7"};
    if (lchar <= 0xFF) {
        if (lchar >= 0x80 && (attrib.flags & 8) != 0) return refused;
        return {0, 1, 1, std::string(1, static_cast<char>(lchar)) + "\7\7"};
    }
    const bool two = lchar >= 0x100 && lchar <= 0xFFFE;
    const bool three = lchar >= 0xE08080 && lchar <= 0xEFBFC0;
    if ((!two && !three) || (attrib.flags & (2 | 8)) == 0) return refused;
    std::string bytes;
    if (three) bytes += static_cast<char>(lchar / 65536);
    bytes += static_cast<char>(lchar / 256 % 256);
    bytes += static_cast<char>(lchar % 256);
    const auto count = static_cast<uint16_t>(bytes.size());
    const std::string target = (bytes + "\7").substr(0, 3);
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if ((attrib.lengthMap[at(0)] & 7) + 1 != count) return {17, 0, 0, target};
    for (std::size_t i = 1; i < count; ++i) {
        if (attrib.trailMap[at(i)] == 0) return {17, count, 0, target};
    }
    return {0, count, count, target};
}

TEST(LChar, WritesEveryValueAsTold) {
    std::vector<uint32_t> values;
    for (uint32_t value = 0; value <= 0x10100; ++value) values.push_back(value);
    for (uint32_t value = 0xE00000; value < 0xF00000; value += 0x3F) values.push_back(value);
    for (const uint32_t edge : {0xE08080U, 0xEFBFC0U, 0x1000000U, 0xF09F9880U}) {
        for (uint32_t value = edge - 2; value != edge + 3; ++value) values.push_back(value);
    }
    values.push_back(UINT32_MAX);
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        for (const uint32_t value : values) {
            ASSERT_EQ(write(locale, value), slowWrite(charset.attrib, value)) << charset.name << std::hex << value;
        }
    }
}

}  // namespace
