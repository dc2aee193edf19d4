#include "convmap/case_table_load.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <utility>

#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::CaseForm;
using nls::test::ByteMap;
using nls::test::Bytes;
using nls::test::CasePairs;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;

// The number of a character by the plain rules of UTF-8, and where its forms stand: page, column.
uint32_t number(uint32_t unit) {
    if (unit >= 0xD800 && unit <= 0xDFFF) return '?';
    if (unit < 0x80) return unit;
    if (unit < 0x800) return (0xC0 + unit / 64) * 256 + 0x80 + unit % 64;
    return ((0xE0 + unit / 4096) * 256 + 0x80 + unit / 64 % 64) * 256 + 0x80 + unit % 64;
}
std::pair<unsigned, unsigned> place(uint32_t v) {
    const uint32_t first = v >> 16;
    const uint32_t key = first == 0xE1   ? v - 0xE17F80
                         : first == 0xE2 ? v - 0xE23F80
                         : first == 0xEF ? v - 0xEEFF80
                                         : v & 0xFFFF;
    return {key >> 8, key & 0x7F};
}

// Builds by the plain rules, entry for entry.
class Model {
public:
    void put(const CasePairs& pairs, bool lower) {
        for (const auto& [character, form] : pairs) {
            if (character == 0) return;
            const auto [page, column] = place(number(character));
            auto& entries = pages_[page];
            entries.resize(page == 0 ? 256 : 128);
            entries[column + (lower ? (page == 0 ? 128 : 64) : 0)] = static_cast<uint16_t>(number(form));
        }
    }
    void expectIn(const nlsUnicodeCaseStruct& table) const {
        uint32_t size = 2056 + 258;
        for (unsigned page = 0; page < 256; ++page) {
            const auto found = pages_.find(page);
            if (found == pages_.end()) {
                EXPECT_EQ(table.casePages[page], nls::kNoCasePage) << page;
                continue;
            }
            const std::vector<uint16_t> got(table.casePages[page], table.casePages[page] + found->second.size());
            EXPECT_EQ(got, found->second) << page;
            size += static_cast<uint32_t>(found->second.size()) * 2 + 2;
        }
        EXPECT_EQ(table.caseRawSize, 5976U);
        EXPECT_EQ(table.caseBuildSize, size);
    }

private:
    std::map<unsigned, std::vector<uint16_t>> pages_;
};

// Each UCS-2 character once with each form, in tables as full as they get: the last pair leaves no room for the end.
TEST(UnicodeCaseTable, HoldsEveryPairWhereThePlainRulesPutIt) {
    std::mt19937 random{7};
    std::vector<unsigned char> block(1 << 20);
    for (uint32_t first = 1; first <= 0xFFFF; first += 744) {
        CasePairs lists[2];
        for (CasePairs& list : lists)
            for (uint32_t c = first; c < first + 744 && c <= 0xFFFF; ++c)
                list.push_back({static_cast<uint16_t>(c), static_cast<uint16_t>(random())});
        if (first % 3 == 0) lists[first % 2].clear();
        const Bytes record = ConvmapBuilder::unicodeCaseRecord(lists[0], lists[1]);
        nlsUnicodeCaseStruct table;
        std::ranges::fill(block, static_cast<unsigned char>(0xA5));
        ASSERT_EQ(computeUCCaseTableData(nullptr, record.data(), &table, block.data() + first % 2, 1 << 19), NLS_OK);
        EXPECT_EQ(std::memcmp(table.caseRaw, record.data(), record.size()), 0);
        std::memset(table.casePages, 0, sizeof table.casePages);  // and from the record in the table itself
        ASSERT_EQ(computeUCCaseTableData(nullptr, table.caseRaw, &table, block.data(), 1 << 20), NLS_OK);
        Model model;
        model.put(lists[0], false);
        model.put(lists[1], true);
        model.expectIn(table);
        if (HasFailure()) return;
    }
}

