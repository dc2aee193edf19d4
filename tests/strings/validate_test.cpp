#include "strings/validate.hpp"

#include <gtest/gtest.h>
#include <iconv.h>

#include <random>

#include "nls/status.h"
#include "nls/strings.h"
#include "tests/reference/validate.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace nls::test {
namespace {

using reference::Judged;

nlsAttribStruct withFlags(int32_t flags) {
    nlsAttribStruct attrib = utf8Charset();
    attrib.flags = flags;
    return attrib;
}
const nlsAttribStruct kUnits16 = withFlags(NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UNITS16);
const nlsAttribStruct kUnits32 = withFlags(NLS_CHARSET_MULTI_BYTE | NLS_CHARSET_UNITS32);

Judged judge(HandLocale& locale, const unsigned char* s, int32_t byteLen, uint32_t bigEndian) {
    Judged answer{0, 99};
    answer.status = nlsValidateString(locale.get(), nullptr, s, byteLen, bigEndian, &answer.chars);
    return answer;
}

// The text alone, in front of a page that faults; where the charset ends it at a NUL, with that behind it.
void expectAsTold(HandLocale& locale, GuardedBuffer& page, const std::string& text) {
    const bool closed = (locale.attrib().flags & NLS_CHARSET_MULTI_BYTE) == 0;
    const unsigned char* const s = page.atEnd(text.c_str(), text.size() + (closed ? 1 : 0));
    const auto length = static_cast<int32_t>(text.size());
    for (const bool bigEndian : {false, true}) {
        ASSERT_EQ(judge(locale, s, length, bigEndian ? 256 : 0),
                  reference::validate(locale.attrib(), s, length, bigEndian));
    }
}

TEST(Validate, EveryShortStringAsBySlowTwinInsideItsPage) {
    GuardedBuffer page{16};
    std::vector<NamedCharset> charsets = handCharsets();
    charsets.push_back({"units of 16 bits win", withFlags(0x52)});
    charsets.push_back({"units of 32 bits", kUnits32});
    charsets.push_back({"units without the mark of many bytes", withFlags(0x50)});
    for (const NamedCharset& charset : charsets) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        forAllStrings(edgeBytes + '\0', 4, [&](const std::string& text) {
            if (!text.empty()) expectAsTold(locale, page, text);
            for (int32_t byteLen = -1; byteLen < static_cast<int32_t>(text.size()); ++byteLen) {
                ASSERT_EQ(judge(locale, bytesOf(text), byteLen, 0),
                          reference::validate(charset.attrib, bytesOf(text), byteLen, false));
            }
        });
    }
}

std::string unitsOf(const std::vector<uint32_t>& values, unsigned size, bool bigEndian) {
    std::string text;
    for (const uint32_t value : values)
        for (unsigned i = 0; i < size; ++i) text += static_cast<char>(value >> 8 * (bigEndian ? size - 1 - i : i));
    return text;
}

// Every row of some units in every order, alone and behind text that wide steps take, with and without odd bytes.
void expectAllRows(const nlsAttribStruct& attrib, unsigned size, const std::vector<uint32_t>& alphabet) {
    HandLocale locale{attrib};
    GuardedBuffer page{512};
    std::string places;
    for (unsigned i = 0; i < alphabet.size(); ++i) places += static_cast<char>(i);
    forAllStrings(places, 3, [&](const std::string& row) {
        for (const std::size_t before : {0U, 61U, 63U}) {
            std::vector<uint32_t> values(before, 'x');
            for (const char place : row) values.push_back(alphabet[static_cast<std::size_t>(place)]);
            if (before != 0) values.insert(values.end(), 40, 'y');
            for (const bool bigEndian : {false, true}) {
                const std::string text = unitsOf(values, size, bigEndian);
                for (std::size_t odd = 0; odd < size; ++odd) expectAsTold(locale, page, text + std::string(odd, 'z'));
            }
        }
    });
}

TEST(Validate, EveryRowOfUnits) {
    expectAllRows(kUnits16, 2, {0, 1, 0x100, 0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFF, 0xD8, 0xDC});
    expectAllRows(kUnits32, 4, {0, 1, 0xD800, 0x10FFFF, 0x110000, 0x1000000, 0x41000000, 0xFFFFFFFF});
}

