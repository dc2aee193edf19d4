#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "convmap/toc.hpp"
#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::format::EntryType;
using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;
using nls::test::smallWorld;
namespace entry = nls::format::entry;

constexpr std::size_t kFirst = nls::format::header::kSize;

nls::Contents contentsOf(const OpenHandle& open) {
    return nls::Contents{{open.handle->toc, static_cast<std::size_t>(open.handle->tocCount)}};
}

// A file of one attribute table whose entry has `text` in a field.
Bytes oneEntry(nls::format::Field field, const std::string& text) {
    Bytes file = ConvmapBuilder{}.attributes("LATIN", nls::test::singleByte()).build();
    std::memcpy(file.data() + kFirst + field.offset, text.data(), field.width);
    return file;
}

TEST(Contents, FieldsAreReadAsTheFileWritesThem) {
    const struct {
        const char* why;
        nls::format::Field field;
        std::string text;
        nlsStatus status;
        uint32_t offset;
        uint16_t subKind, type;
        int16_t rawByte;
    } rows[] = {
        {"as built", entry::kSubKind, "0", NLS_OK, 80, 0, 2, 1},
        {"leading blanks", entry::kOffset, "     80", NLS_OK, 80, 0, 2, 1},
        {"a non-digit ends the number", entry::kOffset, "80x9999", NLS_OK, 80, 0, 2, 1},
        {"the largest offset", entry::kOffset, "9999999", NLS_OK, 9999999, 0, 2, 1},
        {"an offset below 0", entry::kOffset, "-000001", NLS_OK, 0xFFFFFFFF, 0, 2, 1},
        {"no digit at all", entry::kOffset, "abcdefg", NLS_BAD_TOC, 0, 0, 0, 0},
        {"sub-kind 9", entry::kSubKind, "9", NLS_OK, 80, 9, 2, 1},
        {"a sub-kind that is no digit", entry::kSubKind, "z", NLS_OK, 80, 0, 2, 1},
        {"a raw byte is taken by value", entry::kRawByte, "\xFF", NLS_OK, 80, 0, 2, 255},
        {"a type that is no digit", entry::kType, "?", NLS_OK, 80, 0, 0, 1},
    };
    for (const auto& row : rows) {
        OpenHandle open{oneEntry(row.field, row.text)};
        ASSERT_EQ(open.status, row.status) << row.why;
        if (row.status != NLS_OK) continue;
        const nlsTocEntry& read = open.handle->toc[0];
        EXPECT_EQ(read.offset, row.offset) << row.why;
        EXPECT_EQ(read.subKind, row.subKind) << row.why;
        EXPECT_EQ(read.rawByte, row.rawByte) << row.why;
        EXPECT_EQ(read.entryType, row.type) << row.why;
        EXPECT_EQ(read.data, nullptr) << row.why;
        EXPECT_STREQ(read.name1, "LATIN");
        EXPECT_EQ(contentsOf(open).find(EntryType::attributes, "latin") != nullptr, row.type == 2) << row.why;
    }
}

TEST(Contents, DataIsNeededByAllButConversions) {
    for (int type = 0; type <= 9; ++type) {
        Bytes file = oneEntry(entry::kType, std::to_string(type));
        std::memcpy(file.data() + kFirst + entry::kOffset.offset, "      0", entry::kOffset.width);
        EXPECT_EQ(OpenHandle{file}.status, type == 1 ? NLS_OK : NLS_BAD_TOC) << type;
    }
}

TEST(Contents, AnUnclosedNameMatchesNothing) {
    const std::string twenty = "ABCDEFGHIJKLMNOPQRST", nineteen = twenty.substr(0, 19);
    for (const bool first : {true, false})
        for (const EntryType type : {EntryType::conversion, EntryType::attributes, EntryType::caseTable}) {
            Bytes file = oneEntry(first ? entry::kName1 : entry::kName2, twenty);
            nls::format::putDecimal(nls::ByteSpan{file}.subspan(kFirst), entry::kType, static_cast<uint32_t>(type));
            OpenHandle open{file};
            ASSERT_EQ(open.status, NLS_OK) << "the other entries stay usable";
            const nlsTocEntry& read = open.handle->toc[0];
            EXPECT_EQ(first ? read.name1 : read.name2, nineteen);
            const char* const name1 = first ? nineteen.c_str() : "LATIN";
            if (type == EntryType::attributes) {
                EXPECT_EQ(contentsOf(open).find(type, name1) != nullptr, !first) << "its second name takes no part";
            } else {
                EXPECT_EQ(contentsOf(open).find(type, name1, first ? "" : nineteen.c_str()), nullptr);
            }
        }
}

TEST(Contents, TheFirstMatchCounts) {
    ConvmapBuilder builder;
    builder.bare("A", "B", 3).bare("a ", "b", 4).bare("A", "C", 21).attributes("A", nls::test::singleByte());
    OpenHandle open{builder.build()};
    const nls::Contents contents = contentsOf(open);
    nlsTocEntry* const toc = open.handle->toc;
    EXPECT_EQ(contents.find({"a", "B  "}), &toc[0]);
    EXPECT_EQ(contents.find({"A", "c"}), &toc[2]);
    EXPECT_EQ(contents.find({"B", "A"}), nullptr);
    EXPECT_EQ(contents.find(EntryType::attributes, "A"), &toc[3]);
    EXPECT_EQ(contents.find(EntryType::collation, "A", "B"), nullptr);
}

TEST(Contents, HoldFrom0To999Entries) {
    OpenHandle empty{ConvmapBuilder{}.build(), 25000};
    ASSERT_EQ(empty.status, NLS_OK);
    EXPECT_EQ(empty.handle->tocCount, 0);
    nlsAttribStruct* attrib = nullptr;
    EXPECT_EQ(nlsGetAttribStructPtr(empty.handle, "LATIN", &attrib), NLS_NO_ATTRIB_TABLE);

    ConvmapBuilder builder;
    for (int i = 0; i < 998; ++i) builder.bare("UTF-8", "N" + std::to_string(i), 21);
    builder.bare("N997", "UTF-16", 24);
    const Bytes file = builder.build();
    EXPECT_EQ(OpenHandle(file, 999 * 64).status, NLS_NO_MEM);
    OpenHandle open{file, 999 * 64 + 25000};
    ASSERT_EQ(open.status, NLS_OK);
    nlsConvTable* table = nullptr;
    EXPECT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "N997", 0, &table), NLS_OK);
    EXPECT_EQ(nlsGetConvTablePtr(open.handle, "UTF-8", "UTF-16", 0, &table), NLS_OK)
        << "the longest search for a route";
}

// Reads of the contents: one for the header and one for each entry, in order, and none of any data.
TEST(Contents, EachReadCutShortIsNoticed) {
    ConvmapBuilder builder = smallWorld();
    const Bytes file = builder.build();
    const auto reads = static_cast<int>(1 + builder.entryCount());
    for (int k = 0; k <= reads; ++k) {
        OpenHandle open{OpenHandle::kPlenty, file, k};
        EXPECT_EQ(open.status, k == 0 ? NLS_BAD_MAGIC : k < reads ? NLS_BAD_TOC : NLS_OK) << k;
        EXPECT_EQ(open.file.reads, std::min(k + 1, reads)) << k;
    }
}

}  // namespace
