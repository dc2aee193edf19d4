#include "core/word_break_table.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "nls/inner.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::Bytes;
using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;

constexpr uint32_t kClassOffset = 37;  // an odd address
constexpr uint32_t kLength = 256 + 62;

ConvmapBuilder world() {
    ConvmapBuilder builder;
    ConvmapBuilder::Attributes latin = nls::test::singleByte(), greek = latin, utf8 = nls::test::utf8();
    for (unsigned c = 'A'; c <= 'z'; ++c) latin.alpha[c] = utf8.alpha[c] = 1;
    latin.alpha['5'] = 1;
    for (unsigned c = 0xC0; c < 256; ++c) greek.alpha[c] = 1;
    ConvmapBuilder::Attributes euc = nls::test::doubleByte(NLS_CHARSET_MULTI_BYTE);
    euc.length[0x8E] = 0x09;
    euc.length[0x80] = 0x08;
    nls::test::ByteMap rot;
    for (unsigned c = 0; c < 256; ++c) rot[c] = static_cast<unsigned char>(c + 1);
    nls::test::ByteMap fold = nls::test::identityBytes();  // "UTF-8" is called "utf-8" by such a collation alone
    for (unsigned c = 'a'; c <= 'z'; ++c) fold[c] = static_cast<unsigned char>(c - 0x20);
    builder.attributes("LATIN", latin).attributes("GREEK", greek).attributes("UTF-8", utf8).attributes("EUC", euc);
    builder.byteMap("LATIN", "GREEK", rot).bare("EUC", "GREEK", 3).bare("GREEK", "UTF-8", 21);
    builder.bare("UTF-8", "GREEK", 22).bare("LATIN", "UTF-8", 21);
    for (const char* const charset : {"LATIN", "GREEK", "EUC", "UTF-8"})
        builder.collation(charset, "basic", 1, fold, fold);
    return builder;
}

Bytes databaseTable(unsigned char kind) {
    Bytes table(kLength);
    table[0] = kind;
    table[3] = 1;
    table[4] = kClassOffset;
    table[kClassOffset + '-'] = 44;
    table[kClassOffset + 'x'] = 45;
    return table;
}

// The same in one long walk over the rules.
Bytes completedPlainly(Bytes table, const nlsAttribStruct& own, const nlsAttribStruct* target, bool namedUtf8,
                       bool targetNamedUtf8, const unsigned char* byteMap) {
    const bool utf8 = (own.flags & NLS_CHARSET_UTF8) != 0;
    const bool several = (own.flags & NLS_CHARSET_MULTI_BYTE) != 0 && (utf8 || table[0] == 9);
    Bytes classes(256);
    for (unsigned c = 0; c < 256; ++c) {
        const bool letter = (table[0] <= 8 && target != nullptr && !utf8 ? *target : own).alphaMap[c] != 0;
        unsigned value = letter ? 2 : c >= 0x30 && c <= 0x39 ? 3 : 1;
        if (several && (own.lengthMap[c] & 7) != 0)
            value = 8U + (own.lengthMap[c] & 7);
        else if (several && (own.lengthMap[c] & 8) != 0)
            value = 11;
        if (table[kClassOffset + c] != 0) value = table[kClassOffset + c];
        classes[c] = static_cast<unsigned char>(value);
    }
    for (unsigned c = 0; c < 256; ++c) table[kClassOffset + c] = classes[c];
    unsigned flags = utf8 ? 2 : 0;
    if (target != nullptr && namedUtf8)
        flags |= 4;
    else if (target != nullptr && targetNamedUtf8)
        flags |= 8;
    else if (target != nullptr && table[0] == 9 && byteMap != nullptr)
        for (unsigned c = 0; c < 256; ++c) table[kClassOffset + byteMap[c]] = classes[c];
    table[6] = static_cast<unsigned char>(table[6] | flags);
    return table;
}

nlsLocale* localeOf(OpenHandle& open, const char* charset) {
    nlsLocale* locale = nullptr;
    EXPECT_EQ(nlsCreateLocale(open.handle, charset, "basic", nullptr, &locale), NLS_OK) << charset;
    return locale;
}

// A database locale of the same names, with its word-break table at `room`.
nlsLocale inBlock(const nlsLocale& model, void* room) {
    nlsLocale locale = model;
    locale.dbBlockSize = sizeof locale;
    locale.wordBreak = static_cast<nlsWbTable*>(room);
    return locale;
}

