// The six Unicode transforms: their rules, and every wide walk against the slow twin.
#include "conversion/unicode_transforms.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "conversion/utf_codec.hpp"
#include "core/base/cpu.hpp"
#include "nls/transforms.h"
#include "tests/reference/utf.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls::test {
namespace {

using Room = Transformed (*)(ByteView, ByteSpan, ByteOrder);
using Slow = SlowResult (*)(const Bytes&, std::size_t, bool, bool);

struct Transform {
    const char* name;
    Room room;
    Slow slow;
    std::size_t sourceUnit, targetUnit;  // bytes
};
constexpr Transform kTransforms[] = {
    {"utf16ToUcs4", utf16ToUcs4, slowUtf16ToUcs4, 2, 4}, {"ucs4ToUtf16", ucs4ToUtf16, slowUcs4ToUtf16, 4, 2},
    {"utf8ToUcs4", utf8ToUcs4, slowUtf8ToUcs4, 1, 4},    {"ucs4ToUtf8", ucs4ToUtf8, slowUcs4ToUtf8, 4, 1},
    {"utf8ToUcs2", utf8ToUcs2, slowUtf8ToUcs2, 1, 2},    {"ucs2ToUtf8", ucs2ToUtf8, slowUcs2ToUtf8, 2, 1},
};
// What no output of a byte of source exceeds: ASCII to UCS4.
constexpr std::size_t kLargestGrowth = 4;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};
constexpr const char* kLevelNames[] = {"", "baseline", "avx2", "avx512"};

using TransformAtLevel = std::tuple<Transform, CpuLevel>;

std::string nameOf(const testing::TestParamInfo<TransformAtLevel>& test) {
    const auto& [transform, level] = test.param;
    return std::string(transform.name) + "_" + kLevelNames[static_cast<int>(level)];
}

std::string hex(const unsigned char* bytes, std::size_t count) {
    count = std::min<std::size_t>(count, 200);
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < count; ++i) {
        std::snprintf(digits, sizeof digits, "%02X ", bytes[i]);
        text += digits;
    }
    return text;
}

class UnicodeTransforms : public testing::TestWithParam<TransformAtLevel> {
protected:
    UnicodeTransforms() : transform_(std::get<Transform>(GetParam())) { limitCpuLevel(std::get<CpuLevel>(GetParam())); }
    ~UnicodeTransforms() override { limitCpuLevel(CpuLevel::avx512); }

    // The orders in which a side without units to swap isn't swapped.
    std::vector<ByteOrder> orders() const {
        std::vector<ByteOrder> all;
        for (const bool source : {false, true}) {
            for (const bool target : {false, true}) {
                if (!(source && transform_.sourceUnit == 1) && !(target && transform_.targetUnit == 1))
                    all.push_back({source, target});
            }
        }
        return all;
    }

    // One call at one level, with what it wrote and what it must not have touched.
    void expectSame(const SlowResult& want, const unsigned char* source, std::size_t size, unsigned char* target,
                    std::size_t room, ByteOrder order) {
        constexpr unsigned char kUntouched = 0xA5;
        if (room != 0) std::memset(target, kUntouched, room);
        const Transformed have = transform_.room({source, size}, {target, room}, order);
        bool same = have.status == want.status && have.consumed == want.consumed &&
                    have.written == want.written.size() && std::equal(want.written.begin(), want.written.end(), target);
        for (std::size_t i = want.written.size(); same && i < room; ++i) same = target[i] == kUntouched;
        if (same) return;
        ++failures_;
        ADD_FAILURE() << transform_.name << " at level " << kLevelNames[static_cast<int>(cpuLevel())] << ", room "
                      << room << ", orders " << order.swapSource << order.swapTarget << "\nsource " << hex(source, size)
                      << "\nhave " << have.status << ", " << have.consumed << ", " << have.written << ": "
                      << hex(target, room) << "\nwant " << want.status << ", " << want.consumed << ", "
                      << want.written.size() << ": " << hex(want.written.data(), want.written.size());
    }

    // A source that ends at a faulting page into a target that does.
    void expectSame(const Bytes& source, std::size_t room, ByteOrder order) {
        const SlowResult want = transform_.slow(source, room, order.swapSource, order.swapTarget);
        const unsigned char* const place = source_.atEnd(source.data(), source.size());
        expectSame(want, place, source.size(), target_.atEnd(room), room, order);
    }
    void expectSame(const Bytes& source, ByteOrder order) { expectSame(source, source.size() * kLargestGrowth, order); }

