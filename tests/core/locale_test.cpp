#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "nls/handle.h"
#include "nls/objects.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;
using nls::test::smallWorld;

std::size_t chainLength(const nlsHandle* handle) {
    std::size_t count = 0;
    for (const nlsHdr* object = handle->chainHead; object != &handle->hdr; object = object->next) ++count;
    return count;
}

struct Asked {
    nlsStatus status;
    nlsLocale* locale;
};
Asked ask(OpenHandle& open, const char* charset, const char* collation, const char* caseName) {
    Asked asked = {0, nullptr};
    asked.status = nlsCreateLocale(open.handle, charset, collation, caseName, &asked.locale);
    EXPECT_EQ(open.handle->busy, 0U);
    return asked;
}

TEST(Locale, IsMadeCompleteAndSharedByName) {
    OpenHandle open{smallWorld().build()};
    const Asked first = ask(open, "latin", NLS_NO_COLLATION, nullptr);
    ASSERT_EQ(first.status, NLS_OK);
    const nlsLocale& locale = *first.locale;
    EXPECT_EQ(locale.hdr.typeTag, NLS_TAG_LOCALE);
    EXPECT_EQ(locale.hdr.serial, 2);
    EXPECT_TRUE(open.handle->chainHead == &locale.hdr && locale.owner == open.handle && locale.attrib != nullptr);
    EXPECT_TRUE(locale.coll == nullptr && locale.caseTable == nullptr && locale.dbBlockSize == 0);
    EXPECT_STREQ(locale.charsetName, "latin");
    EXPECT_TRUE(locale.collationName[0] == '\0' && locale.caseName[0] == '\0');

    const int reads = open.file.reads;
    const uint32_t left = open.handle->freeBytes;
    const std::string padded = "LATIN" + std::string(40, ' ');  // more than 19 characters, but for blanks
    for (const char* const charset : {"LATIN", "Latin  ", padded.c_str()})
        for (const char* const caseName : {static_cast<const char*>(nullptr), "", "  "}) {
            const Asked again = ask(open, charset, NLS_NO_COLLATION, caseName);
            EXPECT_EQ(again.status, NLS_OK);
            EXPECT_EQ(again.locale, first.locale) << charset;
        }
    EXPECT_EQ(open.file.reads, reads);
    EXPECT_EQ(open.handle->freeBytes, left);
    EXPECT_EQ(chainLength(open.handle), 1U);

    open.handle->busy = 1;
    nlsLocale* found = nullptr;
    EXPECT_EQ(nlsCreateLocale(open.handle, "latin", NLS_NO_COLLATION, nullptr, &found), NLS_OK);
    EXPECT_EQ(found, first.locale);
    EXPECT_EQ(nlsCreateLocale(open.handle, "cyrillic", NLS_NO_COLLATION, nullptr, &found), NLS_BUSY);
    EXPECT_EQ(open.handle->busy, 1U) << "the mark is the other operation's";
    open.handle->busy = 0;
}

TEST(Locale, FailuresLeaveTheChainAndTheOutArgumentAlone) {
    OpenHandle open{smallWorld().build()};
    const std::string twenty(20, 'L');
    const struct {
        const char* why;
        const char* charset;
        const char* collation;
        const char* caseName;
        nlsStatus status;
    } rows[] = {
        {"unknown charset", "KLINGON", NLS_NO_COLLATION, nullptr, NLS_NO_ATTRIB_TABLE},
        {"empty charset", "", NLS_NO_COLLATION, nullptr, NLS_NO_ATTRIB_TABLE},
        {"charset of 20 characters", twenty.c_str(), NLS_NO_COLLATION, nullptr, NLS_NO_ATTRIB_TABLE},
        {"unknown collation", "LATIN", "klingon", nullptr, NLS_NO_COLL_TABLE},
        {"unknown case table", "LATIN", NLS_NO_COLLATION, "klingon", NLS_NO_CASE_TABLE},
        {"the charset is looked at first", "KLINGON", "klingon", "klingon", NLS_NO_ATTRIB_TABLE},
        {"no build of ICU has the key", "LATIN", "ICU_47-de", nullptr, NLS_NO_COLL_TABLE},
        {"ICU knows no such language", "LATIN", "ICU-klingon", nullptr, NLS_NO_MEM},
        {"the collation is looked at second", "LATIN", "klingon", "klingon", NLS_NO_COLL_TABLE},
    };
    for (const auto& row : rows) {
        const Asked asked = ask(open, row.charset, row.collation, row.caseName);
        EXPECT_EQ(asked.status, row.status) << row.why;
        EXPECT_EQ(asked.locale, nullptr) << row.why;
        EXPECT_EQ(chainLength(open.handle), 0U) << row.why;
    }
    open.file.cutRead = open.file.reads + 1;  // the first charset is known; its attributes have been read above
    EXPECT_EQ(ask(open, "CYRILLIC", NLS_NO_COLLATION, nullptr).status, NLS_OK);
    EXPECT_EQ(ask(open, "UTF-8", NLS_NO_COLLATION, nullptr).status, NLS_READ_FAILED);
    EXPECT_EQ(ask(open, "UTF-8", NLS_NO_COLLATION, nullptr).status, NLS_OK) << "a later call reads again";
}

