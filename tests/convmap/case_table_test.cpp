#include "convmap/case_table_load.hpp"

#include <gtest/gtest.h>

#include <cstring>
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

// The bytes of a UCS-2 character in UTF-8 as one number.
uint32_t number(uint32_t unit) {
    if (unit < 0x80) return unit;
    if (unit < 0x800) return (0xC0 + unit / 64) * 256 + 0x80 + unit % 64;
    return ((0xE0 + unit / 4096) * 256 + 0x80 + unit / 64 % 64) * 256 + 0x80 + unit % 64;
}

// Each character that has a place of its own, with its neighbour for a form, in lists as full as they get: the last
// pair leaves no room for the end. What a language's table gives for every character: tests/real.
TEST(UnicodeCaseTable, AnswersEveryPair) {
    std::vector<unsigned char> block(1 << 20);
    for (const auto& [first, last] : {std::pair{2U, 0x7FFU}, {0x1000U, 0x2FFFU}, {0xF000U, 0xFFFFU}})
        for (uint32_t start = first; start <= last; start += 744) {
            CasePairs upper;
            for (uint32_t c = start; c < start + 744 && c <= last; ++c)
                upper.push_back({static_cast<uint16_t>(c), static_cast<uint16_t>(c ^ 1U)});
            const CasePairs lower = start % 3 == 0 ? CasePairs{} : upper;
            const Bytes record = ConvmapBuilder::unicodeCaseRecord(upper, lower);
            nlsUnicodeCaseStruct table;
            std::ranges::fill(block, static_cast<unsigned char>(0xA5));
            ASSERT_EQ(computeUCCaseTableData(nullptr, record.data(), &table, block.data() + start % 2, 1 << 19),
                      NLS_OK);
            EXPECT_EQ(std::memcmp(table.caseRaw, record.data(), record.size()), 0);
            std::memset(table.casePages, 0, sizeof table.casePages);  // and from the record in the table itself
            ASSERT_EQ(computeUCCaseTableData(nullptr, table.caseRaw, &table, block.data(), 1 << 20), NLS_OK);
            for (uint32_t c = first; c <= last; ++c) {
                const bool isListed = c >= start && c < start + 744;
                const uint32_t form = number(isListed ? c ^ 1U : c);
                ASSERT_EQ(nls::caseFormOf(table.casePages, number(c), CaseForm::upper), form) << c;
                ASSERT_EQ(nls::caseFormOf(table.casePages, number(c), CaseForm::lower),
                          lower.empty() ? number(c) : form);
            }
        }
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