    // Text in the source's form from code points, or what else 32 bits may hold.
    Bytes encode(const std::vector<uint32_t>& values, bool swap) const {
        Bytes text;
        for (const uint32_t value : values) {
            switch (transform_.sourceUnit) {
                case 1:
                    if (value < 0x4000000) slowPutUtf8(text, text.size() + 6, value);
                    break;
                case 2:
                    slowPutUtf16(text, text.size() + 6, value, swap);
                    break;
                default:
                    slowAppend(text, value, 4, swap);
            }
        }
        return text;
    }

    bool tooManyFailures() const { return failures_ > 10; }

    const Transform transform_;
    static constexpr std::size_t kLongest = std::size_t{1} << 16;
    GuardedBuffer source_{kLongest};
    GuardedBuffer target_{kLongest * kLargestGrowth};
    int failures_ = 0;
};

// The same numbers on every run.
class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint32_t below(uint32_t end) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<uint32_t>((state_ >> 33) % end);
    }
    bool oneIn(uint32_t count) { return below(count) == 0; }

private:
    uint64_t state_;
};

struct Range {
    uint32_t first, last;
};
constexpr Range kScripts[] = {{0x20, 0x7E},       {0x20, 0xFF},     {0x400, 0x45F},      {0x370, 0x3FF},
                              {0xE01, 0xE5B},     {0x3041, 0x30FF}, {0x4E00, 0x9FFF},    {0xAC00, 0xD7A3},
                              {0x1F300, 0x1F9FF}, {0x0, 0x10FFFF},  {0xF0000, 0x10FFFF}, {0xFF00, 0x1000F}};

// Runs of scripts, some with ASCII or emoji between.
std::vector<uint32_t> randomText(Random& random, std::size_t characters) {
    std::vector<uint32_t> text;
    while (text.size() < characters) {
        const Range script = kScripts[random.below(std::size(kScripts))];
        const uint32_t run = 1 + random.below(random.oneIn(3) ? 8 : 80), mixed = 1 + random.below(20);
        for (uint32_t i = 0; i < run && text.size() < characters; ++i) {
            const uint32_t value = script.first + random.below(script.last - script.first + 1);
            const bool lone = value >= 0xD800 && value <= 0xDFFF;
            text.push_back(random.oneIn(mixed) || lone ? 0x20 + random.below(0x5F) : value);
        }
    }
    return text;
}

// Bytes put where they don't belong, and bytes taken away.
void damage(Random& random, Bytes& text) {
    constexpr unsigned char kOdd[] = {0x00, 0x41, 0x80, 0x8F, 0x90, 0xBF, 0xC0, 0xC3, 0xD8, 0xDC,
                                      0xDF, 0xE0, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xF8, 0xFC, 0xFF};
    for (uint32_t i = random.below(4); i > 0 && !text.empty(); --i) {
        const auto place = text.begin() + random.below(static_cast<uint32_t>(text.size()));
        if (random.oneIn(3)) {
            text.erase(place);
        } else if (random.oneIn(2)) {
            *place = kOdd[random.below(std::size(kOdd))];
        } else {
            text.insert(place, kOdd[random.below(std::size(kOdd))]);
        }
    }
}

// --- sweeps over the slow twin

TEST_P(UnicodeTransforms, EachCodePointAndEachUnit) {
    std::vector<uint32_t> all;
    for (uint32_t value = 0; value <= 0x110400; ++value) all.push_back(value);
    constexpr std::size_t kPart = 4093;
    const std::vector<ByteOrder> each = orders();
    for (std::size_t i = 0; i < all.size() && !tooManyFailures(); i += kPart) {
        const auto start = all.begin() + static_cast<std::ptrdiff_t>(i);
        const std::vector<uint32_t> part(start, start + static_cast<std::ptrdiff_t>(std::min(kPart, all.size() - i)));
        const ByteOrder order = each[i / kPart % each.size()];
        expectSame(encode(part, order.swapSource), order);
    }
}

