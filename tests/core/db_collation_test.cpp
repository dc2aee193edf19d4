// What a database stores of a collation, on charsets made for it: sizes and forms, blocks of every size, refusals,
// what is left when a locale has been closed, and 100,000 records that something has damaged.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "tests/support/guarded_buffer.hpp"
#include "tests/support/stored_world.hpp"

namespace {

using nls::test::answersOf;
using nls::test::asText;
using nls::test::Bytes;
using nls::test::GuardedBuffer;
using nls::test::OpenHandle;
using nls::test::StoredBytes;
using nls::test::StoredLocale;
using nls::test::storedOf;

constexpr int32_t kOwnTables = 7;

class DbCollation : public testing::Test {
protected:
    nlsLocale* locale(const char* charset, const char* caseName = "basic", const char* collation = "basic") {
        nlsLocale* made = nullptr;
        EXPECT_EQ(nlsCreateLocale(open.handle, charset, collation, caseName, &made), NLS_OK) << charset;
        return made;
    }

    OpenHandle open{nls::test::storedWorld(), 4 << 20};
};

Bytes wordTable(unsigned char kind, unsigned offset = 62, unsigned body = 256) {
    Bytes table(body + 62);
    table[0] = kind;
    table[2] = static_cast<unsigned char>(body);
    table[3] = static_cast<unsigned char>(body >> 8);
    table[4] = static_cast<unsigned char>(offset);
    return table;
}

TEST_F(DbCollation, IsWrittenInBothForms) {
    const uint32_t pages = reinterpret_cast<nlsUnicodeCaseStruct*>(locale("UTF-8")->caseTable)->caseBuildSize;
    const struct {
        const char *charset, *caseName;
        uint32_t image, block;
    } rows[] = {{"LATIN", nullptr, 1376, 1528},
                {"LATIN", "basic", 1892, 2044},
                {"EUC", "basic", 1892, 2044},
                {"UTF-8", nullptr, 1376, 1528},
                {"UTF-8", "basic", 7352, 5976 + pages + 1528}};
    GuardedBuffer room{8000};
    for (const auto& row : rows)
        for (const int32_t format : {INT32_MIN, 5, 6, INT32_MAX}) {
            nlsLocale* const from = locale(row.charset, row.caseName);
            from->attrib->sjisAttrib = from->attrib;
            const uint32_t image = format <= 5 ? 512 : row.image;
            nlsDbCollation record;
            std::memset(&record, 0xA5, sizeof record);
            record.dbImage = room.atEnd(image);
            const nlsDbCollation untouched = record;
            const Bytes fill(image, 0x5A);
            std::memcpy(record.dbImage, fill.data(), image);
            ASSERT_EQ(nlsLocaleToDbCollation(from, format, image - 1, &record), NLS_BUF_SMALL);
            EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
            EXPECT_EQ(std::memcmp(record.dbImage, fill.data(), image), 0);
            ASSERT_EQ(nlsLocaleToDbCollation(from, format, image, &record), NLS_OK);
            EXPECT_EQ(record.dbImageSize, image);
            EXPECT_EQ(record.dbBlockBase, format <= 5 ? 736 : row.block);
            EXPECT_EQ(record.dbCollKind, from->coll->collKind);
            EXPECT_EQ(record.dbCollSubKind, from->coll->collSubKind);
            EXPECT_EQ(std::memcmp(record.dbCharset, from->charsetName, 20 + 32 + 20), 0);
            EXPECT_EQ(record.dbWordBreak, untouched.dbWordBreak);
            EXPECT_EQ(record.dbWordBreakLocale, untouched.dbWordBreakLocale);
            nlsCollStruct coll = *from->coll;
            coll.nextColl = nullptr;
            nlsAttribStruct attrib = *from->attrib;
            attrib.sjisAttrib = nullptr;
            attrib.sjisConversion = nullptr;
            EXPECT_EQ(std::memcmp(record.dbImage, &coll, std::min<uint32_t>(image, 584)), 0);
            if (image == 512) continue;
            EXPECT_EQ(std::memcmp(record.dbImage + 584, &attrib, 792), 0);
            if (row.caseName == nullptr) continue;
            EXPECT_EQ(std::memcmp(record.dbImage + 1376, from->caseTable, image - 1376), 0);
        }
}

TEST_F(DbCollation, IsRefusedInTheOrderOfTheChecks) {
    nlsLocale* const latin = locale("LATIN");
    nlsDbCollation record{};
    EXPECT_EQ(nlsLocaleToDbCollation(nullptr, 5, 512, &record), NLS_BAD_HANDLE);
    EXPECT_EQ(nlsLocaleToDbCollation(latin, 5, 512, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsLocaleToDbCollation(latin, 5, 512, &record), NLS_BAD_ARG);
    unsigned char image[8000];
    record.dbImage = image;
    EXPECT_EQ(nlsLocaleToDbCollation(open.locale("LATIN"), 5, 0, &record), NLS_BAD_COLLATION) << "it has none";
    nlsLocale other = *latin;
    other.attrib = nullptr;
    EXPECT_EQ(nlsLocaleToDbCollation(&other, 6, 0, &record), NLS_NO_ATTRIB);
    other.hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(nlsLocaleToDbCollation(&other, 6, 0, nullptr), NLS_BAD_LOCALE);

    ASSERT_EQ(nlsLocaleToDbCollation(latin, 6, sizeof image, &record), NLS_OK);
    uint32_t size = 0;
    alignas(8) unsigned char block[4000];
    nlsLocale* made = nullptr;
    const std::string name = "t";
    const unsigned char* const text = asText(name);
    EXPECT_EQ(nlsDbCollationToLocale(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), NLS_BAD_HANDLE);
    open.handle->busy = 1;
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, nullptr, &size, nullptr, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, nullptr, nullptr), NLS_BUSY);
    EXPECT_EQ(open.handle->busy, 1U);
    open.handle->busy = 0;
    size = sizeof block - 8;
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, nullptr, &made), NLS_BAD_ARG);
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, block, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, block + 4, &made), NLS_BAD_ARG);
    record.dbImage = nullptr;
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, block, &made), NLS_BAD_ARG);
    record.dbCollKind = kOwnTables;
    size = 0;
    EXPECT_EQ(nlsDbCollationToLocale(open.handle, &record, text, &size, nullptr, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(made, nullptr);

    // Each row makes one thing of a sound record wrong.
    const auto put = [](Bytes& bytes, std::size_t place, uint32_t value) {
        std::memcpy(bytes.data() + place, &value, sizeof value);
    };
    const StoredBytes small = storedOf(*latin, 5), tables = storedOf(*latin, 6, kOwnTables);
    const StoredBytes pages = storedOf(*locale("UTF-8"), 6, kOwnTables), unicode = storedOf(*locale("UTF-8"), 5);
    const struct {
        const char* why;
        StoredBytes stored;
        std::function<void(StoredBytes&)> spoil;
        nlsStatus want;
    } rows[] = {
        {"maps cut short", small, [](auto& s) { s.image.resize(s.record.dbImageSize = 511); }, NLS_BAD_COLLATION},
        {"no image", small, [](auto& s) { s.image.resize(s.record.dbImageSize = 0); }, NLS_BAD_COLLATION},
        {"a short form of a kind with tables", small, [](auto& s) { s.record.dbCollKind = 6; }, NLS_BAD_COLLATION},
        {"tables cut short", tables, [](auto& s) { s.image.resize(s.record.dbImageSize = 1375); }, NLS_BAD_COLLATION},
        {"case cut short", tables, [](auto& s) { s.image.resize(s.record.dbImageSize = 1891); }, NLS_BAD_COLLATION},
        {"pages cut short", pages, [](auto& s) { s.image.resize(s.record.dbImageSize = 7351); }, NLS_BAD_COLLATION},
        {"another raw size", pages, [&](auto& s) { put(s.image, 1376, 5977); }, NLS_BAD_COLLATION},
        {"no room for the first stage", pages, [&](auto& s) { put(s.image, 1380, 2055); }, NLS_BAD_COLLATION},
        {"no room for the pages", pages, [&](auto& s) { put(s.image, 1380, 2056); }, NLS_BAD_COLLATION},
        {"more than all pages", pages, [&](auto& s) { put(s.image, 1380, 0x20000); }, NLS_BAD_COLLATION},
        {"ICU's among own tables", tables, [&](auto& s) { put(s.image, 524, 5); }, NLS_BAD_COLLATION},
        {"no mark", unicode, [](auto& s) { s.image[5] = 'C'; }, NLS_BAD_COLLATION},
        {"no second mark", unicode, [](auto& s) { s.image[256] = 'b'; }, NLS_BAD_COLLATION},
        {"no mark among own tables", tables, [&](auto& s) { put(s.image, 524, 3); }, NLS_BAD_COLLATION},
        {"a site's sort", small, [](auto& s) { s.record.dbCollKind = 2; }, NLS_NO_COLL_TABLE},
        {"the same among own tables", tables, [&](auto& s) { put(s.image, 524, 2); }, NLS_NO_COLL_TABLE},
        {"no name of ICU's", small, [](auto& s) { s.record.dbCollKind = 5; }, NLS_NO_COLL_TABLE},
        {"no such charset", small, [](auto& s) { s.record.dbCharset[0] = '?'; }, NLS_NO_ATTRIB_TABLE},
        {"a full name", small, [](auto& s) { std::memset(s.record.dbCharset, 'L', 20); }, NLS_NO_ATTRIB_TABLE},
        {"no way to its companion", tables, [](auto& s) { s.image[1372] = 6; }, NLS_NO_CONV_TABLE},
        {"no way to its words", small,
         [](auto& s) {
             s.words = wordTable(7);
             s.target = "EUC";
         },
         NLS_NO_CONV_TABLE},
    };
    for (const auto& row : rows) {
        StoredBytes stored = row.stored;
        EXPECT_EQ((StoredLocale{open.handle, stored}.status), NLS_OK) << row.why;
        row.spoil(stored);
        const nlsHdr* const newest = open.handle->chainHead;
        EXPECT_EQ((StoredLocale{open.handle, stored}.status), row.want) << row.why;
        EXPECT_EQ(open.handle->busy, 0U) << row.why;
        for (const nlsHdr* object = open.handle->chainHead; object != newest; object = object->next)
            EXPECT_NE(object->typeTag, NLS_TAG_CLOSED) << "nothing half made is linked: " << row.why;
    }
}

// The size told is that of the sum of the parts; with one byte less nothing is touched, and what is more than enough
// stands in front of the text.
TEST_F(DbCollation, BlocksOfEverySize) {
    const uint32_t pages = reinterpret_cast<nlsUnicodeCaseStruct*>(locale("UTF-8")->caseTable)->caseBuildSize;
    const struct {
        StoredBytes stored;
        uint32_t tables;
    } rows[] = {{storedOf(*locale("LATIN"), 5), 736},
                {storedOf(*locale("UTF-8"), 6), 736},
                {storedOf(*locale("THAI"), 5), 736},
                {storedOf(*locale("LATIN"), 6, kOwnTables), 736 + 792 + 516},
                {storedOf(*locale("UTF-8", nullptr), 6, kOwnTables), 736 + 792},
                {storedOf(*locale("UTF-8"), 6, kOwnTables), 736 + 792 + 5976 + pages}};
    GuardedBuffer room{64 << 10};
    for (const auto& row : rows)
        for (const unsigned body : {0U, 256U, 300U, 1000U}) {
            StoredBytes stored = row.stored;
            if (body != 0) stored.words = wordTable(9, 62, body);
            const uint32_t words = body == 0 ? 318 : body + 62;
            for (uint32_t length = 0; (row.tables + words + length + 1) % 8 != 0; ++length) stored.text += 'x';
            const auto needed = static_cast<uint32_t>(row.tables + words + stored.text.size() + 1);
            nlsDbCollation record = stored.record;
            record.dbImage = stored.image.data();
            record.dbWordBreak = stored.words.empty() ? nullptr : stored.words.data();
            nlsLocale* made = nullptr;
            for (uint32_t size = 0; size < needed; ++size) {
                uint32_t told = size;
                ASSERT_EQ(
                    nlsDbCollationToLocale(open.handle, &record, asText(stored.text), &told, room.atEnd(0), &made),
                    NLS_BUF_SMALL);
                ASSERT_EQ(told, needed);
            }
            for (const uint32_t more : {0U, 8U, 800U}) {
                uint32_t size = needed + more;
                unsigned char* const block = room.atEnd(size);
                std::memset(block, 0xA5, size);
                ASSERT_EQ(nlsDbCollationToLocale(open.handle, &record, asText(stored.text), &size, block, &made),
                          NLS_OK);
                EXPECT_EQ(made, reinterpret_cast<nlsLocale*>(block));
                EXPECT_EQ(made->dbBlockSize, needed + more);
                EXPECT_EQ(made->dbCollationName, block + needed + more - stored.text.size() - 1);
                EXPECT_STREQ(reinterpret_cast<const char*>(made->dbCollationName), stored.text.c_str());
                auto* const place = reinterpret_cast<unsigned char*>(made->wordBreak);
                EXPECT_LE(place + words, made->dbCollationName);
                if (row.tables == 736)
                    EXPECT_EQ(place, block + 736);
                else if (row.stored.record.dbCase[0] == 0 || row.stored.image.size() > 1892 || more >= 8)
                    EXPECT_EQ((place - block) % 8, 0) << "where there is room for that";
                else
                    EXPECT_EQ(place, block + row.tables);
                EXPECT_GE(place, block + std::min<std::size_t>(row.tables, 9552)) << "behind the case table";
                EXPECT_EQ(open.handle->chainHead, &made->hdr);
                uint32_t keys = 0;
                EXPECT_EQ(nlsIsSortNeeded(made, nullptr, &keys), body == 0 ? NLS_NO_WB_TABLE : NLS_OK);
                answersOf(made, stored.text);
                void* given = nullptr;
                ASSERT_EQ(nlsCloseDBLocale(made, &given, &size), NLS_OK);
                EXPECT_EQ(given, block);
                EXPECT_EQ(size, needed + more);
            }
        }
}

TEST_F(DbCollation, FullNamesAreCutInTheLocale) {
    StoredBytes stored = storedOf(*locale("LATIN"), 6, kOwnTables);
    std::memset(stored.record.dbCharset, 'A', 20 + 32 + 20);
    const StoredLocale made{open.handle, stored};
    ASSERT_EQ(made.status, NLS_OK);
    EXPECT_EQ(std::string(made.locale->charsetName), std::string(19, 'A'));
    EXPECT_EQ(std::string(made.locale->collationName), std::string(31, 'A'));
    EXPECT_EQ(std::string(made.locale->caseName), std::string(19, 'A'));
}

// Two locales by one record are two; the tables of a charset never come from the block of another locale.
TEST_F(DbCollation, WhatIsClosedIsForgotten) {
    nlsLocale* const euc = locale("EUC");
    const std::string text = "\xA4\xA2\xA4\xA4 ab";
    const Bytes before = answersOf(euc, text);
    StoredBytes nameless = storedOf(*locale("LATIN"), 6, kOwnTables);
    std::memset(nameless.record.dbCollation, 0, sizeof nameless.record.dbCollation);
    for (const char* const charset : {"EUC", "shift-jis", "LATIN", "UTF-8"}) {
        OpenHandle fresh{nls::test::storedWorld()};
        const StoredBytes shared = storedOf(*locale(charset), 5);
        StoredBytes own = storedOf(*locale(charset), 6, kOwnTables);
        for (const std::size_t pointer : {512U, 1352U, 1360U}) std::memset(&own.image[pointer], 0xE7, 8);
        const Bytes want = answersOf(locale(charset), text);
        nlsLocale *arena = nullptr, *found = nullptr;
        ASSERT_EQ(nlsCreateLocale(fresh.handle, "EUC", "basic", nullptr, &arena), NLS_OK);
        StoredLocale hiding{fresh.handle, nameless}, first{fresh.handle, own}, second{fresh.handle, own};
        ASSERT_NE(second.locale, nullptr);
        EXPECT_NE(first.locale, second.locale);
        // Everything that may remember: the memo, a locale that shares tables, companions, conversions.
        const Bytes eucBefore = answersOf(arena, text);
        StoredLocale third{fresh.handle, shared};
        for (const nlsLocale* const one : {first.locale, second.locale, third.locale})
            EXPECT_TRUE(answersOf(one, text) == want) << charset;
        nlsConversion *forth = nullptr, *back = nullptr;
        ASSERT_EQ(nlsCreateConversion(fresh.handle, first.locale, second.locale, &forth), NLS_OK);
        ASSERT_EQ(nlsCreateConversion(fresh.handle, arena, first.locale, &back),
                  std::string_view{charset} == "EUC" || std::string_view{charset} == "shift-jis" ? NLS_OK
                                                                                                 : NLS_NO_CONV_TABLE);
        EXPECT_EQ(findLocale(fresh.handle, charset, "basic", "basic", &found), NLS_OK);
        EXPECT_EQ(found, third.locale) << "the newest of these names";
        const nlsAttribStruct* const blocks[] = {first.locale->attrib, second.locale->attrib};
        EXPECT_EQ(std::count(blocks, blocks + 2, arena->attrib->sjisAttrib), 0) << "the memo outlives them";
        EXPECT_EQ(first.locale->coll->nextColl, nullptr);
        hiding.close();
        first.close();
        EXPECT_TRUE(answersOf(second.locale, text) == want) << charset;
        second.close();
        EXPECT_TRUE(answersOf(third.locale, text) == want) << charset;
        third.close();
        EXPECT_TRUE(answersOf(arena, text) == eucBefore);
        uint32_t most = 0;
        ASSERT_EQ(nlsGetIntConversionProperty(forth, 24, &most), NLS_OK);
        ASSERT_EQ(nlsCreateLocale(fresh.handle, charset, "basic", "basic", &found), NLS_OK);
        EXPECT_EQ(found->dbBlockSize, 0U);
        EXPECT_TRUE(answersOf(found, text) == want) << charset;
    }
    EXPECT_TRUE(answersOf(euc, text) == before);
}

std::vector<Bytes> seeds() {
    OpenHandle open{nls::test::storedWorld(), 4 << 20};
    std::vector<Bytes> all;
    for (const char* const charset : {"LATIN", "EUC", "shift-jis", "THAI", "UTF-8"})
        for (const int32_t format : {5, 6, kOwnTables})
            for (const bool words : {false, true}) {
                nlsLocale* made = nullptr;
                EXPECT_EQ(nlsCreateLocale(open.handle, charset, "basic", "basic", &made), NLS_OK);
                StoredBytes stored = storedOf(*made, std::min(format, 6), format == kOwnTables ? format : 0);
                stored.text = "a text";
                if (words) stored.words = wordTable(static_cast<unsigned char>(format == 5 ? 7 : 9));
                if (words && charset[0] == 'L') stored.target = "GREEK";
                all.push_back(stored.toBytes());
            }
    return all;
}

TEST(StoredRecords, DamagedOnesHarmNobody) {
    constexpr int kMutants = 100000;
    constexpr uint32_t kExtremes[] = {0,   1,   2,    3,    4,    5,    6,    7,          8,          62,
                                      511, 512, 1375, 1376, 1892, 2056, 5976, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    constexpr std::size_t kImage = StoredBytes::kHead;
    const std::vector<Bytes> from = seeds();
    nls::test::StoredRun world;
    for (const Bytes& seed : from) ASSERT_EQ(world.run(seed), NLS_OK);
    std::mt19937 random{1};
    int accepted = 0;
    for (int i = 0; i < kMutants; ++i) {
        Bytes bytes = from[random() % from.size()];
        for (auto left = 1 + random() % 5; left > 0; --left) {
            // The record, the words of the image that tell what it is, or any place.
            const std::size_t places[] = {16 + random() % 120,           kImage + 512 + random() % 72,
                                          kImage + 1352 + random() % 32, random() % bytes.size(),
                                          72 + 16 + 4 * (random() % 4),  bytes.size() - 1 - random() % 400};
            const std::size_t place = places[random() % std::size(places)];
            if (place + 4 > bytes.size()) continue;
            const uint32_t value = kExtremes[random() % std::size(kExtremes)];
            if (random() % 2 == 0)
                std::memcpy(bytes.data() + place, &value, sizeof value);
            else
                bytes[place] = static_cast<unsigned char>(random());
        }
        if (random() % 8 == 0) bytes.resize(random() % bytes.size());
        if (world.run(bytes) == NLS_OK) ++accepted;
    }
    EXPECT_GT(accepted, kMutants / 10);
    EXPECT_LT(accepted, kMutants * 9 / 10);
}

}  // namespace