// Well-formed text in large part, with now and then something else.
std::string randomText(std::mt19937& random, std::size_t length, unsigned oneIn) {
    static const std::string pieces[] = {"a", "\xC3\xA9", "\xE3\x81\x82", "\xF0\x9F\x98\x80", "\x81\x40", "\x8E\xB1"};
    std::string text;
    while (text.size() < length) {
        if (random() % oneIn == 0)
            text += static_cast<char>(random() % 256);
        else if (random() % 3 == 0)
            text.append(random() % 90, 'x');
        else
            text += pieces[random() % (oneIn % 2 == 0 ? 4 : 6)];
    }
    return text.substr(0, length);
}

TEST(Validate, LongTextAsBySlowTwin) {
    std::mt19937 random{11};
    GuardedBuffer page{1024};
    std::vector<NamedCharset> charsets = handCharsets();
    charsets.push_back({"utf-8 in which a trailing byte is none", utf8Charset()});
    charsets.back().attrib.trailMap[0x98] = 0;
    for (const NamedCharset& charset : charsets) {
        HandLocale locale{charset.attrib};
        SCOPED_TRACE(charset.name);
        for (unsigned round = 0; round < 600; ++round)
            expectAsTold(locale, page, randomText(random, 1 + random() % 400, 100 + round % 2 * 899));
    }
}

TEST(Validate, AZeroAtEveryPlaceOfABlock) {
    GuardedBuffer page{1024};
    for (const NamedCharset& charset : {NamedCharset{"utf8", utf8Charset()}, NamedCharset{"sjis", sjisCharset()}}) {
        HandLocale locale{charset.attrib};
        for (std::size_t place = 0; place < 200; ++place) {
            std::string text(200, 'x');
            text[place] = '\0';
            expectAsTold(locale, page, text);
        }
    }
}

// Whether iconv takes the text, and how many characters it makes of it.
Judged judgeByIconv(iconv_t converter, std::string text) {
    std::vector<char32_t> out(text.size() + 1);
    char *from = text.data(), *to = reinterpret_cast<char*>(out.data());
    std::size_t left = text.size(), room = out.size() * sizeof(char32_t);
    const bool taken = iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
    return {taken ? 0 : 1, static_cast<uint32_t>(out.size() - room / sizeof(char32_t))};
}

TEST(Validate, Utf16AsIconvTakesIt) {
    std::mt19937 random{13};
    const auto draws = [&] { return static_cast<uint32_t>(random()); };
    HandLocale locale{kUnits16};
    for (const bool bigEndian : {false, true}) {
        const iconv_t converter = iconv_open("UTF-32LE", bigEndian ? "UTF-16BE" : "UTF-16LE");
        unsigned taken = 0;
        for (unsigned round = 0; round < 2000; ++round) {
            std::vector<uint32_t> units;
            for (std::size_t i = draws() % 100; i != 0; --i) {
                const uint32_t draw = draws() % 400;
                units.push_back(draw == 399 ? 0xD800 + draws() % 0x800 : 1 + draws() % 0xD7FF);
                if (draw >= 100) continue;
                units.back() = 0xD800 + draws() % 0x400;
                units.push_back(0xDC00 + draws() % 0x400);
            }
            const std::string text = unitsOf(units, 2, bigEndian);
            const Judged got = judge(locale, bytesOf(text), static_cast<int32_t>(text.size()), bigEndian ? 1 : 0);
            const Judged want = judgeByIconv(converter, text);
            ASSERT_EQ(got.status == NLS_OK, want.status == 0);
            ASSERT_EQ(got.chars, want.chars);
            (void)iconv(converter, nullptr, nullptr, nullptr, nullptr);
            taken += want.status == 0 ? 1 : 0;
        }
        EXPECT_GT(taken, 500U);
        EXPECT_LT(taken, 1900U);
        iconv_close(converter);
    }
}

TEST(Validate, ChecksInOrder) {
    HandLocale locale{utf8Charset()};
    EXPECT_EQ(judge(locale, nullptr, 0, 0), (Judged{NLS_BAD_ARG, 0}));
    locale.get()->attrib = nullptr;
    EXPECT_EQ(judge(locale, nullptr, 0, 0), (Judged{NLS_NO_ATTRIB, 0}));
    locale.get()->hdr.typeTag = NLS_TAG_CONVERSION;
    EXPECT_EQ(judge(locale, nullptr, 0, 0), (Judged{NLS_BAD_LOCALE, 99}));
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(judge(locale, nullptr, 0, 0), (Judged{NLS_BAD_HANDLE, 99}));
}

}  // namespace
}  // namespace nls::test
