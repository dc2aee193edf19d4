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

// Apart, in place and with any overlap between, up to both ends of memory; a change is noticed wherever it stands.
TEST_P(ByteMap, IsAWalkFromFirstToLast) {
    const std::vector<unsigned char> text = randomBytes(4096, 3);
    GuardedBuffer memory{4096};
    unsigned char* const start = memory.atEnd(4096);
    for (const Map& map : maps())
        for (std::size_t count : {1U, 15U, 16U, 33U, 63U, 64U, 65U, 100U, 200U, 300U})
            for (int distance = -300; distance <= 300; distance += distance > -70 && distance < 70 ? 1 : 23) {
                std::vector<unsigned char> plain = text;
                std::memcpy(start, text.data(), text.size());
                const auto apart = static_cast<std::size_t>(std::abs(distance));
                const std::size_t from = 4096 - count - (distance > 0 ? apart : 0),
                                  to = from + static_cast<std::size_t>(distance);
                bool changed = false;
                for (std::size_t i = 0; i < count; ++i) {
                    changed |= map[plain[from + i]] != plain[from + i];
                    plain[to + i] = map[plain[from + i]];
                }
                ASSERT_EQ(nls::mapBytes(map.data(), start + from, count, start + to), changed)
                    << count << ' ' << distance;
                ASSERT_EQ(std::memcmp(start, plain.data(), plain.size()), 0) << count << ' ' << distance;
            }
}

}  // namespace
