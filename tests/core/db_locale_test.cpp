// A database locale lives in a block of its caller's, who takes it back with nlsCloseDBLocale. Here it is laid out by
// hand, in memory that goes away, so that the sanitizer sees any later look into it.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "nls/convert.h"
#include "nls/handle.h"
#include "nls/inner.h"
#include "nls/objects.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::OpenHandle;
using nls::test::smallWorld;

constexpr uint32_t kBlockSize = 1000;

class DatabaseLocale {
public:
    DatabaseLocale(OpenHandle& open, const char* charset) : block_(new unsigned char[kBlockSize]()) {
        nlsLocale& made = *get();
        std::strcpy(made.charsetName, charset);
        std::strcpy(made.collationName, "stored");
        made.dbCollationName = block_.get() + sizeof(nlsLocale);
        made.dbBlockSize = kBlockSize;
        made.owner = open.handle;
        EXPECT_EQ(nlsGetAttribStructPtr(open.handle, charset, &made.attrib), NLS_OK);
        EXPECT_EQ(nlsLinkHdr(open.handle, &made.hdr), NLS_OK);
        made.hdr.typeTag = NLS_TAG_LOCALE;
    }
    nlsLocale* get() { return reinterpret_cast<nlsLocale*>(block_.get()); }

    void closeAndFree() {
        void* block = nullptr;
        uint32_t size = 0;
        EXPECT_EQ(nlsCloseDBLocale(get(), &block, &size), NLS_OK);
        EXPECT_EQ(block, block_.get());
        EXPECT_EQ(size, kBlockSize);
        EXPECT_EQ(nlsCloseDBLocale(get(), &block, &size), NLS_BAD_LOCALE) << "closed once and for all";
        std::memset(block_.get(), 0xA5, kBlockSize);
        block_.reset();
    }

private:
    std::unique_ptr<unsigned char[]> block_;
};

void expectConverts(nlsConversion* conversion) {
    ASSERT_NE(conversion, nullptr);
    char from[] = "\xC4\xE4", scratch[16], to[16] = {};
    nlsStr source = {reinterpret_cast<unsigned char*>(from), sizeof from, 2};
    nlsStr middle = {reinterpret_cast<unsigned char*>(scratch), sizeof scratch, 0};
    nlsStr target = {reinterpret_cast<unsigned char*>(to), sizeof to, 0};
    EXPECT_EQ(nlsConvertNLS(conversion, nullptr, &source, &middle, &target), NLS_OK);
    EXPECT_STREQ(to, "\xC3\x84\xC3\xA4");
}

TEST(DatabaseLocale, ConversionsOutliveIt) {
    OpenHandle open{smallWorld().build()};
    nlsLocale* const utf8 = open.locale("UTF-8");
    for (const bool asSource : {true, false}) {
        DatabaseLocale database{open, asSource ? "LATIN" : "CYRILLIC"};
        nlsConversion *forth = nullptr, *back = nullptr, *again = nullptr;
        ASSERT_EQ(nlsCreateConversion(open.handle, database.get(), utf8, &forth), NLS_OK);
        ASSERT_EQ(nlsCreateConversion(open.handle, utf8, database.get(), &back), NLS_OK);
        ASSERT_EQ(nlsCreateConversion(open.handle, database.get(), utf8, &again), NLS_OK);
        EXPECT_EQ(again, forth) << "it is found while its locale is open";
        EXPECT_EQ(forth->source->attrib, database.get()->attrib);
        EXPECT_EQ(back->target->attrib, database.get()->attrib);
        EXPECT_STREQ(forth->source->charsetName, database.get()->charsetName);
        database.closeAndFree();
        if (asSource) expectConverts(forth);
    }
    nlsLocale* const latin = open.locale("LATIN");
    ASSERT_NE(latin, nullptr) << "a walk down the chain meets both old conversions";
    nlsConversion* found = nullptr;
    ASSERT_EQ(findConversion(open.handle, latin, utf8, &found), NLS_OK);
    expectConverts(found);
    EXPECT_NE(open.conversion("UTF-8", "CYRILLIC"), nullptr);
}

TEST(DatabaseLocale, IsFoundLikeAnyOtherOnBothSidesOfOneConversion) {
    OpenHandle open{smallWorld().build()};
    DatabaseLocale database{open, "LATIN"};
    nlsLocale* found = nullptr;
    EXPECT_EQ(findLocale(open.handle, "latin", "STORED", nullptr, &found), NLS_OK);
    EXPECT_EQ(found, database.get());
    nlsConversion* same = nullptr;
    ASSERT_EQ(nlsCreateConversion(open.handle, found, found, &same), NLS_OK);
    EXPECT_EQ(same->table, nullptr);
    database.closeAndFree();
    EXPECT_EQ(findLocale(open.handle, "latin", "STORED", nullptr, &found), NLS_BAD_LOCALE);
    EXPECT_EQ(open.conversion("LATIN", "LATIN"), same);
}

TEST(DatabaseLocale, CloseRefusesWhatItIsNotFor) {
    OpenHandle open{smallWorld().build()};
    auto* const mark = static_cast<void*>(&open);
    void* block = mark;
    uint32_t size = 7;
    nlsLocale* const arena = open.locale("LATIN");
    EXPECT_EQ(nlsCloseDBLocale(arena, &block, &size), NLS_OK);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(open.locale("LATIN"), arena) << "it stays valid";

    DatabaseLocale database{open, "LATIN"};
    block = mark;
    size = 7;
    open.handle->busy = 1;
    EXPECT_EQ(nlsCloseDBLocale(database.get(), &block, &size), NLS_BUSY);
    open.handle->busy = 0;
    nlsLocale offChain = *database.get();
    EXPECT_EQ(nlsCloseDBLocale(&offChain, &block, &size), NLS_OK);
    EXPECT_EQ(block, mark);
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(offChain.hdr.typeTag, NLS_TAG_LOCALE);
    database.closeAndFree();
}

}  // namespace