// Two values of every kind in a row, between others: what stands at the edge of a rule meets what stands at another.
TEST_P(UnicodeTransforms, EdgesBesideEachOther) {
    constexpr uint32_t kEdges[] = {0,        0x7F,     0x80,      0x7FF,     0x800,      0xD7FF,    0xD800,   0xDBFF,
                                   0xDC00,   0xDFFF,   0xE000,    0xFFFD,    0xFFFF,     0x10000,   0x10FFFF, 0x110000,
                                   0x1FFFFF, 0x200000, 0x3FFFFFF, 0x4000000, 0x80000041, 0xFFFFFFFF};
    const std::vector<ByteOrder> each = orders();
    std::size_t round = 0;
    for (const uint32_t first : kEdges) {
        for (const uint32_t second : kEdges) {
            for (const std::size_t before : {0U, 14U, 15U, 30U, 31U}) {
                const ByteOrder order = each[round++ % each.size()];
                std::vector<uint32_t> text(before, 0x3B1);
                text.insert(text.end(), {first, second});
                expectSame(encode(text, order.swapSource), order);
                text.insert(text.end(), 50, 0x20AC);
                expectSame(encode(text, order.swapSource), order);
            }
            if (tooManyFailures()) return;
        }
    }
}

TEST_P(UnicodeTransforms, RandomTextSoundAndDamaged) {
    Random random(transform_.sourceUnit * 8 + transform_.targetUnit);
    for (int round = 0; round < 4000 && !tooManyFailures(); ++round) {
        const std::vector<ByteOrder> all = orders();
        const ByteOrder order = all[random.below(static_cast<uint32_t>(all.size()))];
        Bytes text = encode(randomText(random, random.below(round % 4 == 0 ? 600 : 90)), order.swapSource);
        if (random.oneIn(2)) damage(random, text);
        const std::size_t enough = text.size() * kLargestGrowth;
        expectSame(text, random.oneIn(2) ? enough : random.below(static_cast<uint32_t>(enough + 1)), order);
    }
}

TEST_P(UnicodeTransforms, EachLengthIntoEachRoom) {
    Random random(7);
    for (const ByteOrder order : orders()) {
        const Bytes text = encode(randomText(random, 150), order.swapSource);
        for (std::size_t size = 0; size <= 200 && !tooManyFailures(); size += size < 64 ? 1 : 17) {
            const Bytes source(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(size, text.size())));
            const std::size_t enough =
                transform_.slow(source, size * kLargestGrowth, order.swapSource, order.swapTarget).written.size();
            for (std::size_t room = 0; room <= enough + 5; ++room) expectSame(source, room, order);
        }
    }
}

TEST_P(UnicodeTransforms, EachLengthAtEachAlignment) {
    Random random(11);
    alignas(64) static unsigned char source[256], target[1024];
    for (const ByteOrder order : orders()) {
        const Bytes text = encode(randomText(random, 64), order.swapSource);
        for (std::size_t size = 0; size <= std::min<std::size_t>(64, text.size()); ++size) {
            const Bytes front(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size));
            const SlowResult want = transform_.slow(front, size * kLargestGrowth, order.swapSource, order.swapTarget);
            for (std::size_t shift = 0; shift < 32 && !tooManyFailures(); ++shift) {
                std::copy(front.begin(), front.end(), source + shift);
                expectSame(want, source + shift, size, target + 31 - shift, size * kLargestGrowth, order);
            }
        }
    }
}

// Nothing in front of the text is read, or written: both begin behind a faulting page.
TEST_P(UnicodeTransforms, NothingInFrontIsTouched) {
    Random random(13);
    for (int round = 0; round < 300; ++round) {
        const ByteOrder order = orders()[0];
        Bytes text = encode(randomText(random, random.below(200)), false);
        if (random.oneIn(2)) damage(random, text);
        const std::size_t room = text.size() * kLargestGrowth;
        const SlowResult want = transform_.slow(text, room, false, false);
        std::copy(text.begin(), text.end(), source_.atStart());
        expectSame(want, source_.atStart(), text.size(), target_.atStart(), room, order);
    }
}

INSTANTIATE_TEST_SUITE_P(All, UnicodeTransforms,
                         testing::Combine(testing::ValuesIn(kTransforms), testing::ValuesIn(kLevels)), nameOf);

// --- UTF-8 whatever its bytes

class FromUtf8 : public UnicodeTransforms {};

