// Every list of the real data file, of the handle and of every charset: the length is that of the text, the text is
// what a plain walk over the contents gives, and records of each size around it take just what fits.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/real/data_file.hpp"
#include "tests/support/guarded_buffer.hpp"

namespace {

using nls::test::GuardedBuffer;
using nls::test::OpenHandle;
using Ask = std::function<nlsStatus(nlsStr*)>;
using Item = std::function<std::string(const nlsTocEntry&)>;

// Up to the faulting page, with more and less room than it needs.
void expectText(const Ask& ask, uint32_t told, const std::string& want) {
    static GuardedBuffer buffer{64 << 10};
    ASSERT_EQ(told, want.size());
    for (const int32_t less : {-1, 0, 1, 2, 7}) {
        const int32_t room = static_cast<int32_t>(want.size()) + 1 - less;
        if (room < 0) continue;
        constexpr uint32_t kAsItWas = 0x7777;
        nlsStr record{buffer.atEnd(static_cast<std::size_t>(room)), room, kAsItWas};
        EXPECT_EQ(ask(&record), less <= 0 ? NLS_OK : NLS_BUF_SMALL) << want << " in " << room;
        if (room == 0 || (less > 0 && record.strLength == kAsItWas)) continue;  // a name doesn't come in part
        const std::string have{reinterpret_cast<const char*>(record.buf), record.strLength};
        EXPECT_EQ(record.buf[record.strLength], 0);
        if (less <= 0)
            EXPECT_EQ(have, want);
        else
            EXPECT_EQ(have, want.substr(0, have.size()));
    }
}

std::string joined(const nlsHandle& handle, uint16_t type, const Item& item) {
    std::string text;
    for (int32_t at = 0; at < handle.tocCount; ++at) {
        const nlsTocEntry& entry = handle.toc[at];
        const std::string part = entry.entryType == type ? item(entry) : "";
        if (!part.empty()) text += (text.empty() ? "" : ",") + part;
    }
    return text;
}

std::string icuNames(const std::string& before) {
    uint32_t length = 0;
    std::string names = before + nlsICUCollationList(&length);
    for (std::size_t at = 0; (at = names.find(',', at)) != std::string::npos && !before.empty(); ++at)
        names.insert(at + 1, before);
    return names;
}

constexpr struct {
    uint32_t length, text;
    uint16_t type;
    const char* between;
} kLists[] = {{1, 2, 2, nullptr}, {4, 7, 4, " "}, {5, 8, 3, " "}, {6, 9, 1, " -> "}};

TEST(RealProperties, ListsOfTheFile) {
    OpenHandle open{nls::real::dataFile()};
    for (const auto& list : kLists) {
        const std::string want = joined(*open.handle, list.type, [&](const nlsTocEntry& entry) {
            if (list.between == nullptr) return std::string{entry.name1};
            const std::string pair = std::string{entry.name1} + list.between + entry.name2;
            return list.type == 4 && pair.starts_with("UTF-8 ") ? pair + "," + icuNames("UTF-8 ") : pair;
        });
        uint32_t length = 0;
        ASSERT_EQ(nlsGetIntNLSProperty(open.handle, list.length, &length), NLS_OK);
        expectText([&](nlsStr* record) { return nlsGetStrNLSProperty(open.handle, list.text, record); }, length, want);
    }
}

TEST(RealProperties, ListsOfEveryCharset) {
    OpenHandle open{nls::real::dataFile(), 8 << 20};
    int charsets = 0;
    for (int32_t at = 0; at < open.handle->tocCount; ++at) {
        if (open.handle->toc[at].entryType != 2) continue;
        const std::string charset = open.handle->toc[at].name1;
        const nlsLocale* const locale = open.locale(charset.c_str());
        ASSERT_NE(locale, nullptr) << charset;
        ++charsets;
        const bool wide = (locale->attrib->flags & (NLS_CHARSET_UNITS16 | NLS_CHARSET_UNITS32)) != 0;
        const std::string owner = wide && charset != "UCS2" ? "UTF-8" : charset;
        for (const auto& list : kLists) {
            if (list.between == nullptr) continue;
            const std::string& of = list.type == 4 ? owner : charset;
            std::string want = joined(*open.handle, list.type, [&](const nlsTocEntry& entry) -> std::string {
                if (entry.name1 != of && (list.type != 1 || entry.name2 != of)) return "";
                return list.type == 1 ? std::string{entry.name1} + list.between + entry.name2 : entry.name2;
            });
            if (list.type == 4 && of == "UTF-8") want += (want.empty() ? "" : ",") + icuNames("");
            uint32_t length = 0;
            ASSERT_EQ(nlsGetIntLocaleProperty(locale, list.length, &length), NLS_OK);
            expectText([&](nlsStr* record) { return nlsGetStrLocaleProperty(locale, list.text, record); }, length,
                       want);
        }
        expectText([&](nlsStr* record) { return nlsGetStrLocaleProperty(locale, 18, record); },
                   static_cast<uint32_t>(charset.size()), charset);
        expectText([&](nlsStr* record) { return nlsGetStrLocaleProperty(locale, 20, record); }, 0, "");
    }
    EXPECT_GE(charsets, 50);
}

}  // namespace
