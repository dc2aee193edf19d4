// Arenas that are too small, and reads that fail: whatever runs short, the call says so, nothing half-made is found
// later, and the same call succeeds once there is room or the file can be read.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/base/handle_block.hpp"
#include "nls/convert.h"
#include "nls/inner.h"
#include "nls/objects.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/everything.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::Everything;
using nls::test::OpenHandle;
using nls::test::smallWorld;

// Takes the arena down to `left` bytes, but for what an alignment costs.
void leave(OpenHandle& open, uint32_t left) {
    void* memory = nullptr;
    if (open.handle->freeBytes > left) {
        ASSERT_EQ(nlsGetMem(open.handle, static_cast<int32_t>(open.handle->freeBytes - left), 1, &memory), NLS_OK);
    }
}

struct Made {
    nlsStatus status = NLS_OK;
    nlsConversion* conversion = nullptr;
};
Made make(OpenHandle& open, const char* from, const char* to) {
    nlsLocale *source = nullptr, *target = nullptr;
    Made made;
    made.status = nlsCreateLocale(open.handle, from, NLS_NO_COLLATION, nullptr, &source);
    if (made.status == NLS_OK) made.status = nlsCreateLocale(open.handle, to, NLS_NO_COLLATION, nullptr, &target);
    if (made.status == NLS_OK) made.status = nlsCreateConversion(open.handle, source, target, &made.conversion);
    EXPECT_EQ(open.handle->busy, 0U);
    return made;
}

std::string converted(const nlsConversion* conversion, std::string source) {
    std::string target(4 * source.size(), '\0'), scratch(target);
    const auto bytes = [](std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); };
    uint32_t outLen = 0;
    const nlsStatus status = convertBytes(bytes(target), static_cast<int32_t>(target.size()), bytes(source),
                                          static_cast<int32_t>(source.size()), bytes(scratch),
                                          static_cast<int32_t>(scratch.size()), conversion->table, &outLen, 0);
    return std::to_string(status) + ":" + target.substr(0, outLen);
}

constexpr const char* kPairs[][2] = {{"LATIN", "UTF-8"},      {"UTF-8", "LATIN"},      {"CYRILLIC", "UTF-8"},
                                     {"SHIFT-JIS", "UTF-8"},  {"UTF-8", "SHIFT-JIS"},  {"SHIFT-JIS", "UTF-16"},
                                     {"UTF-16", "SHIFT-JIS"}, {"SHIFT-JIS", "EUCJIS"}, {"LATIN", "CYRILLIC"},
                                     {"LATIN", "UTF-16BE"},   {"EUCJIS", "UTF-8"},     {"UTF-8", "UTF-16BE"}};

TEST(Starvation, ABufferAndTheSameCallMakeUpForASmallArena) {
    const Bytes file = smallWorld().build();
    for (const auto& pair : kPairs) {
        OpenHandle plenty{file};
        const uint32_t before = plenty.handle->freeBytes;
        const Made full = make(plenty, pair[0], pair[1]);
        ASSERT_EQ(full.status, NLS_OK) << pair[0];
        const uint32_t needed = before - plenty.handle->freeBytes;
        const std::string text = "abc \x41\x42";
        const std::string want = converted(full.conversion, text);
        int starved = 0;
        for (uint32_t left = 0; left < needed + 8; left += left < 64 || left + 64 > needed ? 1 : 37) {
            OpenHandle open{file, 25000};
            leave(open, left);
            Made made = make(open, pair[0], pair[1]);
            if (made.status != NLS_OK) {
                ++starved;
                // 8: where a way of two steps or the opposite of a type 20 ran short.
                EXPECT_TRUE(made.status == NLS_NO_MEM || made.status == NLS_NO_CONV_TABLE) << made.status;
                EXPECT_EQ(made.conversion, nullptr);
                ASSERT_EQ(open.grow(), NLS_OK);
                made = make(open, pair[0], pair[1]);
            }
            ASSERT_EQ(made.status, NLS_OK) << pair[0] << " " << pair[1] << " with " << left << " of " << needed;
            ASSERT_EQ(converted(made.conversion, text), want) << pair[0] << " " << pair[1] << " with " << left;
        }
        EXPECT_GT(starved, 50) << pair[0];
    }
}

