// LIKE beside SQLite's matcher (sqlite3_strlike, which folds ASCII alone) on the same text in UTF-8.
//
// Columns of names, addresses and codes of 8 to 64 bytes against the patterns that queries have; then long texts and
// patterns that are meant to take long. Each pattern is asked folded and exactly.
//   bench_like [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/support/charset_work.hpp"
#include "bench/support/collators.hpp"
#include "bench/support/columns.hpp"
#include "bench/support/peers.hpp"
#include "nls/strings.h"
#include "tests/support/case_locale.hpp"
#include "tests/support/hand_collations.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::Language;
using nls::test::CollatedLocale;

constexpr std::size_t kRows = 20'000;

const unsigned char* bytesOf(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}

struct Pattern {
    const char *kind, *utf8;
};

struct Column {
    const char* label;
    Language language;
    const char* iconvName;
    nlsLocale* locale;
    std::vector<Pattern> patterns;
};

// Texts one behind the other, each with its NUL, as rows stand in a page.
class Rows {
public:
    explicit Rows(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            places_.push_back(block_.size());
            block_.append(text).push_back('\0');
        }
    }
    template <typename Matches>
    std::size_t count(Matches matches) const {
        std::size_t found = 0;
        for (const std::size_t place : places_) found += matches(block_.data() + place);
        return found;
    }
    std::size_t size() const { return places_.size(); }
    std::size_t bytes() const { return block_.size() - places_.size(); }

private:
    std::string block_;
    std::vector<std::size_t> places_;
};

using Texts = std::shared_ptr<const Rows>;

std::size_t countOurs(const nlsLocale* locale, const Rows& rows, const std::string& pattern, uint16_t mode) {
    return rows.count([&](const char* text) {
        return nlsSqlLike(locale, nullptr, bytesOf(pattern.c_str()), bytesOf(text), mode, '\\', '_', '%') == 1;
    });
}

std::size_t countSqlite(const Rows& rows, const std::string& pattern) {
    return rows.count([&](const char* text) { return sqlite3_strlike(pattern.c_str(), text, '\\') == 0; });
}

template <typename Count>
Candidate counting(const char* name, Count count) {
    return {name, [count] { asm volatile("" : : "r"(count())); }};
}

std::string inCharset(const char* iconvName, const std::string& utf8) {
    return nls::bench::Iconv("UTF-8", iconvName).convert(utf8);
}

// Folded, both must find the same rows but for letters beyond ASCII, so the patterns have those in their usual case.
void beside(const std::string& work, const Column& column, const Texts& own, const Texts& utf8,
            const std::string& pattern) {
    const std::string ownPattern = inCharset(column.iconvName, pattern);
    const std::size_t ours = countOurs(column.locale, *own, ownPattern, 0), theirs = countSqlite(*utf8, pattern);
    if (ours != theirs)
        std::fprintf(stderr, "%s %s: %zu rows, SQLite %zu\n", column.label, pattern.c_str(), ours, theirs);
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}})
        nls::bench::compare(
            work + " " + pattern.substr(0, 30) + (mode == 0 ? ", folded" : ", exact"), column.label, own->bytes(),
            own->size(),
            {counting("nls", [=, locale = column.locale] { return countOurs(locale, *own, ownPattern, mode); }),
             counting("SQLite", [=] { return countSqlite(*utf8, pattern); })});
}

void compareColumn(const Column& column) {
    const std::vector<std::string> values = nls::bench::column(column.language, kRows);
    std::vector<std::string> own;
    for (const std::string& value : values) own.push_back(inCharset(column.iconvName, value));
    const auto ownRows = std::make_shared<const Rows>(own), utf8Rows = std::make_shared<const Rows>(values);
    for (const Pattern& pattern : column.patterns) beside(pattern.kind, column, ownRows, utf8Rows, pattern.utf8);
}

