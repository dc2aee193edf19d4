#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "nls/convert.h"
#include "nls/status.h"
#include "tests/support/made_tables.hpp"

namespace {

using namespace std::string_literals;
using nls::test::MadeCharset;
using nls::test::MadeTable;
using nls::test::shifted;

constexpr uint32_t kUnset = 0xDEADBEEF;  // what `outLen` holds where a call leaves it alone

struct Outcome {
    nlsStatus status;
    uint32_t outLen;
    std::string target;  // all of it

    bool operator==(const Outcome&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    out << outcome.status << " length " << outcome.outLen << " [" << std::hex;
    for (const char c : outcome.target) out << ' ' << (c & 0xFF);
    return out << " ]" << std::dec;
}

// The target starts as `room` bytes "x".
Outcome run(const nlsConvTable* table, const std::string& source, int32_t room, bool check = false,
            int32_t scratchSize = 0) {
    std::string target(static_cast<std::size_t>(room > 0 ? room : 0), 'x');
    std::string scratch(static_cast<std::size_t>(scratchSize), 's');
    uint32_t outLen = kUnset;
    const auto bytes = [](std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); };
    const nlsStatus status = convertBytes(
        bytes(target), room, reinterpret_cast<const unsigned char*>(source.data()), static_cast<int32_t>(source.size()),
        scratchSize != 0 ? bytes(scratch) : nullptr, scratchSize, table, &outLen, check ? 1 : 0);
    return {status, outLen, target};
}

struct Row {
    const char* why;
    const nlsConvTable* table;
    std::string source;
    int32_t room, scratch;
    Outcome want;
};
void expectRows(std::span<const Row> rows, bool check) {
    for (const Row& row : rows)
        EXPECT_EQ(run(row.table, row.source, row.room, check, row.scratch), row.want) << row.why;
}

// Every number that has a handler, but for the identity.
constexpr int kTypes[] = {1, 3, 4, 5, 6, 7, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 50, 51, 81, 89};

bool isType(int64_t number) {
    return std::find(std::begin(kTypes), std::end(kTypes), number) != std::end(kTypes);
}

TEST(ConversionType, ReadsTheWordBehindTheTable) {
    EXPECT_EQ(nlsConversionType(nullptr), 2);
    constexpr struct {
        int64_t word;
        int32_t type;
    } rows[] = {{1600, 1},   {1599, 63}, {0x21C, 28},        {0x119, 25},    {INT64_MAX, 1},
                {-1, -1921}, {0x600, 0}, {-0x8000, -0x8000}, {INT64_MIN, 0}, {0x10000 + 19, 1}};
    for (const auto& row : rows) EXPECT_EQ(nlsConversionType(MadeTable{row.word}), row.type) << row.word;
}

TEST(ConversionType, AnswersOfEveryNumber) {
    constexpr uint32_t kOfCharset = 77;
    constexpr struct {
        int type;
        uint32_t size, growth;  // 0: no answer
    } rows[] = {{1, kOfCharset, 1}, {2, 1, 1},  {3, 2, 2},  {4, 2, 1},  {5, 0, 4},  {6, 0, 4},  {17, 3, 3}, {18, 2, 2},
                {19, 3, 3},         {20, 1, 1}, {21, 4, 2}, {22, 2, 2}, {23, 4, 2}, {24, 4, 2}, {25, 4, 0}, {26, 4, 0},
                {27, 4, 2},         {28, 4, 0}, {29, 4, 2}, {30, 2, 0}, {50, 2, 1}, {51, 2, 2}, {81, 4, 3}, {89, 4, 4}};
    std::vector<std::pair<uint32_t, uint32_t>> want(1600, {0, 0});
    for (const auto& row : rows) want[static_cast<std::size_t>(row.type)] = {row.size, row.growth};
    want[7] = {4, 6};  // the made two-step table below: growths multiply, the second tells the size
    const MadeTable words{19}, units{24}, wide{25};
    for (int word = 0; word < 128; ++word) {
        const MadeTable table = word == 7 ? MadeTable::twoStep(words, units) : MadeTable{word};
        const auto [size, growth] = want[static_cast<std::size_t>(word)];
        uint32_t answer = kUnset;
        EXPECT_EQ(getMaxConvCharSize(table, kOfCharset, &answer), size != 0 ? NLS_OK : NLS_BAD_ARG) << word;
        EXPECT_EQ(answer, size != 0 ? size : kUnset) << word;
        answer = kUnset;
        EXPECT_EQ(getMaxExpSz(table, &answer), growth != 0 ? NLS_OK : NLS_BAD_ARG) << word;
        EXPECT_EQ(answer, growth != 0 ? growth : kUnset) << word;
    }
    uint32_t answer = 0;
    EXPECT_EQ(getMaxExpSz(MadeTable::twoStep(words, wide), &answer), NLS_BAD_ARG);
    EXPECT_EQ(getMaxExpSz(MadeTable::twoStep(wide, words), &answer), NLS_BAD_ARG);
    EXPECT_EQ(getMaxConvCharSize(nullptr, 5, &answer), NLS_OK);
    EXPECT_EQ(answer, 1U);
}

TEST(Engine, TheSimplestTables) {
    const MadeTable map = shifted(), strange{63}, negative{-1};
    const Row rows[] = {
        {"identity", nullptr, "abc", 4, 0, {0, 3, "abcx"}},
        {"a negative target size is 0", nullptr, "abc", -5, 0, {2, 0, ""}},
        {"map", map, "abz\0a"s, 6, 0, {0, 5, "bcz\0bx"s}},
        {"map, short target untouched", map, "abc", 2, 0, {2, 0, "xx"}},
        {"no handler, empty source", strange, "", 2, 0, {0, kUnset, "\0x"s}},
        {"no handler, no room", strange, "abc", 0, 0, {0, kUnset, ""}},
        {"negative type", negative, "abc", 2, 0, {0, kUnset, "\0x"s}},
    };
    expectRows(rows, false);
    EXPECT_EQ(run(map, "abz", 3, true), (Outcome{-2, 3, "bcz"}));
    for (int64_t word = 0; word < 1600; ++word) {
        if (isType(nlsConversionType(MadeTable{word}))) continue;
        EXPECT_EQ(run(MadeTable{word, 64}, "abc", 2), (Outcome{0, kUnset, "\0x"s})) << word;
    }
}

TEST(Engine, AnEmptySourceIsNeverRead) {
    unsigned char target[4] = {'x', 'x', 'x', 'x'};
    for (const int type : kTypes) {
        const MadeTable table{type, 64};  // a block that isn't worth reading
        for (const bool check : {false, true}) {
            uint32_t outLen = kUnset;
            EXPECT_EQ(convertBytes(target, 4, check ? target : nullptr, 0, nullptr, 0, table, &outLen, check), NLS_OK);
            EXPECT_EQ(outLen, 0U) << type;
        }
    }
    EXPECT_EQ(std::memcmp(target, "xxxx", 4), 0);
}

TEST(Engine, RefusesBadArgumentsFirst) {
    const MadeTable strange{63}, map = shifted();
    unsigned char bytes[4] = {'x', 'x', 'x', 'x'};
    for (const nlsConvTable* table : {static_cast<const nlsConvTable*>(nullptr), static_cast<const nlsConvTable*>(map),
                                      static_cast<const nlsConvTable*>(strange)}) {
        uint32_t outLen = kUnset;
        EXPECT_EQ(convertBytes(bytes, 4, bytes, -1, nullptr, 0, table, &outLen, 0), NLS_BAD_ARG);
        EXPECT_EQ(convertBytes(bytes, 4, nullptr, 1, nullptr, 0, table, &outLen, 0), NLS_BAD_ARG);
        EXPECT_EQ(convertBytes(nullptr, 4, bytes, 1, nullptr, 0, table, &outLen, 0), NLS_BAD_ARG);
        EXPECT_EQ(outLen, kUnset);
        EXPECT_EQ(std::memcmp(bytes, "xxxx", 4), 0);
        EXPECT_EQ(convertBytes(bytes + 1, 3, bytes, 1, nullptr, 0, table, nullptr, 0), NLS_OK);  // nobody asks
        bytes[1] = 'x';
    }
}

TEST(Engine, Utf8SourcesThatStartInsideACharacter) {
    const MadeCharset latin{nls::test::latinUnits()};
    for (const int type : {20, 22, 24, 26}) {
        const MadeTable table = type == 20 ? latin.fromUtf8() : MadeTable{type};
        for (int first = 0; first < 256; ++first) {
            const std::string source = static_cast<char>(first) + "bcdefg"s;
            const bool refused = (first & 0xC0) == 0x80;
            const Outcome outcome = run(table, source, 40);
            EXPECT_EQ(outcome.outLen == kUnset, refused) << type << ' ' << first;
            if (refused) {
                EXPECT_EQ(outcome, (Outcome{16, kUnset, std::string(40, 'x')})) << type << ' ' << first;
            }
        }
        EXPECT_NE(run(table, "a\x80", 40).status, NLS_BAD_ARG) << type;
    }
}

TEST(Engine, TheSameBufferAndACheck) {
    const MadeCharset latin{nls::test::latinUnits()};
    const MadeTable map = shifted(), two = MadeTable::twoStep(nullptr, map), jis{3}, euc{4};
    for (const nlsConvTable* table : {jis.get(), euc.get(), two.get(), latin.toUtf8().get(), latin.fromUtf8().get()}) {
        unsigned char text[8] = "ab", scratch[8];
        uint32_t outLen = kUnset;
        EXPECT_EQ(convertBytes(text, 8, text, 2, scratch, 8, table, &outLen, 1), NLS_BAD_ARG);
        EXPECT_EQ(outLen, kUnset);
        EXPECT_EQ(std::memcmp(text, "ab", 3), 0);
    }
    unsigned char text[] = "abc";
    uint32_t outLen = 0;
    EXPECT_EQ(convertBytes(text, 3, text, 3, nullptr, 0, map, &outLen, 1), NLS_CONV_CHANGED);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "bcd");
}

