// The six queries on files made for them: which numbers each knows, what the numbers say, and the edges of the lists.
#include "nls/properties.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "nls/convert.h"
#include "nls/icu.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::test::ConvmapBuilder;
using nls::test::OpenHandle;

constexpr uint32_t kUntouched = 0xEEEEEEEE;
constexpr char kUtf8Name[] = "UTF-8";

ConvmapBuilder::Attributes flagged(int flags) {
    ConvmapBuilder::Attributes attributes;
    attributes.flags = static_cast<unsigned char>(flags);
    return attributes;
}

struct Text {
    nlsStatus status;
    std::string text;
};
template <typename Ask>
Text textOf(const Ask& ask, int32_t room = 8000) {
    std::vector<unsigned char> buffer(static_cast<std::size_t>(room), 0xEE);
    nlsStr record{buffer.data(), room, kUntouched};
    const nlsStatus status = ask(&record);
    if (record.strLength == kUntouched) return {status, "?"};
    EXPECT_EQ(buffer[record.strLength], 0);
    return {status, std::string(reinterpret_cast<const char*>(buffer.data()), record.strLength)};
}
Text ofHandle(const OpenHandle& open, uint32_t property, int32_t room = 8000) {
    return textOf(std::bind_front(nlsGetStrNLSProperty, open.handle, property), room);
}
Text ofLocale(const nlsLocale* locale, uint32_t property, int32_t room = 8000) {
    return textOf(std::bind_front(nlsGetStrLocaleProperty, locale, property), room);
}
uint32_t numberOf(const nlsLocale* locale, uint32_t property) {
    uint32_t value = kUntouched;
    EXPECT_EQ(nlsGetIntLocaleProperty(locale, property, &value), NLS_OK) << property;
    return value;
}
uint32_t numberOf(const nlsConversion* conversion, uint32_t property) {
    uint32_t value = kUntouched;
    EXPECT_EQ(nlsGetIntConversionProperty(conversion, property, &value), NLS_OK) << property;
    return value;
}
uint32_t numberOf(const OpenHandle& open, uint32_t property) {
    uint32_t value = kUntouched;
    EXPECT_EQ(nlsGetIntNLSProperty(open.handle, property, &value), NLS_OK) << property;
    return value;
}

std::string icuNames() {
    uint32_t length = 0;
    const char* const names = nlsICUCollationList(&length);
    return {names, length};
}

// Each query with every number near its own: it answers those that it knows and touches nothing for the others.
TEST(Properties, EachQueryKnowsItsNumbersAlone) {
    OpenHandle open{nls::test::smallWorld().build()};
    nlsLocale* locale = nullptr;
    ASSERT_EQ(nlsCreateLocale(open.handle, "LATIN", "basic", nullptr, &locale), NLS_OK);
    nlsConversion* const conversion = open.conversion("LATIN", kUtf8Name);
    const struct {
        std::set<uint32_t> known;
        std::function<nlsStatus(uint32_t, uint32_t*)> ask;
    } integers[] = {{{3, 4, 5, 6, 11, 12, 13, 14, 22, 25, 26, 27}, std::bind_front(nlsGetIntLocaleProperty, locale)},
                    {{17, 24, 28}, std::bind_front(nlsGetIntConversionProperty, conversion)},
                    {{1, 4, 5, 6, 10, 21, 23}, std::bind_front(nlsGetIntNLSProperty, open.handle)}};
    const struct {
        std::set<uint32_t> known;
        std::function<nlsStatus(uint32_t, nlsStr*)> ask;
    } texts[] = {{{7, 8, 9, 18, 19, 20}, std::bind_front(nlsGetStrLocaleProperty, locale)},
                 {{15, 16}, std::bind_front(nlsGetStrConversionProperty, conversion)},
                 {{2, 7, 8, 9}, std::bind_front(nlsGetStrNLSProperty, open.handle)}};
    std::vector<uint32_t> numbers(40);
    std::iota(numbers.begin(), numbers.end(), 0U);
    numbers.insert(numbers.end(), {0x80000001, UINT32_MAX});
    for (const uint32_t number : numbers) {
        for (const auto& query : integers) {
            const bool known = query.known.count(number) != 0;
            uint32_t value = kUntouched;
            EXPECT_EQ(query.ask(number, &value), known ? NLS_OK : NLS_BAD_PROPERTY) << number;
            EXPECT_EQ(query.ask(number, nullptr), known ? NLS_BAD_ARG : NLS_BAD_PROPERTY) << number;
            EXPECT_EQ(value != kUntouched, known) << number;
        }
        for (const auto& query : texts) {
            const bool known = query.known.count(number) != 0;
            const Text text = textOf(std::bind_front(query.ask, number));
            EXPECT_EQ(text.status, known ? NLS_OK : NLS_BAD_PROPERTY) << number;
            EXPECT_EQ(text.text != "?", known) << number;
            EXPECT_EQ(query.ask(number, nullptr), known ? NLS_BAD_ARG : NLS_BAD_PROPERTY) << number;
        }
    }
    uint32_t value = 0;
    nlsLocale other = *locale;
    other.hdr.typeTag = NLS_TAG_CLOSED;
    EXPECT_EQ(nlsGetIntLocaleProperty(&other, 0, &value), NLS_BAD_LOCALE);
    EXPECT_EQ(nlsGetIntLocaleProperty(reinterpret_cast<const nlsLocale*>(conversion), 3, &value), NLS_BAD_HANDLE);
    nlsConversion noConversion = *conversion;
    noConversion.hdr.typeTag = NLS_TAG_LOCALE;
    EXPECT_EQ(nlsGetIntConversionProperty(&noConversion, 0, &value), NLS_BAD_CONVERSION);
    const std::string charsets = ofHandle(open, 2).text;
    ASSERT_EQ(nlsClose(open.handle), NLS_OK);
    EXPECT_EQ(nlsGetIntNLSProperty(open.handle, 0, &value), NLS_BAD_HANDLE);
    EXPECT_EQ(nlsGetIntConversionProperty(conversion, 0, &value), NLS_BAD_HANDLE);
    EXPECT_EQ(nlsGetStrLocaleProperty(locale, 0, nullptr), NLS_BAD_HANDLE);
    EXPECT_EQ(ofHandle(open, 2).text, charsets) << "it answers for a closed handle";
    EXPECT_EQ(nlsGetStrNLSProperty(nullptr, 2, nullptr), NLS_BAD_HANDLE);
}

