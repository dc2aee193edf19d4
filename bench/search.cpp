// Search beside memmem, strstr, strcasestr in the C locale, and ICU's usearch.
//
// Column values: 10,000 names, addresses and codes of 8 to 64 bytes, searched for words that stand in some of them and
// for words that stand in none, the pattern given afresh with each call; and as many remarks, pieces of prose of 8 to
// 64 bytes. A mebibyte of prose: searched for a word that stands at its end alone, and for one that it lacks. memmem is
// told the lengths; the others find them. ICU has its texts in UTF-16 and its pattern prepared, at secondary strength
// beside folded and at tertiary beside exact search.
//   bench_search [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <unicode/usearch.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/charset_work.hpp"
#include "bench/support/collators.hpp"
#include "bench/support/columns.hpp"
#include "bench/support/peers.hpp"
#include "tests/support/case_locale.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::IcuCollator;
using nls::bench::Language;
using nls::test::CollatedLocale;

constexpr std::size_t kRows = 10'000, kShortest = 8, kLongest = 64, kMebibyte = 1 << 20;

struct Charset {
    const char* label;
    Language language;
    const char* iconvName;
    std::unique_ptr<CollatedLocale> locale;
    std::vector<std::string> present, absent, absentLong;  // in UTF-8
};

// Texts one behind the other, each with its NUL.
class Texts {
public:
    Texts(const Charset& charset, const std::vector<std::string>& utf8) {
        const nls::bench::Iconv iconv("UTF-8", charset.iconvName);
        for (const std::string& text : utf8) {
            const std::string own = iconv.convert(text);
            places.push_back(block.size());
            sizes.push_back(own.size());
            bytes += own.size();
            block.append(own).push_back('\0');
            utf16.push_back(nls::bench::utf16Of(text));
        }
    }

    std::string block;
    std::vector<std::size_t> places, sizes;
    std::vector<std::u16string> utf16;
    std::size_t bytes = 0;
};

// Every pattern in every text.
template <typename Find>
Candidate over(const char* name, const std::shared_ptr<const Texts>& texts, const std::vector<std::string>& patterns,
               Find find) {
    return {name, [texts, patterns, find] {
                std::size_t sum = 0;
                for (const std::string& pattern : patterns)
                    for (std::size_t i = 0; i < texts->places.size(); ++i)
                        sum += find(texts->block.data() + texts->places[i], texts->sizes[i], pattern);
                asm volatile("" : : "r"(sum));
            }};
}

std::size_t findOurs(const nlsLocale* locale, uint16_t mode, const char* text, const std::string& pattern) {
    uint32_t pos = 0, end = 0;
    const unsigned char* found = nullptr;
    if (nlsSearchForw(locale, nullptr, reinterpret_cast<const unsigned char*>(pattern.c_str()),
                      reinterpret_cast<const unsigned char*>(text), mode, &pos, &end, &found) != NLS_OK)
        nls::bench::giveUp("nls: search");
    return pos;
}

Candidate usearch(const std::shared_ptr<const Texts>& texts, const std::vector<std::string>& utf8Patterns,
                  uint16_t mode) {
    const auto icu = std::make_shared<IcuCollator>(mode == 0 ? UCOL_SECONDARY : UCOL_TERTIARY);
    return {"usearch", [texts, utf8Patterns, icu] {
                std::size_t sum = 0;
                for (const std::string& utf8 : utf8Patterns) {
                    const std::u16string pattern = nls::bench::utf16Of(utf8);
                    UErrorCode status = U_ZERO_ERROR;
                    UStringSearch* const search = usearch_openFromCollator(
                        pattern.data(), static_cast<int32_t>(pattern.size()), texts->utf16[0].data(),
                        static_cast<int32_t>(texts->utf16[0].size()), icu->get(), nullptr, &status);
                    for (const std::u16string& text : texts->utf16) {
                        usearch_setText(search, text.data(), static_cast<int32_t>(text.size()), &status);
                        sum += static_cast<std::size_t>(usearch_first(search, &status));
                    }
                    if (U_FAILURE(status)) nls::bench::giveUp("usearch");
                    usearch_close(search);
                }
                asm volatile("" : : "r"(sum));
            }};
}

