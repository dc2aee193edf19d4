// Comparison and sort keys of byte tables, beside ICU's root collator, glibc's strcoll and strxfrm, strcasecmp and
// memcmp.
//
// Columns of 200,000 names, addresses and codes of 8 to 64 bytes; pairs of them at random, neighbouring in order,
// equal, and differing in case; texts of a kilobyte that begin alike, and random ones. ICU compares the same texts in
// UTF-8, at secondary strength beside the folded maps and at tertiary strength beside the exact ones. The column is
// sorted by one program for all, with a comparison of their own or with keys of their own; memcmp, and keys that cost
// nothing, show how much of its time is the sort itself.
//   bench_collation [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/support/charset_work.hpp"
#include "bench/support/collators.hpp"
#include "bench/support/columns.hpp"
#include "bench/support/peers.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::IcuCollator;
using nls::bench::Language;
using nls::test::CollatedLocale;

constexpr std::size_t kRows = 200'000;

// Strings one behind the other, each with its NUL, as rows stand in a page.
class Rows {
public:
    explicit Rows(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) block_.append(text).push_back('\0');
        const char* place = block_.data();
        for (const std::string& text : texts) {
            views_.emplace_back(place, text.size());
            place += text.size() + 1;
        }
    }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    std::string_view operator[](std::size_t i) const { return views_[i]; }
    std::size_t count() const { return views_.size(); }
    std::size_t bytes() const { return block_.size() - views_.size(); }

private:
    std::string block_;
    std::vector<std::string_view> views_;
};

// A charset, its collation, and what the peers need.
struct Charset {
    const char* label;
    Language language;
    const char* iconvName;
    std::unique_ptr<CollatedLocale> locale;
    locale_t glibc;
    bool singleByte;
};

// The same texts in the charset and in UTF-8.
using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

std::vector<std::string> inCharset(const Charset& charset, const std::vector<std::string>& utf8) {
    const nls::bench::Iconv iconv("UTF-8", charset.iconvName);
    std::vector<std::string> own;
    for (const std::string& text : utf8) own.push_back(iconv.convert(text));
    return own;
}

// Pairs of rows, beside each other in the order in which they are compared.
std::vector<std::string> paired(const Rows& rows, const Pairs& pairs) {
    std::vector<std::string> texts;
    for (const auto& [a, b] : pairs) {
        texts.emplace_back(rows[a]);
        texts.emplace_back(rows[b]);
    }
    return texts;
}

struct Texts {
    Rows own, utf8;

    Texts(const Charset& charset, const std::vector<std::string>& all) : own(inCharset(charset, all)), utf8(all) {}
    Texts(const Texts& rows, const Pairs& pairs) : own(paired(rows.own, pairs)), utf8(paired(rows.utf8, pairs)) {}
};

inline int compareOurs(const nlsLocale* locale, std::string_view a, std::string_view b, uint16_t mode) {
    uint16_t result = 0;
    if (nlsCompareN(locale, nullptr, reinterpret_cast<const unsigned char*>(a.data()),
                    reinterpret_cast<const unsigned char*>(b.data()), static_cast<int32_t>(a.size()),
                    static_cast<int32_t>(b.size()), mode, &result) != NLS_OK)
        std::abort();
    return static_cast<int16_t>(result);
}

template <typename Compare>
Candidate overPairs(const char* name, const std::shared_ptr<const Texts>& pairs, const Rows Texts::*form,
                    Compare compare) {
    return {name, [pairs, form, compare] {
                const Rows& rows = (*pairs).*form;
                int sum = 0;
                for (std::size_t i = 0; i < rows.count(); i += 2) sum += compare(rows[i], rows[i + 1]);
                asm volatile("" : : "r"(sum));
            }};
}

// Ours beside each peer in turn.
void besideEach(const std::string& work, const std::string& label, std::size_t size, std::size_t calls,
                const Candidate& ours, const std::vector<Candidate>& peers) {
    for (const Candidate& peer : peers)
        nls::bench::compare(work, label + ", beside " + peer.name, size, calls, {ours, peer});
}

