#include "conversion/sbcs_bridge.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "core/base/cpu.hpp"
#include "nls/convert.h"
#include "tests/reference/sbcs.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/made_tables.hpp"

namespace {

using namespace std::string_literals;
using nls::CpuLevel;
using nls::test::Bytes;
using nls::test::GuardedBuffer;
using nls::test::MadeCharset;
using nls::test::Twin;

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};
constexpr unsigned char kUntouched = 0xEE;

struct Random {
    unsigned operator()() { return static_cast<unsigned>(engine()); }
    std::mt19937 engine{7};
};

class SbcsBridge : public testing::TestWithParam<CpuLevel> {
protected:
    void SetUp() override { nls::limitCpuLevel(GetParam()); }
    void TearDown() override { nls::limitCpuLevel(CpuLevel::avx512); }

    // Runs a bridge between two pages that fault and compares all of the target with what its twin leaves there.
    // `shift` moves both buffers away from the end of their pages.
    template <typename Bridge, typename TwinOf>
    void compare(const Bytes& source, std::size_t room, std::size_t shift, Bridge bridge, TwinOf twinOf) {
        Bytes want(room, kUntouched);
        const Twin twin = twinOf(source, want);
        unsigned char* const from = source_.atEnd(source.size() + shift);
        if (!source.empty()) std::memcpy(from, source.data(), source.size());
        unsigned char* const to = target_.atEnd(room + shift);
        std::memset(to, kUntouched, room + shift);
        const nls::Converted got = bridge(nls::ByteView{from, source.size()}, nls::ByteSpan{to, room});
        want.resize(room + shift, kUntouched);
        ASSERT_TRUE(got.status == twin.status && got.length == twin.length && std::equal(want.begin(), want.end(), to))
            << "source of " << source.size() << ", room " << room << ": " << got.status << ", " << got.length << " for "
            << twin.status << ", " << twin.length;
    }
    void toUtf8(const nls::SbcsWords& words, const Bytes& source, std::size_t room, std::size_t shift = 0) {
        compare(
            source, room, shift, [&](auto from, auto to) { return nls::sbcsToUtf8(words, from, to); },
            [&](const Bytes& from, Bytes& to) { return nls::test::twinSbcsToUtf8(words, from, to); });
    }
    void fromUtf8(const nls::SbcsPages& pages, const Bytes& source, std::size_t room, std::size_t shift = 0) {
        compare(
            source, room, shift, [&](auto from, auto to) { return nls::utf8ToSbcs(pages, from, to); },
            [&](const Bytes& from, Bytes& to) { return nls::test::twinUtf8ToSbcs(pages, from, to); });
    }

    Random random_;
    GuardedBuffer source_{4096}, target_{8192};
};
INSTANTIATE_TEST_SUITE_P(Levels, SbcsBridge, testing::ValuesIn(kLevels));

struct Charsets {
    MadeCharset latin{nls::test::latinUnits()}, cyrillic{nls::test::cyrillicUnits()}, thai{nls::test::thaiUnits()},
        scrambled{nls::test::scrambledUnits()};

    const MadeCharset* all[4] = {&latin, &cyrillic, &thai, &scrambled};
};

// Text of a charset: `dense` of 256 bytes are beyond ASCII.
Bytes textIn(Random& random, std::size_t count, unsigned dense) {
    Bytes text(count);
    for (auto& byte : text) {
        const unsigned any = random();
        byte = static_cast<unsigned char>((any >> 8) % 256 < dense ? 0x80 | (any & 0x7F) : any & 0x7F);
    }
    return text;
}

Bytes utf8Of(const MadeCharset& charset, const Bytes& text) {
    Bytes room(text.size() * 4 + 1);
    const Twin twin = nls::test::twinSbcsToUtf8(charset.words(), text, room);
    room.resize(twin.length);
    return room;
}

// Cut-off characters, stray bytes, wrong trailing bytes, four-byte forms and holes, in text that is otherwise sound.
TEST_P(SbcsBridge, OddUtf8) {
    const Charsets charsets;
    constexpr unsigned char kOdd[] = {0x00, 0x01, '(',  'x',  0x80, 0x81, 0x90, 0x98, 0x9F, 0xA1, 0xB8, 0xBF, 0xC3,
                                      0xD0, 0xDF, 0xE0, 0xE1, 0xE2, 0xED, 0xF0, 0xF4, 0xF5, 0xF8, 0xFC, 0xFF, 0xFF};
    for (int round = 0; round < 6000; ++round) {
        const MadeCharset& charset = *charsets.all[random_() % 4];
        Bytes text = utf8Of(charset, textIn(random_, random_() % 300, random_() % 2 * 128));
        for (unsigned count = random_() % 4; count != 0; --count) {
            Bytes piece(1 + random_() % 4);
            for (auto& byte : piece) byte = kOdd[random_() % std::size(kOdd)];
            const std::size_t place = random_() % 3 == 0 ? text.size() : random_() % (text.size() + 1);
            text.insert(text.begin() + static_cast<std::ptrdiff_t>(place), piece.begin(), piece.end());
        }
        fromUtf8(charset.pages(), text, round % 2 == 0 ? text.size() : random_() % (text.size() + 1), random_() % 9);
    }
}