// Every combination of the flags, against the rules in a row.
TEST(Properties, TheCharsetIsWhatItsFlagsSay) {
    OpenHandle open{nls::test::smallWorld().build()};
    nlsLocale locale = *open.locale("LATIN");
    nlsAttribStruct attrib{};
    locale.attrib = &attrib;
    for (int flags = 0; flags < 256; ++flags) {
        attrib.flags = flags;
        const auto has = [flags](int bits) { return (flags & bits) != 0; };
        EXPECT_EQ(numberOf(&locale, 3), has(0x58) ? 4U : has(2) ? 2U : 1U) << flags;
        EXPECT_EQ(numberOf(&locale, 11), has(2) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 12), has(4) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 13), has(8) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 14), has(0x10) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 25), has(2) && !has(0x58) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 26), has(0x40) ? 1U : 0U);
        EXPECT_EQ(numberOf(&locale, 27), !has(2) ? 3U : has(8) ? 1U : 2U);
    }
    uint32_t value = 0;
    EXPECT_EQ(nlsGetIntLocaleProperty(&locale, 22, &value), NLS_BAD_COLLATION) << "a locale without a collation";
    nlsCollStruct coll{};
    nlsUnicodeCaseStruct pages{};
    pages.caseRawSize = 5976;
    locale.coll = &coll;
    for (const int32_t kind : {-2, 1, 5, 6, 7}) {
        coll.collKind = kind;
        for (const int flags : {0, 8}) {
            attrib.flags = flags;
            locale.caseTable = nullptr;
            EXPECT_EQ(numberOf(&locale, 22), kind <= 5 ? 584U : 1376U);
            locale.caseTable = reinterpret_cast<nlsCaseStruct*>(&pages);
            EXPECT_EQ(numberOf(&locale, 22), kind <= 5 ? 584U : flags == 0 ? 1892U : 7352U);
        }
    }
    locale.attrib = nullptr;
    EXPECT_EQ(nlsGetIntLocaleProperty(&locale, 3, &value), NLS_NO_ATTRIB);
    EXPECT_EQ(ofLocale(&locale, 7).status, NLS_NO_ATTRIB);
}

