#include "strings/str_record.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "nls/status.h"
#include "nls/strings.h"
#include "tests/support/guarded_buffer.hpp"

namespace {

const unsigned char* bytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

TEST(StrRecord, AppendsWhatFits) {
    constexpr struct {
        const char* why;
        const char* source;
        int32_t count, bufSize;
        nlsStatus status;
        const char* want;
    } rows[] = {
        {"fills the room", "defghi", 6, 10, NLS_OK, "abcdefghi"},
        {"one too many", "defghij", 7, 10, NLS_BUF_SMALL, "abc"},
        {"the count must fit, not the text", "d", 7, 10, NLS_BUF_SMALL, "abc"},
        {"stops at the NUL", "d", 6, 10, NLS_OK, "abcd"},
        {"part of the text", "def", 2, 10, NLS_OK, "abcde"},
        {"nothing", "def", 0, 10, NLS_OK, "abc"},
        {"less than nothing", "def", INT32_MIN, 10, NLS_OK, "abc"},
        {"no source", nullptr, 1, 10, NLS_BAD_ARG, "abc"},
    };
    for (const auto& row : rows) {
        unsigned char buf[10] = "abc";
        nlsStr rec{buf, row.bufSize, 3};
        EXPECT_EQ(nlsAppendString(bytes(row.source), row.count, &rec), row.status) << row.why;
        EXPECT_STREQ(reinterpret_cast<const char*>(buf), row.want) << row.why;
        EXPECT_EQ(rec.strLength, std::strlen(row.want)) << row.why;
    }
}

TEST(StrRecord, CopiesWhatFits) {
    constexpr struct {
        const char* why;
        const char* source;
        int32_t count;
        nlsStatus status;
        const char* want;
    } rows[] = {
        {"all but the NUL", "wxyz", 4, NLS_OK, "wxyz"},
        {"as large as the buffer", "wxyz", 5, NLS_BUF_SMALL, "abc"},
        {"short text", "w", 4, NLS_OK, "w"},
        {"part", "wxyz", 2, NLS_OK, "wx"},
        {"nothing", "wxyz", 0, NLS_OK, ""},
        {"less than nothing", "wxyz", -9, NLS_OK, ""},
        {"no source", nullptr, 0, NLS_BAD_ARG, "abc"},
    };
    for (const auto& row : rows) {
        unsigned char buf[5] = "abc";
        nlsStr rec{buf, 5, 3};
        EXPECT_EQ(nlsCopyString(bytes(row.source), row.count, &rec), row.status) << row.why;
        EXPECT_STREQ(reinterpret_cast<const char*>(buf), row.want) << row.why;
        EXPECT_EQ(rec.strLength, std::strlen(row.want)) << row.why;

        if (row.source == nullptr || row.count < 0) continue;
        unsigned char target[5] = "abc";
        nlsStr to{target, 5, 3};
        unsigned char source[8] = {};
        std::memcpy(source, row.source, std::strlen(row.source));
        const nlsStr from{source, 8, static_cast<uint32_t>(row.count)};
        EXPECT_EQ(nlsCopynlsStr(&from, &to), row.status) << row.why;
        EXPECT_STREQ(reinterpret_cast<const char*>(target), row.want) << row.why;
        EXPECT_EQ(to.strLength, std::strlen(row.want)) << row.why;
    }
}

// Records that no operation makes. Whatever is answered, nothing but the buffer's own bytes is written.
TEST(StrRecord, HostileFieldsNeverLeaveTheBuffer) {
    constexpr int32_t sizes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 2, 4};
    constexpr uint32_t lengths[] = {0, 1, 2, 3, 4, 5, INT32_MAX, 0x80000000U, UINT32_MAX};
    constexpr int32_t counts[] = {INT32_MIN, -2, -1, 0, 1, 2, 3, 4, INT32_MAX};
    nls::test::GuardedBuffer page{8};
    for (const int32_t size : sizes) {
        for (const uint32_t length : lengths) {
            for (const int32_t count : counts) {
                unsigned char* const buf = page.atEnd(size > 0 ? static_cast<std::size_t>(size) : 0);
                const int64_t room = int64_t{size} - int64_t{length} - 1;
                nlsStr rec{buf, size, length};
                const nlsStatus appended = nlsAppendString(bytes("zzzzz"), count, &rec);
                EXPECT_EQ(appended, room < 0 || room < count ? NLS_BUF_SMALL : NLS_OK) << size << length << count;
                rec = nlsStr{buf, size, length};
                EXPECT_EQ(nlsCopyString(bytes("zzzzz"), count, &rec),
                          size < 1 || count >= size ? NLS_BUF_SMALL : NLS_OK);
                const nlsStr from{page.atStart(), 1, length};
                rec = nlsStr{buf, size, 0};
                EXPECT_EQ(nlsCopynlsStr(&from, &rec),
                          size < 1 || length >= static_cast<uint32_t>(size) ? NLS_BUF_SMALL : NLS_OK);
                EXPECT_EQ(nlsInitString(buf, size, &rec), NLS_OK);
                EXPECT_EQ(rec.strLength, 0U);
            }
        }
    }
}

