#include "chars/find_char.hpp"

#include <gtest/gtest.h>

#include "tests/chars/finding_locales.hpp"
#include "tests/reference/find_char.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace nls::test {
namespace {

using reference::FoundPlace;

constexpr unsigned char kBefore[] = "before";

FoundPlace forward(const nlsLocale* locale, nlsLChar lchar, const unsigned char* str, uint16_t mode) {
    FoundPlace answer{NLS_OK, 99, kBefore};
    answer.status = nlsFindCharForw(locale, nullptr, &lchar, str, mode, &answer.pos, &answer.found);
    return answer;
}
FoundPlace backward(const nlsLocale* locale, nlsLChar lchar, const unsigned char* str, int32_t len, uint16_t mode) {
    FoundPlace answer{NLS_OK, 99, kBefore};
    answer.status = nlsFindCharBack(locale, nullptr, &lchar, str, len, mode, &answer.pos, &answer.found);
    return answer;
}

// Zero bytes within, blanks and double letters, which one character can equal, and characters of each length.
constexpr nlsLChar kSought[] = {0,      'a',    'A',    ' ',      0x81,     0x8140,     0xDF,      0x7373,
                                0x6120, 0x4100, 0x8020, 0x410000, 0xE08080, 0x41000000, 0x8181C3A1};

void expectAsTold(const HandRoute& route, const unsigned char* str, int32_t length, uint16_t mode) {
    for (const nlsLChar lchar : kSought) {
        ASSERT_EQ(forward(route.get(), lchar, str, mode),
                  reference::findCharForw(route.get(), lchar, str, mode, kBefore))
            << std::hex << lchar;
        for (int32_t len = 0; len <= length; ++len) {
            ASSERT_EQ(backward(route.get(), lchar, str, len, mode),
                      reference::findCharBack(route.get(), lchar, str, len, mode))
                << std::hex << lchar << " in " << len;
        }
    }
}

TEST(FindChar, EveryShortStringAsBySlowTwinInsideItsPage) {
    GuardedBuffer page{16};
    for (const HandRoute& route : findingLocales()) {
        SCOPED_TRACE(route.name);
        forAllStrings(findingBytes, 3, [&](const std::string& text) {
            const unsigned char* const str = page.atEnd(text.c_str(), text.size() + 1);
            const uint16_t lastMode = text.size() < 2 ? 2 : 1;
            for (uint16_t mode = 0; mode <= lastMode; ++mode)
                expectAsTold(route, str, static_cast<int32_t>(text.size()), mode);
        });
    }
}

TEST(FindChar, TellsPlacesFromOne) {
    CollatedLocale sjis{sjisCharset(), plainCollation()};
    const std::string text =
        "aB\x83\x41"
        "A\xDF";
    const auto str = bytesOf(text);
    EXPECT_EQ(forward(sjis.get(), 'A', str, 1), (FoundPlace{NLS_OK, 5, str + 4}));
    EXPECT_EQ(forward(sjis.get(), 'A', str, 0), (FoundPlace{NLS_OK, 1, str}));
    EXPECT_EQ(forward(sjis.get(), 0x8341, str, 0), (FoundPlace{NLS_OK, 3, str + 2}));
    EXPECT_EQ(forward(sjis.get(), 0x7373, str, 0), (FoundPlace{NLS_OK, 6, str + 5}));
    EXPECT_EQ(forward(sjis.get(), 0, str, 0), (FoundPlace{NLS_OK, 7, str + 6}));
    EXPECT_EQ(backward(sjis.get(), 0, str, 2, 0), (FoundPlace{NLS_OK, 7, str + 6}));
    EXPECT_EQ(backward(sjis.get(), 'A', str, 4, 0), (FoundPlace{NLS_OK, 1, str}));
    EXPECT_EQ(backward(sjis.get(), 'b', str, INT32_MIN, 0), (FoundPlace{NLS_OK, 0, nullptr}));
    EXPECT_EQ(backward(sjis.get(), 'A', str, 3, 2), (FoundPlace{NLS_BAD_COMPARE_MODE, 0, str + 2}));
    EXPECT_EQ(forward(sjis.get(), 'A', str, 2), (FoundPlace{NLS_BAD_COMPARE_MODE, 0, kBefore}));
    sjis.get()->coll = nullptr;
    EXPECT_EQ(backward(sjis.get(), 'A', str, 6, 1), (FoundPlace{NLS_BAD_COLLATION, 0, str + 5}));
    EXPECT_EQ(forward(sjis.get(), 'A', str, 1), (FoundPlace{NLS_BAD_COLLATION, 0, kBefore}));
    EXPECT_EQ(forward(sjis.get(), 'A', str + 6, 1), (FoundPlace{NLS_OK, 0, nullptr}));
}

// Handle, locale, arguments, table; from the arguments on the position is 0.
TEST(FindChar, ChecksInOrder) {
    HandLocale locale{utf8Charset()};
    const nlsLChar lchar = 'a';
    const auto told = [&](nlsStatus forw, nlsStatus back, uint32_t pos, const unsigned char* found,
                          const nlsLChar* sought, const unsigned char* str) {
        FoundPlace first{NLS_OK, 99, kBefore}, second = first;
        first.status = nlsFindCharForw(locale.get(), nullptr, sought, str, 1, &first.pos, &first.found);
        second.status = nlsFindCharBack(locale.get(), nullptr, sought, str, 1, 1, &second.pos, &second.found);
        EXPECT_EQ(first, (FoundPlace{forw, pos, found}));
        EXPECT_EQ(second, (FoundPlace{back, pos, found}));
        first.pos = 99;
        EXPECT_EQ(nlsFindCharForw(locale.get(), nullptr, sought, str, 1, &first.pos, nullptr),
                  forw == NLS_NO_ATTRIB ? NLS_BAD_ARG : forw);
        EXPECT_EQ(first.pos, pos);
    };
    told(NLS_BAD_ARG, NLS_BAD_ARG, 0, nullptr, nullptr, kBefore);
    told(NLS_BAD_ARG, NLS_BAD_ARG, 0, nullptr, &lchar, nullptr);
    locale.get()->attrib = nullptr;
    told(NLS_BAD_ARG, NLS_BAD_ARG, 0, nullptr, nullptr, kBefore);
    told(NLS_NO_ATTRIB, NLS_NO_ATTRIB, 0, nullptr, &lchar, kBefore);
    locale.get()->hdr.typeTag = NLS_TAG_CONVERSION;
    told(NLS_BAD_LOCALE, NLS_BAD_LOCALE, 99, kBefore, nullptr, nullptr);
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    told(NLS_BAD_HANDLE, NLS_BAD_HANDLE, 99, kBefore, nullptr, nullptr);
}

}  // namespace
}  // namespace nls::test
