// The six Unicode transforms: their rules, and every wide walk against the slow twin.
#include "conversion/unicode_transforms.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "conversion/utf_codec.hpp"
#include "core/base/cpu.hpp"
#include "nls/status.h"
#include "nls/transforms.h"
#include "tests/real/characters.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls::test {
namespace {

using Bytes = real::Bytes;
using namespace std::string_literals;

// The Unicode transforms once more, plainly: characters read one after the other, each written while there is room.
struct SlowResult {
    nlsStatus status = NLS_OK;
    std::size_t consumed = 0;
    Bytes written;
};

struct Transform {
    const char* name;
    Transformed (*room)(ByteView, ByteSpan, ByteOrder);
    real::Family source, target;
    nlsStatus loneSurrogate;  // 0: it passes

    std::size_t sourceUnit() const { return unitOf(source); }
    std::size_t targetUnit() const { return unitOf(target); }
    static std::size_t unitOf(real::Family form) {
        return form == real::Family::utf8 ? 1 : form == real::Family::units16 ? 2 : 4;
    }
};
using enum real::Family;
constexpr Transform kTransforms[] = {
    {"utf16ToUcs4", utf16ToUcs4, units16, units32, 0}, {"ucs4ToUtf16", ucs4ToUtf16, units32, units16, 0},
    {"utf8ToUcs4", utf8ToUcs4, utf8, units32, 0},      {"ucs4ToUtf8", ucs4ToUtf8, units32, utf8, NLS_INVALID_STRING},
    {"utf8ToUcs2", utf8ToUcs2, utf8, units16, 0},      {"ucs2ToUtf8", ucs2ToUtf8, units16, utf8, NLS_BAD_ARG},
};

SlowResult slow(const Transform& transform, ByteView source, std::size_t room, ByteOrder order) {
    const bool toUtf8 = transform.target == utf8, fromUcs4ToUtf16 = transform.room == ucs4ToUtf16;
    const real::Characters read = readCharacters({"", transform.source, order.swapSource}, source,
                                                 fromUcs4ToUtf16 ? real::Reading::byUnit : real::Reading::byCharacter);
    SlowResult result;
    for (std::size_t i = 0; i < read.values.size(); ++i) {
        uint32_t value = read.values[i];
        if (transform.loneSurrogate != NLS_OK && value >= 0xD800 && value <= 0xDFFF) {
            value = '?';
            result.status = transform.loneSurrogate;
        }
        if (value > (toUtf8 ? 0x3FFFFFF : transform.source == units16 ? UINT32_MAX : 0x10FFFF)) value = 0xFFFD;
        // No unit of 32 bits is read for 16 without any room.
        if (!fromUcs4ToUtf16 || room - result.written.size() >= 2) result.consumed = read.places[i + 1];
        const std::size_t before = result.written.size();
        real::append(result.written, value, {"", transform.target, order.swapTarget});
        if (result.written.size() <= room) continue;
        result.written.resize(before);
        result.status = NLS_BUF_SMALL;
        return result;
    }
    if (read.end != NLS_OK) result.status = read.end;
    return result;
}

// What no output of a byte of source exceeds: ASCII to UCS4.
constexpr std::size_t kLargestGrowth = 4;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};
using TransformAtLevel = std::tuple<Transform, CpuLevel>;

class UnicodeTransforms : public testing::TestWithParam<TransformAtLevel> {
protected:
    UnicodeTransforms() : transform_(std::get<Transform>(GetParam())) { limitCpuLevel(std::get<CpuLevel>(GetParam())); }
    ~UnicodeTransforms() override { limitCpuLevel(CpuLevel::avx512); }