TEST(Properties, OfConversionsAndMemory) {
    OpenHandle open{nls::test::smallWorld().build()};
    const nlsConversion* const identity = open.conversion(kUtf8Name, kUtf8Name);
    EXPECT_EQ(numberOf(identity, 17), 1U);
    EXPECT_EQ(numberOf(identity, 24), 1U);
    int twoStep = 0;
    for (const char* const from : {"LATIN", "UTF-16", kUtf8Name})
        for (const char* const to : {"LATIN", "UTF-16", kUtf8Name}) {
            const nlsConversion* const way = open.conversion(from, to);
            if (way == nullptr) continue;
            EXPECT_EQ(numberOf(way, 28), nlsConversionType(way->table) == 7 ? 1U : 0U);
            twoStep += nlsConversionType(way->table) == 7 ? 1 : 0;
        }
    EXPECT_GT(twoStep, 0);
    nlsConversion any = *open.conversion("LATIN", kUtf8Name);
    EXPECT_EQ(textOf(std::bind_front(nlsGetStrConversionProperty, &any, 15)).text, "LATIN");
    EXPECT_EQ(textOf(std::bind_front(nlsGetStrConversionProperty, &any, 16)).text, kUtf8Name);
    for (const int64_t type : {1, 2, 5, 9, 19, 28}) {
        int64_t table[2] = {type, 0};
        any.table = reinterpret_cast<nlsConvTable*>(&table[1]);
        ASSERT_EQ(nlsConversionType(any.table), type);
        uint32_t want[2] = {kUntouched, kUntouched}, have[2] = {kUntouched, kUntouched};
        EXPECT_EQ(getMaxExpSz(any.table, &want[0]), nlsGetIntConversionProperty(&any, 17, &have[0])) << type;
        EXPECT_EQ(getMaxConvCharSize(any.table, 4, &want[1]), nlsGetIntConversionProperty(&any, 24, &have[1])) << type;
        EXPECT_TRUE(want[0] == have[0] && want[1] == have[1]) << type;
    }
    EXPECT_EQ(numberOf(open, 10), 16U);
    EXPECT_EQ(numberOf(open, 23), 736U);
    EXPECT_EQ(numberOf(open, 21), open.handle->freeBytes);
}

TEST(Properties, ListsOfSmallFiles) {
    const auto build = [] {
        return ConvmapBuilder{}
            .attributes("a", flagged(1))
            .attributes("bc", flagged(NLS_CHARSET_UNITS16))
            .attributes("UCS2", flagged(NLS_CHARSET_UNITS16))
            .attributes("utf-8 ", flagged(NLS_CHARSET_UTF8));
    };
    {
        OpenHandle empty{ConvmapBuilder{}.build()};
        for (const uint32_t list : {2U, 8U, 9U}) {
            EXPECT_EQ(ofHandle(empty, list, 1).status, NLS_OK);
            EXPECT_EQ(ofHandle(empty, list, 1).text, "");
        }
        EXPECT_EQ(ofHandle(empty, 7).text, "");
        EXPECT_EQ(numberOf(empty, 4), 2236U) << "ICU's names are counted whatever the file holds";
        nlsStr none{nullptr, 0, 5};
        EXPECT_EQ(nlsGetStrNLSProperty(empty.handle, 2, &none), NLS_BUF_SMALL) << "the NUL has no room";
    }
    OpenHandle bare{build().build()};
    const std::string icu = icuNames();  // null before the first handle of a process
    EXPECT_EQ(ofHandle(bare, 2).text, "a,bc,UCS2,utf-8 ");
    EXPECT_EQ(numberOf(bare, 1), 16U);
    EXPECT_EQ(ofLocale(bare.locale("a"), 7).text, "");
    EXPECT_EQ(ofLocale(bare.locale("UCS2"), 7).text, "") << "it has no collation but its own";
    for (const char* const charset : {"bc", kUtf8Name}) EXPECT_EQ(ofLocale(bare.locale(charset), 7).text, icu);

    OpenHandle full{build()
                        .collation("UCS2", "own")
                        .unicodeCollation(kUtf8Name, "basic")
                        .caseTable("A", "first")
                        .caseTable("UCS2", "other")
                        .collation("a", "last")
                        .caseTable("a", "second")
                        .bare("a", "bc", 2)
                        .bare("UCS2", "bc", 2)
                        .bare("bc", "A ", 2)
                        .build()};
    EXPECT_EQ(ofLocale(full.locale("a"), 7).text, "last");
    EXPECT_EQ(ofLocale(full.locale("a"), 8).text, "first,second");
    EXPECT_EQ(ofLocale(full.locale("a"), 9).text, "a -> bc,bc -> A ");
    EXPECT_EQ(ofLocale(full.locale("bc"), 8).text, "");
    EXPECT_EQ(ofLocale(full.locale("bc"), 7).text, "basic," + icu);
    EXPECT_EQ(ofLocale(full.locale("UCS2"), 7).text, "own");
    EXPECT_EQ(ofHandle(full, 8).text, "A first,UCS2 other,a second");
    std::string pairs;
    for (std::size_t at = 0; at < icu.size(); at = icu.find(',', at + 1)) {
        const std::size_t from = at == 0 ? 0 : at + 1;
        pairs += ",UTF-8 " + icu.substr(from, icu.find(',', from) - from);
    }
    EXPECT_EQ(ofHandle(full, 7).text, "UCS2 own,UTF-8 basic" + pairs + ",a last");
    EXPECT_EQ(numberOf(full, 4), ofHandle(full, 7).text.size());
}

}  // namespace
