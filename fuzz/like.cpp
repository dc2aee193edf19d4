// Any pattern and text under LIKE, in locales of every way to compare: each answer must be the model's.
//
// The first bytes of the input choose the locale, the mode, the signs and where the rest is cut in two: a pattern,
// which is let go if it has many a `multi`, since the model tries every way, and a text. Both stand directly in front
// of a page that faults.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/base/cpu.hpp"
#include "nls/strings.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/like_worlds.hpp"

namespace {

using nls::CpuLevel;
using nls::test::GuardedBuffer;
using nls::test::LikeSet;
using nls::test::LikeWorld;

constexpr std::size_t kLongest = 300;
const std::string kMultis = "%_b \xE3\xA4";  // bytes that begin one in some set of signs

// How often the model would begin anew: the length of the text to the power of the number of `multi`.
bool isBearable(const std::string& pattern, std::size_t textLength) {
    constexpr std::size_t kMost = 300'000;
    std::size_t tries = 1;
    for (const char byte : pattern) {
        if (kMultis.find(byte) != std::string::npos) tries *= textLength + 1;
        if (tries > kMost) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const nls::test::LikeWorlds worlds;
    static GuardedBuffer patterns{kLongest + 1}, texts{kLongest + 1};
    if (size < 4 || size > kLongest) return 0;
    const LikeWorld& world = worlds.all()[data[0] % worlds.all().size()];
    const LikeSet signs = data[1] < 128 ? LikeSet{'\\', '_', '%'} : world.signs[data[1] % world.signs.size()];
    const auto mode = static_cast<uint16_t>(data[2] % 8 == 7 ? 2 : data[2] % 2);
    std::string rest{reinterpret_cast<const char*>(data) + 4, size - 4};
    rest.erase(std::remove(rest.begin(), rest.end(), '\0'), rest.end());
    const std::string pattern = rest.substr(0, rest.size() * data[3] / 255), text = rest.substr(pattern.size());
    if (!isBearable(pattern, text.size())) return 0;
    const unsigned char* const p = patterns.atEnd(pattern.c_str(), pattern.size() + 1);
    const unsigned char* const t = texts.atEnd(text.c_str(), text.size() + 1);
    const int32_t want = nls::reference::Like{world.locale, mode, signs.escape, signs.single, signs.multi}(p, t);
    for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        if (nlsSqlLike(world.locale, nullptr, p, t, mode, signs.escape, signs.single, signs.multi) != want)
            std::abort();
    }
    return 0;
}