// Puts a locale with these names on the chain, as if its tables had been read.
nlsLocale* planted(OpenHandle& open, nlsLocale& locale, const char* charset, const char* collation,
                   const char* caseName) {
    locale = {};
    std::strcpy(locale.charsetName, charset);
    std::strcpy(locale.collationName, collation);
    std::strcpy(locale.caseName, caseName);
    locale.owner = open.handle;
    locale.hdr.next = open.handle->chainHead;
    open.handle->chainHead->prev = &locale.hdr;
    open.handle->chainHead = &locale.hdr;
    locale.hdr.typeTag = NLS_TAG_LOCALE;
    return &locale;
}

TEST(Locale, SearchGoesByAllThreeNames) {
    OpenHandle open{smallWorld().build()};
    nlsLocale room[6];
    nlsLocale* const bare = planted(open, room[0], "LATIN", "", "");
    nlsLocale* const basic = planted(open, room[1], "LATIN", "basic", "");
    nlsLocale* const german = planted(open, room[2], "LATIN", "german", "turkish");
    nlsLocale* const cased = planted(open, room[3], "LATIN", "", "turkish");
    nlsLocale* const other = planted(open, room[4], "CYRILLIC", "", "");
    nlsLocale* const blanks = planted(open, room[5], "BLANKS", "   ", " ");  // names, though equal to the empty one
    const struct {
        const char* charset;
        const char* collation;
        const char* caseName;
        nlsLocale* want;
    } rows[] = {
        {"latin", NLS_NO_COLLATION, nullptr, bare},
        {"latin", nullptr, nullptr, basic},
        {"latin", "", nullptr, basic},
        {"latin ", "BASIC ", "", basic},
        {"LATIN", "german", "TURKISH", german},
        {"LATIN", "german", nullptr, nullptr},
        {"LATIN", NLS_NO_COLLATION, "turkish  ", cased},
        {"LATIN", nullptr, "turkish", nullptr},
        {"CYRILLIC", NLS_NO_COLLATION, nullptr, other},
        {"CYRILLIC", nullptr, nullptr, nullptr},
        {"GREEK", NLS_NO_COLLATION, nullptr, nullptr},
        {"BLANKS", NLS_NO_COLLATION, "", nullptr},
        {"BLANKS", " ", nullptr, nullptr},
        {"BLANKS", " ", "", blanks},
    };
    for (const auto& row : rows) {
        nlsLocale* found = nullptr;
        const nlsStatus status = findLocale(open.handle, row.charset, row.collation, row.caseName, &found);
        EXPECT_EQ(status, row.want == nullptr ? NLS_BAD_LOCALE : NLS_OK);
        EXPECT_EQ(found, row.want);
        if (row.want == nullptr) continue;
        EXPECT_EQ(ask(open, row.charset, row.collation, row.caseName).locale, row.want);
    }
}

TEST(Locale, AnEmptyCollationFindsBasicButMakesNone) {
    OpenHandle open{smallWorld().build()};
    const Asked first = ask(open, "LATIN", "", nullptr);
    ASSERT_EQ(first.status, NLS_OK);
    EXPECT_STREQ(first.locale->collationName, "");
    EXPECT_EQ(first.locale->coll, nullptr);
    const Asked second = ask(open, "LATIN", "", nullptr);
    ASSERT_EQ(second.status, NLS_OK);
    EXPECT_NE(second.locale, first.locale) << "without a basic locale each call makes another";
    EXPECT_EQ(second.locale->attrib, first.locale->attrib) << "but the table is shared";
    EXPECT_EQ(ask(open, "LATIN", NLS_NO_COLLATION, nullptr).locale, second.locale) << "the newest is found";
    const Asked basic = ask(open, "LATIN", nullptr, nullptr);
    EXPECT_STREQ(basic.locale->collationName, "basic");
    EXPECT_EQ(ask(open, "LATIN", "", nullptr).locale, basic.locale);
}