std::vector<Candidate> peersOf(const Charset& charset, const std::shared_ptr<const Texts>& pairs, uint16_t mode) {
    const auto icu = std::make_shared<IcuCollator>(mode == 0 ? UCOL_SECONDARY : UCOL_TERTIARY);
    std::vector<Candidate> peers = {overPairs(
        "ICU", pairs, &Texts::utf8, [icu](std::string_view a, std::string_view b) { return icu->compare(a, b); })};
    const locale_t glibc = charset.glibc;
    if (glibc != nullptr)
        peers.push_back(overPairs("strcoll", pairs, &Texts::own, [glibc](std::string_view a, std::string_view b) {
            return strcoll_l(a.data(), b.data(), glibc);
        }));
    if (charset.singleByte && glibc != nullptr && mode == 0)
        peers.push_back(overPairs("strcasecmp", pairs, &Texts::own, [glibc](std::string_view a, std::string_view b) {
            return strcasecmp_l(a.data(), b.data(), glibc);
        }));
    if (mode == 1)
        peers.push_back(overPairs("memcmp", pairs, &Texts::own,
                                  [](std::string_view a, std::string_view b) { return a.compare(b); }));
    return peers;
}

void comparePairs(const Charset& charset, const Texts& texts, const char* kind, const Pairs& which) {
    const auto pairs = std::make_shared<const Texts>(texts, which);
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
        const Candidate ours = overPairs(
            "nls", pairs, &Texts::own, [locale = charset.locale->get(), mode](std::string_view a, std::string_view b) {
                return compareOurs(locale, a, b, mode);
            });
        besideEach(std::string{kind} + (mode == 0 ? ", folded" : ", exact"), charset.label, pairs->own.bytes(),
                   which.size(), ours, peersOf(charset, pairs, mode));
    }
}

std::vector<std::size_t> sortedRows(const Charset& charset, const Texts& texts) {
    const nlsLocale* const locale = charset.locale->get();
    std::vector<std::size_t> rows(kRows);
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    std::sort(rows.begin(), rows.end(),
              [&](std::size_t a, std::size_t b) { return compareOurs(locale, texts.own[a], texts.own[b], 0) < 0; });
    return rows;
}

void compareColumn(const Charset& charset, const Texts& texts) {
    std::mt19937 random{1};
    Pairs any, neighbours, same, cases;
    const std::vector<std::size_t> rows = sortedRows(charset, texts);
    for (std::size_t i = 0; i < kRows; ++i) {
        any.push_back({random() % kRows, random() % kRows});
        neighbours.push_back({rows[i], rows[i + 1 == kRows ? i : i + 1]});
        same.push_back({i, kRows + i});       // a copy
        cases.push_back({i, 2 * kRows + i});  // in capitals
    }
    comparePairs(charset, texts, "random pairs", any);
    comparePairs(charset, texts, "neighbours", neighbours);
    comparePairs(charset, texts, "equal pairs", same);
    comparePairs(charset, texts, "pairs that differ in case", cases);
}

void compareLong(const Charset& charset) {
    std::mt19937 random{2};
    const std::string start = nls::bench::text(charset.language, 1000);
    std::vector<std::string> utf8;
    for (const std::string& value : nls::bench::column(charset.language, 2000)) utf8.push_back(start + value);
    for (std::string& value : nls::bench::columnValues(charset.language, 900, 1100, 2000)) utf8.push_back(value);
    const Texts texts(charset, utf8);
    Pairs alike, any;
    for (std::size_t i = 0; i < 2000; ++i) {
        alike.push_back({random() % 2000, random() % 2000});
        any.push_back({2000 + random() % 2000, 2000 + random() % 2000});
    }
    comparePairs(charset, texts, "a kilobyte that begins alike", alike);
    comparePairs(charset, texts, "a kilobyte at random", any);
}

