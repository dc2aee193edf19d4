#include "chars/stepping.hpp"

#include <gtest/gtest.h>

#include "nls/chars.h"
#include "nls/status.h"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/hand_charsets.hpp"

namespace {

using nls::test::HandLocale;

// The step forward as it is told: one byte after the other, and a NUL ends it.
std::size_t slowNext(const nlsAttribStruct& attrib, const unsigned char* text, std::size_t pos) {
    if (text[pos] == 0) return pos;
    const int trails = attrib.lengthMap[text[pos]] & 7;
    ++pos;
    for (int i = 0; i < trails; ++i) {
        if (text[pos] == 0) return pos;
        ++pos;
    }
    return pos;
}

std::size_t slowRun(const nlsAttribStruct& attrib, const unsigned char* text, std::size_t pos) {
    std::size_t run = 0;
    while (run < pos && (attrib.lengthMap[text[pos - run - 1]] & 7) != 0) ++run;
    return run;
}

std::size_t slowPrev(const nlsAttribStruct& attrib, const unsigned char* text, std::size_t pos) {
    if ((attrib.flags & NLS_CHARSET_UTF8) != 0) {
        do --pos;
        while (pos != 0 && (text[pos] & 0xC0) == 0x80);
        return pos;
    }
    do --pos;
    while (pos != 0 && slowRun(attrib, text, pos) % 2 != 0);
    return pos;
}

void expectStepsAsTold(HandLocale& locale, const unsigned char* text, std::size_t length, const char* name) {
    for (std::size_t pos = 0; pos <= length; ++pos) {
        const unsigned char* place = nullptr;
        const nlsStatus forward = nlsGetNextChar(locale.get(), nullptr, text + pos, &place);
        ASSERT_EQ(place - text, static_cast<std::ptrdiff_t>(slowNext(locale.attrib(), text, pos))) << name << pos;
        ASSERT_EQ(forward, *place == 0 ? NLS_END_OF_STRING : NLS_OK);
        const bool first = slowRun(locale.attrib(), text, pos) % 2 == 0;
        ASSERT_EQ(nlsFirstByte(&locale.attrib(), text + pos, text), first ? 1U : 0U) << name << pos;
        const nlsStatus back = nlsGetPrevChar(locale.get(), nullptr, text + pos, text, &place);
        const std::size_t want = pos == 0 ? 0 : slowPrev(locale.attrib(), text, pos);
        ASSERT_EQ(place - text, static_cast<std::ptrdiff_t>(want)) << name << pos;
        ASSERT_EQ(back, pos == 0 ? NLS_END_OF_STRING : NLS_OK);
    }
}

TEST(Stepping, EveryShortStringBothWaysInsideItsPage) {
    nls::test::GuardedBuffer page{16};
    for (const auto& charset : nls::test::handCharsets()) {
        HandLocale locale{charset.attrib};
        nls::test::forAllStrings(nls::test::edgeBytes, 3, [&](const std::string& text) {
            expectStepsAsTold(locale, page.atEnd(text.c_str(), text.size() + 1), text.size(), charset.name);
            std::memcpy(page.atStart(), text.c_str(), text.size() + 1);
            expectStepsAsTold(locale, page.atStart(), text.size(), charset.name);
        });
    }
}

}  // namespace