TEST(UnicodeCaseTable, AnswersForTheCharactersThatHaveAKey) {
    const CasePairs upper = {{'a', 'A'},       {0xE9, 0xC9},     {0x131, 'I'},    {0x1E01, 0x1E00},
                             {0x24D0, 0x24B6}, {0xA641, 0xA640}, {0xFF41, 0xFF21}};
    CasePairs lower;
    for (const auto& [character, form] : upper)
        if (form != 'I') lower.push_back({form, character});
    OpenHandle open{ConvmapBuilder{}.unicodeCase("UTF-8", "basic", upper, lower).build()};
    nlsCaseStruct* loaded = nullptr;
    ASSERT_EQ(getCaseStructPtr(open.handle, "utf-8", "Basic ", &loaded), NLS_OK);
    const auto& pages = nls::unicodeCaseTable(*loaded).casePages;
    for (uint32_t unit = 1; unit <= 0xFFFF; ++unit) {
        if (unit >= 0xD800 && unit <= 0xDFFF) continue;
        if (unit == 0xF600 || unit == 0xF601) continue;  // share their entries with U+A640 and U+A641
        uint32_t up = unit, low = unit;
        for (const auto& [character, form] : upper)
            if (character == unit && unit != 0xA641) up = form;
        for (const auto& [character, form] : lower)
            if (character == unit && unit != 0xA640) low = form;
        EXPECT_EQ(nls::caseFormOf(pages, number(unit), CaseForm::lower), number(low)) << std::hex << unit;
        EXPECT_EQ(nls::caseFormOf(pages, number(unit), CaseForm::upper), number(up)) << std::hex << unit;
    }
    // Broken text reads inside the pages; a caller sees a form or the number itself.
    for (const uint32_t first : {0x00U, 0xE1U, 0xE2U, 0xEFU})
        for (uint32_t low = 0; low <= 0xFFFF; ++low)
            for (const CaseForm form : {CaseForm::upper, CaseForm::lower})
                EXPECT_EQ(nls::caseFormOf(pages, first << 16 | low, form) >> 16, first);
    for (const uint32_t v : {0xE0A080U, 0xEA9980U, 0xEA9981U, 0xF0909080U, 0xFFFFFFFFU})
        EXPECT_EQ(nls::caseFormOf(pages, v, CaseForm::lower), v);
}

TEST(UnicodeCaseTable, EveryRoomThatIsTooSmallIsRefused) {
    const Bytes record = ConvmapBuilder::unicodeCaseRecord({{'a', 'A'}, {0xE9, 0xC9}}, {{0x1E00, 0x1E01}});
    constexpr uint32_t kNeeded = 512 + 256 + 256;
    for (uint32_t room = 0; room <= kNeeded + 1; ++room) {
        std::vector<unsigned char> exactly(room + 1);
        nlsUnicodeCaseStruct table;
        std::memset(static_cast<void*>(&table), 0x5A, sizeof table);
        const nlsUnicodeCaseStruct before = table;
        const nlsStatus status =
            computeUCCaseTableData(nullptr, record.data(), &table, exactly.data() + 1, room);  // an odd address
        if (room <= kNeeded) {
            EXPECT_EQ(status, NLS_BUF_SMALL) << room;
            EXPECT_EQ(std::memcmp(&table, &before, sizeof table), 0);
        } else {
            EXPECT_EQ(status, NLS_OK);
            EXPECT_EQ(table.caseBuildSize - 2056 - 258, kNeeded + 6);
        }
    }
}

TEST(CaseTable, IsReadOnceByItsKind) {
    ByteMap upper = nls::test::identityBytes(), lower = upper;
    upper['a'] = 'A';
    lower['A'] = 'a';
    ConvmapBuilder builder;
    builder.attributes("UTF-8", nls::test::utf8()).caseTable("LATIN", "basic", upper, lower);
    builder.caseTable("UTF-8", "bytes").unicodeCase("UTF-8", "basic", {{'a', 'A'}}, {});
    Bytes file = builder.build();
    for (const auto& field : builder.places())
        if (field.what.starts_with("LATIN") && field.what.ends_with("record size"))
            std::memcpy(file.data() + field.offset, " 98x", 4);
    OpenHandle open{file};
    nlsCaseStruct* table = nullptr;
    EXPECT_EQ(getCaseStructPtr(open.handle, "LATIN", "none", &table), NLS_NO_CASE_TABLE);
    EXPECT_EQ(getCaseStructPtr(open.handle, "UTF-8", "bytes", &table), NLS_NO_CASE_TABLE) << "its readers want pages";
    EXPECT_EQ(table, nullptr);

    ASSERT_EQ(getCaseStructPtr(open.handle, "LATIN", "basic", &table), NLS_OK);
    EXPECT_EQ(table->caseMapSize, 98);
    EXPECT_EQ(table->upperMap[unsigned{'a'}], 'A');
    EXPECT_EQ(table->lowerMap[unsigned{'A'}], 'a');
    EXPECT_EQ(table->upperMap[unsigned{'b'}], 0) << "behind the size";
    const uint32_t before = open.handle->freeBytes;
    const int reads = open.file.reads;
    nlsCaseStruct* again = nullptr;
    ASSERT_EQ(getCaseStructPtr(open.handle, "latin ", "BASIC", &again), NLS_OK);
    EXPECT_EQ(again, table);
    EXPECT_EQ(open.file.reads, reads);

    open.file.cutRead = reads;
    EXPECT_EQ(getCaseStructPtr(open.handle, "UTF-8", "basic", &table), NLS_READ_FAILED);
    EXPECT_EQ(open.handle->freeBytes, before) << "nothing is taken for a table that can't be read";
    ASSERT_EQ(getCaseStructPtr(open.handle, "UTF-8", "basic", &table), NLS_OK);
    EXPECT_EQ(before - open.handle->freeBytes, 8024U + 512U + 4U) << "and 4 bytes of alignment";
    EXPECT_EQ(getCaseStructPtr(nullptr, "UTF-8", "basic", &table), NLS_BAD_HANDLE);
}

}  // namespace
