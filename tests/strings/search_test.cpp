// Search beside its slow twin: every short pattern and text over small alphabets, then random ones, in front of pages
// that fault, on every processor.
#include "strings/search.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ctime>

#include "core/base/cpu.hpp"
#include "tests/reference/search.hpp"
#include "tests/support/guarded_buffer.hpp"
#include "tests/support/search_locales.hpp"

namespace nls::reference {

static void PrintTo(const Found& found, std::ostream* out) {
    *out << "status " << found.status << " pos " << found.pos << " end " << found.end << " found " << found.foundWritten
         << " " << static_cast<const void*>(found.found);
}

}  // namespace nls::reference

namespace nls::test {
namespace {

using reference::Found;

constexpr int32_t kEscape = '\\';

std::string hex(const std::string& bytes) {
    std::string all;
    for (const char byte : bytes) {
        char two[4];
        std::snprintf(two, sizeof two, "%02X ", static_cast<unsigned char>(byte));
        all += two;
    }
    return all;
}

class Ours {
public:
    Ours(const nlsLocale* locale, uint16_t mode) : locale_(locale), mode_(mode) {}

    Found forward(const unsigned char* pattern, const unsigned char* text, uint16_t wildcards, int32_t escape) const {
        return told([&](Found& f) {
            return nlsSearchForwBase(locale_, nullptr, pattern, text, mode_, wildcards, escape, &f.pos, &f.end,
                                     &f.found);
        });
    }
    Found forwardPlain(const unsigned char* pattern, const unsigned char* text) const {
        return told(
            [&](Found& f) { return nlsSearchForw(locale_, nullptr, pattern, text, mode_, &f.pos, &f.end, &f.found); });
    }
    Found backward(const unsigned char* pattern, const unsigned char* text, int32_t length) const {
        return told(
            [&](Found& f) { return nlsSearchBack(locale_, nullptr, pattern, text, length, mode_, &f.pos, &f.found); });
    }

private:
    template <typename Call>
    static Found told(Call call) {
        static const unsigned char nowhere = 0;
        Found answer{NLS_OK, 77, Found::unwritten, &nowhere, true};
        answer.status = call(answer);
        if (answer.found == &nowhere) answer.found = nullptr, answer.foundWritten = false;
        return answer;
    }

    const nlsLocale* locale_;
    uint16_t mode_;
};

// Pattern and text with their NULs directly in front of a page that faults; the span of a backward search as well.
class Search : public testing::Test {
protected:
    void expectAll(const SearchLocale& by, uint16_t mode, const std::string& pattern, const std::string& text) {
        const reference::Search model{by.get(), mode};
        const Ours ours{by.get(), mode};
        const unsigned char* const p = patterns_.atEnd(pattern.c_str(), pattern.size() + 1);
        const unsigned char* const t = texts_.atEnd(text.c_str(), text.size() + 1);
        const auto where = [&] {
            return by.name + ", mode " + std::to_string(mode) + ": " + hex(pattern) + "in " + hex(text);
        };
        EXPECT_EQ(ours.forward(p, t, 0, kEscape), model.forward(p, t, false, 0)) << where();
        EXPECT_EQ(ours.forwardPlain(p, t), model.forward(p, t, false, 0)) << where();
        const bool escapes = pattern.find_first_of("_\\") != std::string::npos;
        for (const int32_t escape : {0, kEscape, int32_t{'_'}}) {
            if (escape != 0 && !escapes) break;
            EXPECT_EQ(ours.forward(p, t, 1, escape), model.forward(p, t, true, escape)) << where() << escape;
        }
        // More text behind the NUL, as rows stand in a page: it doesn't count. Every other row reaches into the next
        // page.
        std::string row = text + '\0' + pattern + text + std::string(64, 'a');
        if (pattern.size() % 2 != 0) row.resize(std::max<std::size_t>(row.size(), kPage + text.size() / 2), 'a');
        const unsigned char* const first = texts_.atEnd(row.data(), row.size());
        EXPECT_EQ(ours.forwardPlain(p, first), model.forward(p, first, false, 0)) << where() << ", a row";
        (void)texts_.atEnd(text.c_str(), text.size() + 1);
        const auto whole = static_cast<int32_t>(text.size());
        for (const int32_t length : {whole, whole + 1})  // the NUL in the span, too
            EXPECT_EQ(ours.backward(p, t, length), model.backward(p, t, length)) << where() << "back from " << length;
        const auto part = static_cast<int32_t>(text.size() / 2);
        const unsigned char* const span = texts_.atEnd(text.c_str(), text.size() / 2);
        // The twin looks for the end of the text, which a span needn't have.
        const unsigned char* const closed = t - part - 1;
        const std::string half = text.substr(0, text.size() / 2);
        std::memcpy(const_cast<unsigned char*>(closed), half.c_str(), half.size() + 1);
        Found want = model.backward(p, closed, part);
        std::memcpy(const_cast<unsigned char*>(span), half.data(), half.size());
        if (want.found != nullptr) want.found += span - closed;
        EXPECT_EQ(ours.backward(p, span, part), want) << where() << " back from " << part;
    }
    void TearDown() override { limitCpuLevel(CpuLevel::avx512); }

