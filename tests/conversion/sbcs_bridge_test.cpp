// Text of single-byte charsets to and from UTF-8 through tables that hold anything, which each level of the processor
// takes for the same; and the doors. What real charsets make of text of every size: tests/real.
#include "conversion/sbcs_bridge.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "core/base/cpu.hpp"
#include "nls/convert.h"
#include "nls/status.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/made_tables.hpp"

namespace {

using namespace std::string_literals;
using nls::CpuLevel;
using nls::test::MadeCharset;
using Bytes = std::vector<unsigned char>;

struct Random {
    unsigned operator()() { return static_cast<unsigned>(engine()); }
    std::mt19937 engine{7};
};

struct Answer {
    nlsStatus status;
    uint32_t length;
    Bytes target;
    bool operator==(const Answer&) const = default;
};

// Source and target end at pages that fault.
template <typename Bridge>
void expectAlike(const Bytes& source, std::size_t room, Bridge bridge) {
    static nls::test::GuardedBuffer sources{4096}, targets{4096};
    const nls::ByteView from{sources.atEnd(source.data(), source.size()), source.size()};
    const nls::ByteSpan to{targets.atEnd(room), room};
    Answer plain{};
    for (const CpuLevel level : {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512}) {
        nls::limitCpuLevel(level);
        std::ranges::fill(to, static_cast<unsigned char>(0xEE));
        const nls::Converted got = bridge(from, to);
        const Answer answer{got.status, got.length, {to.begin(), to.end()}};
        if (level == CpuLevel::baseline) plain = answer;
        EXPECT_TRUE(answer == plain) << "source of " << source.size() << ", room " << room;
    }
    nls::limitCpuLevel(CpuLevel::avx512);
}

// Text of a charset: `dense` of 256 bytes are beyond ASCII.
Bytes textIn(Random& random, std::size_t count, unsigned dense) {
    Bytes text(count);
    for (auto& byte : text) {
        const unsigned any = random();
        byte = static_cast<unsigned char>((any >> 8) % 256 < dense ? 0x80 | (any & 0x7F) : any & 0x7F);
    }
    return text;
}

// Tables that no builder makes: any words, any pages.
TEST(SbcsBridge, AnyTableAtEachLevel) {
    Random random;
    for (int round = 0; round < 400; ++round) {
        nls::SbcsWords words{};
        const uint32_t leads = round % 4 == 0 ? 0xFF : round % 4 == 1 ? 0xEF : 0x7F;
        for (unsigned c = 0; c < 256; ++c) {
            words.utf8[c] = random() & (0xFFFFFF00 | leads);
            if (round % 8 >= 4 && c < 128) words.utf8[c] = c;
        }
        MadeCharset charset{nls::test::latinUnits()};
        for (unsigned page = 0; page < 256; ++page)
            for (auto& byte : charset.page(page))
                if (random() % 2 == 0) byte = static_cast<unsigned char>(random());
        const Bytes text = textIn(random, random() % 400, random() % 257);
        const auto toUtf8 = [&](auto from, auto to) { return nls::sbcsToUtf8(words, from, to); };
        const auto fromUtf8 = [&](auto from, auto to) { return nls::utf8ToSbcs(charset.pages(), from, to); };
        expectAlike(text, random() % 1700, toUtf8);
        expectAlike(text, 400, fromUtf8);
        Bytes form(2000);
        form.resize(nls::sbcsToUtf8(charset.words(), text, form).length);
        expectAlike(form, 400, fromUtf8);
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