TEST(StrRecord, FieldsAndNulls) {
    unsigned char buf[4] = "abc";
    nlsStr rec{};
    EXPECT_EQ(nlsSetString(buf, -7, 3, &rec), NLS_OK);
    unsigned char* place = nullptr;
    uint32_t size = 0;
    uint32_t length = 0;
    EXPECT_EQ(nlsGetBufOfnlsStr(&rec, &place), NLS_OK);
    EXPECT_EQ(nlsGetBufSizeOfnlsStr(&rec, &size), NLS_OK);
    EXPECT_EQ(nlsGetStrLengthOfnlsStr(&rec, &length), NLS_OK);
    EXPECT_EQ(place, buf);
    EXPECT_EQ(static_cast<int32_t>(size), -7);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(buf[0], 'a');
    EXPECT_EQ(nlsGetBufOfnlsStr(nullptr, &place), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetBufSizeOfnlsStr(nullptr, &size), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetStrLengthOfnlsStr(nullptr, &length), NLS_BAD_ARG);
    EXPECT_EQ(nlsInitString(buf, 4, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsInitString(nullptr, 4, &rec), NLS_BAD_ARG);
    EXPECT_EQ(nlsSetString(buf, 4, 0, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsAppendString(buf, 1, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsCopyString(buf, 1, nullptr), NLS_BAD_ARG);
}

TEST(StrRecord, AnEmptyRecordNeedsNoBuffer) {
    nlsStr from{};
    EXPECT_EQ(nlsSetString(nullptr, 0, 0, &from), NLS_OK);
    unsigned char target[4] = "abc";
    nlsStr to{target, 4, 3};
    EXPECT_EQ(nlsCopynlsStr(&from, &to), NLS_OK);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(to.strLength, 0U);
}

TEST(StrRecord, PlainCopies) {
    nls::test::GuardedBuffer page{16};
    const unsigned char* const five = page.atEnd("abcde", 6);
    EXPECT_EQ(nlsStrlen(five), 5U);
    EXPECT_EQ(nlsStrlen(bytes("")), 0U);
    constexpr struct {
        int32_t max;
        const char* want;
    } rows[] = {{INT32_MIN, ""}, {0, ""}, {1, "a"}, {4, "abcd"}, {5, "abcde"}, {INT32_MAX, "abcde"}};
    for (const auto& row : rows) {
        unsigned char target[8] = "#######";
        EXPECT_EQ(nlsStrncpy(five, target, row.max), std::strlen(row.want));
        EXPECT_STREQ(reinterpret_cast<const char*>(target), row.want);
    }
    nls::test::GuardedBuffer exact{8};
    EXPECT_EQ(nlsStrcpy(five, exact.atEnd(6)), 5U);
    EXPECT_STREQ(reinterpret_cast<const char*>(exact.atEnd(6)), "abcde");
    const unsigned char open[2] = {'x', 'y'};  // no NUL within the count
    EXPECT_EQ(nlsStrncpy(exact.atEnd(open, 2), exact.atStart(), 2), 2U);
    EXPECT_EQ(nlsStrncpy(bytes(""), exact.atEnd(1), 9), 0U);
}

TEST(StrRecord, TextAppendedToItselfIsDoubledOnce) {
    unsigned char buf[16] = "abc";
    nlsStr rec{buf, 16, 3};
    EXPECT_EQ(nlsAppendString(buf, 10, &rec), NLS_OK);
    EXPECT_STREQ(reinterpret_cast<const char*>(buf), "abcabc");
    EXPECT_EQ(rec.strLength, 6U);
}

}  // namespace
