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

// A buffer with "abc" in it and the record over it, and what an operation leaves of them.
struct Target {
    unsigned char buf[10] = "abc";
    nlsStr rec;
    explicit Target(int32_t size) : rec{buf, size, 3} {}

    void expect(const char* want, const char* why) const {
        EXPECT_STREQ(reinterpret_cast<const char*>(buf), want) << why;
        EXPECT_EQ(rec.strLength, std::strlen(want)) << why;
    }
};
struct Row {
    const char* why;
    const char* source;
    int32_t count;
    nlsStatus status;
    const char* want;
};

TEST(StrRecord, AppendsWhatFits) {
    constexpr Row rows[] = {
        {"fills the room", "defghi", 6, NLS_OK, "abcdefghi"},
        {"one too many", "defghij", 7, NLS_BUF_SMALL, "abc"},
        {"the count must fit, not the text", "d", 7, NLS_BUF_SMALL, "abc"},
        {"stops at the NUL", "d", 6, NLS_OK, "abcd"},
        {"part of the text", "def", 2, NLS_OK, "abcde"},
        {"less than nothing", "def", INT32_MIN, NLS_OK, "abc"},
        {"no source", nullptr, 1, NLS_BAD_ARG, "abc"},
    };
    for (const Row& row : rows) {
        Target target{10};
        EXPECT_EQ(nlsAppendString(bytes(row.source), row.count, &target.rec), row.status) << row.why;
        target.expect(row.want, row.why);
    }
    Target doubled{10};
    EXPECT_EQ(nlsAppendString(doubled.buf, 6, &doubled.rec), NLS_OK);
    doubled.expect("abcabc", "appended to itself");
}

TEST(StrRecord, CopiesWhatFits) {
    constexpr Row rows[] = {
        {"all but the NUL", "wxyz", 4, NLS_OK, "wxyz"},
        {"as large as the buffer", "wxyz", 5, NLS_BUF_SMALL, "abc"},
        {"short text", "w", 4, NLS_OK, "w"},
        {"part", "wxyz", 2, NLS_OK, "wx"},
        {"nothing", "wxyz", 0, NLS_OK, ""},
        {"less than nothing", "wxyz", -9, NLS_OK, ""},
        {"no source", nullptr, 0, NLS_BAD_ARG, "abc"},
    };
    for (const Row& row : rows) {
        Target target{5};
        EXPECT_EQ(nlsCopyString(bytes(row.source), row.count, &target.rec), row.status) << row.why;
        target.expect(row.want, row.why);
        if (row.source == nullptr || row.count < 0) continue;
        Target to{5};
        unsigned char source[8] = {};
        std::memcpy(source, row.source, std::strlen(row.source));
        const nlsStr from{source, 8, static_cast<uint32_t>(row.count)};
        EXPECT_EQ(nlsCopynlsStr(&from, &to.rec), row.status) << row.why;
        to.expect(row.want, row.why);
    }
    Target emptied{5};
    nlsStr empty{};
    EXPECT_EQ(nlsSetString(nullptr, 0, 0, &empty), NLS_OK) << "an empty record needs no buffer";
    EXPECT_EQ(nlsCopynlsStr(&empty, &emptied.rec), NLS_OK);
    emptied.expect("", "an empty record");
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
    for (const nlsStatus status :
         {nlsGetBufOfnlsStr(nullptr, &place), nlsGetBufSizeOfnlsStr(nullptr, &size),
          nlsGetStrLengthOfnlsStr(nullptr, &length), nlsInitString(buf, 4, nullptr), nlsInitString(nullptr, 4, &rec),
          nlsSetString(buf, 4, 0, nullptr), nlsAppendString(buf, 1, nullptr), nlsCopyString(buf, 1, nullptr)})
        EXPECT_EQ(status, NLS_BAD_ARG);
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

}  // namespace
