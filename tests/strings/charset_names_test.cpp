#include "strings/charset_names.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "nls/status.h"
#include "nls/strings.h"
#include "tests/support/hand_collations.hpp"

namespace {

TEST(CharsetNames, EveryNameFindsItselfInAnyCase) {
    std::set<std::string> seen;
    for (const char* const* entry = nls::zelCharset; *entry != nullptr; ++entry) {
        std::string lower = std::string(*entry) + "  ";
        for (char& letter : lower) letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
        char canonical[NLS_CHARSET_NAME_SIZE] = "#";
        EXPECT_EQ(nlsGetZelCharset(nullptr, nullptr, lower.c_str(), canonical), NLS_OK);
        EXPECT_STREQ(canonical, *entry);
        seen.insert(*entry);
    }
    EXPECT_EQ(seen.size(), 56U);
}

TEST(CharsetNames, WhatIsNotFoundWritesNothing) {
    char canonical[NLS_CHARSET_NAME_SIZE] = "#";
    for (const char* name : {"", "UTF", "UTF-80", " UTF-8", "utf8"}) {
        EXPECT_EQ(nlsGetZelCharset(nullptr, nullptr, name, canonical), NLS_END_OF_STRING) << name;
    }
    EXPECT_STREQ(canonical, "#");
}

// Under a locale its collation decides, and nothing else: its folded map, blanks at the end, the first equal name.
TEST(CharsetNames, UnderALocaleItsCollationDecides) {
    nls::test::CollatedLocale locale{nls::test::singleByteCharset(), nls::test::plainCollation()};
    char canonical[NLS_CHARSET_NAME_SIZE] = "#";
    const auto find = [&](const char* name) { return nlsGetZelCharset("any", locale.get(), name, canonical); };
    for (const char* name : {"", "UTF", "UTF-80", " UTF-8"}) EXPECT_EQ(find(name), NLS_END_OF_STRING) << name;
    EXPECT_STREQ(canonical, "#");
    for (const char* const* entry = nls::zelCharset; *entry != nullptr; ++entry) {
        std::string lower = std::string(*entry) + "  ";
        for (char& letter : lower) letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
        EXPECT_EQ(find(lower.c_str()), NLS_OK);
        EXPECT_STREQ(canonical, *entry);
    }
    for (unsigned digit = '0'; digit <= '9'; ++digit) locale.coll().foldMap[digit] = '0';
    EXPECT_EQ(find("UTF-9"), NLS_OK);
    EXPECT_STREQ(canonical, "UTF-8");
    EXPECT_EQ(find("999"), NLS_OK);
    EXPECT_STREQ(canonical, "709");

    nls::test::CollatedLocale bridged{nls::test::eucCharset(), nls::test::plainCollation()};
    EXPECT_EQ(nlsGetZelCharset("any", bridged.get(), "UTF-8", canonical), NLS_NO_SJIS) << "a comparison that fails";
    EXPECT_STREQ(canonical, "709");
}

TEST(CharsetNames, TheSystemsCharset) {
    char name[NLS_CHARSET_NAME_SIZE] = "#";
    EXPECT_EQ(nlsGetOSCharset(name), NLS_OK);
    EXPECT_STREQ(name, "ISO8859-1");
}

}  // namespace