TEST(Engine, WhatCountsAsAChange) {
    const MadeCharset latin{nls::test::latinUnits()};
    const MadeTable none = MadeTable::byteMap(nls::test::identityMap());
    const MadeTable there = MadeTable::twoStep(latin.toUtf8(), latin.fromUtf8()), utf16{24}, back{23};
    const MadeTable both = MadeTable::twoStep(none, latin.fromUtf8());
    const Row rows[] = {
        {"an accent grows", latin.toUtf8(), "\xE9", 6, 16, {-2, 2, "\xC3\xA9xxxx"}},
        {"a source that is a prefix of the output", latin.toUtf8(), "\xC3", 6, 16, {-2, 2, "\xC3\x83xxxx"}},
        {"a common NUL ends the comparison", latin.toUtf8(), "a\0\xE9"s, 6, 16, {0, 4, "a\0\xC3\xA9xx"s}},
        {"a substitute isn't compared", latin.fromUtf8(), "a\xD0\x90", 6, 16, {-3, 2, "a?xxxx"}},
        {"two steps that cancel out", there, "\xE9", 6, 16, {0, 1, "\xE9xxxxx"}},
        {"two steps with a substitute", both, "a\xD0\x90", 6, 16, {-2, 2, "a?xxxx"}},
        {"units can't be compared", utf16, "a", 6, 16, {-2, 2, "a\0xxxx"s}},
        {"units can't be compared, way back", back, "a\0"s, 6, 16, {-2, 1, "axxxxx"}},
        {"cut off: no change to tell of", utf16, "a\xC3", 6, 16, {16, 2, "a\0xxxx"s}},
        {"nothing came out", back, "a", 6, 16, {0, 0, "xxxxxx"}},
    };
    expectRows(rows, true);
}