TEST(Starvation, CollationsAndCaseTablesAreMadeUpForToo) {
    const Bytes file = smallWorld().build();
    constexpr struct {
        const char *charset, *collation, *caseName;
        uint32_t tables;  // bytes
    } rows[] = {{"LATIN", "basic", "basic", 584 + 516},
                {"UTF-8", "basic", "basic", 584 + 8024 + 512 + 4 * 256},
                {"CYRILLIC", "basic", "", 2 * 584 + 264}};
    for (const auto& row : rows) {
        const uint32_t needed = sizeof(nlsLocale) + sizeof(nlsAttribStruct) + row.tables + 8;
        int starved = 0;
        for (uint32_t left = 0; left <= needed; left += left < 64 || left + 64 > needed ? 1 : 37) {
            OpenHandle open{file, 25000};
            leave(open, left);
            nlsLocale* locale = nullptr;
            nlsStatus status = nlsCreateLocale(open.handle, row.charset, row.collation, row.caseName, &locale);
            if (left == needed) {
                EXPECT_EQ(status, NLS_OK) << row.charset << ": these are all the bytes that it takes";
            }
            if (status != NLS_OK) {
                ++starved;
                // 10: where the source of a derivation ran short.
                EXPECT_TRUE(status == NLS_NO_MEM || (row.charset[0] == 'C' && status == NLS_NO_COLL_TABLE)) << status;
                ASSERT_EQ(open.grow(), NLS_OK);
                status = nlsCreateLocale(open.handle, row.charset, row.collation, row.caseName, &locale);
            }
            ASSERT_EQ(status, NLS_OK) << row.charset << " with " << left;
            EXPECT_NE(locale->coll, nullptr);
            EXPECT_EQ(locale->caseTable != nullptr, row.caseName[0] != 0);
        }
        EXPECT_GT(starved, 50) << row.charset;
    }
}

// Contents just around the room of a small block.
TEST(Starvation, TheContentsFitOrTheHandleIsNotOpened) {
    ConvmapBuilder builder;
    for (int i = 0; i < 400; ++i) builder.bare("A" + std::to_string(i), "B", 21);
    const Bytes file = builder.build();
    const int32_t fits = static_cast<int32_t>(sizeof(nls::HandleBlock) + 400 * sizeof(nlsTocEntry));
    for (int32_t size = fits - 70; size < fits + 70; ++size) {
        OpenHandle open{file, size};
        EXPECT_EQ(open.status, size < fits ? NLS_NO_MEM : NLS_OK) << size - fits;
    }
}

// Every read of a whole run once a byte short, once a byte long: the run goes on, and a second one finds all in order.
TEST(FailedReads, AnyOneOfThemIsMadeUpForLater) {
    const Bytes file = smallWorld().build();
    OpenHandle whole{file};
    Everything all{whole};
    all.make();
    const int reads = whole.file.reads;
    ASSERT_GT(reads, 30);
    int failures = 0;
    for (int k = static_cast<int>(smallWorld().entryCount()) + 1; k < reads; ++k)
        for (const bool tooLong : {false, true}) {
            OpenHandle open{file};
            (tooLong ? open.file.overRead : open.file.cutRead) = k;
            Everything broken{open};
            broken.make();
            failures += broken.notes[NLS_READ_FAILED] + broken.notes[NLS_NO_CONV_TABLE] > all.notes[NLS_NO_CONV_TABLE];
            EXPECT_EQ(open.handle->busy, 0U);
            for (const auto& pair : kPairs) EXPECT_EQ(make(open, pair[0], pair[1]).status, NLS_OK) << k << pair[0];
        }
    EXPECT_EQ(failures, 2 * (reads - static_cast<int>(smallWorld().entryCount()) - 1));
}

}  // namespace
