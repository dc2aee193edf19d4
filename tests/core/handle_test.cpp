#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "nls/handle.h"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::Bytes;
using nls::test::MemoryFile;
using nls::test::OpenHandle;
using nls::test::smallWorld;

TEST(Handle, OpensFrom25000BytesOn) {
    MemoryFile file{smallWorld().build()};
    std::vector<uint64_t> block(25000 / 8, 0xA5A5A5A5A5A5A5A5);
    const std::vector<uint64_t> untouched = block;
    auto* const none = reinterpret_cast<nlsHandle*>(&file);
    for (const int32_t size : {24999, 0, -1, INT32_MIN}) {
        nlsHandle* handle = none;
        EXPECT_EQ(nlsInit(file.handle(), block.data(), size, MemoryFile::read, &handle), NLS_NO_MEM);
        EXPECT_EQ(handle, none);
        EXPECT_EQ(block, untouched);
    }
    EXPECT_EQ(file.reads, 0);

    nlsHandle* handle = none;
    ASSERT_EQ(nlsInit(file.handle(), block.data(), 25000, MemoryFile::read, &handle), NLS_OK);
    ASSERT_EQ(static_cast<void*>(handle), block.data());
    const auto* const bytes = reinterpret_cast<unsigned char*>(block.data());
    EXPECT_TRUE(handle->hdr.next == nullptr && handle->hdr.prev == nullptr && handle->chainHead == &handle->hdr);
    EXPECT_EQ(handle->hdr.serial, 1);
    EXPECT_EQ(handle->hdr.typeTag, NLS_TAG_HANDLE);
    EXPECT_EQ(handle->busy, 0U);
    EXPECT_EQ(handle->fileHandle, file.handle());
    EXPECT_EQ(handle->userSortOpen, 0U);
    EXPECT_EQ(reinterpret_cast<unsigned char*>(handle->bufferRec), bytes + sizeof(nlsHandle));
    EXPECT_EQ(handle->bufferRec->base, bytes);
    EXPECT_EQ(handle->bufferRec->prevBuffer, nullptr);
    EXPECT_EQ(handle->bufferRec->size, 25000);
    EXPECT_EQ(handle->freePtr + handle->freeBytes, bytes + 25000);
    for (const unsigned char* place = handle->freePtr; place < bytes + 25000; ++place) ASSERT_EQ(*place, 0);
}

TEST(Handle, LeavesTheOutArgumentAloneWhenTheFileIsRefused) {
    const Bytes good = smallWorld().build();
    const auto with = [&](std::size_t place, const char* text) {
        Bytes bytes = good;
        for (const char digit : std::string_view(text)) bytes[place++] = static_cast<unsigned char>(digit);
        return bytes;
    };
    const struct {
        const char* why;
        Bytes file;
        nlsStatus status;
        uint32_t version;  // 99: not read
    } rows[] = {
        {"header a byte short", {good.begin(), good.begin() + 15}, NLS_BAD_MAGIC, 99},
        {"an empty file", {}, NLS_BAD_MAGIC, 99},
        {"another magic", with(0, "4243"), NLS_BAD_MAGIC, 99},
        {"version 3", with(6, " 3"), NLS_BAD_VERSION, 3},
        {"version 6", with(6, "06"), NLS_BAD_VERSION, 6},
        {"a version below 0", with(6, "-4"), NLS_BAD_VERSION, 0xFFFFFFFC},
        {"more entries than the block holds", with(8, "999"), NLS_NO_MEM, 5},
        {"a count below 0", with(8, "-05"), NLS_NO_MEM, 5},
        {"the contents cut short", {good.begin(), good.begin() + 16 + 64 * 3 + 63}, NLS_BAD_TOC, 5},
        {"contents before the start", with(4, "-1"), NLS_BAD_TOC, 5},
        {"no data offset on an attribute table", with(16 + 40, "0000000"), NLS_BAD_TOC, 5},
    };
    for (const auto& row : rows) {
        putTempVers(99);
        OpenHandle open{row.file, 25000};
        EXPECT_EQ(open.status, row.status) << row.why;
        EXPECT_EQ(open.handle, nullptr) << row.why;
        EXPECT_EQ(nlsTemporaryVers, row.version) << row.why;
    }
    for (const uint32_t version : {4U, 5U}) {
        OpenHandle open{smallWorld().version(version).build()};
        EXPECT_EQ(open.status, NLS_OK);
        EXPECT_EQ(nlsTemporaryVers, version);
    }
}