// Letters, and what takes a matcher that goes back over them the longest.
void compareHostile(const Column& column) {
    const std::string segment = '%' + std::string(15, 'a') + "b%";
    const struct {
        const char* work;
        std::size_t letters;
        std::string pattern;
    } rows[] = {{"10,000 letters", 10'000, "%a%a%a%a%a%b"},
                {"10,000 letters, never ends", 10'000, "%a%a%a%a%a%b%"},
                {"1,000 letters", 1'000, segment},
                {"1,000 letters", 1'000, "%a" + segment}};
    for (const auto& row : rows) {
        const auto text = std::make_shared<const Rows>(std::vector<std::string>{std::string(row.letters, 'a')});
        beside(row.work, column, text, text, row.pattern);
    }
    const auto prose = nls::bench::text(column.language, 100'000);
    beside("100,000 bytes of prose", column,
           std::make_shared<const Rows>(std::vector<std::string>{inCharset(column.iconvName, prose)}),
           std::make_shared<const Rows>(std::vector<std::string>{prose}), "%qx\\_y%");
}

nlsLocale* madeLocale(const nlsAttribStruct& attrib, const nlsCollStruct& coll) {
    static std::vector<std::unique_ptr<CollatedLocale>> made;
    made.push_back(std::make_unique<CollatedLocale>(attrib, coll));
    return made.back()->get();
}

nlsLocale* utf8Locale() {
    static nls::test::MadeCaseTable table;
    nlsCollStruct coll{};
    coll.collKind = 3;
    nlsLocale* const locale = madeLocale(nls::test::utf8Charset(), coll);
    table.fillFromLibrary();
    locale->caseTable = table.get();
    return locale;
}

std::vector<Column> columns() {
    const std::vector<Pattern> german = {{"prefix", "Schä%"},
                                         {"prefix", "a%"},
                                         {"suffix", "%öln"},
                                         {"suffix", "%/x"},
                                         {"contains", "%allee%"},
                                         {"contains", "%, K%"},
                                         {"two parts", "%straße%burg"},
                                         {"two parts", "%R-1%2/x"},
                                         {"_", "M_ller%"},
                                         {"_", "%_ü_%"},
                                         {"_", "_öl%"},
                                         {"_", "_R-_____-_____/x"},
                                         {"escape", "%1\\_%"},
                                         {"escape", "%\\%\\_"},
                                         {"none", "Müller, Anna"},
                                         {"none", "Königstraße 12345, Köln"}};
    const std::vector<Pattern> russian = {{"prefix", "Ива%"},        {"suffix", "%ова"},       {"contains", "%Ленин%"},
                                          {"two parts", "%ул%Мос%"}, {"_", "_етрова%"},        {"_", "%Ю_ий%"},
                                          {"escape", "%1\\_%"},      {"none", "Петрова, Анна"}};
    const std::vector<Pattern> japanese = {{"prefix", "東京%"},     {"suffix", "%ビル"},   {"contains", "%吉田%"},
                                           {"two parts", "%市%桜"}, {"_", "_藤%"},         {"_", "%京_左%"},
                                           {"escape", "%1\\_%"},    {"none", "佐藤, 太郎"}};
    return {{"German, 1252", Language::german, "CP1252",
             madeLocale(nls::test::singleByteCharset(), nls::bench::rootCollation("windows-1252")), german},
            {"Russian, 1251", Language::russian, "CP1251",
             madeLocale(nls::test::singleByteCharset(), nls::bench::rootCollation("windows-1251")), russian},
            {"Japanese, Shift-JIS", Language::japanese, "SHIFT-JIS",
             madeLocale(nls::test::sjisCharset(), nls::test::plainCollation()), japanese},
            {"German, UTF-8", Language::german, "UTF-8", utf8Locale(), german},
            {"Russian, UTF-8", Language::russian, "UTF-8", utf8Locale(), russian},
            {"Japanese, UTF-8", Language::japanese, "UTF-8", utf8Locale(), japanese}};
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    static const std::vector<Column> all = columns();
    for (const Column& column : all) {
        compareColumn(column);
        compareHostile(column);
    }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
