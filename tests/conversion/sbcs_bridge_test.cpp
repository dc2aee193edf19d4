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
        ASSERT_EQ(got.status, twin.status) << "source of " << source.size() << ", room " << room;
        ASSERT_EQ(got.length, twin.length) << "source of " << source.size() << ", room " << room;
        want.resize(room + shift, kUntouched);
        ASSERT_EQ(Bytes(to, to + room + shift), want) << "source of " << source.size() << ", room " << room;
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

TEST_P(SbcsBridge, EveryLengthEveryAlignment) {
    const Charsets charsets;
    for (const MadeCharset* charset : charsets.all)
        for (std::size_t count = 0; count <= 64; ++count)
            for (std::size_t shift = 0; shift < 32; ++shift) {
                const Bytes text = textIn(random_, count, static_cast<unsigned>(shift % 3 * 100)),
                            utf8 = utf8Of(*charset, text);
                toUtf8(charset->words(), text, utf8.size() + 1, shift);
                fromUtf8(charset->pages(), utf8, count, shift);
            }
}

TEST_P(SbcsBridge, EveryRoom) {
    const Charsets charsets;
    for (const MadeCharset* charset : charsets.all)
        for (const std::size_t count : {1U, 2U, 5U, 16U, 31U, 64U, 65U, 150U, 300U})
            for (const unsigned dense : {0U, 20U, 256U}) {
                const Bytes text = textIn(random_, count, dense), utf8 = utf8Of(*charset, text);
                for (std::size_t room = 0; room <= utf8.size() + 3; ++room) toUtf8(charset->words(), text, room);
                for (std::size_t room = 0; room <= count + 3; ++room) fromUtf8(charset->pages(), utf8, room);
            }
}

TEST_P(SbcsBridge, LongTexts) {
    const Charsets charsets;
    for (const MadeCharset* charset : charsets.all)
        for (const unsigned dense : {0U, 1U, 16U, 200U, 256U})
            for (int round = 0; round < 10; ++round) {
                const Bytes text = textIn(random_, 600 + random_() % 400, dense), utf8 = utf8Of(*charset, text);
                toUtf8(charset->words(), text, utf8.size() + random_() % 200);
                fromUtf8(charset->pages(), utf8, text.size() + random_() % 200);
            }
}

// Every byte of the source alone among ASCII, at every place of a block and a half.
TEST_P(SbcsBridge, EveryByteAtEveryPlace) {
    const Charsets charsets;
    for (const MadeCharset* charset : {&charsets.cyrillic, &charsets.thai})
        for (std::size_t place = 0; place < 100; place += 1 + place % 3)
            for (unsigned byte = 0; byte < 256; ++byte) {
                Bytes text(160, 'a');
                text[place] = static_cast<unsigned char>(byte);
                toUtf8(charset->words(), text, 330);
                fromUtf8(charset->pages(), text, 160);  // not UTF-8, but for ASCII
                fromUtf8(charset->pages(), utf8Of(*charset, text), 160);
            }
}

// Cut-off characters, stray bytes, wrong trailing bytes, four-byte forms and holes, in text that is otherwise sound.
TEST_P(SbcsBridge, OddUtf8) {
    const Charsets charsets;
    const std::string pieces[] = {"\x80",
                                  "\xBF",
                                  "\xC3",
                                  "\xC3\xC3",
                                  "\xE0\xB8",
                                  "\xE2(\xA1",
                                  "\xF4",
                                  "\xF5",
                                  "\xFF",
                                  "\xF0\x9F\x98\x80",
                                  "\xF0\x9F\x98",
                                  "\xD0\x90",
                                  "\xDF",
                                  "\xE1x",
                                  "\xE0\x01",
                                  "\0"s,
                                  "\xE0\xB8\x81\x81",
                                  "\xF4\xF4\xF4\xF4"};
    for (int round = 0; round < 6000; ++round) {
        const MadeCharset& charset = *charsets.all[random_() % 4];
        Bytes text = utf8Of(charset, textIn(random_, random_() % 300, random_() % 2 * 128));
        for (unsigned count = random_() % 4; count != 0; --count) {
            const std::string& piece = pieces[random_() % std::size(pieces)];
            const std::size_t place = random_() % 3 == 0 ? text.size() : random_() % (text.size() + 1);
            text.insert(text.begin() + static_cast<std::ptrdiff_t>(place), piece.begin(), piece.end());
        }
        fromUtf8(charset.pages(), text, round % 2 == 0 ? text.size() : random_() % (text.size() + 1), random_() % 9);
    }
}

TEST_P(SbcsBridge, AnyBytesOverAnAlphabet) {
    const Charsets charsets;
    constexpr unsigned char kAlphabet[10] = {'a', 0, 0x80, 0xB8, 0xC3, 0xE0, 0xEF, 0xF0, 0xF4, 0xF5};
    for (unsigned number = 0; number < 100000; ++number) {  // all texts of up to five letters
        Bytes text;
        for (unsigned rest = number; rest != 0; rest /= 10) text.push_back(kAlphabet[rest % 10]);
        Bytes want(text.size(), kUntouched), got = want;
        const Twin twin = nls::test::twinUtf8ToSbcs(charsets.thai.pages(), text, want);
        const nls::Converted bridge = nls::utf8ToSbcs(charsets.thai.pages(), text, got);
        ASSERT_EQ(bridge.status, twin.status) << number;
        ASSERT_EQ(bridge.length, twin.length) << number;
        ASSERT_EQ(got, want) << number;
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
               {"NUL is a byte", "a\0"s, 2, 0, "a\0"s},
               {"an empty source", "", 2, 0, ""},
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
               {"four bytes", "\xF0\x9F\x98\x80!", 4, -3, "?!"},
               {"F5 stands alone", "\xF5!", 4, -3, "?!"},
               {"a stray trailing byte", "a\x80!", 4, -3, "a?!"},
               {"no mapping, no room", "a\xD0\x90", 1, 2, "a"},
               {"NUL is what page 0 says", "\0"s, 1, 0, "\xFF"},
               {"the first of three bytes doesn't count", "\xE5\xC3\xA9", 1, 0, "\xE9"},
               {"an empty source", "", 2, 0, ""}});
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