TEST(Handle, TakesBuffersFrom76000BytesOn) {
    OpenHandle open{smallWorld().build(), 25000};
    nlsBufferRec* const first = open.handle->bufferRec;
    const uint32_t left = open.handle->freeBytes;
    std::vector<unsigned char> small(75999, 0xA5);
    for (const int32_t size : {75999, 30000, 0, -1}) {
        EXPECT_EQ(nlsAddBuffer(open.handle, small.data(), size), NLS_NO_MEM);
        EXPECT_EQ(open.handle->busy, 0U);
        EXPECT_EQ(open.handle->bufferRec, first);
        EXPECT_EQ(open.handle->freeBytes, left);
    }
    EXPECT_EQ(small, std::vector<unsigned char>(75999, 0xA5));
    EXPECT_NE(open.locale("LATIN"), nullptr) << "the old buffer serves on";

    const uint32_t idle = open.handle->freeBytes;
    std::vector<unsigned char> odd(76003, 0xA5);
    ASSERT_EQ(nlsAddBuffer(open.handle, odd.data() + 3, 76000), NLS_OK);
    const nlsBufferRec* const record = open.handle->bufferRec;
    EXPECT_EQ(first->leftover, idle);
    EXPECT_EQ(record->prevBuffer, first);
    EXPECT_EQ(record->base, odd.data() + 3);
    EXPECT_EQ(record->size, 76000);
    EXPECT_EQ(record->leftover, 0U);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(record) % 8, 0U);
    EXPECT_EQ(open.handle->freePtr + open.handle->freeBytes, odd.data() + 3 + 76000);
    EXPECT_NE(open.locale("SHIFT-JIS"), nullptr);
    void* memory = nullptr;
    const uint32_t rest = open.handle->freeBytes;
    ASSERT_EQ(nlsGetMem(open.handle, static_cast<int32_t>(rest), 1, &memory), NLS_OK);
    for (uint32_t i = 0; i < rest; ++i) ASSERT_EQ(static_cast<unsigned char*>(memory)[i], 0);
}

TEST(Handle, ClosedOnceAndForAll) {
    OpenHandle open{smallWorld().build()};
    nlsLocale* const locale = open.locale("LATIN");
    nlsConversion* const conversion = open.conversion("LATIN", "UTF-8");
    ASSERT_TRUE(locale != nullptr && conversion != nullptr);
    EXPECT_EQ(nlsClose(open.handle), NLS_OK);
    EXPECT_EQ(open.handle->busy, 0U);
    EXPECT_EQ(locale->hdr.typeTag, NLS_TAG_LOCALE) << "the objects stay as they are";

    nlsLocale* out = nullptr;
    nlsConversion* converted = nullptr;
    nlsAttribStruct* attrib = nullptr;
    nlsConvTable* table = nullptr;
    void* block = nullptr;
    uint32_t size = 0;
    unsigned char maps[480];
    const uint16_t units[256] = {};
    for (nlsHandle* const handle : {open.handle, static_cast<nlsHandle*>(nullptr)}) {
        const nlsStatus statuses[] = {nlsClose(handle),
                                      nlsAddBuffer(handle, nullptr, 0),
                                      nlsCreateLocale(handle, "LATIN", NLS_NO_COLLATION, nullptr, &out),
                                      getTOC(handle),
                                      nlsGetAttribStructPtr(handle, "LATIN", &attrib),
                                      nlsGetConvTablePtr(handle, "LATIN", "UTF-8", 0, &table),
                                      get2StepConvTablePtr(handle, "LATIN", "UTF-16", 0, &table),
                                      insertInverseStruct(handle, "LATIN", "UTF-8", maps, 0),
                                      readUCS2Data(handle, "SHIFT-JIS", "UTF-8", maps),
                                      getUCS2Data(handle, "SHIFT-JIS", "UTF-8", 17, &table),
                                      computeUtf8TableData(handle, "LATIN", "UTF-8", 19, units, &table),
                                      nlsCreateConversion(handle, locale, locale, &converted),
                                      nlsCloseDBLocale(handle == nullptr ? nullptr : locale, &block, &size)};
        for (std::size_t i = 0; i < std::size(statuses); ++i) EXPECT_EQ(statuses[i], NLS_BAD_HANDLE) << i;
    }
}

// A change of the handle from inside another one, by way of the read callback.
struct Reentry {
    nlsHandle* handle = nullptr;
    std::vector<nlsStatus> statuses;
    nlsLocale* known = nullptr;

    static void run(void* argument) {
        auto& self = *static_cast<Reentry*>(argument);
        if (self.handle == nullptr) return;
        std::vector<unsigned char> buffer(76000);
        nlsLocale* locale = nullptr;
        nlsConversion* conversion = nullptr;
        self.statuses = {nlsClose(self.handle), nlsAddBuffer(self.handle, buffer.data(), 76000),
                         nlsCreateLocale(self.handle, "CYRILLIC", NLS_NO_COLLATION, nullptr, &locale),
                         nlsCreateConversion(self.handle, self.known, self.known, &conversion)};
        // What exists is found all the same.
        self.statuses.push_back(nlsCreateLocale(self.handle, "LATIN", NLS_NO_COLLATION, nullptr, &locale));
        EXPECT_EQ(locale, self.known);
    }
};

