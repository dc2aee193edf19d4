#include "strings/charset_names.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "nls/status.h"
#include "nls/strings.h"

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

TEST(CharsetNames, TheSystemsCharset) {
    char name[NLS_CHARSET_NAME_SIZE] = "#";
    EXPECT_EQ(nlsGetOSCharset(name), NLS_OK);
    EXPECT_STREQ(name, "ISO8859-1");
}

}  // namespace
