#include <gtest/gtest.h>

#include "nls/handle.h"
#include "nls/objects.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::OpenHandle;
using nls::test::smallWorld;

TEST(Conversion, IsSharedByTheNamesOfTheCharsets) {
    OpenHandle open{smallWorld().build()};
    nlsLocale* const latin = open.locale("LATIN");
    nlsLocale* const utf8 = open.locale("UTF-8");
    nlsLocale* another = nullptr;
    ASSERT_EQ(nlsCreateLocale(open.handle, "latin", "", nullptr, &another), NLS_OK);
    ASSERT_NE(another, latin);

    nlsConversion* first = nullptr;
    ASSERT_EQ(nlsCreateConversion(open.handle, latin, utf8, &first), NLS_OK);
    EXPECT_EQ(first->hdr.typeTag, NLS_TAG_CONVERSION);
    EXPECT_EQ(open.handle->chainHead, &first->hdr);
    EXPECT_EQ(first->source, latin);
    EXPECT_EQ(first->target, utf8);
    EXPECT_NE(first->table, nullptr);

    const int reads = open.file.reads;
    const uint32_t left = open.handle->freeBytes;
    open.handle->busy = 1;
    nlsConversion* second = nullptr;
    EXPECT_EQ(nlsCreateConversion(open.handle, another, utf8, &second), NLS_OK) << "a search doesn't mind busy";
    EXPECT_EQ(second, first);
    EXPECT_EQ(nlsCreateConversion(open.handle, utf8, another, &second), NLS_BUSY);
    open.handle->busy = 0;
    EXPECT_EQ(open.file.reads, reads);
    EXPECT_EQ(open.handle->freeBytes, left);

    nlsConversion* found = nullptr;
    EXPECT_EQ(findConversion(open.handle, utf8, latin, &found), NLS_BAD_CONVERSION);
    EXPECT_EQ(found, nullptr);
    ASSERT_EQ(nlsCreateConversion(open.handle, utf8, latin, &second), NLS_OK);
    EXPECT_EQ(open.file.reads, reads) << "the way back was made with the way forth";
    EXPECT_EQ(second->hdr.serial, first->hdr.serial + 1);
}

TEST(Conversion, ChecksTheHandlesAndLocalesInTheirOrder) {
    OpenHandle open{smallWorld().build()}, other{smallWorld().build()};
    nlsLocale* const good = open.locale("LATIN");
    nlsLocale* const behindClosed = other.locale("LATIN");
    nlsLocale noLocale = *good;
    noLocale.hdr.typeTag = NLS_TAG_CLOSED;
    nlsConversion* const conversion = open.conversion("LATIN", "UTF-8");
    auto* const notALocale =
        reinterpret_cast<nlsLocale*>(conversion);  // where a locale has its owner stands the source
    ASSERT_EQ(nlsClose(other.handle), NLS_OK);
    const struct {
        const char* why;
        nlsLocale* source;
        nlsLocale* target;
        nlsStatus status;
    } rows[] = {
        {"source null", nullptr, good, NLS_BAD_HANDLE},
        {"target null", good, nullptr, NLS_BAD_HANDLE},
        {"source behind a closed handle", behindClosed, &noLocale, NLS_BAD_HANDLE},
        {"source is no locale, target behind a closed handle", &noLocale, behindClosed, NLS_BAD_LOCALE},
        {"target behind a closed handle", good, behindClosed, NLS_BAD_HANDLE},
        {"target is no locale", good, &noLocale, NLS_BAD_LOCALE},
        {"source is a conversion", notALocale, good, NLS_BAD_HANDLE},
    };
    for (const auto& row : rows) {
        nlsConversion* out = nullptr;
        EXPECT_EQ(nlsCreateConversion(open.handle, row.source, row.target, &out), row.status) << row.why;
        EXPECT_EQ(out, nullptr) << row.why;
    }
}

TEST(Conversion, OfACharsetToItselfIsTheIdentityAndAFailureLinksNothing) {
    OpenHandle open{smallWorld().build()};
    nlsConversion* out = open.conversion("LATIN", "latin");
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(out->table, nullptr);
    nlsLocale *const latin = open.locale("LATIN"), *const euc = open.locale("EUCJIS");
    const nlsHdr* const head = open.handle->chainHead;
    out = nullptr;
    EXPECT_EQ(nlsCreateConversion(open.handle, latin, euc, &out), NLS_NO_CONV_TABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(open.handle->chainHead, head);
    EXPECT_EQ(open.handle->busy, 0U);
}

}  // namespace