TEST(Handle, RefusesChangesInsideAChange) {
    // While it is being opened a handle is known to nobody, but the callback may know the block.
    static std::vector<uint64_t> block(25000 / 8);
    MemoryFile file{smallWorld().build()};
    file.onRead = [](void*) { EXPECT_EQ(reinterpret_cast<nlsHandle*>(block.data())->busy, 1U); };
    nlsHandle* opened = nullptr;
    ASSERT_EQ(nlsInit(file.handle(), block.data(), 25000, MemoryFile::read, &opened), NLS_OK);
    EXPECT_EQ(opened->busy, 0U);

    OpenHandle open{smallWorld().build()};
    Reentry reentry;
    reentry.known = open.locale("LATIN");
    ASSERT_NE(reentry.known, nullptr);
    reentry.handle = open.handle;
    open.file.onRead = Reentry::run;
    open.file.onReadArgument = &reentry;
    EXPECT_NE(open.locale("SHIFT-JIS"), nullptr);
    EXPECT_EQ(reentry.statuses, (std::vector<nlsStatus>{NLS_BUSY, NLS_BUSY, NLS_BUSY, NLS_BUSY, NLS_OK}));
    reentry.statuses.clear();
    EXPECT_NE(open.conversion("LATIN", "UTF-8"), nullptr);
    EXPECT_EQ(reentry.statuses.size(), 5U);
    EXPECT_EQ(open.handle->busy, 0U);
    EXPECT_EQ(nlsClose(open.handle), NLS_OK);
}

TEST(Handle, NullPointersAreRefused) {
    OpenHandle open{smallWorld().build()};
    nlsLocale* const locale = open.locale("LATIN");
    std::vector<uint64_t> block(25000 / 8, 7);
    nlsHandle* handle = nullptr;
    nlsLocale* found = nullptr;
    nlsTlsBlock* tls = nullptr;
    void* memory = nullptr;
    uint32_t size = 48;
    const nlsStatus statuses[] = {nlsInit(0, nullptr, 25000, MemoryFile::read, &handle),
                                  nlsInit(0, block.data(), 25000, nullptr, &handle),
                                  nlsInit(0, block.data(), 25000, MemoryFile::read, nullptr),
                                  nlsAddBuffer(open.handle, nullptr, 76000),
                                  nlsGetMem(open.handle, 8, 8, nullptr),
                                  nlsTlsInit(0, block.data(), nullptr, &tls),
                                  nlsTlsInit(0, block.data(), &size, nullptr),
                                  nlsCreateLocale(open.handle, nullptr, nullptr, nullptr, &found),
                                  nlsCreateLocale(open.handle, "LATIN", nullptr, nullptr, nullptr),
                                  findLocale(nullptr, "LATIN", nullptr, nullptr, &found),
                                  nlsCreateConversion(open.handle, locale, locale, nullptr),
                                  findConversion(open.handle, locale, locale, nullptr),
                                  nlsCloseDBLocale(locale, nullptr, &size),
                                  nlsCloseDBLocale(locale, &memory, nullptr)};
    for (std::size_t i = 0; i < std::size(statuses); ++i) EXPECT_EQ(statuses[i], NLS_BAD_ARG) << i;
    EXPECT_EQ(nlsCreateConversion(nullptr, locale, locale, nullptr), NLS_BAD_HANDLE);
    EXPECT_EQ(block[0], 7U);
    EXPECT_EQ(open.handle->busy, 0U);
}

TEST(Handle, ContentsReadAgainReplaceTheOldOnSuccessAlone) {
    OpenHandle open{smallWorld().build()};
    nlsTocEntry* const old = open.handle->toc;
    open.file.cutRead = open.file.reads + 3;
    EXPECT_EQ(getTOC(open.handle), NLS_BAD_TOC);
    EXPECT_EQ(open.handle->toc, old);
    EXPECT_EQ(getTOC(open.handle), NLS_OK);
    EXPECT_NE(open.handle->toc, old);
    EXPECT_EQ(open.handle->tocCount, static_cast<int32_t>(smallWorld().entryCount()));
}

TEST(Handle, SwapLongTakesTheBytesInReverse) {
    const unsigned char bytes[] = {0, 0x12, 0x34, 0x56, 0x78};
    EXPECT_EQ(nlsSwapLong(bytes + 1), 0x12345678U);
}

}  // namespace
