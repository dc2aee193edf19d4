// Names under several locales of the process: the C library's table folds their case, and a Turkish one folds "i"
// apart.
#include <gtest/gtest.h>

#include <clocale>

#include "nls/inner.h"
#include "nls/objects.h"
#include "tests/support/c_locales.hpp"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::CLocales;
using nls::test::OpenHandle;
using nls::test::smallWorld;

struct Under {
    const char* language;
    const char* encoding;
    bool foldsDottedI;  // "i" is the small letter of "I"
    bool foldsUmlauts;  // the byte E4 is the small letter of C4
};

class NamesUnder : public testing::TestWithParam<Under> {
protected:
    void SetUp() override {
        if (!locales_.use(GetParam().language, GetParam().encoding)) GTEST_SKIP() << "the locale can't be made here";
    }

private:
    CLocales locales_;
};

void expectComparison(const Under& under) {
    EXPECT_EQ(nlsStbcmp("utf-8", "UTF-8  "), 0);
    EXPECT_EQ(nlsStbcmp("koi8-r", "KOI8-R") == 0, under.foldsDottedI);
    EXPECT_EQ(nlsStbcmp("\xE4", "\xC4") == 0, under.foldsUmlauts);
    EXPECT_EQ(nlsStbcmp("\xE4", "a"), -1) << "bytes from 80 on sort first, as signed values";
    EXPECT_EQ(nlsStbcmp("z", "\xFF"), 1);
}

void expectLookUps(const Under& under) {
    OpenHandle open{smallWorld().build()};
    ASSERT_TRUE(open.isOpen());
    EXPECT_NE(open.locale("utf-8"), nullptr);
    EXPECT_NE(open.locale("LATIN"), nullptr);
    EXPECT_EQ(open.locale("latin") != nullptr, under.foldsDottedI);
    EXPECT_NE(open.conversion("LATIN", "utf-16"), nullptr) << "a way of two steps";
    nlsConvTable* table = nullptr;
    EXPECT_EQ(nlsGetConvTablePtr(open.handle, "undefined", "LATIN", 0, &table), NLS_OK);
    EXPECT_EQ(table, nullptr);

    // The companions of EUCJIS are asked for as "shift-jis", and the file spells it in capitals.
    nlsLocale* locale = nullptr;
    EXPECT_EQ(nlsCreateLocale(open.handle, "EUCJIS", NLS_NO_COLLATION, nullptr, &locale),
              under.foldsDottedI ? NLS_OK : NLS_NO_ATTRIB_TABLE);
    EXPECT_NE(locale, nullptr);
}

// One test, since each makes its locale anew.
TEST_P(NamesUnder, CompareAndAreFoundByTheTableOfTheProcess) {
    expectComparison(GetParam());
    expectLookUps(GetParam());
}

// A locale of UTF-8 has no upper case for bytes from 80 on, and none within a byte for the Turkish "i".
INSTANTIATE_TEST_SUITE_P(, NamesUnder,
                         testing::Values(Under{"C", "", true, false}, Under{"de_DE", "ISO-8859-1", true, true},
                                         Under{"tr_TR", "ISO-8859-9", false, true},
                                         Under{"tr_TR", "UTF-8", false, false}));

}  // namespace
