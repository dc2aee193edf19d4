#include "convmap/coll_table_load.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "convmap/coll_derive.hpp"
#include "nls/inner.h"
#include "nls/usersort.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::ByteMap;
using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::identityBytes;
using nls::test::OpenHandle;

std::vector<std::string> opened;  // the names that the site's own sort below was opened for
nlsStatus siteAnswers = NLS_OK;

}  // namespace

// This program brings a sort of its own.
int32_t UserSortInit(const char* name, uint64_t* userSortHandle) {
    opened.emplace_back(name);
    *userSortHandle = 77;
    return siteAnswers;
}
void UserSortCopy(unsigned char*, const unsigned char*, int32_t, const unsigned char*, const unsigned char*, uint16_t,
                  uint64_t) {}
int32_t UserSortComp(const unsigned char*, const unsigned char*, const unsigned char*, const unsigned char*, uint16_t,
                     uint64_t) {
    return 0;
}
void UserSortTerm(uint64_t) {}

namespace {

ByteMap weights(unsigned factor) {
    ByteMap map;
    for (unsigned c = 0; c < 256; ++c) map[c] = static_cast<unsigned char>(c * factor + 3);
    return map;
}
ByteMap mapOf(const unsigned char (&map)[256]) {
    ByteMap copy;
    std::ranges::copy(map, copy.begin());
    return copy;
}

struct Got {
    nlsStatus status = NLS_OK;
    nlsCollStruct* coll = nullptr;
};
Got get(OpenHandle& open, const char* charset, const char* name, int32_t flags = 0) {
    nlsAttribStruct attrib = {};
    attrib.flags = flags;
    Got got;
    got.status = nlsGetCollStructPtr(open.handle, &attrib, charset, name, &got.coll);
    EXPECT_EQ(got.coll == nullptr, got.status != NLS_OK);
    return got;
}

TEST(Collation, IsReadOnceAndLinkedToTheOneBefore) {
    ConvmapBuilder builder;
    builder.collation("LATIN", "first", 1, weights(5), weights(7), 9).collation("LATIN", "second", 4);
    Bytes file = builder.build();
    for (const auto& field : builder.places())
        if (field.what == "LATIN>first collation record size") std::memcpy(file.data() + field.offset, "0200", 4);
    OpenHandle open{file};
    const nlsCollStruct* const first = get(open, "latin ", "First").coll;
    for (unsigned c = 0; c < 256; ++c) {
        EXPECT_EQ(first->exactMap[c], c < 200 ? weights(5)[c] : 0) << c;
        EXPECT_EQ(first->foldMap[c], c < 200 ? weights(7)[c] : 0) << c;
    }
    EXPECT_EQ(first->collMapSize, 200U);
    EXPECT_EQ(first->collSubKind, 9U);
    EXPECT_STREQ(first->collCharset, "latin ");
    EXPECT_STREQ(first->collName, "First");
    EXPECT_EQ(first->nextColl, nullptr);
    const nlsCollStruct* const second = get(open, "LATIN", "second").coll;
    const int reads = open.file.reads;
    EXPECT_EQ(get(open, "LATIN", "first").coll, first);
    EXPECT_EQ(open.file.reads, reads);
    EXPECT_EQ(second->nextColl, first);
    OpenHandle other{file};
    EXPECT_EQ(get(other, "LATIN", "second").coll->nextColl, nullptr) << "each handle has a list of its own";
}

TEST(Collation, EachKindIsAcceptedOrRefused) {
    ByteMap mark = {}, noNul = {}, otherCase = {};
    std::memcpy(mark.data(), "BASIC", 6);
    std::memcpy(noNul.data(), "BASICS", 6);
    std::memcpy(otherCase.data(), "Basic", 6);
    const struct {
        const char* why;
        unsigned char kind;
        ByteMap exact, fold;
        nlsStatus want;
    } rows[] = {
        {"bytes", 1, mark, mark, NLS_OK},
        {"Thai", 4, mark, mark, NLS_OK},
        {"a kind that nobody knows", 200, mark, mark, NLS_OK},
        {"code points", 3, mark, mark, NLS_OK},
        {"the first mark", 3, noNul, mark, NLS_BAD_COLLATION},
        {"the second mark", 3, mark, otherCase, NLS_BAD_COLLATION},
        {"ICU's are not made of records", 5, mark, mark, NLS_BAD_COLLATION},
        {"a site that refuses", 2, mark, mark, NLS_BAD_COLLATION},
    };
    siteAnswers = NLS_NO_USER_SORT;
    for (const auto& row : rows) {
        OpenHandle open{ConvmapBuilder{}.collation("A", "x", row.kind, row.exact, row.fold).build()};
        const uint32_t before = open.handle->freeBytes;
        const Got got = get(open, "A", "x");
        EXPECT_EQ(got.status, row.want) << row.why;
        EXPECT_EQ(before - open.handle->freeBytes, row.want == NLS_OK ? 584U : 0U) << row.why;
        if (got.coll != nullptr) {
            EXPECT_EQ(got.coll->collKind, row.kind) << row.why;
        }
    }
}

TEST(Collation, TheSitesSortOpensOnceForAHandle) {
    siteAnswers = NLS_OK;
    opened.clear();
    OpenHandle open{ConvmapBuilder{}.collation("A", "x", 2).collation("A", "y", 2).build()};
    EXPECT_NE(get(open, "A", "y").coll, nullptr);
    EXPECT_NE(get(open, "A", "x").coll, nullptr);
    EXPECT_EQ(opened, std::vector<std::string>{"y"});
    EXPECT_EQ(open.handle->userSortHandle, 77U);
    EXPECT_EQ(open.handle->userSortOpen, 1U);
}

// ROT sends byte c to c + 1, FEW sends all of 80 and on to 3F.
ConvmapBuilder withMaps() {
    ByteMap rot = identityBytes(), few = identityBytes();
    for (unsigned c = 0; c < 256; ++c) {
        rot[c] = static_cast<unsigned char>(c + 1);
        if (c >= 0x80) few[c] = 0x3F;
    }
    ConvmapBuilder builder;
    builder.collation("OTHER", "basic", 1, weights(9)).collation("LATIN", "Basic", 1, weights(5), weights(7), 6);
    builder.collation("FAR", "far", 1, weights(5)).collation("LATIN", "closed", 2).collation("U", "wide");
    builder.bare("FAR", "ROT", 3).byteMap("FAR", "ROT", rot);
    builder.bare("LATIN", "ROT", 1).byteMap("LATIN", "FEW", few).byteMap("UNDEFINED", "ROT", rot);
    builder.collation("UNDEFINED", "same", 1, weights(5));
    return builder;
}

ByteMap movedPlainly(const ByteMap& source, const ByteMap& targets) {
    ByteMap moved = source;
    for (unsigned c = 0; c < 256; ++c) moved[targets[c]] = source[c];
    return moved;
}

TEST(DerivedCollation, HasTheWeightsOfItsSourceWhereTheBytesWent) {
    ByteMap few = identityBytes();
    for (unsigned c = 0x80; c < 256; ++c) few[c] = 0x3F;
    OpenHandle open{withMaps().build()};
    const nlsCollStruct* const first = get(open, "few", "basic", NLS_CHARSET_SINGLE_BYTE).coll;
    EXPECT_EQ(mapOf(first->exactMap), movedPlainly(weights(5), few));
    EXPECT_EQ(mapOf(first->foldMap), movedPlainly(weights(7), few));
    EXPECT_EQ(first->collSubKind, 6U);
    EXPECT_STREQ(first->collCharset, "few");
    const nlsCollStruct* const source = get(open, "LATIN", "basic").coll;
    EXPECT_EQ(mapOf(source->exactMap), weights(5)) << "the source stays as it was";
    EXPECT_EQ(first->nextColl, source);
    const nlsCollStruct* const second = get(open, "FEW", "basic", NLS_CHARSET_SINGLE_BYTE).coll;
    EXPECT_EQ(second->nextColl, first) << "made anew";
    nlsCollStruct* byHand = nullptr;
    ASSERT_EQ(convCollTable(open.handle, "FEW", "basic", &byHand), NLS_OK);
    EXPECT_EQ(byHand->nextColl, nullptr) << "not on the list";
    EXPECT_EQ(get(open, "OTHER", "basic").coll->nextColl, second);
}

TEST(DerivedCollation, IsRefusedOrLeftInTheOrderOfTheSource) {
    siteAnswers = NLS_NO_USER_SORT;
    const struct {
        const char* why;
        const char* charset;
        const char* name;
        int32_t flags;
        nlsStatus want;
    } rows[] = {
        {"a charset of several bytes", "FEW", "basic", NLS_CHARSET_MULTI_BYTE, NLS_NO_COLL_TABLE},
        {"no such collation anywhere", "FEW", "klingon", NLS_CHARSET_SINGLE_BYTE, NLS_NO_COLL_TABLE},
        {"no map from a charset that has it", "FEW", "far", NLS_CHARSET_SINGLE_BYTE, NLS_NO_COLL_TABLE},
        {"the source can't be opened", "FEW", "closed", NLS_CHARSET_SINGLE_BYTE, NLS_NO_COLL_TABLE},
        {"ICU's names are none of the file's", "FEW", "ICU-basic", NLS_CHARSET_SINGLE_BYTE, NLS_NO_MEM},
        {"the pair's first entry counts, whatever it is", "ROT", "far", NLS_CHARSET_SINGLE_BYTE, NLS_OK},
        {"a pair that converts as the identity", "ROT", "same", NLS_CHARSET_SINGLE_BYTE, NLS_OK},
    };
    for (const auto& row : rows) {
        OpenHandle open{withMaps().build()};
        const Got got = get(open, row.charset, row.name, row.flags);
        EXPECT_EQ(got.status, row.want) << row.why;
        if (got.coll != nullptr) {
            EXPECT_EQ(mapOf(got.coll->exactMap), weights(5)) << row.why;
        }
    }
}

TEST(Collation, NamesOfIcuNeverReachTheContents) {
    ConvmapBuilder builder;
    for (const char* const name : {"ICU-x", "ICU_x", "icu-x", "ICUx", "ICU"}) builder.collation("A", name);
    OpenHandle open{builder.build()};
    EXPECT_EQ(get(open, "A", "ICU-x").status, NLS_NO_MEM);
    EXPECT_EQ(get(open, "A", "ICU_x").status, NLS_NO_COLL_TABLE);
    for (const char* const name : {"icu-x", "ICUx", "ICU"}) EXPECT_EQ(get(open, "A", name).status, NLS_OK) << name;
}

// The tables of the source, the derived one, and the map: 584 bytes, 584, 264.
TEST(DerivedCollation, RunsShortAtEachOfItsSteps) {
    constexpr std::array<std::pair<uint32_t, nlsStatus>, 4> kRows = {
        {{583, NLS_NO_COLL_TABLE}, {1167, NLS_NO_MEM}, {1431, NLS_NO_COLL_TABLE}, {1432, NLS_OK}}};
    for (const auto& [left, want] : kRows) {
        OpenHandle open{withMaps().build()};
        void* memory = nullptr;
        ASSERT_EQ(nlsGetMem(open.handle, static_cast<int32_t>(open.handle->freeBytes - left), 1, &memory), NLS_OK);
        EXPECT_EQ(get(open, "FEW", "basic", NLS_CHARSET_SINGLE_BYTE).status, want) << left;
    }
}

TEST(MovedWeights, OnlyByMapsOfBytes) {
    utMungeCollation(nullptr, nullptr);
    ByteMap map = weights(5);
    utMungeCollation(map.data(), nullptr);
    for (const int64_t type : {2, 3, 4, 7, 17, 19, 20, 23, 51}) {
        const int64_t block[4] = {type, 0, 0, 0};
        utMungeCollation(map.data(), reinterpret_cast<const nlsConvTable*>(block + 1));
        EXPECT_EQ(map, weights(5)) << type;
    }
}

}  // namespace