std::size_t keyOurs(const Charset& charset, std::string_view text, uint16_t mode, unsigned char* key,
                    std::size_t room) {
    uint16_t length = 0;
    if (nlsSortKey(charset.locale->get(), nullptr, reinterpret_cast<const unsigned char*>(text.data()),
                   static_cast<int16_t>(room), mode, 1, key, &length) != NLS_OK)
        nls::bench::giveUp("a key failed");
    return length;
}

template <typename Key>
Candidate overTexts(const char* name, Key key) {
    return {name, [key] {
                unsigned char buffer[1024];
                for (std::size_t i = 0; i < kRows; ++i) key(i, buffer, sizeof buffer);
            }};
}

void compareKeys(const Charset& charset, const std::shared_ptr<const Texts>& texts) {
    const auto utf16 = std::make_shared<std::vector<std::u16string>>();
    for (std::size_t i = 0; i < kRows; ++i) utf16->push_back(nls::bench::utf16Of(std::string{texts->utf8[i]}));
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
        const auto icu = std::make_shared<IcuCollator>(mode == 0 ? UCOL_SECONDARY : UCOL_TERTIARY);
        std::vector<Candidate> peers = {overTexts(
            "ICU",
            [icu, utf16](std::size_t i, unsigned char* key, std::size_t room) { icu->key((*utf16)[i], key, room); })};
        if (charset.glibc != nullptr)
            peers.push_back(
                overTexts("strxfrm", [&charset, texts](std::size_t i, unsigned char* key, std::size_t room) {
                    (void)strxfrm_l(reinterpret_cast<char*>(key), texts->own[i].data(), room, charset.glibc);
                }));
        const Candidate ours =
            overTexts("nls", [&charset, texts, mode](std::size_t i, unsigned char* key, std::size_t room) {
                keyOurs(charset, texts->own[i], mode, key, room);
            });
        besideEach(mode == 0 ? "sort key, folded" : "sort key, exact", charset.label, texts->own.bytes() / 3, kRows,
                   ours, peers);
    }
}

// The column as a program has it that sorts: a pointer and a length for each row.
template <typename Less>
Candidate sorting(const char* name, const std::shared_ptr<const Texts>& texts, const Rows Texts::*form, Less less) {
    return {name, [texts, form, less] {
                std::vector<std::string_view> rows;
                rows.reserve(kRows);
                for (std::size_t i = 0; i < kRows; ++i) rows.push_back(((*texts).*form)[i]);
                std::sort(rows.begin(), rows.end(), less);
            }};
}

// A key as databases sort it: its first bytes as a number, and where it stands for those that are alike so far.
struct SortedKey {
    uint64_t first;
    const char* place;

    explicit SortedKey(const unsigned char* key) : first(0), place(reinterpret_cast<const char*>(key)) {
        for (unsigned i = 0; i < sizeof first && key[i] != 0; ++i) first |= uint64_t{key[i]} << (56 - 8 * i);
    }
    bool operator<(const SortedKey& other) const {
        return first != other.first ? first < other.first : std::strcmp(place, other.place) < 0;
    }
};

// Keys of all rows side by side, and the rows sorted by them.
template <typename Key>
class KeyedColumn {
public:
    explicit KeyedColumn(Key key) : key_(key), keys_(new unsigned char[kRows * kMean + kRoom]) { fill(); }

    void fill() {
        rows_.clear();
        std::size_t used = 0;
        for (std::size_t i = 0; i < kRows; ++i) {
            if (used > kRows * kMean) nls::bench::giveUp("longer keys than there is room for");
            const std::size_t length = key_(i, keys_.get() + used, kRoom);
            rows_.emplace_back(keys_.get() + used);
            used += length + 1;
        }
    }
    std::vector<SortedKey> rows() const { return rows_; }

private:
    static constexpr std::size_t kRoom = 512, kMean = 160;

    Key key_;
    std::unique_ptr<unsigned char[]> keys_;
    std::vector<SortedKey> rows_;
};

