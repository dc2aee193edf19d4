// Shift-JIS and EUC by rule: the published rule itself, and whole texts against the slow twin.
#include <gtest/gtest.h>
#include <iconv.h>

#include "nls/dbcs_transforms.h"
#include "nls/status.h"
#include "tests/conversion/dbcs_fixture.hpp"
#include "tests/reference/jis.hpp"

namespace nls {
namespace {

using test::Bytes;
using test::GuardedBuffer;
using test::hex;
using test::Random;
using Door = nlsStatus (*)(unsigned char*, int32_t, const unsigned char*, int32_t, uint32_t*);
using Twin = reference::ByRule (*)(ByteView, std::size_t);

struct Direction {
    const char* name;
    Door door;
    Twin twin;
} const kDirections[] = {
    {"Shift-JIS to EUC", ccSJIS2EUCBytes, reference::sjisToEuc},
    {"EUC to Shift-JIS", ccEUC2SJISBytes, reference::eucToSjis},
};

constexpr unsigned char kUntouched = 0x5A;

// Source and target end at pages that fault; what the call must not write stays as it was.
class Sweep {
public:
    explicit Sweep(std::size_t capacity) : source_(capacity), target_(capacity * 2 + 64) {}

    void expectTwin(const Direction& direction, ByteView text, std::size_t room) {
        unsigned char* const target = target_.atEnd(room);
        std::memset(target, kUntouched, room);
        uint32_t outLen = 0xDEAD;
        const nlsStatus status =
            direction.door(target, static_cast<int32_t>(room), source_.atEnd(text.data(), text.size()),
                           static_cast<int32_t>(text.size()), &outLen);
        const reference::ByRule want = direction.twin(text, room);
        ASSERT_EQ(status, want.status) << direction.name << " " << hex(text) << " into " << room;
        ASSERT_EQ(outLen, want.bytes.size()) << direction.name << " " << hex(text) << " into " << room;
        ASSERT_TRUE(test::sameBytes({target, outLen}, want.bytes))
            << direction.name << " " << hex(text) << " into " << room << ": " << hex({target, outLen});
        for (std::size_t i = outLen; i < room; ++i)
            ASSERT_EQ(target[i], kUntouched) << direction.name << " " << hex(text);
    }

private:
    GuardedBuffer source_, target_;
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

TEST(JisTexts, EveryPairOfBytesAlone) {
    Sweep sweep{64};
    for (const Direction& direction : kDirections) {
        for (unsigned pair = 0; pair < 0x10000; ++pair) {
            const unsigned char text[] = {static_cast<unsigned char>(pair >> 8), static_cast<unsigned char>(pair)};
            sweep.expectTwin(direction, {text, 2}, 4);
            if (HasFatalFailure()) return;
        }
        for (unsigned byte = 0; byte < 256; ++byte) {
            const auto text = static_cast<unsigned char>(byte);
            for (std::size_t room = 0; room < 3; ++room) sweep.expectTwin(direction, {&text, 1}, room);
        }
    }
}

// Every pair of bytes among others: in the middle of a long text of the charset, at each place of a block.
TEST(JisTexts, EveryPairOfBytesInsideText) {
    for (const Direction& direction : kDirections) {
        Sweep sweep{200};
        const bool sjis = direction.door == ccSJIS2EUCBytes;
        for (unsigned pair = 0; pair < 0x10000; pair += 7) {
            Bytes text(96 + pair % 64, sjis ? 0x82 : 0xB0);
            if (pair % 3 == 0) text[1 + pair % 5] = 'a';
            const std::size_t place = 40 + pair % 37;
            text[place] = static_cast<unsigned char>(pair >> 8);
            text[place + 1] = static_cast<unsigned char>(pair);
            sweep.expectTwin(direction, text, 400);
            if (HasFatalFailure()) return;
        }
    }
}

// Text of both charsets with every kind of byte, cut at each length, into each room from none to enough.
TEST(JisTexts, EveryLengthIntoEveryRoom) {
    Random random{7};
    for (const Direction& direction : kDirections) {
        Sweep sweep{300};
        for (int style = 0; style < 4; ++style) {
            for (std::size_t length = 0; length <= 132; length += length < 72 ? 1 : 15) {
                Bytes text;
                while (text.size() < length) {
                    const unsigned kind = style == 0 ? 0 : random.below(style == 1 ? 6 : 16);
                    if (kind == 1 || style == 3)
                        text.push_back(random.byte(0x20, 0x7E));
                    else if (kind == 2 && style == 2)
                        text.push_back(random.byte(0x80, 0xFF));
                    else if (kind == 3)
                        text.push_back(0x8E), text.push_back(random.byte(0x40, 0xFF));
                    else if (kind < 10)
                        text.push_back(random.byte(0x81, 0x9F)), text.push_back(random.byte(0x40, 0xFC));
                    else
                        text.push_back(random.byte(0xA1, 0xFE)), text.push_back(random.byte(0xA1, 0xFE));
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

// The rule and glibc agree on all of JIS X 0208.
TEST(Jis, AgreesWithIconvOnJisX0208) {
    const iconv_t plain = iconv_open("SJIS", "EUC-JP");
    ASSERT_NE(plain, reinterpret_cast<iconv_t>(-1));
    int compared = 0;
    for (unsigned row = 0xA1; row <= 0xFE; ++row) {
        for (unsigned column = 0xA1; column <= 0xFE; ++column) {
            unsigned char euc[2] = {static_cast<unsigned char>(row), static_cast<unsigned char>(column)};
            char sjis[4];
            char *in = reinterpret_cast<char*>(euc), *out = sjis;
            std::size_t left = 2, room = sizeof sjis;
            if (iconv(plain, &in, &left, &out, &room) != 0 || out - sjis != 2) continue;
            unsigned char ours[2];
            uint32_t outLen;
            ASSERT_EQ(ccEUC2SJISBytes(ours, 2, euc, 2, &outLen), 0);
            ASSERT_EQ(std::memcmp(ours, sjis, 2), 0) << hex({euc, 2});
            ++compared;
        }
    }
    EXPECT_GT(compared, 6800);
    iconv_close(plain);
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
