// The order in which the doors on characters and text check what they get, and what their out-arguments hold then.
#include <gtest/gtest.h>

#include <sstream>

#include "nls/chars.h"
#include "nls/status.h"
#include "nls/strings.h"
#include "tests/support/hand_charsets.hpp"

namespace {

constexpr unsigned char kText[] = "ab";

// The status of each door (13 handle, 24 locale, 27 no table, 16 argument), and what became of its out-argument: k for
// kept, 0 for cleared. Most get a null argument.
std::string callAll(const nlsLocale* l) {
    std::ostringstream told;
    uint32_t number = 5;
    uint16_t count = 5;
    const unsigned char *place = kText, *none = nullptr;
    unsigned char* target = nullptr;
    unsigned char buf[4] = "old";
    nlsStr rec{buf, 4, 3};
    const auto tell = [&](nlsStatus status) {
        const bool kept = number == 5 && count == 5 && place == kText && buf[0] == 'o' && rec.strLength == 3;
        told << (told.tellp() == 0 ? "" : " ") << status << (kept ? "k" : "0");
        EXPECT_TRUE(kept || number * count == 0 || place == nullptr);
        number = count = 5, place = kText;
    };
    tell(nlsGetCharProperty(l, nullptr, none, nullptr, &number));
    tell(nlsCharToLChar(l, nullptr, &none, &number));
    tell(nlsLCharToChar(l, nullptr, 'A', &target, &count));
    for (const auto counter : {nlsCountChars, nlsCountBytes, nlsCountColumns}) {
        tell(counter(l, nullptr, none, 1, &number));
        tell(counter(l, nullptr, kText, -1, &number));
    }
    tell(nlsExtract(l, nullptr, kText, -1, &rec));
    tell(nlsGetPrevChar(l, nullptr, kText, kText, &place));
    tell(nlsExtract(l, nullptr, none, 1, &rec));
    tell(nlsGetNextChar(l, nullptr, none, &place));
    tell(nlsGetPrevChar(l, nullptr, none, kText, &place));
    tell(nlsGetPrevChar(l, nullptr, kText, none, &place));
    return told.str();
}

TEST(DoorChecks, ComeInTheirOrder) {
    nls::test::HandLocale locale{nls::test::utf8Charset()};
    EXPECT_EQ(callAll(locale.get()), "16k 16k 160 160 160 160 160 160 160 16k 20k 16k 16k 16k 16k");
    locale.get()->attrib = nullptr;
    EXPECT_EQ(callAll(locale.get()), "27k 270 270 270 270 270 270 270 270 27k 270 16k 16k 16k 16k");
    locale.get()->hdr.typeTag = NLS_TAG_CONVERSION;
    EXPECT_EQ(callAll(locale.get()), "24k 24k 24k 240 240 240 240 240 240 24k 24k 24k 24k 24k 24k");
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(callAll(locale.get()), "13k 13k 13k 130 130 130 130 130 130 13k 13k 13k 13k 13k 13k");
}

TEST(DoorChecks, OfACharsetsName) {
    nls::test::HandLocale locale{nls::test::utf8Charset()};
    char name[NLS_CHARSET_NAME_SIZE] = "#";
    const auto find = [&] { return nlsGetZelCharset(&locale, locale.get(), "UTF-8", name); };
    EXPECT_EQ(find(), NLS_BAD_COLLATION);
    locale.get()->attrib = nullptr;
    EXPECT_EQ(find(), NLS_NO_ATTRIB);
    locale.get()->hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(find(), NLS_BAD_LOCALE);
    locale.handle().hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(find(), NLS_BAD_HANDLE);
    EXPECT_STREQ(name, "#");
}

TEST(DoorChecks, NullPlacesAreRefused) {
    nls::test::HandLocale locale{nls::test::utf8Charset()};
    const unsigned char* place = nullptr;
    char name[NLS_CHARSET_NAME_SIZE] = "#";
    EXPECT_EQ(nlsGetNextChar(locale.get(), nullptr, kText, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetPrevChar(locale.get(), nullptr, kText, kText, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetNextChar(nullptr, nullptr, kText, &place), NLS_BAD_HANDLE);
    EXPECT_EQ(nlsExtract(locale.get(), nullptr, kText, 1, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetZelCharset(nullptr, nullptr, nullptr, name), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetZelCharset(nullptr, nullptr, "UTF-8", nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsGetOSCharset(nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsFirstByte(nullptr, kText + 1, kText), 1U);
    EXPECT_EQ(nlsFirstByte(&locale.attrib(), kText, kText + 1), 1U);
    place = kText;
    locale.get()->attrib = nullptr;
    EXPECT_EQ(nlsGetNextChar(locale.get(), nullptr, kText, &place), NLS_NO_ATTRIB);
    EXPECT_EQ(place, nullptr);
}

}  // namespace
