// Replacement beside its slow twin: records of every size in front of a faulting page, filled before the call, so that
// what stays behind of a failure shows.
#include "strings/replace.hpp"

#include <gtest/gtest.h>

#include "tests/reference/search.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/search_locales.hpp"

namespace nls::test {
namespace {

using reference::Found;

const unsigned char* asBytes(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

struct Answer {
    Found found;
    uint32_t replaced = 77;
    uint32_t strLength = 0;
    std::string buffer;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << "status " << answer.found.status << " pos " << answer.found.pos << " end " << answer.found.end
         << " replaced " << answer.replaced << " length " << answer.strLength << " buffer \"" << answer.buffer << '"';
}

class Replace : public testing::Test {
protected:
    // The record holds text before the call. `size` is that of its buffer.
    template <typename Call>
    Answer filled(std::size_t size, std::size_t before, Call call) {
        const std::string old = std::string(size == 0 ? 0 : std::min(before, size - 1), 'o');
        unsigned char* const buffer = buffers_.atEnd(size);
        std::memset(buffer, '#', size);
        if (size != 0) std::memcpy(buffer, old.c_str(), old.size() + 1);
        nlsStr rec{buffer, static_cast<int32_t>(size), static_cast<uint32_t>(old.size())};
        Answer answer;
        call(rec, answer);
        answer.strLength = rec.strLength;
        answer.buffer.assign(reinterpret_cast<const char*>(buffer), size);
        return answer;
    }

    void expectBoth(const nlsLocale* locale, uint16_t mode, const std::string& pattern, const std::string& with,
                    const std::string& text, std::size_t size, std::size_t before) {
        const reference::Search model{locale, mode};
        const unsigned char *const p = bytesOf(pattern), *const r = bytesOf(with), *const t = bytesOf(text);
        const auto first = filled(size, before, [&](nlsStr& rec, Answer& a) {
            const unsigned char* const untouched = r;
            a.found.found = untouched;
            a.found.status =
                nlsReplace(locale, nullptr, p, r, t, mode, &rec, &a.found.pos, &a.found.end, &a.found.found);
            a.found.foundWritten = a.found.found != untouched;
            if (!a.found.foundWritten) a.found.found = nullptr;
        });
        EXPECT_EQ(first, filled(size, before, [&](nlsStr& rec, Answer& a) { a.found = model.replace(p, r, t, rec); }))
            << pattern << " by " << with << " in " << text << ", room " << size;
        const auto all = filled(size, before, [&](nlsStr& rec, Answer& a) {
            a.found.status = nlsReplaceAll(locale, nullptr, p, r, t, mode, &rec, &a.replaced);
        });
        EXPECT_EQ(all,
                  filled(size, before,
                         [&](nlsStr& rec, Answer& a) { a.found.status = model.replaceAll(p, r, t, rec, a.replaced); }))
            << pattern << " by " << with << " in " << text << ", all, room " << size;
    }

    GuardedBuffer buffers_{4096};
};

TEST_F(Replace, RecordsOfEverySize) {
    const std::vector<SearchLocale> all = searchLocales();
    for (const SearchLocale& by : all) {
        std::mt19937 random{11};
        for (unsigned round = 0; round < 40; ++round) {
            const bool utf8 = (by.locale->attrib().flags & NLS_CHARSET_UTF8) != 0;
            const SearchPair pair = randomSearchPair(random, by.alphabet, utf8, 24);
            const std::string with = randomSearchPair(random, by.alphabet, utf8, random() % 3 * 8).text;
            const std::string pattern = pair.pattern.substr(0, 1 + random() % 3);
            for (std::size_t size = 1; size < 60; size += 1 + round % 3)
                expectBoth(by.get(), static_cast<uint16_t>(random() % 2), pattern, with, pair.text, size, random() % 9);
        }
        if (HasFailure()) FAIL() << by.name;
    }
}

TEST_F(Replace, AllMatchesOneBehindTheOther) {
    CollatedLocale single{singleByteCharset(), plainCollation()};
    const nlsLocale* const locale = single.get();
    constexpr struct {
        const char *why, *pattern, *with, *text, *want;
        uint32_t replaced;
    } rows[] = {
        {"not overlapping", "aa", "b", "aaaaa", "bba", 2},
        {"what was put in isn't searched", "a", "aa", "aXa", "aaXaa", 2},
        {"an empty pattern", "", "!", "five", "five!", 1},
        {"an empty pattern in an empty text", "", "!", "", "!", 1},
        {"by nothing", "s", "", "sssas", "a", 4},
        {"none", "x", "y", "five", "five", 0},
        {"case folded", "STR", "-", "Strasse str", "-asse -", 2},
    };
    for (const auto& row : rows) {
        const auto folded = filled(64, 0, [&](nlsStr& rec, Answer& a) {
            a.found.status = nlsReplaceAll(locale, nullptr, asBytes(row.pattern), asBytes(row.with), asBytes(row.text),
                                           0, &rec, &a.replaced);
        });
        EXPECT_EQ(folded.found.status, NLS_OK) << row.why;
        EXPECT_STREQ(folded.buffer.c_str(), row.want) << row.why;
        EXPECT_EQ(folded.replaced, row.replaced) << row.why;
    }
}

// In the order of the declaration: each row has all the faults of the rows behind it, too.
TEST_F(Replace, StatusesInTheirOrder) {
    CollatedLocale made{sjisCharset(), plainCollation()};
    nlsLocale& locale = *made.get();
    const unsigned char *const a = asBytes("a"), *const cut = asBytes("a\x81"), *const b = asBytes("bab");
    const unsigned char* found = b;
    uint32_t pos = 7, end = 7, replaced = 7;
    unsigned char buffer[8] = "old";
    nlsStr rec{buffer, 8, 3};
    const auto both = [&](nlsStatus want, const nlsLocale* by, const unsigned char* pattern, const unsigned char* with,
                          const unsigned char* text, nlsStr* into) {
        replaced = 7;
        EXPECT_EQ(nlsReplaceAll(by, nullptr, pattern, with, text, 1, into, &replaced), want);
        EXPECT_EQ(replaced, 0U);
        pos = 7;
        found = b;
        EXPECT_EQ(nlsReplace(by, nullptr, pattern, with, text, 1, into, &pos, &end, &found), want);
    };
    both(NLS_BAD_HANDLE, nullptr, nullptr, nullptr, nullptr, nullptr);
    locale.hdr.typeTag = NLS_TAG_CONVERSION;
    both(NLS_BAD_LOCALE, &locale, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(pos, 7U);
    locale.hdr.typeTag = NLS_TAG_LOCALE;
    nlsAttribStruct* const attrib = locale.attrib;
    locale.attrib = nullptr;
    both(NLS_BAD_ARG, &locale, nullptr, nullptr, b, nullptr);
    both(NLS_BAD_ARG, &locale, a, nullptr, nullptr, nullptr);
    EXPECT_EQ(pos, 0U);
    EXPECT_EQ(found, b);
    both(NLS_NO_ATTRIB, &locale, cut, nullptr, b, nullptr);
    EXPECT_EQ(found, nullptr);
    locale.attrib = attrib;
    locale.coll = nullptr;
    both(NLS_PARTIAL_CHAR, &locale, cut, nullptr, b, nullptr);
    both(NLS_PARTIAL_CHAR, &locale, a, nullptr, cut, nullptr);
    both(NLS_BAD_COLLATION, &locale, a, nullptr, b, nullptr);
    EXPECT_EQ(found, b);
    locale.coll = &made.coll();
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "old");
    EXPECT_EQ(end, 7U);
    both(NLS_BAD_ARG, &locale, a, nullptr, b, nullptr);
    EXPECT_EQ(pos, 2U);
    EXPECT_EQ(end, 2U);
    both(NLS_BAD_ARG, &locale, a, nullptr, b, &rec);  // without a replacement the record is emptied
    EXPECT_EQ(rec.strLength, 0U);
    both(NLS_BUF_SMALL, &locale, a, asBytes("seven!!"), b, &rec);
}

}  // namespace
}  // namespace nls::test
