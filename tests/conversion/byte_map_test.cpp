#include "conversion/byte_map.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "core/base/cpu.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/made_tables.hpp"

namespace {

using nls::CpuLevel;
using nls::test::GuardedBuffer;
using Map = std::array<unsigned char, 256>;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};

std::vector<Map> maps() {
    std::mt19937 random{1};
    Map rotated{}, upper = nls::test::identityMap(), any{}, oneOff = nls::test::identityMap();
    for (unsigned c = 0; c < 256; ++c) {
        rotated[c] = static_cast<unsigned char>(c + 1);
        any[c] = static_cast<unsigned char>(random());
        if (c >= 128) upper[c] = static_cast<unsigned char>(c ^ 0x55);
    }
    oneOff[0xB7] = 0xB8;
    return {nls::test::identityMap(), rotated, upper, any, oneOff};
}

std::vector<unsigned char> randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random{seed};
    std::vector<unsigned char> bytes(count);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

class ByteMap : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }
};
INSTANTIATE_TEST_SUITE_P(Levels, ByteMap, testing::ValuesIn(kLevels));

TEST_P(ByteMap, EveryLengthAndAlignmentAtTheEdgeOfMemory) {
    const std::vector<unsigned char> text = randomBytes(400, 2);
    GuardedBuffer source{512}, target{512};
    for (const Map& map : maps())
        for (std::size_t count = 0; count < 300; count += count < 140 ? 1 : 31)
            for (std::size_t shift = 0; shift < 32; shift += count < 66 ? 1 : 13) {
                unsigned char* const from = source.atEnd(count + shift);
                unsigned char* const to = target.atEnd(count + shift);
                std::memcpy(from, text.data() + shift, count);
                std::memset(to, 0xEE, count + shift);
                bool changed = false;
                for (std::size_t i = 0; i < count; ++i) changed |= map[from[i]] != from[i];
                ASSERT_EQ(nls::mapBytes(map.data(), from, count, to), changed) << count << ' ' << shift;
                for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(to[i], map[from[i]]) << count << ' ' << i;
                for (std::size_t i = count; i < count + shift; ++i) ASSERT_EQ(to[i], 0xEE) << count << ' ' << i;
            }
}

TEST_P(ByteMap, AnyOverlapIsAWalkFromFirstToLast) {
    const std::vector<unsigned char> text = randomBytes(1000, 3);
    const Map map = maps()[1];
    for (std::size_t count : {1U, 16U, 63U, 64U, 65U, 200U, 300U})
        for (int distance = -300; distance <= 300; distance += distance > -70 && distance < 70 ? 1 : 23) {
            std::vector<unsigned char> wide = text, plain = text;
            unsigned char* const from = wide.data() + 350;
            nls::mapBytes(map.data(), from, count, from + distance);
            for (std::size_t i = 0; i < count; ++i)
                plain[350 + i + static_cast<std::size_t>(distance)] = map[plain[350 + i]];
            ASSERT_EQ(wide, plain) << count << ' ' << distance;
        }
}

TEST_P(ByteMap, OneChangedByteIsNoticedWhereverItStands) {
    const Map map = maps()[4];
    for (std::size_t count : {1U, 7U, 64U, 65U, 130U, 200U})
        for (std::size_t place = 0; place <= count; ++place) {  // `count` is behind the end
            std::vector<unsigned char> text(count + 1, 'a');
            text[place] = 0xB7;
            ASSERT_EQ(nls::mapBytes(map.data(), text.data(), count, text.data()), place < count) << count;
        }
}

}  // namespace
