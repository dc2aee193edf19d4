#include "strings/substr.hpp"

#include <gtest/gtest.h>

#include "nls/status.h"
#include "nls/strings.h"
#include "tests/reference/validate.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace nls::test {
namespace {

const unsigned char* bytesOf(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}
using test::bytesOf;

struct Got {
    nlsStatus status;
    uint32_t chars;
    std::string text;  // of the record, which begins as "old"
    bool operator==(const Got&) const = default;
};

Got cut(HandLocale& locale, const unsigned char* s, int32_t start, int32_t byteCount, int32_t bufSize = 512) {
    unsigned char buf[512] = "old";
    nlsStr rec{buf, bufSize, 3};
    Got got{0, 99, {}};
    got.status = nlsSubstr(locale.get(), nullptr, s, start, byteCount, &got.chars, &rec);
    got.text = std::string(reinterpret_cast<const char*>(buf), rec.strLength);
    EXPECT_EQ(buf[rec.strLength], 0);
    return got;
}

void expectAsTold(HandLocale& locale, const unsigned char* s, const std::string& text, int32_t start, int32_t count) {
    const reference::SlowCut want = reference::cut(locale.attrib(), text, start, count);
    ASSERT_EQ(cut(locale, s, start, count), (Got{want.status, want.chars, want.status == 0 ? want.bytes : "old"}))
        << start << ',' << count << " of " << text;
}

TEST(Substr, EveryCutOfEveryShortStringInsideItsPage) {
    GuardedBuffer page{16};
    for (const NamedCharset& charset : handCharsets()) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        forAllStrings(edgeBytes, 3, [&](const std::string& text) {
            const unsigned char* const s = page.atEnd(text.c_str(), text.size() + 1);
            const auto length = static_cast<int32_t>(text.size());
            for (int32_t start = -1; start <= length + 1; ++start)
                for (int32_t count = -1; count <= length + 1; ++count) expectAsTold(locale, s, text, start, count);
        });
    }
}

TEST(Substr, CutsOfLongText) {
    for (const NamedCharset& charset : handCharsets()) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        std::string text;
        while (text.size() < 200) text += "ab\x81\x40\xE3\x81\x82\xC3\xA9" + std::string(text.size() % 70, 'x');
        const auto length = static_cast<int32_t>(text.size());
        for (int32_t start = 1; start <= length; ++start)
            for (const int32_t count : {1, 7, 64, 65, 130, length})
                expectAsTold(locale, bytesOf(text), text, start, count);
    }
}

TEST(Substr, NumbersAtTheirEnds) {
    HandLocale locale{sjisCharset()};
    const std::string text = "a\x81\x40\x81\x41z";
    for (const int32_t start : {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 3, 6, 7, INT32_MAX})
        for (const int32_t count : {INT32_MIN, INT32_MIN + 1, -1, 0, 1, 6, 7, INT32_MAX})
            expectAsTold(locale, bytesOf(text), text, start, count);
    EXPECT_EQ(cut(locale, bytesOf(text), 2, 3), (Got{NLS_OK, 1, "\x81\x40"}));
    EXPECT_EQ(cut(locale, bytesOf(text), 3, 3), (Got{NLS_OK, 1, "\x81\x41"}));
}

TEST(Substr, RoomOfTheRecord) {
    HandLocale locale{sjisCharset()};
    EXPECT_EQ(cut(locale, bytesOf("abcd"), 2, 3, 4), (Got{NLS_OK, 3, "bcd"}));
    EXPECT_EQ(cut(locale, bytesOf("abcd"), 2, 3, 3), (Got{NLS_BUF_SMALL, 3, "old"}));
    EXPECT_EQ(cut(locale, bytesOf("abcd"), 2, 0, 1), (Got{NLS_OK, 0, ""}));
    EXPECT_EQ(cut(locale, bytesOf("abcd"), 2, 0, 0), (Got{NLS_BUF_SMALL, 0, "old"}));
}

TEST(Substr, ChecksInOrder) {
    HandLocale locale{utf8Charset()};
    uint32_t chars = 99;
    EXPECT_EQ(nlsSubstr(locale.get(), nullptr, bytesOf("a"), 1, 1, &chars, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(chars, 0U);
    EXPECT_EQ(cut(locale, nullptr, 1, 1), (Got{NLS_BAD_ARG, 0, "old"}));
    locale.get()->attrib = nullptr;
    EXPECT_EQ(cut(locale, nullptr, 1, 1), (Got{NLS_BAD_ARG, 0, "old"}));
    EXPECT_EQ(cut(locale, bytesOf("a"), 0, 1), (Got{NLS_NO_ATTRIB, 0, "old"}));
    locale.get()->hdr.typeTag = NLS_TAG_CONVERSION;
    EXPECT_EQ(cut(locale, nullptr, 1, 1), (Got{NLS_BAD_LOCALE, 99, "old"}));
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(cut(locale, nullptr, 1, 1), (Got{NLS_BAD_HANDLE, 99, "old"}));
}

}  // namespace
}  // namespace nls::test
