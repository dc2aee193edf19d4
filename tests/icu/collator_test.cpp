// Collations of ICU's: what stands in their maps, which collator a call gets, at which strength.
#define NLS_ICU_FOLDER NLS_ICU_GUARDED_PACKS
#include "icu/collator.hpp"

#include "icu/image.hpp"
#include "nls/icu.h"
#include "tests/icu/guard.hpp"
#include "tests/icu/icu_world.hpp"
#include "tests/icu/peer.hpp"

namespace nls {
namespace {

struct Made {
    nlsCollStruct coll{};
    nlsIcuInfo info{};
    nlsStatus status;

    explicit Made(const char* name, const char* exactWord = "", const char* foldWord = "") {
        std::strcpy(IcuImage{coll.exactMap}.strengthWord(), exactWord);
        std::strcpy(IcuImage{coll.foldMap}.strengthWord(), foldWord);
        status = nlsIcuFillInfo(&coll, &info, name);
        if (status == NLS_OK) status = nlsIcuGetCollData(nullptr, info.icuLocale, &coll);
    }
};

std::vector<unsigned char> fieldOf(const unsigned char* map, std::size_t offset, std::size_t size) {
    return {map + offset, map + offset + size};
}

TEST(Collator, ItsMapsHoldWhatADatabaseStores) {
    const struct {
        const char* name;
        const char* icuLocale;
        const char* imageLocale;
    } rows[] = {
        {"ICU-UCA", "", ""},
        {"ICU-", "", ""},
        {"ICU-es__TRADITIONAL", "es@collation=traditional", "es__TRADITIONAL"},
        {"ICU_48-DUCET", "", ""},
        {"ICU_48-UCA", "", ""},
        {"ICU_48-zh@gb2312han", "zh@collation=gb2312han", "zh@gb2312han"},
        {"ICU_48-de@collation=phonebook", "", nullptr},  // "collation=" comes twice
        {"ICU_48-zh_Hant_TW@stroke", "zh_Hant_TW@collation=stroke", "zh_Hant_TW@stro"},
    };
    for (const auto& row : rows) {
        const Made made{row.name};
        ASSERT_EQ(made.status, row.imageLocale == nullptr ? NLS_NO_MEM : NLS_OK) << row.name;
        if (row.imageLocale == nullptr) continue;
        std::vector<unsigned char> versions = test::peer::Collator{row.icuLocale, 2}.version();
        if (made.info.version == &icuarray[0]) std::copy_n("\3\1\1", 4, versions.begin() + 4);
        std::string locale = row.imageLocale;
        locale.resize(16);
        for (const unsigned char* const map : {made.coll.exactMap, made.coll.foldMap}) {
            EXPECT_EQ(IcuImage::infoOf(map), &made.info);
            EXPECT_EQ(fieldOf(map, 16, 8), versions) << row.name;
            EXPECT_EQ(fieldOf(map, 24, 4), std::vector<unsigned char>(4)) << row.name;
            EXPECT_EQ(fieldOf(map, 32, 16), std::vector<unsigned char>(locale.begin(), locale.end())) << row.name;
        }
        EXPECT_STREQ(IcuImage::strengthWordOf(made.coll.exactMap), "TERTIARY");
        EXPECT_STREQ(IcuImage::strengthWordOf(made.coll.foldMap), "SECONDARY");
    }
}

TEST(Collator, StrengthWordsThatStandThereStay) {
    const struct {
        const char *exact, *fold, *exactAfter, *foldAfter;
    } rows[] = {{"PRIMARY", "QUATERNARY", "PRIMARY", "QUATERNARY"},
                {"PRIMARY", "", "PRIMARY", "SECONDARY"},
                {"", "nonsense", "TERTIARY", "nonsense"}};
    for (const auto& row : rows) {
        const Made made{"ICU_48-sv", row.exact, row.fold};
        EXPECT_STREQ(IcuImage::strengthWordOf(made.coll.exactMap), row.exactAfter);
        EXPECT_STREQ(IcuImage::strengthWordOf(made.coll.foldMap), row.foldAfter);
    }
}

TEST(Collator, UnknownLocalesAreRefusedAndClosed) {
    const struct {
        const char* name;
        int32_t status;  // of the opening
    } rows[] = {
        {"ICU-xx", -127},
        {"ICU-klingon", -127},
        {"ICU-ja__HQ", -127},
        {"ICU-de@phonebook", -127},
        {"ICU_48-hi@direct", -127},
        {"ICU_48-xx@stroke", -127},
        {"ICU_48-de@xxxxxxxxxxxxxxxxxxxxx", -127},        // with its keyword it doesn't fit
        {"ICU-sv@collation=standard;numeric=yes", -127},  // ICU would know it, and the part of it that fits
        {"ICU-en", 0},
        {"ICU-en_GB", 0},
        {"ICU_48-en", 0},
        {"ICU-fr", 0},
    };
    for (const auto& row : rows) {
        const Made first{row.name};  // the build is loaded from here on
        const test::GuardCount count{*first.info.version, kI18nLibrary};
        const Made made{row.name};
        EXPECT_EQ(made.status, row.status == 0 ? NLS_OK : NLS_NO_MEM) << row.name;
        EXPECT_EQ(made.info.sharedCollator != nullptr, row.status == 0) << row.name;
        EXPECT_EQ(count.open(), row.status == 0 ? 1 : 0) << row.name;
    }
    nlsCollStruct none{};
    EXPECT_EQ(nlsIcuGetCollData(nullptr, "de", &none), NLS_NO_MEM);
}

TEST(Collator, ABlockHoldsOne) {
    Made swedish{"ICU_48-sv"}, german{"ICU_48-de"};
    const test::GuardCount count{icuarray[1], kI18nLibrary};
    void* collator = nullptr;
    EXPECT_EQ(nlsIcuGetTlsCollator(&swedish.info, nullptr, &collator), NLS_OK);
    EXPECT_EQ(collator, swedish.info.sharedCollator);
    EXPECT_EQ(count.opened(), 0);

    nlsTlsBlock block{};
    block.icuStatus = 77;
    EXPECT_EQ(nlsIcuGetTlsCollator(&swedish.info, &block, &collator), NLS_OK);
    void* const own = collator;
    EXPECT_NE(own, swedish.info.sharedCollator);
    EXPECT_EQ(block.icuColl, &swedish.info);
    EXPECT_EQ(block.icuStatus, 0);
    EXPECT_EQ(nlsIcuGetTlsCollator(&german.info, &block, &collator), NLS_OK);
    EXPECT_EQ(collator, own);
    EXPECT_EQ(block.icuColl, &swedish.info);
    EXPECT_EQ(count.opened(), 1);

    EXPECT_EQ(nlsIcuTlsClose(&block), NLS_OK);
    EXPECT_EQ(block.collator, 0U);
    EXPECT_EQ(block.icuColl, &swedish.info);
    EXPECT_EQ(nlsTlsClose(&block), NLS_OK);
    EXPECT_EQ(count.open(), 0);
    EXPECT_EQ(nlsIcuGetTlsCollator(&german.info, &block, &collator), NLS_OK);
    EXPECT_EQ(block.icuColl, &german.info);
    EXPECT_EQ(nlsTlsClose(&block), NLS_OK);
    EXPECT_EQ(count.open(), 0);

    for (const char* const unknown : {"xx", "de@xxxxxxxxxxxxxxxxxxxxxx"}) {
        german.info.icuLocale = unknown;
        EXPECT_EQ(nlsIcuGetTlsCollator(&german.info, &block, &collator), NLS_NO_COLL_TABLE);
        EXPECT_EQ(collator, german.info.sharedCollator);
        EXPECT_EQ(block.collator, 0U);
        EXPECT_EQ(block.icuStatus, -127);
    }
    EXPECT_EQ(count.open(), 0);
}

TEST(Collator, TheStrengthComesFromTheModeOrTheWord) {
    const struct {
        const char* word;
        int32_t strength;
    } words[] = {{"PRIMARY", 0},
                 {"SECONDARY", 1},
                 {"TERTIARY", 2},
                 {"QUATERNARY", 3},
                 {"IGNORE-SECONDARY", 4},
                 {"ARY", 0},
                 {"", 0},
                 {"IGNORE", 4},
                 {"primary", -1},
                 {"NONE", -1},
                 {"PRIMARY,SECONDARY,TERTIARY,QUAX", -1},
                 // of which 31 characters count
                 {"PRIMARY,SECONDARY,TERTIARY,QUATERNARY and more", 0}};
    for (const auto& word : words) {
        unsigned char map[IcuImage::kSize];
        std::memset(map, 'X', sizeof map);
        std::strcpy(reinterpret_cast<char*>(map) + 48, word.word);
        for (const unsigned mode : {0U, 1U}) EXPECT_EQ(strengthOf(map, mode), word.strength) << word.word;
        for (const unsigned mode : {4U, 5U, 6U, 7U, 8U})
            EXPECT_EQ(strengthOf(map, mode), static_cast<int32_t>(mode) - 4);
        for (const unsigned mode : {2U, 3U, 9U, 0x2001U, 0xFFFFU}) EXPECT_EQ(strengthOf(map, mode), -1);
    }
}

}  // namespace
}  // namespace nls
