#include <gtest/gtest.h>

#include <cstring>

#include "core/base/views.hpp"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;

TEST(InverseTable, IsACopyBehindTheRawByte) {
    OpenHandle open{ConvmapBuilder{}.bare("A", "B", 200).build()};
    unsigned char body[300];
    for (unsigned i = 0; i < sizeof body; ++i) body[i] = static_cast<unsigned char>(i * 7);
    const uint32_t before = open.handle->freeBytes;
    ASSERT_EQ(insertInverseStruct(open.handle, "a", "b ", body, sizeof body), NLS_OK);
    EXPECT_EQ(before - open.handle->freeBytes, 308U);
    const auto* const first = static_cast<const unsigned char*>(open.handle->toc[0].data);
    EXPECT_EQ(nls::loadWord<int64_t>(first - 8), 200);
    EXPECT_EQ(std::memcmp(first, body, sizeof body), 0);

    ASSERT_EQ(insertInverseStruct(open.handle, "A", "B", body, 0), NLS_OK);
    EXPECT_NE(open.handle->toc[0].data, first) << "a later one takes the place of an earlier one";
    EXPECT_EQ(insertInverseStruct(open.handle, "B", "A", body, 4), NLS_NO_CONV_TABLE);
    for (const uint32_t length : {open.handle->freeBytes, 0x7FFFFFFFU, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
        void* const kept = open.handle->toc[0].data;
        EXPECT_EQ(insertInverseStruct(open.handle, "A", "B", body, length), NLS_NO_MEM);
        EXPECT_EQ(open.handle->toc[0].data, kept);
    }
}

}  // namespace
