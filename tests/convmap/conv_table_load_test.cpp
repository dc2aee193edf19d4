#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "convmap/conv_table.hpp"
#include "nls/handle.h"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::ConvTable;
using nls::ConvType;
using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;
using nls::test::smallWorld;

auto* const kNothing = reinterpret_cast<nlsConvTable*>(8);  // what an out-argument holds that is left alone

struct Got {
    nlsStatus status;
    nlsConvTable* table = kNothing;

    int64_t typeWord() const { return nls::loadWord<int64_t>(reinterpret_cast<const char*>(table) - 8); }
};
Got get(OpenHandle& open, const char* from, const char* to, uint32_t options = 0) {
    Got got{};
    got.status = nlsGetConvTablePtr(open.handle, from, to, options, &got.table);
    if (got.status != NLS_OK) {
        EXPECT_EQ(got.table, kNothing);
    }
    return got;
}

TEST(ConvTableLoad, IdentityNeedsNoEntry) {
    OpenHandle open{smallWorld().build()};
    for (const auto& [from, to] :
         {std::pair{"LATIN", "latin  "}, {"nowhere", "NOWHERE"}, {"undefined", "nowhere"}, {"LATIN", "Undefined "}}) {
        const Got got = get(open, from, to);
        EXPECT_EQ(got.status, NLS_OK);
        EXPECT_EQ(got.table, nullptr);
    }
}

// The type word of each code; a code without one is refused. Three ways lead to the same: a record, a bare entry, and
// the entry's raw byte has no say where there is a record.
TEST(ConvTableLoad, EveryCodeHasItsTypeWordOrIsRefused) {
    const std::map<unsigned, int64_t> mapped = {
        {144, 0x097}, {145, 0x218}, {146, 0x117}, {147, 0x418}, {148, 0x099}, {149, 0x21A}, {150, 0x119}, {151, 0x41A},
        {152, 0x09B}, {153, 0x21C}, {154, 0x11B}, {155, 0x41C}, {156, 0x21B}, {157, 0x09C}, {158, 0x41B}, {159, 0x11C},
        {160, 0x29B}, {161, 0x29C}, {162, 0x49B}, {163, 0x31C}, {164, 0x31B}, {165, 0x49C}, {166, 0x51B}, {167, 0x51C}};
    for (unsigned code = 0; code < 65536; code += code < 300 ? 1 : 257) {
        const bool built = code == 17 || code == 18 || code == 50 || code == 81 || code == 89 || code == 19 ||
                           code == 51 || code == 20 || code == 29 || code == 30 || (code >= 168 && code <= 171);
        if (built) continue;  // by other tests
        const bool needsMore = code == 5 || code == 6 || code == 7;
        int64_t want = -1;
        if (code <= 128 && !needsMore) want = code;
        if (mapped.contains(code)) want = mapped.at(code);

        ConvmapBuilder builder;
        builder.record("A", "B", code, 0, {}, 99);
        if (code < 256) builder.bare("C", "D", static_cast<unsigned char>(code));
        OpenHandle open{builder.build()};
        const Got record = get(open, "A", "B");
        EXPECT_EQ(record.status, want < 0 ? NLS_NO_CONV_TABLE : NLS_OK) << code;
        if (want >= 0) {
            EXPECT_EQ(record.typeWord(), want) << code;
        }
        if (code >= 256) continue;
        const int reads = open.file.reads;
        const Got bare = get(open, "C", "D");
        EXPECT_EQ(bare.status, record.status) << code;
        if (want >= 0) {
            EXPECT_EQ(bare.typeWord(), want) << code;
        }
        EXPECT_EQ(open.file.reads, reads) << "a bare entry needs no read";
    }
}

TEST(ConvTableLoad, AByteMapHasItsBytesAndNeverFewer) {
    Bytes slot(512);
    for (std::size_t i = 0; i < slot.size(); ++i) slot[i] = static_cast<unsigned char>(i % 251 + 1);
    const struct {
        const char* size;
        uint32_t used;
    } rows[] = {{" 256", 256}, {" 200", 200}, {"   0", 0}, {"-100", 0}, {"junk", 0}, {" 512", 512}, {"9999", 512}};
    for (const auto& row : rows)
        for (const unsigned code : {1U, 21U, 0U, 128U}) {
            Bytes file = ConvmapBuilder{}.record("A", "B", code, 0, slot, 0).build();
            std::memcpy(file.data() + 80, row.size, 4);
            OpenHandle open{file};
            const uint32_t before = open.handle->freeBytes;
            const Got got = get(open, "A", "B");
            ASSERT_EQ(got.status, NLS_OK);
            const uint32_t bytes = code == 1 ? std::max(row.used, 256U) : row.used;
            EXPECT_GE(before - open.handle->freeBytes, 8 + bytes) << row.size;
            EXPECT_LE(before - open.handle->freeBytes, 8 + bytes + 7) << row.size;
            const auto* const block = reinterpret_cast<const unsigned char*>(got.table);
            for (uint32_t i = 0; i < bytes; ++i)
                ASSERT_EQ(block[i], i < row.used ? slot[i] : 0) << row.size << " " << i;
        }
    OpenHandle bare{ConvmapBuilder{}.bare("A", "B", 1).build()};
    const Got got = get(bare, "A", "B");
    ASSERT_EQ(got.status, NLS_OK);
    for (const unsigned char byte : ConvTable{got.table}.byteMap().map) ASSERT_EQ(byte, 0);
}

