#include <gtest/gtest.h>

#include <string>

#include "nls/convert.h"
#include "nls/status.h"
#include "tests/support/made_tables.hpp"

namespace {

using namespace std::string_literals;
using nls::test::MadeCharset;
using nls::test::MadeTable;
using nls::test::shifted;

// A conversion between two locales on one handle, with any table.
struct MadeConversion {
    explicit MadeConversion(nlsConvTable* table) {
        handle.hdr.typeTag = NLS_TAG_HANDLE;
        for (nlsLocale* locale : {&source, &target}) {
            locale->hdr.typeTag = NLS_TAG_LOCALE;
            locale->owner = &handle;
        }
        conversion.hdr.typeTag = NLS_TAG_CONVERSION;
        conversion.source = &source;
        conversion.target = &target;
        conversion.table = table;
    }
    MadeConversion(const MadeConversion&) = delete;
    MadeConversion& operator=(const MadeConversion&) = delete;

    nlsHandle handle{};
    nlsLocale source{}, target{};
    nlsConversion conversion{};
};

// A record on a buffer of its own, filled with "x".
struct Record {
    explicit Record(int32_t size, uint32_t length = 0)
        : bytes(static_cast<std::size_t>(size), 'x'),
          str{reinterpret_cast<unsigned char*>(bytes.data()), size, length} {}
    explicit Record(const std::string& text) : Record(static_cast<int32_t>(text.size()) + 1) {
        bytes = text + '\0';
        str = {reinterpret_cast<unsigned char*>(bytes.data()), str.bufSize, static_cast<uint32_t>(text.size())};
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    std::string bytes;
    nlsStr str;
};

// One table and what a function of records makes of a text with it.
struct Row {
    const char* why;
    const MadeTable* table;
    std::string source;
    int32_t room;
    nlsStatus status;
    uint32_t length;
    std::string target;
};

TEST(ConvertNls, ClosesTheText) {
    const MadeCharset latin{nls::test::latinUnits()};
    const MadeTable map = shifted(), utf32{26}, fromUtf16{23}, strange{63}, latinPages = latin.fromUtf8();
    const MadeTable to8 = MadeTable::twoStep(fromUtf16, latin.fromUtf8());
    const Row rows[] = {
        {"identity, no room for the NUL", nullptr, "ab", 2, 2, 2, "ab"},
        {"map, too small: empty and closed", &map, "abc", 2, 2, 0, "\0x"s},
        {"two steps to one byte", &to8, "a\0"s, 2, 0, 1, "a\0"s},
        {"a failure is closed too", &latinPages, "a\xC3", 3, 16, 1, "a\0x"s},
        {"no handler: the old length counts", &strange, "ab", 3, 0, 1, "\0\0x"s},
        {"an empty text", &utf32, "", 4, 0, 0, "\0\0\0\0"s},
    };
    for (const auto& row : rows) {
        const MadeConversion made{row.table != nullptr ? row.table->get() : nullptr};
        Record from{row.source}, scratch{8}, to{row.room, 1};
        EXPECT_EQ(nlsConvertNLS(&made.conversion, nullptr, &from.str, &scratch.str, &to.str), row.status) << row.why;
        EXPECT_EQ(to.str.strLength, row.length) << row.why;
        EXPECT_EQ(to.bytes, row.target) << row.why;
        EXPECT_EQ(scratch.str.strLength, 0U) << row.why;
    }
}

TEST(ConvertNls, Check) {
    const MadeCharset latin{nls::test::latinUnits()};
    const MadeTable map = shifted(), two = MadeTable::twoStep(nullptr, nullptr), words = latin.toUtf8();
    const Row rows[] = {
        {"nothing behind NUL", &words, "ab", 5, 0, 2, "ab\0xx"s},
        {"overflow: the closing NUL isn't counted", &words, "abcd", 3, 2, 2, "ab\0"s},
        {"two steps have no scratch buffer", &two, "abc", 5, 16, 1, "xxxxx"},
        {"an empty text", &map, "", 2, 0, 0, "\0x"s},
    };
    for (const auto& row : rows) {
        const MadeConversion made{row.table != nullptr ? row.table->get() : nullptr};
        Record from{row.source}, to{row.room, 1};
        EXPECT_EQ(nlsConvertNLSCheck(&made.conversion, nullptr, &from.str, &to.str), row.status) << row.why;
        EXPECT_EQ(to.str.strLength, row.length) << row.why;
        EXPECT_EQ(to.bytes, row.target) << row.why;
        EXPECT_EQ(nlsConvertNLSCheck(&made.conversion, nullptr, &from.str, &from.str), NLS_BAD_ARG) << row.why;
    }
}

TEST(ConvertNls, ChecksInTheirOrder) {
    const MadeTable map = shifted();
    Record from{"ab"s}, to{8};
    uint32_t out = 0;
    const auto all = [&](const nlsConversion* conversion, nlsStr* str) {
        return std::array{nlsConvertNLS(conversion, nullptr, str, nullptr, &to.str),
                          nlsConvertNLSCheck(conversion, nullptr, str, &to.str),
                          nlsConvertToUCS2(conversion, nullptr, str, 8, to.str.buf, &out),
                          nlsConvertFromUCS2(conversion, nullptr, from.str.buf, 2, str),
                          nlsConvertLChar(conversion, nullptr, 'a', str != nullptr ? &out : nullptr)};
    };
    const auto same = [](nlsStatus status) { return std::array{status, status, status, status, status}; };
    MadeConversion made{map};
    EXPECT_EQ(all(&made.conversion, nullptr), same(NLS_BAD_ARG));
    made.conversion.hdr.typeTag = NLS_TAG_LOCALE;
    EXPECT_EQ(all(&made.conversion, nullptr), same(NLS_BAD_CONVERSION));
    nlsHandle closed{};
    made.target.owner = &closed;
    EXPECT_EQ(all(&made.conversion, nullptr), same(NLS_BAD_HANDLE));
    made.target.owner = &made.handle;
    made.source.owner = &closed;
    EXPECT_EQ(all(&made.conversion, nullptr), same(NLS_BAD_HANDLE));
    EXPECT_EQ(all(nullptr, nullptr), same(NLS_BAD_HANDLE));
}

TEST(ConvertNls, RecordsThatCantBe) {
    const MadeTable map = shifted();
    const MadeConversion made{map};
    Record good{"ab"s}, to{8};
    nlsStr none{nullptr, 0, 1}, noRoom{nullptr, 8, 0}, huge{good.str.buf, 3, 0xFFFFFFFF},
        largest{good.str.buf, 3, INT32_MAX};
    for (nlsStr* from : {&none, &huge}) {
        EXPECT_EQ(nlsConvertNLS(&made.conversion, nullptr, from, nullptr, &to.str), NLS_BAD_ARG);
        EXPECT_EQ(nlsConvertNLSCheck(&made.conversion, nullptr, from, &to.str), NLS_BAD_ARG);
        EXPECT_EQ(nlsConvertToUCS2(&made.conversion, nullptr, from, 8, to.str.buf, nullptr), NLS_BAD_ARG);
    }
    EXPECT_EQ(nlsConvertNLSCheck(&made.conversion, nullptr, &largest, &to.str), NLS_BAD_ARG);  // one more is too many
    EXPECT_EQ(nlsConvertNLS(&made.conversion, nullptr, &good.str, nullptr, &noRoom), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertFromUCS2(&made.conversion, nullptr, good.str.buf, 2, &noRoom), NLS_BAD_ARG);
    EXPECT_EQ(nlsConvertFromUCS2(&made.conversion, nullptr, good.str.buf, -1, &to.str), NLS_BAD_ARG);
    EXPECT_EQ(to.bytes, "xxxxxxxx");
    nlsStr bad{to.str.buf, 2, 0xFFFFFFFF};  // a length that lies about its buffer
    const MadeTable strange{63};
    const MadeConversion uncounted{strange};
    EXPECT_EQ(nlsConvertNLS(&uncounted.conversion, nullptr, &good.str, nullptr, &bad), NLS_BUF_SMALL);
    EXPECT_EQ(nlsConvertNLSCheck(&uncounted.conversion, nullptr, &good.str, &bad), NLS_OK);
}

}  // namespace