// Tables that no builder makes: any words, any pages.
TEST_P(SbcsBridge, AnyTable) {
    for (int round = 0; round < 400; ++round) {
        nls::SbcsWords words{};
        const uint32_t leads = round % 4 == 0 ? 0xFF : round % 4 == 1 ? 0xEF : 0x7F;
        for (unsigned c = 0; c < 256; ++c) {
            words.utf8[c] = random_() & (0xFFFFFF00 | leads);
            if (round % 8 >= 4 && c < 128) words.utf8[c] = c;
        }
        MadeCharset charset{nls::test::latinUnits()};
        for (unsigned page = 0; page < 256; ++page)
            for (auto& byte : charset.page(page))
                if (random_() % 2 == 0) byte = static_cast<unsigned char>(random_());
        const Bytes text = textIn(random_, random_() % 400, random_() % 257);
        toUtf8(words, text, random_() % 1700);
        fromUtf8(charset.pages(), text, 400);
        fromUtf8(charset.pages(), utf8Of(charset, text), 400);
    }
}

struct Row {
    const char* why;
    std::string source;
    int32_t room;
    nlsStatus status;
    std::string target;  // as counted
};

template <typename Door>
void checkRows(Door door, const nlsConvTable* table, std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        std::string target(static_cast<std::size_t>(row.room), 'x');
        uint32_t length = 99;
        EXPECT_EQ(door(reinterpret_cast<unsigned char*>(target.data()), row.room,
                       reinterpret_cast<const unsigned char*>(row.source.data()),
                       static_cast<int32_t>(row.source.size()), table, &length),
                  row.status)
            << row.why;
        EXPECT_EQ(target.substr(0, length), row.target) << row.why;
    }
}

TEST(SbcsDoors, ToUtf8) {
    const MadeCharset latin{nls::test::latinUnits()};
    checkRows(nlsToUTF8, latin.toUtf8(),
              {{"no terminator is added", "abc", 3, 0, "abc"},
               {"too long by one", "abcd", 3, 2, "ab\0"s},
               {"a long form needs a byte to spare", "\xE9", 2, 2, " \0"s},
               {"and has it", "\xE9", 3, 0, "\xC3\xA9"},
               {"padded to the full size", "a\xE9", 3, 2, "a \0"s},
               {"no room at all", "a", 0, 2, ""}});
    // A table that takes NUL to a letter: text that ends with NUL has to end with NUL.
    nls::SbcsWords words = latin.words();
    words.utf8[0] = 'z';
    checkRows(nlsToUTF8, nls::test::MadeTable::of(19, words),
              {{"padded", "a\0"s, 4, 2, "az \0"s}, {"cut", "a\0"s, 2, 2, "a\0"s}, {"inside", "\0a"s, 2, 0, "za"}});
    // In place the NUL is gone before the end is looked at.
    unsigned char inPlace[] = {0, 'x', 'x'};
    uint32_t length = 0;
    const nls::test::MadeTable table = nls::test::MadeTable::of(19, words);
    EXPECT_EQ(nlsToUTF8(inPlace, 3, inPlace, 1, table, &length), NLS_BUF_SMALL);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(std::memcmp(inPlace, "z ", 3), 0);
}

TEST(SbcsDoors, FromUtf8) {
    MadeCharset latin{nls::test::latinUnits()};
    latin.page(0)[0] = 0xFF;  // the byte without a character
    checkRows(nlsFromUTF8, latin.fromUtf8(),
              {{"cut off", "a\xC3", 4, 16, "a"},
               {"four bytes, F5 alone, a stray trail", "\xF0\x9F\x98\x80\xF5\x80!", 6, -3, "??\?!"},
               {"no mapping, no room", "a\xD0\x90", 1, 2, "a"},
               {"NUL is what page 0 says", "\0"s, 1, 0, "\xFF"},
               {"the first of three bytes doesn't count", "\xE5\xC3\xA9", 1, 0, "\xE9"}});
}

TEST(SbcsDoors, RefuseWhatIsMissing) {
    const MadeCharset latin{nls::test::latinUnits()};
    unsigned char bytes[4] = {};
    for (const auto door : {nlsToUTF8, nlsFromUTF8}) {
        const nlsConvTable* const table = door == nlsToUTF8 ? latin.toUtf8() : latin.fromUtf8();
        EXPECT_EQ(door(bytes, 4, bytes, 1, nullptr, nullptr), NLS_BAD_ARG);
        EXPECT_EQ(door(nullptr, 4, bytes, 1, table, nullptr), NLS_BAD_ARG);
        EXPECT_EQ(door(bytes, 4, nullptr, 1, table, nullptr), NLS_BAD_ARG);
        EXPECT_EQ(door(bytes, 4, nullptr, -1, table, nullptr), NLS_OK);
    }
}

}  // namespace
