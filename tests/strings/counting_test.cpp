#include "strings/counting.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "nls/status.h"
#include "nls/strings.h"
#include "tests/reference/counting.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace {

using nls::test::HandLocale;

// All three counters beside their slow twins, on text that ends in front of a faulting page.
void expectCountsAsTold(HandLocale& locale, const unsigned char* s, const std::string& text, uint32_t count) {
    const nlsAttribStruct& attrib = locale.attrib();
    const auto signedCount = static_cast<int32_t>(count);
    uint32_t got = 999;
    nls::test::SlowCount want = nls::test::slowCountChars(attrib, text, count);
    ASSERT_EQ(nlsCountChars(locale.get(), nullptr, s, signedCount, &got), want.status) << count;
    ASSERT_EQ(got, want.count) << "characters in " << count;
    want = nls::test::slowCountBytes(attrib, text, count);
    ASSERT_EQ(nlsCountBytes(locale.get(), nullptr, s, signedCount, &got), want.status) << count;
    ASSERT_EQ(got, want.count) << "bytes of " << count;
    const bool beyond = count > text.size();
    ASSERT_EQ(nlsCountColumns(locale.get(), nullptr, s, signedCount, &got), beyond ? NLS_BAD_ARG : NLS_OK) << count;
    ASSERT_EQ(got, beyond ? 0 : nls::test::slowCountColumns(attrib, text, count)) << "columns of " << count;
}

TEST(Counting, EveryShortStringInsideItsPage) {
    nls::test::GuardedBuffer page{16};
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        nls::test::forAllStrings(nls::test::edgeBytes, 3, [&](const std::string& text) {
            const unsigned char* const s = page.atEnd(text.c_str(), text.size() + 1);
            for (uint32_t count = 0; count < 6; ++count) expectCountsAsTold(locale, s, text, count);
        });
    }
}

// Text of the pieces that the wide steps must tell apart, with now and then a byte that fits nowhere.
std::string randomText(std::mt19937& random, std::size_t length, unsigned kind) {
    static const std::string pieces[] = {"a",
                                         "\xC3\xA9",
                                         "\xE3\x81\x82",
                                         "\xEF\xBC\xA1",
                                         "\xE0\xB8\xB1",
                                         "\xE0\xB8\x81",
                                         "\xEF\xBB\xBF",
                                         "\xF0\x9F\x98\x80",
                                         "\x81\x40",
                                         "\x8E\xB1"};
    std::string text;
    while (text.size() < length) {
        const auto draw = static_cast<unsigned>(random() % 100);
        if (kind == 0 || draw < 50) {
            text.append(1 + random() % 40, 'x');
        } else if (draw < 97 || kind == 1) {
            text += pieces[random() % (kind == 3 ? 10 : 8)];
        } else {
            text += static_cast<char>(1 + random() % 255);
        }
    }
    return text.substr(0, length);
}

TEST(Counting, LongTextAsBySlowTwins) {
    std::mt19937 random{7};
    nls::test::GuardedBuffer page{1024};
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        for (unsigned round = 0; round < 400; ++round) {
            const std::string text = randomText(random, 100 + random() % 300, round % 4);
            const unsigned char* const s = page.atEnd(text.c_str(), text.size() + 1);
            const auto length = static_cast<uint32_t>(text.size());
            for (const uint32_t count : {length - 1, length, length + 1, length / 2, length / 3, 65U}) {
                expectCountsAsTold(locale, s, text, count);
            }
        }
    }
}

TEST(Counting, EveryByteAtEveryPlaceOfABlock) {
    HandLocale locale{nls::test::utf8Charset()};
    for (unsigned byte = 1; byte < 256; ++byte) {
        for (std::size_t place = 0; place < 66; ++place) {
            std::string text;
            while (text.size() < 200) text += "\xE3\x81\x82";
            text[place] = static_cast<char>(byte);
            const auto length = static_cast<uint32_t>(text.size());
            expectCountsAsTold(locale, nls::test::bytesOf(text), text, length);
            expectCountsAsTold(locale, nls::test::bytesOf(text), text, length / 3);
        }
    }
}

// The wide step knows the usual lengths of UTF-8, so it must leave alone what a table sees otherwise.
TEST(Counting, TablesThatOnlyLookLikeUtf8) {
    for (unsigned byte = 1; byte < 256; ++byte) {
        nlsAttribStruct attrib = nls::test::utf8Charset();
        attrib.lengthMap[byte] = static_cast<unsigned char>((attrib.lengthMap[byte] + 1) & 7);
        HandLocale locale{attrib};
        for (unsigned trails = 0; trails < 4; ++trails) {
            std::string text(30, 'x');
            text += static_cast<char>(byte) + std::string(trails, '\x82') + std::string(100, 'x');
            expectCountsAsTold(locale, nls::test::bytesOf(text), text, static_cast<uint32_t>(text.size()));
            expectCountsAsTold(locale, nls::test::bytesOf(text), text, 99);
        }
    }
}

TEST(Counting, EveryThreeByteCharacterOfUtf8HasItsColumns) {
    HandLocale locale{nls::test::utf8Charset()};
    for (unsigned b0 = 0xE0; b0 < 0xF0; ++b0) {
        for (unsigned b1 = 0x80; b1 < 0xC0; ++b1) {
            for (unsigned b2 = 0x80; b2 < 0xC0; ++b2) {
                const unsigned char text[4] = {static_cast<unsigned char>(b0), static_cast<unsigned char>(b1),
                                               static_cast<unsigned char>(b2), 0};
                uint32_t columns = 9;
                ASSERT_EQ(nlsCountColumns(locale.get(), nullptr, text, 3, &columns), NLS_OK);
                ASSERT_EQ(columns, nls::test::slowUtf8Columns(b0, b1, b2)) << b0 << ' ' << b1 << ' ' << b2;
            }
        }
    }
}

TEST(Counting, ExtractsWholeCharacters) {
    HandLocale locale{nls::test::sjisCharset()};
    const unsigned char text[] = "a\x81\x40z\x81";
    constexpr struct {
        const char* why;
        int32_t chars, bufSize;
        nlsStatus status;
        const char* want;
    } rows[] = {
        {"two characters", 2, 9, NLS_OK, "a\x81\x40"},
        {"no room for the NUL", 2, 3, NLS_BUF_SMALL, "old"},
        {"none", 0, 4, NLS_OK, ""},
        {"a cut-off end", 4, 9, NLS_PARTIAL_CHAR, "old"},
        {"more than there is", 6, 9, NLS_OK, "a\x81\x40z\x81"},
        {"negative", -1, 9, NLS_BAD_ARG, "old"},
    };
    for (const auto& row : rows) {
        unsigned char buf[10] = "old";
        nlsStr rec{buf, row.bufSize, 3};
        EXPECT_EQ(nlsExtract(locale.get(), nullptr, text, row.chars, &rec), row.status) << row.why;
        EXPECT_STREQ(reinterpret_cast<const char*>(buf), row.want) << row.why;
        EXPECT_EQ(rec.strLength, std::strlen(row.want)) << row.why;
    }
}

}  // namespace