    static constexpr std::size_t kLongest = 70'000, kPage = 4096;
    GuardedBuffer patterns_{kLongest}, texts_{2 * kLongest};
};

constexpr CpuLevel kLevels[] = {CpuLevel::baseline, CpuLevel::avx2, CpuLevel::avx512};

TEST_F(Search, EveryShortPatternInEveryShortText) {
    for (const SearchLocale& by : searchLocales()) {
        for (const uint16_t mode : {uint16_t{0}, uint16_t{1}, uint16_t{2}}) {
            const std::size_t longest = mode == 2 ? 1 : 4;
            forAllStrings(by.alphabet.substr(0, 4), longest, [&](const std::string& text) {
                forAllStrings(by.alphabet, std::min<std::size_t>(longest, 2),
                              [&](const std::string& pattern) { expectAll(by, mode, pattern, text); });
                forAllStrings("_\\" + by.alphabet.substr(0, 2), 2,
                              [&](const std::string& pattern) { expectAll(by, mode, pattern, text); });
            });
            if (HasFailure()) return;
        }
    }
}

// Characters that chance hardly brings together: equal ones of other lengths behind others, forms that aren't what text
// has, ASCII that folds in its own way.
TEST_F(Search, RarePairs) {
    constexpr struct {
        const char *locale, *head;
        std::array<const char*, 5> ends;  // each a pattern and a text, behind the same head
    } rows[] = {
        {"shift-jis, s as a blank", "aaa", {"s", "\x81\x40", "\x81s", " ", "\x81\x20"}},
        {"shift-jis, s as a blank", "", {"sr", "\x81\x20r", " r", "s", "\x81r"}},
        {"shift-jis, crowded", "aaa", {"b", "\x81\x62", "\x82\x81", "\x91\x62", "\xE0\x62"}},
        {"utf-8", "x", {"\xEF\xBC\xA1", "\xEF\xBD\x81", "\xE2\x92\xB6", "\xE2\x93\x90", "\xE1\xB8\x80"}},
        {"utf-8, odd ASCII", "", {"b\xC3\x89", "a\xC3\x89", "a\xC3\xA9", "b", "a"}},
        {"utf-8, many alike", "", {"\xE2\x84\x9A", "o", "ox", "\xE2ox", "\xE2\x84\x9Ao"}},
        {"utf-8, many alike", "x", {"\xC3\xB8", "o", "\xC3\x89\xC3\x8A", "\xE3\x81\x82o", "\xC3\x89\x82o"}},
    };
    const std::vector<SearchLocale> all = searchLocales();
    for (const auto& row : rows) {
        const auto by =
            std::find_if(all.begin(), all.end(), [&](const SearchLocale& one) { return one.name == row.locale; });
        ASSERT_NE(by, all.end()) << row.locale;
        for (const CpuLevel level : kLevels) {
            limitCpuLevel(level);
            for (const std::string pattern : row.ends)
                for (const std::string text : row.ends)
                    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}})
                        expectAll(*by, mode, row.head + pattern, row.head + text);
        }
    }
}