// All pairs of bytes in each two of three places, with every kind of byte in the other, and then in a fourth.
TEST_P(FromUtf8, EachSequenceOfBytes) {
    constexpr unsigned char kKinds[] = {0x00, 0x41, 0x80, 0x90, 0xBF, 0xC3, 0xE0, 0xED, 0xF0, 0xF4, 0xFF};
    Bytes text;
    const auto add = [&](unsigned a, unsigned b, unsigned c) {
        for (const unsigned byte : {a, b, c}) text.push_back(static_cast<unsigned char>(byte));
        text.insert(text.end(), {kKinds[text.size() % std::size(kKinds)], 'x', 'y', 'z'});
        if (text.size() < kLongest - 8) return;
        expectSame(text, {});
        text.clear();
    };
    for (const unsigned kind : kKinds) {
        for (unsigned pair = 0; pair < 0x10000 && !tooManyFailures(); ++pair) {
            add(kind, pair >> 8, pair & 0xFF);
            add(pair >> 8, kind, pair & 0xFF);
            add(pair >> 8, pair & 0xFF, kind);
        }
    }
    expectSame(text, {});
}

// Each as a whole text: cut off or not.
TEST_P(FromUtf8, EachShortText) {
    for (unsigned pair = 0; pair < 0x10000 && !tooManyFailures(); ++pair) {
        const unsigned char first = static_cast<unsigned char>(pair >> 8), second = static_cast<unsigned char>(pair);
        if (second == 0) expectSame({first}, {});
        expectSame({first, second}, {});
        expectSame({first, second, 0x80}, {});
        if (first >= 0xE0) expectSame({first, second, 0xBF, 0x80}, {});
    }
}

