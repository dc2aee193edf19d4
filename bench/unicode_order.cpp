// The order of characters' own values beside ICU's root collator, on column values of 8 to 64 bytes.
//
// Pairs: random, neighbours in order, equal, and differing in case alone. Exact comparison stands beside the tertiary
// strength, folded beside the secondary.
//   bench_unicode_order [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <unicode/ucol.h>

#include <algorithm>
#include <random>

#include "bench/support/charset_work.hpp"
#include "bench/support/peers.hpp"
#include "tests/support/case_locale.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::giveUp;
using nls::bench::Language;
using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string inUpperCase(const std::string& text) {
    static nls::test::MadeCaseTable table;
    static const bool filled = (table.fillFromLibrary(), true);
    static nls::test::HandLocale locale{nls::test::utf8Charset()};
    if (filled) locale.get()->caseTable = table.get();
    std::string upper(text.size() * 2 + 1, '\0');
    const nlsStr from{const_cast<unsigned char*>(nls::test::bytesOf(text)), 0, 0};
    nlsStr to{reinterpret_cast<unsigned char*>(upper.data()), static_cast<int32_t>(upper.size()), 0};
    if (nlsUpperCase(locale.get(), nullptr, &from, &to) != NLS_OK) giveUp("upper case");
    upper.resize(to.strLength);
    return upper;
}

Pairs pairsOf(const std::string& kind, std::vector<std::string> values) {
    Pairs pairs;
    std::mt19937 random{1};
    if (kind == "neighbours") std::sort(values.begin(), values.end());
    for (std::size_t i = 0; i + 1 < values.size(); ++i) {
        const std::string& a = values[i];
        pairs.emplace_back(a, kind == "random"       ? values[random() % values.size()]
                              : kind == "neighbours" ? values[i + 1]
                              : kind == "case"       ? inUpperCase(a)
                                                     : a);
    }
    std::shuffle(pairs.begin(), pairs.end(), random);
    return pairs;
}

Candidate ours(const std::shared_ptr<const Pairs>& pairs, const nlsLocale* locale, uint16_t mode) {
    return {
        "nls", [pairs, locale, mode] {
            unsigned signs = 0;
            for (const auto& [a, b] : *pairs) {
                uint16_t sign = 0;
                if (nlsCompareN(locale, nullptr, nls::test::bytesOf(a), nls::test::bytesOf(b),
                                static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()), mode, &sign) != NLS_OK)
                    giveUp("nls: compare");
                signs += sign;
            }
            if (signs == 1) giveUp("signs");  // keeps the loop
        }};
}

Candidate icuRoot(const std::shared_ptr<const Pairs>& pairs, UCollationStrength strength) {
    UErrorCode error = U_ZERO_ERROR;
    UCollator* const collator = ucol_open("", &error);
    if (U_FAILURE(error)) giveUp("ucol_open");
    ucol_setStrength(collator, strength);
    return {"ICU root", [pairs, collator] {
                int signs = 0;
                for (const auto& [a, b] : *pairs) {
                    UErrorCode status = U_ZERO_ERROR;
                    signs += ucol_strcollUTF8(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                                              static_cast<int32_t>(b.size()), &status);
                }
                if (signs == 1 << 30) giveUp("signs");
            }};
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    static nls::test::MadeCaseTable table;
    table.fillFromLibrary();
    static nlsCollStruct coll{};
    coll.collKind = 3;
    nls::test::HandLocale locale{nls::test::utf8Charset()};
    locale.get()->caseTable = table.get();
    locale.get()->coll = &coll;
    constexpr std::size_t kValues = 200000;
    for (const Language language : {Language::ascii, Language::german, Language::russian, Language::japanese})
        for (const char* const kind : {"random", "neighbours", "equal", "case"}) {
            const auto pairs =
                std::make_shared<const Pairs>(pairsOf(kind, nls::bench::columnValues(language, 8, 64, kValues)));
            std::size_t bytes = 0;
            for (const auto& [a, b] : *pairs) bytes += a.size() + b.size();
            const std::string label = std::string(languageName(language)) + " " + kind;
            nls::bench::compare("compare folded", label, bytes, pairs->size(),
                                {ours(pairs, locale.get(), 0), icuRoot(pairs, UCOL_SECONDARY)});
            nls::bench::compare("compare exactly", label, bytes, pairs->size(),
                                {ours(pairs, locale.get(), 1), icuRoot(pairs, UCOL_TERTIARY)});
        }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