TEST(Locale, BindsTheTablesThatItNames) {
    OpenHandle open{smallWorld().build()};
    const Asked latin = ask(open, "LATIN", "basic", "BASIC");
    ASSERT_EQ(latin.status, NLS_OK);
    EXPECT_STREQ(latin.locale->coll->collCharset, "LATIN");
    EXPECT_EQ(latin.locale->caseTable->caseMapSize, 256);
    EXPECT_EQ(ask(open, "LATIN", "basic", nullptr).locale->coll, latin.locale->coll) << "one table for both";

    const Asked derived = ask(open, "CYRILLIC", "thai", nullptr);
    ASSERT_EQ(derived.status, NLS_OK);
    EXPECT_STREQ(derived.locale->coll->collCharset, "CYRILLIC");
    EXPECT_EQ(ask(open, "cyrillic", "thai ", nullptr).locale, derived.locale);
    EXPECT_EQ(ask(open, "LATIN", "site", nullptr).status, NLS_BAD_COLLATION) << "no site's sort in this program";
    EXPECT_EQ(ask(open, "UTF-16", "basic", nullptr).status, NLS_NO_COLL_TABLE) << "no charset of single bytes";
    EXPECT_EQ(ask(open, "UTF-8", "basic", "basic").locale->coll->collKind, 3);

    // Names as the caller gives them find the tables; what the locale keeps of a long one is cut.
    const std::string basic40 = "basic" + std::string(35, ' ');
    EXPECT_EQ(std::strlen(ask(open, "CYRILLIC", basic40.c_str(), nullptr).locale->collationName), 31U);

    // The companions have the same collation and case table, and must have them.
    EXPECT_EQ(ask(open, "EUCJIS", "basic", "basic").status, NLS_NO_CASE_TABLE);
    ASSERT_EQ(ask(open, "EUCJIS", "basic", nullptr).status, NLS_OK);
    nlsLocale* sjis = nullptr;
    ASSERT_EQ(findLocale(open.handle, "shift-jis", "basic", nullptr, &sjis), NLS_OK);
    EXPECT_STREQ(sjis->coll->collCharset, "shift-jis");
}

TEST(Locale, ViaShiftJisBringsItsCompanions) {
    OpenHandle open{smallWorld().build()};
    const Asked asked = ask(open, "EUCJIS", NLS_NO_COLLATION, nullptr);
    ASSERT_EQ(asked.status, NLS_OK);
    EXPECT_EQ(chainLength(open.handle), 3U);
    nlsLocale* sjis = nullptr;
    ASSERT_EQ(findLocale(open.handle, "shift-jis", NLS_NO_COLLATION, nullptr, &sjis), NLS_OK);
    nlsConversion* bridge = nullptr;
    ASSERT_EQ(findConversion(open.handle, asked.locale, sjis, &bridge), NLS_OK);
    EXPECT_EQ(bridge->source, asked.locale);
    EXPECT_EQ(bridge->target, sjis);
    EXPECT_NE(bridge->table, nullptr);

    // Shift-JIS itself with the bit: itself and an identity.
    ConvmapBuilder builder;
    builder.attributes("SHIFT-JIS", nls::test::doubleByte(NLS_CHARSET_VIA_SJIS));
    OpenHandle alone{builder.build()};
    const Asked own = ask(alone, "Shift-JIS ", NLS_NO_COLLATION, nullptr);
    ASSERT_EQ(own.status, NLS_OK);
    EXPECT_EQ(chainLength(alone.handle), 2U);
    ASSERT_EQ(findConversion(alone.handle, own.locale, own.locale, &bridge), NLS_OK);
    EXPECT_EQ(bridge->table, nullptr);
}

TEST(Locale, StaysWhenACompanionFails) {
    ConvmapBuilder noSjis, noBridge;
    noSjis.attributes("EUCJIS", nls::test::doubleByte(NLS_CHARSET_VIA_SJIS));
    noBridge.attributes("EUCJIS", nls::test::doubleByte(NLS_CHARSET_VIA_SJIS));
    noBridge.attributes("SHIFT-JIS", nls::test::doubleByte(NLS_CHARSET_MULTI_BYTE));
    const struct {
        ConvmapBuilder& builder;
        nlsStatus status;
        std::size_t objects;
    } rows[] = {{noSjis, NLS_NO_ATTRIB_TABLE, 1}, {noBridge, NLS_NO_CONV_TABLE, 2}};
    for (const auto& row : rows) {
        OpenHandle open{row.builder.build()};
        const Asked asked = ask(open, "EUCJIS", NLS_NO_COLLATION, nullptr);
        EXPECT_EQ(asked.status, row.status);
        ASSERT_NE(asked.locale, nullptr) << "the locale is handed out all the same";
        EXPECT_EQ(chainLength(open.handle), row.objects);
        const Asked again = ask(open, "EUCJIS", NLS_NO_COLLATION, nullptr);
        EXPECT_EQ(again.status, NLS_OK);
        EXPECT_EQ(again.locale, asked.locale);
    }
}

}  // namespace
