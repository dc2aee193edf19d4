// What the name of a collation asks of ICU, without ICU.
#include <gtest/gtest.h>

#include <string>

#include "icu/builds.hpp"
#include "icu/image.hpp"
#include "icu/name_list.hpp"
#include "nls/icu.h"
#include "nls/status.h"

namespace nls {
namespace {

TEST(CollationName, TellsBuildAndLocale) {
    const std::string longest = "ICU-" + std::string(31, 'x');
    const struct {
        const char* name;
        int row;  // -1: status 10
        const char* locale;
    } rows[] = {
        {"ICU-de__PHONEBOOK", 0, "de__PHONEBOOK"},
        {"ICU-", 0, ""},
        {"ICU-a-b", 0, "a-b"},
        {"ICU_-de", 0, "de"},
        {"ICU_48-de@phonebook", 1, "de@phonebook"},
        {"ICU_48-a-b", 1, "a-b"},
        {"ICU_48-", 1, ""},
        {"ICU_4-de", 1, "de"},
        {"ICU_47-de", -1, nullptr},
        {"ICU_480-de", -1, nullptr},
        {"ICU_48", -1, nullptr},
        {"ICU_", -1, nullptr},
        {"icu-de", -1, nullptr},
        {"ICU", -1, nullptr},
        {"", -1, nullptr},
        {longest.c_str(), 0, longest.c_str() + 4},
        {"ICU_xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx-", -1, nullptr},
        {"ICU-xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx", 0, nullptr},  // a locale that no room is made for
        {"ICU_48-xxxxxxxxxxxxxxxxxxxxxxxxxxxxx", 1, nullptr},
    };
    for (const auto& row : rows) {
        nlsCollStruct coll;
        nlsIcuInfo info;
        std::memset(&coll, 0x5A, sizeof coll);
        std::memset(&info, 0x5A, sizeof info);
        EXPECT_EQ(nlsIcuFillInfo(&coll, &info, row.name), row.row < 0 ? NLS_NO_COLL_TABLE : NLS_OK) << row.name;
        EXPECT_EQ(IcuImage::infoOf(coll.exactMap), &info);
        EXPECT_EQ(IcuImage::infoOf(coll.foldMap), &info);
        EXPECT_EQ(info.sharedCollator, nullptr);
        EXPECT_EQ(info.version, row.row < 0 ? nullptr : &icuarray[row.row]) << row.name;
        if (row.row < 0) continue;
        if (row.locale != nullptr) {
            EXPECT_STREQ(info.icuLocale, row.locale) << row.name;
        }
        char locale[32];
        EXPECT_EQ(nlsIcuGetIcuFromZel(&info, info.icuLocale, locale, sizeof locale),
                  row.locale != nullptr ? NLS_OK : NLS_BUF_SMALL);
        EXPECT_STREQ(info.versionText, icuarray[row.row].versionKey) << row.name;
    }
}

TEST(CollationName, BecomesALocaleOfIcus) {
    const std::string plain31(31, 'x'), plain32(32, 'x'), keyword20 = "de@" + std::string(17, 'x');
    const struct {
        int row;
        std::string name, locale;  // "-": doesn't fit
        int32_t room = 32;
    } rows[] = {
        {0, "de__PHONEBOOK", "de__PHONEBOOK"},
        {0, "de@phonebook", "de@phonebook"},
        {1, "de@phonebook", "de@collation=phonebook"},
        {1, "a@b@c", "a@collation=b@c"},
        {1, "zh_Hant", "zh_Hant"},
        {0, "UCA", ""},
        {1, "UCA", ""},
        {0, "DUCET", "", 1},
        {1, "DUCET", "-", 0},
        {1, "DUCET ", "DUCET "},
        {0, plain31, plain31},
        {0, plain32, "-"},
        {1, keyword20, "de@collation=" + std::string(17, 'x')},
        {1, keyword20 + "x", "-"},
    };
    for (const auto& row : rows) {
        nlsIcuInfo info{};
        info.version = &icuarray[row.row];
        char locale[40];
        std::memset(locale, '#', sizeof locale);
        const nlsStatus status = nlsIcuGetIcuFromZel(&info, row.name.c_str(), locale, row.room);
        EXPECT_EQ(status, row.locale == "-" ? NLS_BUF_SMALL : NLS_OK) << row.name;
        if (status == NLS_OK)
            EXPECT_STREQ(locale, row.locale.c_str());
        else
            EXPECT_EQ(locale[0], '#') << row.name;
        EXPECT_EQ(locale[32], '#') << row.name;
    }
}

TEST(CollationName, TheListHoldsBothBuilds) {
    uint32_t length = 0;
    EXPECT_EQ(nlsIcuInit(nullptr), NLS_OK);
    const char* const list = nlsICUCollationList(&length);
    EXPECT_EQ(length, 1401U);
    EXPECT_EQ(list, std::string{icuarray[0].collationNames} + "," + icuarray[1].collationNames);
    EXPECT_EQ(lookup("ICU-UCA", list), 1U);
    EXPECT_EQ(lookup("ICU-zh__PINYIN", list), 55U);
    EXPECT_EQ(lookup("ICU_48-DUCET", list), 56U);
    EXPECT_EQ(lookup("ICU_48-zh_Hant", list), 139U);
    EXPECT_EQ(lookup("", list), 1U);
    EXPECT_EQ(lookup("ARY", "PRIMARY,SECONDARY"), 1U);
    EXPECT_EQ(lookup("SECONDARY", "PRIMARY,IGNORE-SECONDARY,SECONDARY"), 2U);
    EXPECT_EQ(lookup("X", ""), 0U);
}

TEST(CollationName, ARowIsFoundByItsWholeKey) {
    EXPECT_EQ(UL_get_icuver(""), &icuarray[0]);
    EXPECT_EQ(UL_get_icuver("48"), &icuarray[1]);
    for (const char* const key : {"4", "480", "49", "2.4"}) EXPECT_EQ(UL_get_icuver(key), nullptr) << key;
}

}  // namespace
}  // namespace nls