    // The orders in which a side without units to swap isn't swapped.
    std::vector<ByteOrder> orders() const {
        std::vector<ByteOrder> all;
        for (const bool source : {false, true}) {
            for (const bool target : {false, true}) {
                if (!(source && transform_.sourceUnit() == 1) && !(target && transform_.targetUnit() == 1))
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
        Bytes all = want.written;
        all.resize(room, kUntouched);
        const std::string difference = real::firstDifference({target, room}, all);
        if (have.status == want.status && have.consumed == want.consumed && have.written == want.written.size() &&
            difference.empty())
            return;
        ++failures_;
        ADD_FAILURE() << transform_.name << ": source of " << size << ", room " << room << ", orders "
                      << order.swapSource << order.swapTarget << ": " << have.status << ' ' << have.consumed << ' '
                      << have.written << " for " << want.status << ' ' << want.consumed << ' ' << want.written.size()
                      << "; " << difference;
    }

    // A source that ends at a faulting page into a target that does.
    void expectSame(const Bytes& source, std::size_t room, ByteOrder order) {
        const SlowResult want = slow(transform_, source, room, order);
        const unsigned char* const place = source_.atEnd(source.data(), source.size());
        expectSame(want, place, source.size(), target_.atEnd(room), room, order);
    }
    void expectSame(const Bytes& source, ByteOrder order) { expectSame(source, source.size() * kLargestGrowth, order); }

    // Text in the source's form from code points, or what else 32 bits may hold.
    Bytes encode(const std::vector<uint32_t>& values, bool swap) const {
        Bytes text;
        for (const uint32_t value : values) {
            if (value >= 0x4000000 && transform_.source == utf8) continue;
            real::append(text, value > 0x10FFFF && transform_.source == units16 ? 0xFFFD : value,
                         {"", transform_.source, swap});
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

// Two values of every kind in a row, between others: what stands at the edge of a rule meets what stands at another,
// and the end of the target. Real and damaged text of every size, at every place: tests/real.
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
                const Bytes longer = encode(text, order.swapSource);
                expectSame(longer, order);
                expectSame(longer, slow(transform_, longer, SIZE_MAX, order).written.size() - round % 8, order);
                expectSame(longer, round * 7 % 200, order);
            }
            if (tooManyFailures()) return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, UnicodeTransforms,
                         testing::Combine(testing::ValuesIn(kTransforms), testing::ValuesIn(kLevels)));

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

INSTANTIATE_TEST_SUITE_P(All, FromUtf8,
                         testing::Combine(testing::Values(kTransforms[2], kTransforms[4]), testing::ValuesIn(kLevels)));

// --- the doors

using Door = nlsStatus (*)(const unsigned char**, const unsigned char*, unsigned char**, unsigned char*,
                           const nlsConvTable*);

const struct {
    const char* why;
    Door door;
    int64_t typeWord;  // 0: a null table
    std::size_t room;
    std::string source;
    nlsStatus status;
    std::size_t consumed;
    std::string target;
} kRows[] = {
    {"a lone high surrogate passes", nlsConvertUTF16toUCS4, 0, 8, "\x00\xD8\x41\0"s, 0, 4, "\x00\xD8\0\0A\0\0\0"s},
    {"a pair that doesn't fit is read", nlsConvertUTF16toUCS4, 0, 3, "\x3D\xD8\x00\xDE"s, 2, 4, ""},
    {"both swapped", nlsConvertUTF16toUCS4, 27 | 0x280, 4, "\xD8\x3D\xDE\x00"s, 0, 4, "\x00\x01\xF6\x00"s},
    {"half a unit isn't read", nlsConvertUTF16toUCS4, 0, 8, "A\0B"s, 0, 2, "A\0\0\0"s},
    {"a lone surrogate is told", nlsConvertUCS2toUTF8, 0, 8, "\x00\xDC\x41\0"s, 16, 4, "?A"},
    {"a full target hides it", nlsConvertUCS2toUTF8, 0, 1, "\x00\xDC\x41\0"s, 2, 4, "?"},
    {"a surrogate value", nlsConvertUCS4toUTF8, 0, 8, "\x00\xD8\0\0"s, 33, 4, "?"},
    {"beyond code points", nlsConvertUCS4toUTF8, 0, 8, "\0\0\x11\0"s, 0, 4, "\xF4\x90\x80\x80"},
    {"five bytes", nlsConvertUCS4toUTF8, 0, 8, "\0\0\x20\0"s, 0, 4, "\xF8\x88\x80\x80\x80"},
    {"beyond five bytes", nlsConvertUCS4toUTF8, 0, 8, "\0\0\0\x04"s, 0, 4, "\xEF\xBF\xBD"},
    {"two values are a pair", nlsConvertUCS4toUTF8, 0, 8, "\x3D\xD8\0\0\0\xDE\0\0"s, 0, 8, "\xF0\x9F\x98\x80"},
    {"or stay two", nlsConvertUCS4toUTF16, 0, 8, "\x3D\xD8\0\0\0\xDE\0\0"s, 0, 8, "\x3D\xD8\0\xDE"s},
    {"no room: not read", nlsConvertUCS4toUTF16, 0, 2, "A\0\0\0B\0\0\0"s, 2, 4, "A\0"s},
    {"half a pair's room: read", nlsConvertUCS4toUTF16, 0, 2, "\0\xF6\x01\0"s, 2, 4, ""},
    {"beyond code points", nlsConvertUTF8toUCS4, 0, 8, "\xF4\x90\x80\x80", 0, 4, "\xFD\xFF\0\0"s},
    {"overlong", nlsConvertUTF8toUCS4, 0, 8, "\xC0\x80", 0, 2, "\0\0\0\0"s},
    {"an encoded surrogate", nlsConvertUTF8toUCS4, 0, 8, "\xED\xA0\x80", 0, 3, "\x00\xD8\0\0"s},
    {"a trail byte in front", nlsConvertUTF8toUCS4, 0, 8, "\x80", 0, 1, "\x80\0\0\0"s},
    {"cut off comes before full", nlsConvertUTF8toUCS4, 0, 0, "\xE3\x81", 16, 0, ""},
    {"room for half a pair", nlsConvertUTF8toUCS2, 0, 2, "\xF0\x9F\x98\x80", 2, 4, ""},
    {"swapped after a cut-off", nlsConvertUTF8toUCS2, 22 | 0x200, 4, "A\xC3", 16, 1, "\0A"s},
    {"the opposite order", nlsConvertUTF8toUCS2, 22 | 0x400, 4, "A", 0, 1, "A\0"s},
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
        Bytes target(row.room + 1, 0xA5);
        const auto* const source = reinterpret_cast<const unsigned char*>(row.source.data());
        const unsigned char* srcPos = source;
        unsigned char* tgtPos = target.data();
        EXPECT_EQ(row.door(&srcPos, srcPos + row.source.size(), &tgtPos, tgtPos + row.room, block.table()), row.status)
            << row.why;
        EXPECT_EQ(static_cast<std::size_t>(srcPos - source), row.consumed) << row.why;
        EXPECT_EQ(std::string(target.data(), tgtPos), row.target) << row.why;
        EXPECT_EQ(*tgtPos, 0xA5) << row.why;
    }
}

TEST(UnicodeDoors, OddPositions) {
    const unsigned char source[4] = {'a', 'b', 'c', 'd'};
    unsigned char target[8] = {};
    const unsigned char *srcPos = source + 2, *noSource = nullptr;
    unsigned char *tgtPos = target + 4, *noTarget = nullptr;
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source, &tgtPos, target + 8, nullptr), NLS_OK) << "behind its end: empty";
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 4, &tgtPos, target, nullptr), NLS_BUF_SMALL);
    EXPECT_EQ(srcPos, source + 3);
    EXPECT_EQ(tgtPos, target + 4);
    EXPECT_EQ(nlsConvertUTF8toUCS2(nullptr, source + 4, &tgtPos, target + 8, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 4, nullptr, target + 8, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&noSource, source + 4, &tgtPos, target + 8, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&srcPos, source + 4, &noTarget, target + 8, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertUTF8toUCS2(&noSource, nullptr, &noTarget, nullptr, nullptr), NLS_OK);
    EXPECT_EQ(srcPos, source + 3);
    EXPECT_EQ(tgtPos, target + 4);
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
    for (unsigned byte = 0; byte < 256; ++byte)
        EXPECT_EQ(bytesFromUTF8[byte], bytesFromUtf8(static_cast<unsigned char>(byte))) << byte;
    EXPECT_TRUE(std::equal(kUtf8Offsets.begin(), kUtf8Offsets.end(), offsetsFromUTF8));
    EXPECT_TRUE(std::equal(kUtf8FirstMarks.begin(), kUtf8FirstMarks.end(), firstByteMark));
}

}  // namespace
}  // namespace nls::test