// A cut-off character, or an odd one, at every place of a long text in each script.
TEST_P(FromUtf8, OddBytesAtEachPlace) {
    const Bytes odd[] = {{0xC3},
                         {0xE3, 0x81},
                         {0xF0, 0x9F, 0x98},
                         {0x80},
                         {0xF4, 0x90, 0x80, 0x80},
                         {0xF0, 0x8F, 0xBF, 0xBF},
                         {0xF8, 0x88, 0x80, 0x80, 0x80},
                         {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80},
                         {0xFF},
                         {0xF7, 0xBF, 0xBF, 0xBF}};
    for (const uint32_t letter : {0x61U, 0x44FU, 0x3042U, 0x1F600U}) {
        const Bytes sound = encode(std::vector<uint32_t>(160 / utf8Length(letter), letter), false);
        for (const Bytes& bytes : odd) {
            for (std::size_t place = 0; place <= sound.size() && !tooManyFailures(); ++place) {
                Bytes text = sound;
                text.insert(text.begin() + static_cast<std::ptrdiff_t>(place), bytes.begin(), bytes.end());
                expectSame(text, {});
                text.resize(place + bytes.size());
                expectSame(text, {});
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, FromUtf8,
                         testing::Combine(testing::Values(kTransforms[2], kTransforms[4]), testing::ValuesIn(kLevels)),
                         nameOf);

// --- the doors

using Door = nlsStatus (*)(const unsigned char**, const unsigned char*, unsigned char**, unsigned char*,
                           const nlsConvTable*);

constexpr struct {
    const char* why;
    Door door;
    int64_t typeWord;  // 0: a null table
    std::size_t room;
    std::initializer_list<unsigned char> source;
    nlsStatus status;
    std::size_t consumed;
    std::initializer_list<unsigned char> target;
} kRows[] = {
    {"a lone high surrogate at the end passes",
     nlsConvertUTF16toUCS4,
     0,
     8,
     {0x00, 0xD8},
     NLS_OK,
     2,
     {0x00, 0xD8, 0, 0}},
    {"and in front of a letter",
     nlsConvertUTF16toUCS4,
     0,
     8,
     {0x00, 0xD8, 0x41, 0},
     NLS_OK,
     4,
     {0x00, 0xD8, 0, 0, 0x41, 0, 0, 0}},
    {"a pair is one value", nlsConvertUTF16toUCS4, 0, 8, {0x3D, 0xD8, 0x00, 0xDE}, NLS_OK, 4, {0x00, 0xF6, 0x01, 0}},
    {"a pair that doesn't fit is read", nlsConvertUTF16toUCS4, 0, 3, {0x3D, 0xD8, 0x00, 0xDE}, NLS_BUF_SMALL, 4, {}},
    {"a swapped source", nlsConvertUTF16toUCS4, 27 | 0x80, 4, {0x00, 0x41}, NLS_OK, 2, {0x41, 0, 0, 0}},
    {"both sides swapped",
     nlsConvertUTF16toUCS4,
     27 | 0x280,
     4,
     {0xD8, 0x3D, 0xDE, 0x00},
     NLS_OK,
     4,
     {0, 0x01, 0xF6, 0x00}},
    {"half a unit at the end isn't read", nlsConvertUTF16toUCS4, 0, 8, {0x41, 0, 0x42}, NLS_OK, 2, {0x41, 0, 0, 0}},
    {"a pair makes four bytes",
     nlsConvertUCS2toUTF8,
     0,
     8,
     {0x3D, 0xD8, 0x00, 0xDE},
     NLS_OK,
     4,
     {0xF0, 0x9F, 0x98, 0x80}},
    {"a lone surrogate is told, and the walk goes on",
     nlsConvertUCS2toUTF8,
     0,
     8,
     {0x00, 0xDC, 0x41, 0},
     NLS_BAD_ARG,
     4,
     {'?', 'A'}},
    {"a full target hides a lone surrogate",
     nlsConvertUCS2toUTF8,
     0,
     1,
     {0x00, 0xDC, 0x41, 0},
     NLS_BUF_SMALL,
     4,
     {'?'}},
    {"a lone surrogate value", nlsConvertUCS4toUTF8, 0, 8, {0x00, 0xD8, 0, 0}, NLS_INVALID_STRING, 4, {'?'}},
    {"beyond the last code point", nlsConvertUCS4toUTF8, 0, 8, {0, 0, 0x11, 0}, NLS_OK, 4, {0xF4, 0x90, 0x80, 0x80}},
    {"five bytes", nlsConvertUCS4toUTF8, 0, 8, {0, 0, 0x20, 0}, NLS_OK, 4, {0xF8, 0x88, 0x80, 0x80, 0x80}},
    {"beyond five bytes", nlsConvertUCS4toUTF8, 0, 8, {0, 0, 0, 0x04}, NLS_OK, 4, {0xEF, 0xBF, 0xBD}},
    {"two surrogate values are one",
     nlsConvertUCS4toUTF8,
     0,
     8,
     {0x3D, 0xD8, 0, 0, 0x00, 0xDE, 0, 0},
     NLS_OK,
     8,
     {0xF0, 0x9F, 0x98, 0x80}},
    {"beyond the last code point", nlsConvertUCS4toUTF16, 0, 8, {0, 0, 0x11, 0}, NLS_OK, 4, {0xFD, 0xFF}},
    {"two surrogate values stay two",
     nlsConvertUCS4toUTF16,
     0,
     8,
     {0x3D, 0xD8, 0, 0, 0x00, 0xDE, 0, 0},
     NLS_OK,
     8,
     {0x3D, 0xD8, 0x00, 0xDE}},
    {"a full target and no source", nlsConvertUCS4toUTF16, 0, 0, {}, NLS_OK, 0, {}},
    {"a full target leaves the source unread",
     nlsConvertUCS4toUTF16,
     0,
     2,
     {0x41, 0, 0, 0, 0x42, 0, 0, 0},
     NLS_BUF_SMALL,
     4,
     {0x41, 0}},
    {"half a pair's room reads it", nlsConvertUCS4toUTF16, 0, 2, {0x00, 0xF6, 0x01, 0}, NLS_BUF_SMALL, 4, {}},
    {"beyond the last code point", nlsConvertUTF8toUCS4, 0, 8, {0xF4, 0x90, 0x80, 0x80}, NLS_OK, 4, {0xFD, 0xFF, 0, 0}},
    {"overlong", nlsConvertUTF8toUCS4, 0, 8, {0xC0, 0x80}, NLS_OK, 2, {0, 0, 0, 0}},
    {"an encoded surrogate", nlsConvertUTF8toUCS4, 0, 8, {0xED, 0xA0, 0x80}, NLS_OK, 3, {0x00, 0xD8, 0, 0}},
    {"a trail byte in first place", nlsConvertUTF8toUCS4, 0, 8, {0x80}, NLS_OK, 1, {0x80, 0, 0, 0}},
    {"cut off", nlsConvertUTF8toUCS4, 0, 8, {'a', 0xE3, 0x81}, NLS_BAD_ARG, 1, {'a', 0, 0, 0}},
    {"cut off comes before full", nlsConvertUTF8toUCS4, 0, 0, {0xE3, 0x81}, NLS_BAD_ARG, 0, {}},
    {"what doesn't fit is read", nlsConvertUTF8toUCS4, 0, 3, {0xC3, 0xA4}, NLS_BUF_SMALL, 2, {}},
    {"a pair and room for one unit", nlsConvertUTF8toUCS2, 0, 2, {0xF0, 0x9F, 0x98, 0x80}, NLS_BUF_SMALL, 4, {}},
    {"a swapped target", nlsConvertUTF8toUCS2, 22 | 0x200, 4, {'A'}, NLS_OK, 1, {0x00, 0x41}},
    {"the opposite order", nlsConvertUTF8toUCS2, 22 | 0x400, 4, {'A'}, NLS_OK, 1, {0x41, 0x00}},
    {"swapped after a cut-off too", nlsConvertUTF8toUCS2, 22 | 0x200, 4, {'A', 0xC3}, NLS_BAD_ARG, 1, {0x00, 0x41}},
};

struct TableBlock {
    int64_t typeWord;
    int64_t block;

    const nlsConvTable* table() const {
        return typeWord == 0 ? nullptr : reinterpret_cast<const nlsConvTable*>(&block);
    }
};

TEST(UnicodeDoors, MoveBothPositions) {
    for (const auto& row : kRows) {
        const TableBlock block{row.typeWord, 0};
        const Bytes source(row.source);
        Bytes target(row.room + 1, 0xA5);
        const unsigned char* srcPos = source.data();
        unsigned char* tgtPos = target.data();
        EXPECT_EQ(row.door(&srcPos, srcPos + source.size(), &tgtPos, tgtPos + row.room, block.table()), row.status)
            << row.why;
        EXPECT_EQ(static_cast<std::size_t>(srcPos - source.data()), row.consumed) << row.why;
        EXPECT_EQ(Bytes(target.data(), tgtPos), Bytes(row.target)) << row.why;
        EXPECT_EQ(*tgtPos, 0xA5) << row.why;
    }
}

TEST(UnicodeDoors, PositionsBehindTheirEndsAreEmpty) {
    const unsigned char source[4] = {'a', 'b', 'c', 'd'};
    unsigned char target[8] = {};
    const unsigned char* srcPos = source + 2;
    unsigned char* tgtPos = target + 4;
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source, &tgtPos, target + 8, nullptr), NLS_OK);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 4, &tgtPos, target, nullptr), NLS_BUF_SMALL);
    EXPECT_EQ(srcPos, source + 3);
    EXPECT_EQ(tgtPos, target + 4);
}