TEST(ConvTableLoad, TheOptionRefusesUnmarkedByteMaps) {
    OpenHandle open{smallWorld().build()};
    EXPECT_EQ(get(open, "LATIN", "CYRILLIC", 1).status, NLS_OK) << "marked";
    EXPECT_EQ(get(open, "CYRILLIC", "LATIN", 1).status, NLS_NO_CONV_TABLE) << "not marked";
    EXPECT_EQ(get(open, "CYRILLIC", "LATIN", 2).status, NLS_OK) << "bit 0 alone counts";
    EXPECT_EQ(get(open, "CYRILLIC", "LATIN", 1).status, NLS_NO_CONV_TABLE) << "also once it is loaded";
    EXPECT_EQ(get(open, "LATIN", "UTF-8", 1).status, NLS_OK) << "no byte map";
}

TEST(ConvTableLoad, ATableIsReadOnceAndItsInverseWithIt) {
    const char* const pairs[][2] = {{"LATIN", "UTF-8"},
                                    {"CYRILLIC", "UTF-8"},
                                    {"SHIFT-JIS", "UTF-8"},
                                    {"SHIFT-JIS", "UTF-16"},
                                    {"SHIFT-JIS", "EUCJIS"}};
    for (const bool reverseFirst : {false, true})
        for (const auto& pair : pairs) {
            OpenHandle open{smallWorld().build()};
            const Got first = reverseFirst ? get(open, pair[1], pair[0]) : get(open, pair[0], pair[1]);
            ASSERT_EQ(first.status, NLS_OK) << pair[0];
            const int reads = open.file.reads;
            const Got second = reverseFirst ? get(open, pair[0], pair[1]) : get(open, pair[1], pair[0]);
            EXPECT_EQ(second.status, NLS_OK);
            EXPECT_NE(second.table, first.table);
            EXPECT_EQ(open.file.reads, reads) << pair[0];
            EXPECT_EQ(get(open, pair[0], pair[1]).table, reverseFirst ? second.table : first.table);
        }
    OpenHandle open{smallWorld().build()};
    open.file.cutRead = open.file.reads;
    EXPECT_EQ(get(open, "LATIN", "CYRILLIC").status, NLS_READ_FAILED);
    EXPECT_EQ(get(open, "LATIN", "CYRILLIC").status, NLS_OK) << "a later call reads again";
}

TEST(ConvTableLoad, TwoStepsGoThroughAMiddleCharset) {
    OpenHandle open{smallWorld().build()};
    const Got got = get(open, "LATIN", "UTF-16");
    ASSERT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.typeWord(), 7);
    EXPECT_EQ(ConvTable{got.table}.firstStep().raw(), get(open, "LATIN", "UTF-8").table);
    EXPECT_EQ(ConvTable{got.table}.secondStep().raw(), get(open, "UTF-8", "UTF-16").table);
    EXPECT_EQ(reinterpret_cast<nlsConvTable* const*>(got.table)[2], nullptr);
    const auto* const record = reinterpret_cast<const char*>(got.table) - 48;
    EXPECT_STREQ(record, "LATIN");
    EXPECT_STREQ(record + 20, "UTF-16");
    EXPECT_NE(get(open, "LATIN", "UTF-16").table, got.table) << "it is kept by nobody but the conversion";
    EXPECT_EQ(get(open, "EUCJIS", "UTF-8").status, NLS_OK) << "by way of Shift-JIS";

    nlsConvTable* table = kNothing;
    EXPECT_EQ(get2StepConvTablePtr(open.handle, "LATIN", "UTF-16", 1, &table), 1);
    EXPECT_EQ(table, kNothing);
    EXPECT_EQ(get2StepConvTablePtr(open.handle, "LATIN", "UTF-16", 0, &table), NLS_OK);
    EXPECT_EQ(ConvTable{table}.type(), ConvType::twoStep);
    EXPECT_EQ(get2StepConvTablePtr(open.handle, "LATIN", "GREEK", 0, &table), 1);
    EXPECT_EQ(get2StepConvTablePtr(open.handle, "GREEK", "UTF-16", 0, &table), 1);
    EXPECT_EQ(get(open, "LATIN", "SHIFT-JIS").status, NLS_NO_CONV_TABLE) << "neither side is Unicode";

    // A middle that is the identity on one side.
    OpenHandle odd{ConvmapBuilder{}.bare("UTF-8", "undefined", 3).bare("UNDEFINED", "X", 4).build()};
    const Got copied = get(odd, "UTF-8", "X");
    ASSERT_EQ(copied.status, NLS_OK);
    EXPECT_TRUE(ConvTable{copied.table}.firstStep().isNull() && ConvTable{copied.table}.secondStep().isNull());
}