TEST(WordBreakTable, IsCompletedForEachCharsetKindAndTarget) {
    OpenHandle open{world().build()};
    const struct {
        const char* charset;
        const char* target;
    } rows[] = {{"LATIN", nullptr}, {"EUC", nullptr},   {"UTF-8", nullptr}, {"LATIN", "GREEK"},
                {"EUC", "GREEK"},   {"UTF-8", "GREEK"}, {"GREEK", "UTF-8"}, {"LATIN", "UTF-8"}};
    for (const auto& row : rows)
        for (const unsigned kind : {0U, 7U, 8U, 9U, 10U, 128U, 255U}) {
            nlsLocale* const target = row.target == nullptr ? nullptr : localeOf(open, row.target);
            const Bytes given = databaseTable(static_cast<unsigned char>(kind));
            std::vector<uint64_t> room(kLength / 8 + 1);
            nlsLocale locale = inBlock(*localeOf(open, row.charset), room.data());
            ASSERT_EQ(getWbTable(&locale, given.data(), kLength, target), NLS_OK) << row.charset;
            const auto* const got = reinterpret_cast<const unsigned char*>(room.data());
            nlsConversion* conversion = nullptr;
            if (target != nullptr) {
                ASSERT_EQ(findConversion(open.handle, &locale, target, &conversion), NLS_OK);
            }
            const bool byMap = target != nullptr && std::string(row.charset) == "LATIN" && target->attrib->flags == 1;
            const unsigned char* const map =
                byMap ? reinterpret_cast<const unsigned char*>(conversion->table) : nullptr;
            const Bytes want = completedPlainly(given, *locale.attrib, target == nullptr ? nullptr : target->attrib,
                                                std::string(row.charset) == "UTF-8",
                                                row.target != nullptr && std::string(row.target) == "UTF-8", map);
            for (uint32_t i = 0; i < kLength; ++i)
                ASSERT_EQ(got[i], want[i])
                    << row.charset << " " << kind << " at " << i << (row.target ? row.target : "");
        }
}

TEST(WordBreakTable, IsRefusedInTheOrderOfTheChecks) {
    OpenHandle open{world().build()};
    nlsLocale* const greek = localeOf(open, "GREEK");
    nlsLocale locale = inBlock(*greek, nullptr), bare = *greek;
    std::vector<uint64_t> room(kLength / 8 + 1, 0xA5A5A5A5A5A5A5A5);
    const std::vector<uint64_t> untouched = room;
    const Bytes given = databaseTable(9);
    EXPECT_EQ(getWbTable(nullptr, nullptr, kLength, nullptr), NLS_BAD_WB_TABLE);
    EXPECT_EQ(getWbTable(nullptr, given.data(), kLength, nullptr), NLS_BAD_ARG);
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, nullptr), NLS_BAD_ARG) << "no room";
    locale.wordBreak = reinterpret_cast<nlsWbTable*>(room.data());
    EXPECT_EQ(getWbTable(&locale, nullptr, kLength, greek), NLS_BAD_WB_TABLE);
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, localeOf(open, "LATIN")), NLS_NO_CONV_TABLE);
    bare.hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, &bare), NLS_BAD_LOCALE);
    bare.owner = nullptr;
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, &bare), NLS_BAD_HANDLE);
    EXPECT_EQ(room, untouched) << "nothing is copied before the conversion is there";
    locale.coll = nullptr;
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, nullptr), NLS_OK);
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, greek), NLS_BAD_COLLATION);
    locale.attrib = nullptr;
    EXPECT_EQ(getWbTable(&locale, given.data(), kLength, nullptr), NLS_NO_ATTRIB);
}

// Every length with every offset of the classes: what doesn't lie within the table is left alone.
TEST(WordBreakTable, NothingOutsideItIsTouched) {
    OpenHandle open{world().build()};
    nlsLocale* const target = localeOf(open, "GREEK");
    for (const uint32_t length : {0U, 1U, 5U, 7U, 8U, 255U, 256U, 263U, 264U, 318U})
        for (const unsigned offset : {0U, 1U, 6U, 7U, 8U, 62U, 63U, 255U, 0x8000U, 0xFFFFU}) {
            Bytes given(length, 0);
            if (length > 0) given[0] = 9;
            if (length > 5) {
                given[4] = static_cast<unsigned char>(offset);
                given[5] = static_cast<unsigned char>(offset >> 8);
            }
            Bytes room(length, 0x77);
            room.shrink_to_fit();  // the sanitizer sees its end
            unsigned char one = 0;
            nlsLocale locale = inBlock(*localeOf(open, "LATIN"), length == 0 ? &one : room.data());
            EXPECT_EQ(getWbTable(&locale, length == 0 ? &one : given.data(), length, target), NLS_OK);
            if (length < 8 || offset >= length) {
                EXPECT_EQ(room, given) << length << " " << offset;
            }
        }
}

}  // namespace