void searchFor(const Charset& charset, const std::string& work, const std::shared_ptr<const Texts>& texts,
               const std::vector<std::string>& utf8Patterns, uint16_t mode) {
    const nls::bench::Iconv iconv("UTF-8", charset.iconvName);
    std::vector<std::string> patterns;
    for (const std::string& one : utf8Patterns) patterns.push_back(iconv.convert(one));
    const auto offset = [](const char* text, const void* found) {
        return found == nullptr ? 0 : static_cast<std::size_t>(static_cast<const char*>(found) - text) + 1;
    };
    std::vector<Candidate> peers;
    if (mode == 0) {
        peers.push_back(over("strcasestr", texts, patterns, [=](const char* text, std::size_t, const std::string& p) {
            return offset(text, strcasestr(text, p.c_str()));
        }));
    } else {
        peers.push_back(over("memmem", texts, patterns, [=](const char* text, std::size_t size, const std::string& p) {
            return offset(text, memmem(text, size, p.data(), p.size()));
        }));
        peers.push_back(over("strstr", texts, patterns, [=](const char* text, std::size_t, const std::string& p) {
            return offset(text, std::strstr(text, p.c_str()));
        }));
    }
    peers.push_back(usearch(texts, utf8Patterns, mode));
    const Candidate ours =
        over("nls", texts, patterns,
             [locale = charset.locale->get(), mode](const char* text, std::size_t, const std::string& pattern) {
                 return findOurs(locale, mode, text, pattern);
             });
    for (const Candidate& peer : peers)
        nls::bench::compare(work + (mode == 0 ? ", folded" : ", exact"),
                            std::string{charset.label} + ", beside " + peer.name, texts->bytes * patterns.size(),
                            texts->places.size() * patterns.size(), {ours, peer});
}

void searchAll(const Charset& charset) {
    const auto column = std::make_shared<const Texts>(charset, nls::bench::column(charset.language, kRows));
    const auto remarks =
        std::make_shared<const Texts>(charset, nls::bench::columnValues(charset.language, kShortest, kLongest, kRows));
    const std::string prose = nls::bench::text(charset.language, kMebibyte);
    for (const uint16_t mode : {uint16_t{1}, uint16_t{0}}) {
        searchFor(charset, "column, present", column, charset.present, mode);
        searchFor(charset, "column, absent", column, charset.absent, mode);
        searchFor(charset, "remarks", remarks, charset.absent, mode);
        for (const std::string& word : charset.absentLong) {
            const auto closed =
                std::make_shared<const Texts>(charset, std::vector<std::string>{prose + " " + word + " "});
            const auto open = std::make_shared<const Texts>(charset, std::vector<std::string>{prose});
            searchFor(charset, "mebibyte, at its end, " + std::to_string(word.size()), closed, {word}, mode);
            searchFor(charset, "mebibyte, absent, " + std::to_string(word.size()), open, {word}, mode);
        }
    }
}

std::vector<Charset> charsets() {
    static nls::test::MadeCaseTable cases;
    cases.fillFromLibrary();
    std::vector<Charset> all;
    const auto add = [&](const char* label, Language language, const char* iconv, const nlsAttribStruct& attrib,
                         const nlsCollStruct& coll) {
        Charset charset{label, language, iconv, std::make_unique<CollatedLocale>(attrib, coll), {}, {}, {}};
        switch (language) {
            case Language::german:
                charset.present = {"Meyer", "straße", "R-0", "Köln", "Wolfgang"};
                charset.absent = {"Bremen", "Schulze", "gasthof", "Rosenweg 12"};
                charset.absentLong = {"Regenbogen", "Donaudampfschifffahrt"};
                break;
            case Language::russian:
                charset.present = {"Иванов", "Москва", "ул.", "Сергей", "R-0"};
                charset.absent = {"Казань", "Николай", "Тверская", "площадь"};
                charset.absentLong = {"радугами", "превосходительство"};
                break;
            default:
                charset.present = {"田中", "東京都", "ビル", "北区", "R-0"};
                charset.absent = {"名古屋", "三郎", "ホテル", "Osaka"};
                charset.absentLong = {"虹の橋", "おはようございました"};
                break;
        }
        all.push_back(std::move(charset));
    };
    nlsCollStruct codePoints = nls::test::plainCollation();
    codePoints.collKind = 3;
    add("German, 1252", Language::german, "CP1252", nls::test::singleByteCharset(),
        nls::bench::rootCollation("windows-1252"));
    add("Russian, 1251", Language::russian, "CP1251", nls::test::singleByteCharset(),
        nls::bench::rootCollation("windows-1251"));
    add("Japanese, Shift-JIS", Language::japanese, "SHIFT-JIS", nls::test::sjisCharset(), nls::test::plainCollation());
    add("Japanese, UTF-8", Language::japanese, "UTF-8", nls::test::utf8Charset(), codePoints);
    all.back().locale->get()->caseTable = cases.get();
    add("German, UTF-8", Language::german, "UTF-8", nls::test::utf8Charset(), codePoints);
    all.back().locale->get()->caseTable = cases.get();
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    static const std::vector<Charset> all = charsets();
    for (const Charset& charset : all) searchAll(charset);
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
