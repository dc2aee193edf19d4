// The order of characters' own values beside ICU's root collator, on columns of 200,000 values of 8 to 64 bytes.
//
// Pairs: random, neighbours in order, equal, and differing in case alone. Exact comparison stands beside the tertiary
// strength, folded beside the secondary. In the rows "memcmp" and "empty call" these take our place: for scale, and as
// the least that fetching a pair and calling costs.
//   bench_unicode_order [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>

#include "bench/support/charset_work.hpp"
#include "bench/support/collators.hpp"
#include "bench/support/columns.hpp"
#include "bench/support/peers.hpp"
#include "tests/support/case_locale.hpp"

namespace {

using nls::bench::giveUp;
using nls::bench::IcuCollator;
using nls::bench::Language;

constexpr std::size_t kValues = 200'000;

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

const nlsLocale* locale() {
    static nls::test::MadeCaseTable table;
    static nlsCollStruct coll{};
    static nls::test::HandLocale made{nls::test::utf8Charset()};
    if (made.get()->coll == nullptr) {
        table.fillFromLibrary();
        coll.collKind = 3;
        made.get()->caseTable = table.get();
        made.get()->coll = &coll;
    }
    return made.get();
}

std::string inUpperCase(std::string text) {
    std::string upper(text.size() * 2 + 1, '\0');
    const nlsStr from{reinterpret_cast<unsigned char*>(text.data()), 0, 0};
    nlsStr to{reinterpret_cast<unsigned char*>(upper.data()), static_cast<int32_t>(upper.size()), 0};
    if (nlsUpperCase(locale(), nullptr, &from, &to) != NLS_OK) giveUp("upper case");
    upper.resize(to.strLength);
    return upper;
}

// Pairs of texts one behind the other in the order in which they are compared, each closed by a NUL: what is measured
// is the comparison, not the way of a text to the processor.
class Pairs {
public:
    void add(const std::string& a, const std::string& b) {
        for (const std::string* const text : {&a, &b}) {
            ends_.push_back(block_.size() + text->size());
            block_.append(*text).push_back('\0');
        }
    }
    template <typename Compare>
    void compareAll(Compare compare) const {
        int signs = 0;
        std::size_t start = 0;
        for (std::size_t i = 0; i < ends_.size(); i += 2) {
            const std::string_view a{block_.data() + start, ends_[i] - start};
            start = ends_[i] + 1;
            const std::string_view b{block_.data() + start, ends_[i + 1] - start};
            start = ends_[i + 1] + 1;
            signs += compare(a, b);
        }
        asm volatile("" : : "r"(signs));
    }
    std::size_t count() const { return ends_.size() / 2; }
    std::size_t bytes() const { return block_.size() - ends_.size(); }

private:
    std::string block_;
    std::vector<std::size_t> ends_;
};

std::shared_ptr<const Pairs> pairsOf(const std::string& kind, std::vector<std::string> values) {
    const auto pairs = std::make_shared<Pairs>();
    std::mt19937 random{1};
    std::vector<std::size_t> order(values.size() - 1);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), random);
    if (kind == "neighbours") std::sort(values.begin(), values.end());
    for (const std::size_t i : order)
        pairs->add(values[i], kind == "random"       ? values[random() % values.size()]
                              : kind == "neighbours" ? values[i + 1]
                              : kind == "case"       ? inUpperCase(values[i])
                                                     : values[i]);
    return pairs;
}

// Of the shape of nlsCompareN.
#ifdef __clang__
[[gnu::noinline]]
#else
[[gnu::noipa]]
#endif
nlsStatus
compareNothing(const nlsLocale*, nlsTlsBlock*, const unsigned char*, const unsigned char*, int32_t, int32_t, uint16_t,
               uint16_t* result) {
    *result = 0;
    return NLS_OK;
}

template <auto compareN>
int compareBy(const nlsLocale* by, std::string_view a, std::string_view b, uint16_t mode) {
    uint16_t sign = 0;
    if (compareN(by, nullptr, bytesOf(a), bytesOf(b), static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()),
                 mode, &sign) != NLS_OK)
        giveUp("nls: compare");
    return sign;
}

void comparePairs(const std::string& label, const std::shared_ptr<const Pairs>& pairs) {
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
        const auto icu = std::make_shared<IcuCollator>(mode == 0 ? UCOL_SECONDARY : UCOL_TERTIARY);
        nls::bench::compare(
            mode == 0 ? "compare folded" : "compare exactly", label, pairs->bytes(), pairs->count(),
            {{"nls",
              [=, by = locale()] {
                  pairs->compareAll([=](auto a, auto b) { return compareBy<nlsCompareN>(by, a, b, mode); });
              }},
             {"ICU root", [=] { pairs->compareAll([&](auto a, auto b) { return icu->compare(a, b); }); }}});
    }
}

// What can be reached at most.
void compareLimits(const std::string& label, const std::shared_ptr<const Pairs>& pairs) {
    const auto icu = std::make_shared<IcuCollator>(UCOL_TERTIARY);
    const nls::bench::Candidate peer{"ICU root",
                                     [=] { pairs->compareAll([&](auto a, auto b) { return icu->compare(a, b); }); }};
    nls::bench::compare("memcmp", label, pairs->bytes(), pairs->count(),
                        {{"memcmp",
                          [=] {
                              pairs->compareAll([](auto a, auto b) {
                                  return std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
                              });
                          }},
                         peer});
    nls::bench::compare("empty call", label, pairs->bytes(), pairs->count(),
                        {{"empty call",
                          [=, by = locale()] {
                              pairs->compareAll([=](auto a, auto b) { return compareBy<compareNothing>(by, a, b, 1); });
                          }},
                         peer});
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    for (const Language language : {Language::german, Language::russian, Language::japanese})
        for (const char* const kind : {"random", "neighbours", "equal", "case"}) {
            const std::string label = std::string(languageName(language)) + " " + kind;
            const auto pairs = pairsOf(kind, nls::bench::column(language, kValues));
            comparePairs(label, pairs);
            compareLimits(label, pairs);
        }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