// Entries that lead back to themselves, and such whose table would be read as something that it isn't.
TEST(ConvTableLoad, UnsoundEntriesAreRefused) {
    const auto dbcs = [](unsigned char raw) {
        ConvmapBuilder builder;
        builder.attributes("SHIFT-JIS", nls::test::doubleByte(2));
        return builder.maps("SHIFT-JIS", "UTF-8", 17, nls::test::smallMaps()).bare("UTF-8", "SHIFT-JIS", raw);
    };
    struct Row {
        const char* why;
        ConvmapBuilder builder;
        const char *from, *to;
    } rows[] = {
        {"two opposite entries of type 20", ConvmapBuilder{}.bare("A", "B", 20).bare("B", "A", 20), "A", "B"},
        {"type 29 to UTF-8 itself", ConvmapBuilder{}.bare("A", "UTF-8", 29).bare("UTF-8", "A", 18), "A", "UTF-8"},
        {"type 30 from UTF-8 itself", ConvmapBuilder{}.bare("UTF-8", "A", 30), "UTF-8", "A"},
        {"type 29 from UTF-8: its bridge is the identity", ConvmapBuilder{}.bare("UTF-8", "A", 29), "UTF-8", "A"},
        {"type 20 whose opposite is a type 29 to UTF-8", ConvmapBuilder{}.bare("UTF-8", "A", 20).bare("A", "UTF-8", 29),
         "UTF-8", "A"},
        {"type 29 whose bridge is a route through itself",
         ConvmapBuilder{}.bare("A", "UTF-16", 29).bare("UTF-16", "UTF-8", 23), "A", "UTF-16"},
        {"type 29 whose bridge is a single-byte one", smallWorld().bare("LATIN", "UTF-16", 29), "LATIN", "UTF-16"},
        {"type 30 whose bridge is a single-byte one", smallWorld().bare("UTF-16", "LATIN", 30), "UTF-16", "LATIN"},
        {"type 30 whose bridge has no block", ConvmapBuilder{}.bare("UTF-16", "A", 30).bare("UTF-8", "A", 21), "UTF-16",
         "A"},
        {"type 29 without a bridge", ConvmapBuilder{}.bare("A", "UTF-16", 29), "A", "UTF-16"},
        {"two steps as a record", ConvmapBuilder{}.record("A", "B", 7, 512, Bytes(512, 0x11), 7), "A", "B"},
        {"maps without data",
         ConvmapBuilder{}.bare("A", "UTF-8", 17).bare("UTF-8", "A", 18).attributes("A", nls::test::singleByte()), "A",
         "UTF-8"},
        {"units without data", ConvmapBuilder{}.bare("A", "UTF-8", 19).bare("UTF-8", "A", 20), "A", "UTF-8"},
        {"both directions of type 18, neither with data",
         ConvmapBuilder{}.bare("A", "UTF-8", 18).bare("UTF-8", "A", 18), "UTF-8", "A"},
        {"an inverse whose raw byte is two steps", dbcs(7), "SHIFT-JIS", "UTF-8"},
        {"an inverse whose raw byte is a type 29", dbcs(29), "SHIFT-JIS", "UTF-8"},
        {"an inverse whose raw byte is words of a single-byte charset", dbcs(19), "SHIFT-JIS", "UTF-8"},
    };
    for (Row& row : rows) {
        OpenHandle open{row.builder.build()};
        EXPECT_EQ(get(open, row.from, row.to).status, NLS_NO_CONV_TABLE) << row.why;
    }
    OpenHandle nothingInstalled{ConvmapBuilder{}.bare("A", "B", 20).bare("B", "A", 3).build()};
    const Got got = get(nothingInstalled, "A", "B");
    EXPECT_EQ(got.status, NLS_OK);
    EXPECT_EQ(got.table, nullptr) << "an opposite that installs nothing leaves the identity";
}

// A chain of types 29 and 30 over routes, each link sound and the whole without an end in reach.
TEST(ConvTableLoad, LongWaysEnd) {
    ConvmapBuilder builder;
    for (int i = 0; i < 300; ++i) {
        const std::string a = "A" + std::to_string(i), b = "B" + std::to_string(i), next = "A" + std::to_string(i + 1);
        builder.bare(a, b, 30).bare(b, "UTF-8", 3);
        builder.bare("UTF-8", next, 3).bare(next, b, 29);
    }
    OpenHandle open{builder.build()};
    ASSERT_TRUE(open.isOpen());
    EXPECT_EQ(get(open, "A0", "UTF-8").status, NLS_NO_CONV_TABLE);
}

}  // namespace
