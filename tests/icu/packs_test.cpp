// The packs: which locales they open, and that docs/icu-collations.md tells it of every listed name.
#include <fstream>
#include <iterator>
#include <sstream>

#include "icu/builds.hpp"
#include "icu/collation_name.hpp"
#include "icu/name_list.hpp"
#include "nls/icu.h"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/peer.hpp"

namespace nls {
namespace {

struct Opened {
    int32_t status;
    std::string order;  // the locale whose order it is
};

Opened open(nlsIcuVersion& row, const char* locale) {
    int32_t status = 0;
    void* const collator = UL_ucol_open(&row, locale, &status);  // the packs are loaded from here on
    if (collator != nullptr) row.entryPoints->ucol_close(static_cast<IcuCollator*>(collator));
    IcuStatus told = kIcuOk;
    IcuCollator* const again = row.entryPoints->ucol_open(locale, &told);
    Opened opened{told, test::peer::orderOf(again)};
    row.entryPoints->ucol_close(again);
    EXPECT_EQ(status, told == kIcuUsedDefault ? kIcuUsedDefault : kIcuOk) << locale;
    return opened;
}

TEST(Packs, KnowTheOlderFormsAndNothingQuietly) {
    constexpr int32_t kFallback = test::peer::kUsedFallback, kUnknown = test::peer::kUsedDefault;
    const struct {
        int row;
        const char* locale;
        int32_t status;
        const char* order;  // counts where it opens
    } rows[] = {
        {0, "", 0, "root"},
        {0, "de__PHONEBOOK", 0, "de@collation=phonebook"},
        {0, "de_AT_PHONEBOOK", 0, "de_AT@collation=phonebook"},
        {0, "es__TRADITIONAL", 0, "es@collation=traditional"},
        {0, "zh__PINYIN", 0, "zh"},
        {0, "zh_TW_STROKE", kFallback, "zh@collation=stroke"},
        {0, "zh_TW_PINYIN", kFallback, "zh"},
        {0, "sv", 0, "sv"},
        {0, "nl", kFallback, "root"},
        {0, "en", kFallback, "root"},
        {0, "en_BE", kFallback, "root"},
        {0, "en_US_POSIX", 0, "en_US_POSIX"},
        {0, "de_YY", kFallback, "root"},
        {0, "eu", kFallback, "root"},  // ICU knows the language, and has no collation of its name
        {0, "xx", kUnknown, ""},
        {0, "xx__PHONEBOOK", kUnknown, ""},
        {0, "tlh", kUnknown, ""},
        {0, "klingon", kUnknown, ""},
        {0, "hi__DIRECT", kUnknown, ""},
        {0, "ja__HQ", kUnknown, ""},
        {0, "sv__PHONEBOOK", kUnknown, ""},
        {0, "de__FOO", kUnknown, ""},
        {0, "de_DE_1996", kUnknown, ""},
        {0, "de@phonebook", kUnknown, ""},
        {1, "de@collation=phonebook", 0, "de@collation=phonebook"},
        {1, "de@collation=PHONEBOOK", 0, "de@collation=phonebook"},
        {1, "zh@collation=big5han", 0, "zh@collation=big5han"},
        {1, "sv@collation=phonebook", kUnknown, ""},
        {1, "hi@collation=direct", kUnknown, ""},
        {1, "xx@collation=phonebook", kUnknown, ""},
        {1, "ca", kFallback, "root"},
        {1, "en", kFallback, "root"},
    };
    for (const auto& row : rows) {
        const Opened opened = open(icuarray[row.row], row.locale);
        EXPECT_EQ(opened.status, row.status) << row.row << " " << row.locale << " " << opened.order;
        if (opened.status == kUnknown) continue;
        EXPECT_EQ(opened.order, row.order) << row.row << " " << row.locale;
    }
}

// A row of the page: name, does it open, whose order.
std::string rowOf(const std::string& name) {
    test::IcuWorld world;
    nlsLocale* locale = nullptr;
    const nlsStatus status = world.create(name.c_str(), locale);
    nlsCollStruct coll;
    nlsIcuInfo info;
    char text[kIcuLocaleRoom];
    EXPECT_EQ(nlsIcuFillInfo(&coll, &info, name.c_str()), NLS_OK);
    EXPECT_EQ(nlsIcuGetIcuFromZel(&info, info.icuLocale, text, sizeof text), NLS_OK);
    const Opened opened = open(*info.version, text);
    EXPECT_EQ(status, opened.status == kIcuUsedDefault ? NLS_NO_MEM : NLS_OK) << name;
    const std::string start = "| `" + name + "` | ";
    if (status != NLS_OK) return start + "no | ICU knows no such variant |";
    const std::string how = opened.status == test::peer::kUsedFallback ? ", by fallback |" : " |";
    return start + "yes | " + (opened.order == "root" ? opened.order : "`" + opened.order + "`") + how;
}

TEST(Packs, ThePageTellsEveryListedName) {
    const int version = test::peer::versionOfIcu();
    std::ifstream in{NLS_ICU_PAGE};
    const std::string page{std::istreambuf_iterator<char>{in}, {}};
    if (page.find("from ICU " + std::to_string(version) + " ") == std::string::npos)
        GTEST_SKIP() << "the page tells of another ICU than " << version;
    std::istringstream names{kAllIcuCollations.data()};
    std::string all;
    std::size_t count = 0;
    for (std::string name; std::getline(names, name, ','); ++count) all += rowOf(name) + "\n";
    EXPECT_EQ(count, 139U);
    if (page.find(all) == std::string::npos) ADD_FAILURE() << "The page has to hold these rows:\n" << all;
}

}  // namespace
}  // namespace nls
