#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

#include "core/base/cpu.hpp"
#include "core/base/decimal_field.hpp"
#include "core/base/names.hpp"
#include "core/base/views.hpp"

namespace {

TEST(Names, FoldCaseForgetTrailingBlanksAndAreCut) {
    constexpr struct {
        const char* a;
        const char* b;
        int order;
    } rows[] = {
        {"abc", "ABC  ", 0}, {"ABC  ", "abc", 0}, {"", "   ", 0},       {"ABC", "ABCD", -1},
        {"ABCD", "ABC", 1},  {"ABC X", "ABC", 1}, {"ABC", "ABC X", -1}, {"A B", "AB", -1},
        {"\x80", "A", -1},   {"A", "\xFF", 1},    {"A\t", "A", 1},
    };
    for (const auto& row : rows) EXPECT_EQ(nls::compareNames(row.a, row.b), row.order) << row.a << " / " << row.b;
    char room[4] = {'x', 'x', 'x', 'x'};
    nls::copyName(room, sizeof room, "ABCDEF");
    EXPECT_STREQ(room, "ABC");
}

TEST(DecimalField, ReadsAFieldOfFixedWidth) {
    constexpr struct {
        const char* text;
        int32_t width, value;
    } rows[] = {{"  42", 4, 42},
                {"4242", 2, 42},
                {"12a4", 4, 12},
                {"-7", 2, -7},
                {"    ", 4, 0},
                {"+", 1, 0},
                {"+-5", 3, 0},
                {"\n\t 8", 4, 8},
                {"7", 0, 0},
                {"7", -3, 0},
                {"a", 1, 0},
                {"- 7", 3, 0},
                {" 7", 1, 0},
                {"4294967297", 10, 1},
                {"-2147483648", 11, INT32_MIN},
                {"2147483648", 10, INT32_MIN}};
    for (const auto& row : rows) EXPECT_EQ(nls::readDecimal(row.text, row.width), row.value) << row.text;
}

TEST(ByteWriter, AnswersFullInsteadOfOverrunning) {
    unsigned char room[3] = {9, 9, 9};
    nls::ByteWriter writer{nls::ByteSpan{room, 2}};
    const unsigned char three[] = {1, 2, 3};
    EXPECT_FALSE(writer.put(three, 3));
    EXPECT_EQ(writer.written(), 0U);
    EXPECT_TRUE(writer.put(three, 2));
    EXPECT_FALSE(writer.put(7));
    EXPECT_EQ(writer.written(), 2U);
    EXPECT_EQ(room[2], 9);
}

TEST(Cpu, LimitHoldsTheLevelDown) {
    const nls::CpuLevel real = nls::cpuLevel();
    nls::limitCpuLevel(nls::CpuLevel::baseline);
    EXPECT_EQ(nls::cpuLevel(), nls::CpuLevel::baseline);
    nls::limitCpuLevel(nls::CpuLevel::avx512);
    EXPECT_EQ(nls::cpuLevel(), real);
}

}  // namespace