TEST(Engine, TwoSteps) {
    const MadeCharset latin{nls::test::latinUnits()}, thai{nls::test::thaiUnits()};
    const MadeTable map = shifted(), strange{63}, utf16{24}, fromUtf16{23};
    const MadeTable good = MadeTable::twoStep(thai.toUtf8(), utf16), nested = MadeTable::twoStep(good, map);
    const MadeTable lossyFirst = MadeTable::twoStep(latin.fromUtf8(), map);
    const MadeTable lossySecond = MadeTable::twoStep(fromUtf16, latin.fromUtf8());
    const MadeTable refusedSecond = MadeTable::twoStep(map, latin.fromUtf8());
    const MadeTable emptyFirst = MadeTable::twoStep(strange, map), emptySecond = MadeTable::twoStep(map, strange);
    const MadeTable identities = MadeTable::twoStep(nullptr, nullptr);
    const Row rows[] = {
        {"two steps", good, "a\xA1", 5, 8, {0, 4, "a\0\x01\x0Ex"s}},
        {"no scratch", good, "a", 4, 0, {16, kUnset, "xxxx"}},
        {"the middle is full", good, "a\xA1", 4, 3, {2, 3, "xxxx"}},
        {"the target is full", good, "ab\xA1", 4, 9, {2, 4, "a\0b\0"s}},
        {"steps inside steps", nested, "a", 4, 4, {16, kUnset, "xxxx"}},
        {"a substitute of the first step goes untold", lossyFirst, "\xD0\x90g", 4, 4, {0, 2, "?hxx"}},
        {"one of the second doesn't", lossySecond, "\x10\x04"s, 4, 4, {-3, 1, "?xxx"}},
        {"a refusal of the second leaves the count", refusedSecond, "\x80g", 4, 4, {16, 2, "xxxx"}},
        {"first step without handler", emptyFirst, "abc", 4, 4, {0, 0, "xxxx"}},
        {"second step without handler", emptySecond, "abc", 4, 4, {0, 3, "\0xxx"s}},
        {"identity twice", identities, "abc", 4, 4, {0, 3, "abcx"}},
    };
    expectRows(rows, false);
    unsigned char target[4], scratch[4];
    EXPECT_EQ(convertBytes(target, 4, target, 1, scratch, -1, good, nullptr, 0), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertBytes(target, 4, target, 1, good, nullptr), NLS_BAD_ARG);
}

