// Shift-JIS and EUC by rule: the published rule itself, and whole texts against the slow twin.
#include <gtest/gtest.h>

#include "core/base/cpu.hpp"
#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/jis.hpp"

namespace nls {
namespace {

using test::Bytes;
using test::hex;
using test::Random;

struct Direction {
    nlsStatus (*door)(unsigned char*, int32_t, const unsigned char*, int32_t, uint32_t*);
    reference::ByRule (*twin)(ByteView, std::size_t);
} const kDirections[] = {{ccSJIS2EUCBytes, reference::sjisToEuc}, {ccEUC2SJISBytes, reference::eucToSjis}};

constexpr unsigned char kUntouched = 0x5A;

// Source and target end at pages that fault; what the call must not write stays as it was.
class Sweep {
public:
    void expectTwin(const Direction& direction, ByteView text, std::size_t room) {
        unsigned char* const target = target_.atEnd(room);
        std::memset(target, kUntouched, room);
        uint32_t outLen = 0xDEAD;
        const nlsStatus status =
            direction.door(target, static_cast<int32_t>(room), source_.atEnd(text.data(), text.size()),
                           static_cast<int32_t>(text.size()), &outLen);
        reference::ByRule want = direction.twin(text, room);
        EXPECT_EQ(outLen, want.bytes.size());
        want.bytes.resize(room, kUntouched);
        ASSERT_TRUE(status == want.status && test::sameBytes({target, room}, want.bytes))
            << (direction.door == ccEUC2SJISBytes ? "EUC " : "SJIS ") << hex(text) << " into " << room << ": " << status
            << ", " << hex({target, room}) << " for " << want.status << ", " << hex(want.bytes);
    }

private:
    test::GuardedBuffer source_{300}, target_{700};
};

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

// Every pair of bytes in a text of two-byte characters, at each place of a block, every third behind an odd byte.
TEST(JisTexts, EveryPairOfBytesInsideText) {
    Sweep sweep;
    for (const Direction& direction : kDirections)
        for (unsigned pair = 0; pair < 0x10000 && !testing::Test::HasFatalFailure(); ++pair) {
            Bytes text(96 + pair % 64, direction.door == ccSJIS2EUCBytes ? 0x82 : 0xB0);
            if (pair % 3 == 0) text[1 + pair % 5] = 'a';
            const std::size_t place = 40 + pair % 37;
            text[place] = static_cast<unsigned char>(pair >> 8);
            text[place + 1] = static_cast<unsigned char>(pair);
            sweep.expectTwin(direction, ByteView{text}.first(pair % 5 == 0 ? place + 2 : text.size()), 320);
        }
}

// Text of both charsets with every kind of byte, cut at each length, into each room from none to enough.
TEST(JisTexts, EveryLengthIntoEveryRoom) {
    Random random{7};
    Sweep sweep;
    for (const Direction& direction : kDirections) {
        for (int style = 0; style < 4; ++style) {
            for (std::size_t length = 0; length <= 132; length += length < 72 ? 1 : 15) {
                Bytes text;
                while (text.size() < length) {
                    const unsigned kind = style == 0 ? 9 : random.below(style == 1 ? 6 : 16);
                    const unsigned char lead = kind < 10 ? random.byte(0x81, 0x9F) : random.byte(0xA1, 0xFE);
                    text.push_back(kind == 1 || style == 3 ? random.byte(0x20, 0x7E) : kind == 3 ? 0x8E : lead);
                    if (kind > 2) text.push_back(random.byte(kind < 10 ? 0x40 : 0xA1, 0xFE));
                }
                text.resize(length);
                for (std::size_t room = 0; room <= length * 2 + 2; room += room < 40 || room + 40 > length ? 1 : 7) {
                    sweep.expectTwin(direction, text, room);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

TEST(Jis, SizesBelowOne) {
    uint32_t outLen = 7;
    EXPECT_EQ(ccSJIS2EUCBytes(nullptr, 0, nullptr, 0, &outLen), NLS_OK);
    EXPECT_EQ(outLen, 0U);
    const unsigned char text[] = "a";
    unsigned char target[4] = {kUntouched};
    EXPECT_EQ(ccEUC2SJISBytes(target, -3, text, 1, &outLen), NLS_BUF_SMALL);
    EXPECT_EQ(ccSJIS2EUCBytes(target, 4, text, -1, &outLen), NLS_BAD_ARG);
    EXPECT_EQ(outLen, 0U);
    EXPECT_EQ(target[0], kUntouched);
}

}  // namespace
}  // namespace nls
