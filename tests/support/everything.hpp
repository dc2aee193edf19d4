// Makes all that a data file names, sound or not, and sends text through it: for the tests of hostile files and the
// fuzz target. Whatever the file holds, this ends, and every answer is one of those that the headers tell.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include "convmap/case_pages.hpp"
#include "nls/compare.h"
#include "nls/convert.h"
#include "nls/inner.h"
#include "nls/objects.h"
#include "tests/support/isolated_table.hpp"
#include "tests/support/open_handle.hpp"

namespace nls::test {

class Everything {
public:
    explicit Everything(OpenHandle& open) : open_(open) {}

    void make() {
        const nlsHandle& handle = *open_.handle;
        const std::vector<nlsTocEntry> entries(handle.toc, handle.toc + handle.tocCount);
        for (const nlsTocEntry& entry : entries) makeEntry(entry);
        for (const nlsTocEntry& entry : entries)
            if (entry.entryType == kAttributes)
                for (const char* const unicode : {"UTF-8", "UTF-16", "utf-16be"}) bothWays(entry.name1, unicode);
        for (const nlsTocEntry& entry : entries)
            if (entry.entryType == kAttributes) makeLocale(entry.name1, nullptr, nullptr);  // derived where it can be
    }

    int tables = 0;      // tables that text was sent through, each once
    int notes[64] = {};  // by status: how often it came

private:
    static constexpr uint16_t kConversion = 1, kAttributes = 2, kCase = 3, kCollation = 4;
    static constexpr int kMostPairs = 250;  // a search for a route may cost a million name comparisons
    static constexpr int kMostBuffers = 3;

    [[noreturn]] static void fail(const char* what, long value) {
        std::fprintf(stderr, "everything.hpp: %s %ld\n", what, value);
        std::abort();
    }
    nlsStatus note(nlsStatus status, std::initializer_list<nlsStatus> told) {
        for (const nlsStatus one : told)
            if (one == status) {
                ++notes[static_cast<unsigned>(status) % 64];
                return status;
            }
        fail("untold status", status);
    }
    bool anotherBuffer() { return buffers_++ < kMostBuffers && open_.grow() == NLS_OK; }

    void makeEntry(const nlsTocEntry& entry) {
        switch (entry.entryType) {
            case kAttributes:
                makeLocale(entry.name1, NLS_NO_COLLATION, nullptr);
                break;
            case kCase:
                makeLocale(entry.name1, NLS_NO_COLLATION, entry.name2);
                break;
            case kCollation:
                makeLocale(entry.name1, entry.name2, entry.name2);  // most names stand for both
                makeLocale(entry.name1, entry.name2, nullptr);
                break;
            case kConversion:
                bothWays(entry.name1, entry.name2);
                break;
            default:
                break;
        }
    }

    // Weights and pages are read: by texts that hold every byte, and for numbers of each family that has a key.
    void use(const nlsLocale& locale) {
        static const std::vector<unsigned char> text = allBytes();
        if (locale.coll != nullptr && used_.insert(locale.coll).second)
            for (uint16_t mode = 0; mode < 3; ++mode) {
                uint16_t result = 0;
                note(nlsCompareN(&locale, nullptr, text.data() + 1, text.data() + 1, 700, 300, mode, &result),
                     {0, 7, 8, 19, 25});
            }
        if (locale.caseTable == nullptr || (locale.attrib->flags & NLS_CHARSET_UTF8) == 0) return;
        if (!used_.insert(locale.caseTable).second) return;
        const auto& pages = unicodeCaseTable(*locale.caseTable).casePages;
        for (const uint32_t top : {0U, 0xE10000U, 0xE20000U, 0xEF0000U})
            for (uint32_t number = top; number < top + 0x10000; number += 13)
                for (const CaseForm form : {CaseForm::upper, CaseForm::lower})
                    if (caseFormOf(pages, number, form) >> 16 != top >> 16)
                        fail("a form of another first byte", number);
    }