TEST_F(Search, RandomPatternsInRandomTexts) {
    std::mt19937 random{7};
    const std::vector<SearchLocale> all = searchLocales();
    constexpr std::size_t kLongestOf[] = {20, 30, 30, 70, 70, 70, 70, 800};
    for (unsigned round = 0; round < 30'000 && !HasFailure(); ++round) {
        const SearchLocale& by = all[round % all.size()];
        limitCpuLevel(kLevels[random() % 3]);
        const bool utf8 = (by.locale->attrib().flags & NLS_CHARSET_UTF8) != 0;
        const SearchPair pair = randomSearchPair(random, by.alphabet, utf8, kLongestOf[random() % 8]);
        expectAll(by, static_cast<uint16_t>(random() % 2), pair.pattern, pair.text);
    }
}

// A quarter of a mebibyte of texts that fail at the last of a thousand characters, or at the first of them, going back:
// pairs of characters by which every family of locales gets there. The match stands where the almost-matches end.
TEST_F(Search, AlmostMatchesCostNoMoreThanTheText) {
    constexpr std::size_t kText = 1 << 18, kPattern = 1 << 10;
    constexpr struct {
        const char *locale, *common, *rare;
    } rows[] = {
        {"single", "a", "b"},
        {"single, crowded", "a", "b"},
        {"of no kind", "a", "b"},
        {"shift-jis", "\x81\x81", "\x81\x82"},
        {"shift-jis, first bytes as expansions", "a", "\x81\x91"},
        {"euc", "\xA4\xA2", "\xA4\xA4"},
        {"euc, crowded", "a", "\xA4\xA4"},
        {"odd", "\x09\x09", "\x08"},
        {"utf-8", "\xC3\xA9", "\xC3\xA8"},
        {"utf-8, wild", "\xE3\x81\x81", "\xE3\x81\x82"},
        {"utf-8 without a case table", "\xE3\x81\x81", "\xE3\x81\x82"},
    };
    const std::vector<SearchLocale> all = searchLocales();
    for (const auto& row : rows) {
        const auto by =
            std::find_if(all.begin(), all.end(), [&](const SearchLocale& one) { return one.name == row.locale; });
        ASSERT_NE(by, all.end()) << row.locale;
        const std::string common = row.common, rare = row.rare;
        std::string many, few;
        while (many.size() < kText) many += common;
        while (few.size() < kPattern) few += common;
        const std::clock_t start = std::clock();
        limitCpuLevel(kLevels[(&row - rows) % 3]);
        for (const std::string& pattern : {few + rare + common, few + rare + few}) {
            const std::string text = many + pattern.substr(few.size()) + many, absent = pattern + rare;
            const auto whole = static_cast<int32_t>(text.size());
            const Ours ours{by->get(), 0};
            const unsigned char* const t = bytesOf(text);
            const std::size_t at = many.size() - few.size();
            const Found want{NLS_OK, static_cast<uint32_t>(at + 1), static_cast<uint32_t>(at + pattern.size()), t + at,
                             true};
            EXPECT_EQ(ours.forward(bytesOf(pattern), t, 0, 0), want) << row.locale;
            EXPECT_EQ(ours.backward(bytesOf(pattern), t, whole).pos, want.pos) << row.locale;
            EXPECT_EQ(ours.backward(bytesOf(absent), t, whole).pos, 0U) << row.locale;
        }
        EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC) << row.locale;
    }
}

}  // namespace
}  // namespace nls::test