TEST(UnicodeDoors, NullPlacesAreRefused) {
    const unsigned char source[1] = {'a'};
    unsigned char target[4] = {};
    const unsigned char *srcPos = source, *noSource = nullptr;
    unsigned char *tgtPos = target, *noTarget = nullptr;
    EXPECT_EQ(nlsConvertUTF8toUCS2(nullptr, source + 1, &tgtPos, target + 4, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 1, nullptr, target + 4, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&noSource, source + 1, &tgtPos, target + 4, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 1, &noTarget, target + 4, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&noSource, nullptr, &noTarget, nullptr, nullptr), NLS_OK);
    EXPECT_EQ(srcPos, source);
    EXPECT_EQ(tgtPos, target);
}

TEST(UnicodeDoors, OrderBits) {
    for (uint32_t bits = 0; bits < 16; ++bits) {
        const TableBlock block{static_cast<int64_t>(27 | bits << 7), 0};
        uint32_t swapSource = 1, swapTarget = 1;
        setSwap(block.table(), &swapSource, &swapTarget);
        EXPECT_EQ(swapSource, block.typeWord & 0x80);
        EXPECT_EQ(swapTarget, block.typeWord & 0x200);
    }
    uint32_t swapSource = 1, swapTarget = 1;
    setSwap(nullptr, &swapSource, &swapTarget);
    EXPECT_EQ(swapSource + swapTarget, 0U);
}

TEST(UnicodeDoors, Constants) {
    const uint32_t have[] = {kMaximumUCS2,       kMaximumUTF16,   kMaximumUCS4,        halfShift,
                             halfBase,           halfMask,        kSurrogateHighStart, kSurrogateHighEnd,
                             kSurrogateLowStart, kSurrogateLowEnd};
    const uint32_t want[] = {0xFFFF, 0x10FFFF, 0x10FFFF, 10, 0x10000, 0x3FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF};
    EXPECT_TRUE(std::equal(std::begin(have), std::end(have), want));
    for (unsigned byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(bytesFromUTF8[byte], bytesFromUtf8(static_cast<unsigned char>(byte))) << byte;
    }
    EXPECT_TRUE(std::equal(kUtf8Offsets.begin(), kUtf8Offsets.end(), offsetsFromUTF8));
    EXPECT_TRUE(std::equal(kUtf8FirstMarks.begin(), kUtf8FirstMarks.end(), firstByteMark));
}

}  // namespace
}  // namespace nls::test