TEST(Engine, WaitingTypesAnswerThatNoConverterIsThere) {
    for (const int word : {5, 6, 0x105, 0x406, 0x085, 0x206, 0x185, 0x606})
        EXPECT_EQ(run(MadeTable(word, 8), "ab", 4), (Outcome{8, kUnset, "xxxx"})) << word;
}

TEST(ConvertLong, OneCharacter) {
    const MadeCharset latin{nls::test::latinUnits()};
    const MadeTable map = shifted(), two = MadeTable::twoStep(nullptr, map), strange{63};
    const MadeTable utf32Big{0x21A}, units32{27};
    const struct {
        const char* why;
        const nlsConvTable* table;
        nlsLChar value;
        nlsStatus status;
        uint32_t result;
    } rows[] = {
        {"map, four bytes", map, 0x61626364, 0, 0x62636465},
        {"cut off", latin.fromUtf8(), 0xC3, 16, kUnset},
        {"cut off behind a character", latin.fromUtf8(), 0x41C3, 16, 'A'},
        {"two steps", two, 'a', 16, kUnset},
        {"no handler", strange, 'a', 16, kUnset},
        {"code point, swapped", utf32Big, 0xF09F9880, 0, 0x1F600},
        {"unit to unit", units32, 0x4100, 0, 0x41000000},
    };
    for (const auto& row : rows) {
        uint32_t result = kUnset;
        EXPECT_EQ(nlsConvertLong(&result, row.value, row.table), row.status) << row.why;
        EXPECT_EQ(result, row.result) << row.why;
    }
    EXPECT_EQ(nlsConvertLong(nullptr, 'a', map), NLS_BAD_ARG);
}

}  // namespace