template <typename Key>
Candidate sortingByKeys(const char* name, Key key, bool given = false) {
    const auto column = std::make_shared<KeyedColumn<Key>>(key);
    return {name, [column, given] {
                if (!given) column->fill();
                std::vector<SortedKey> rows = column->rows();
                std::sort(rows.begin(), rows.end());
            }};
}

// Beside ICU, and beside what neither can be faster than: the sort alone, by memcmp or with the keys at hand.
void compareSorting(const Charset& charset, const std::shared_ptr<const Texts>& texts) {
    const auto icu = std::make_shared<IcuCollator>(UCOL_SECONDARY);
    const auto utf16 = std::make_shared<std::vector<std::u16string>>();
    for (std::size_t i = 0; i < kRows; ++i) utf16->push_back(nls::bench::utf16Of(std::string{texts->utf8[i]}));
    const std::size_t bytes = texts->own.bytes() / 3;
    const auto oursFirst = [locale = charset.locale->get()](std::string_view a, std::string_view b) {
        return compareOurs(locale, a, b, 0) < 0;
    };
    besideEach("sorting by comparison", charset.label, bytes, kRows, sorting("nls", texts, &Texts::own, oursFirst),
               {sorting("ICU", texts, &Texts::utf8,
                        [icu](std::string_view a, std::string_view b) { return icu->compare(a, b) < 0; }),
                sorting("memcmp", texts, &Texts::own, std::less<std::string_view>{})});
    const auto ourKey = [&charset, texts](std::size_t i, unsigned char* key, std::size_t room) {
        return keyOurs(charset, texts->own[i], 0, key, room);
    };
    const auto icuKey = [icu, utf16](std::size_t i, unsigned char* key, std::size_t room) {
        return icu->key((*utf16)[i], key, room) - 1;
    };
    besideEach("sorting by keys", charset.label, bytes, kRows, sortingByKeys("nls", ourKey),
               {sortingByKeys("ICU", icuKey), sortingByKeys("keys at hand", ourKey, true)});
}

std::vector<Charset> charsets() {
    static const nls::test::MadeTable eucToSjis{4};
    std::vector<Charset> all;
    const auto add = [&](const char* label, Language language, const char* iconv, const char* glibcLanguage,
                         const char* glibcCharset, const nlsAttribStruct& attrib, const nlsCollStruct& coll) {
        const bool single = (attrib.flags & NLS_CHARSET_SINGLE_BYTE) != 0;
        all.push_back({label, language, iconv, std::make_unique<CollatedLocale>(attrib, coll),
                       nls::bench::compiledLocale(glibcLanguage, glibcCharset), single});
    };
    add("German, 1252", Language::german, "CP1252", "de_DE", "CP1252", nls::test::singleByteCharset(),
        nls::bench::rootCollation("windows-1252"));
    add("Russian, 1251", Language::russian, "CP1251", "ru_RU", "CP1251", nls::test::singleByteCharset(),
        nls::bench::rootCollation("windows-1251"));
    add("Japanese, Shift-JIS", Language::japanese, "SHIFT-JIS", "ja_JP", "SHIFT_JIS", nls::test::sjisCharset(),
        nls::test::plainCollation());
    add("Japanese, EUC", Language::japanese, "EUC-JP", "ja_JP", "EUC-JP", nls::test::eucCharset(),
        nls::test::plainCollation());
    all.back().locale->bridgeTo(eucToSjis);
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    static const std::vector<Charset> all = charsets();
    for (const Charset& charset : all) {
        std::vector<std::string> utf8 = nls::bench::column(charset.language, kRows);
        for (std::size_t i = 0; i < kRows; ++i) utf8.push_back(utf8[i]);
        for (std::size_t i = 0; i < kRows; ++i) utf8.push_back(nls::bench::upperCase(utf8[i]));
        const auto texts = std::make_shared<const Texts>(charset, utf8);
        compareColumn(charset, *texts);
        compareKeys(charset, texts);
        compareSorting(charset, texts);
        compareLong(charset);
    }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