    nlsLocale* makeLocale(const char* charset, const char* collation, const char* caseName) {
        nlsLocale* locale = nullptr;
        nlsStatus status;
        do {
            status = note(nlsCreateLocale(open_.handle, charset, collation, caseName, &locale),
                          {0, 1, 8, 9, 10, 11, 21, 25});
        } while (status == NLS_NO_MEM && anotherBuffer());
        if (status != NLS_OK) return nullptr;
        use(*locale);
        return locale;
    }

    void bothWays(const char* from, const char* to) {
        if (pairs_++ >= kMostPairs) return;
        makeTable(from, to);
        makeTable(to, from);
        makeConversion(from, to);
        makeConversion(to, from);
    }
    void makeTable(const char* from, const char* to) {
        for (const uint32_t options : {1U, 0U}) {
            nlsConvTable* table = nullptr;
            const nlsStatus status = note(nlsGetConvTablePtr(open_.handle, from, to, options, &table), {0, 1, 8, 21});
            if (status == NLS_OK) convert(table);
        }
    }
    void makeConversion(const char* from, const char* to) {
        nlsLocale* const source = makeLocale(from, NLS_NO_COLLATION, nullptr);
        nlsLocale* const target = makeLocale(to, NLS_NO_COLLATION, nullptr);
        if (source == nullptr || target == nullptr) return;
        nlsConversion* conversion = nullptr;
        nlsStatus status;
        do {
            status = note(nlsCreateConversion(open_.handle, source, target, &conversion), {0, 1, 8, 21});
        } while (status == NLS_NO_MEM && anotherBuffer());
        if (status == NLS_OK) convert(conversion->table);
    }

    static std::vector<unsigned char> allBytes() {
        std::vector<unsigned char> text;
        for (unsigned c = 0; c < 256; ++c) text.push_back(static_cast<unsigned char>(c));
        for (unsigned c = 0; c < 256; c += 5)
            for (unsigned d : {0x00U, 0x20U, 0x40U, 0x80U, 0xA1U, 0xFFU}) {
                text.push_back(static_cast<unsigned char>(c));
                text.push_back(static_cast<unsigned char>(d));
            }
        for (const char c : std::string("\xE4\xB8\x80\xE4\xB8\x81 \xF0\x9F\x98\x80 \x81\x40\x81\x41 abc"))
            text.push_back(static_cast<unsigned char>(c));
        text.resize(text.size() & ~std::size_t{3});
        return text;
    }

    void convert(const nlsConvTable* table) {
        static const std::vector<unsigned char> text = allBytes();
        if (!seen_.insert(table).second) return;
        ++tables;
        const IsolatedTable isolated{table};
        convert(isolated.get(), text, text.size() * 4);
        convert(isolated.get(), text, 16);
        convert(isolated.get(), {text.begin() + 0x20, text.begin() + 0x7C}, 400);
        convert(isolated.get(), {text.begin() + 0x41, text.begin() + 0x45}, 4);
    }
    // Source, middle and target have exactly the bytes that the call is told of.
    void convert(const nlsConvTable* table, std::vector<unsigned char> source, std::size_t room) {
        source.shrink_to_fit();
        std::vector<unsigned char> target(room), scratch(room);
        uint32_t outLen = 0;
        const nlsStatus status =
            convertBytes(target.data(), static_cast<int32_t>(room), source.data(), static_cast<int32_t>(source.size()),
                         scratch.data(), static_cast<int32_t>(room), table, &outLen, 0);
        note(status, {0, 2, 8, 16, 33, -2, -3});
        if (outLen > room) fail("more bytes than room:", static_cast<long>(outLen));
    }

    OpenHandle& open_;
    int buffers_ = 0;
    int pairs_ = 0;
    std::set<const nlsConvTable*> seen_;
    std::set<const void*> used_;
};

}  // namespace nls::test
