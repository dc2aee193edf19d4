#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;

ConvmapBuilder::Attributes randomMaps(unsigned char flags) {
    std::mt19937 random{flags};
    ConvmapBuilder::Attributes content;
    content.flags = flags;
    for (auto* const map : {&content.alpha, &content.length, &content.trail})
        for (unsigned char& byte : *map) byte = static_cast<unsigned char>(1 + random() % 255);
    return content;
}

TEST(AttribTable, FillsEachMapUpToItsSize) {
    const ConvmapBuilder::Attributes content = randomMaps(0xFF);
    ConvmapBuilder builder;
    Bytes file = builder.attributes("LATIN", content).build();
    const struct {
        const char* size;
        uint32_t filled;
    } rows[] = {{" 256", 256}, {"0255", 255}, {"   1", 1}, {"0000", 0}, {"0257", 256},
                {"9999", 256}, {"-005", 0},   {"-999", 0}, {"size", 0}, {"12 4", 12}};
    for (const auto& row : rows) {
        std::memcpy(file.data() + 80, row.size, 4);
        OpenHandle open{file};
        nlsAttribStruct* attrib = nullptr;
        ASSERT_EQ(nlsGetAttribStructPtr(open.handle, "latin", &attrib), NLS_OK);
        EXPECT_EQ(attrib->mapSize, row.filled) << row.size;
        EXPECT_EQ(attrib->flags, 0xFF);
        for (unsigned i = 0; i < 256; ++i) {
            ASSERT_EQ(attrib->alphaMap[i], i < row.filled ? content.alpha[i] : 0) << row.size << " at " << i;
            ASSERT_EQ(attrib->lengthMap[i], i < row.filled ? content.length[i] : 0) << row.size << " at " << i;
            ASSERT_EQ(attrib->trailMap[i], i < row.filled ? content.trail[i] : 0) << row.size << " at " << i;
        }
        EXPECT_EQ(attrib->sjisAttrib, nullptr);
        EXPECT_EQ(attrib->sjisConversion, nullptr);
    }
}

TEST(AttribTable, TheEuroMarkGoesByTheName) {
    ConvmapBuilder builder;
    builder.attributes("CP936", randomMaps(2)).attributes("CP9361", randomMaps(2)).attributes("CP93", randomMaps(2));
    const Bytes file = builder.build();
    const struct {
        const char* name;
        int32_t flags;
    } rows[] = {{"CP936", 0x8002}, {"cp936  ", 0x8002}, {"CP9361", 2}, {"cp93", 2}};
    for (const auto& row : rows) {
        OpenHandle open{file};
        nlsAttribStruct* attrib = nullptr;
        ASSERT_EQ(nlsGetAttribStructPtr(open.handle, row.name, &attrib), NLS_OK);
        EXPECT_EQ(attrib->flags, row.flags) << row.name;
    }
}

TEST(AttribTable, IsReadOnceAndInFull) {
    const Bytes file = ConvmapBuilder{}.attributes("LATIN", randomMaps(1)).build();
    OpenHandle open{file}, cut{Bytes(file.begin(), file.end() - 1)};  // without a byte that nobody looks at
    nlsAttribStruct *first = nullptr, *second = nullptr;
    EXPECT_EQ(nlsGetAttribStructPtr(open.handle, "LATIN", &first), NLS_OK);
    const int reads = open.file.reads;
    EXPECT_EQ(nlsGetAttribStructPtr(open.handle, "latin ", &second), NLS_OK);
    EXPECT_EQ(first, second);
    EXPECT_EQ(open.file.reads, reads);
    EXPECT_EQ(nlsGetAttribStructPtr(cut.handle, "LATIN", &first), NLS_READ_FAILED);
    EXPECT_EQ(nlsGetAttribStructPtr(cut.handle, "GREEK", &first), NLS_NO_ATTRIB_TABLE);
}

}  // namespace
