// Comparison and sort keys through ICU, beside ICU called directly.
//
// Pairs of 20,000 column values, under the German phone book's order of the newer build, on the packs of this build.
// "the same calls": what each of our calls asks of ICU, asked directly: the strength, a converter opened and closed,
// texts into UTF-16. What it takes more is what the library adds. "kept open": a caller that knows ICU well, with the
// strength set once, ucol_strcollUTF8 for comparison, and the converter kept open for keys.
//   bench_icu [flags of Google Benchmark]
#include <unicode/ucnv.h>
#include <unicode/ucol.h>

#include <cstdlib>
#include <random>

#include "bench/support/columns.hpp"
#include "bench/support/compare.hpp"
#include "bench/support/peers.hpp"
#include "nls/nls.h"
#include "tests/support/convmap_builder.hpp"
#include "tests/support/open_handle.hpp"

namespace {

using nls::bench::giveUp;
using nls::bench::Language;

constexpr std::size_t kValues = 20'000;
constexpr uint16_t kExact = 1;
constexpr int32_t kKeyRoom = 2000;

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}
int32_t lengthOf(const std::string& text) {
    return static_cast<int32_t>(text.size());
}

void expect(bool good, const char* what) {
    if (!good) giveUp(what);
}

// A locale of ours with a thread's block.
class Ours {
public:
    Ours() {
        uint32_t size = sizeof memory_;
        expect(nlsTlsInit(0, memory_, &size, &tls_) == NLS_OK, "nlsTlsInit");
        expect(nlsCreateLocale(open_.handle, "UTF-8", "ICU_48-de@phonebook", nullptr, &locale_) == NLS_OK, "ICU");
    }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;
    ~Ours() { (void)nlsTlsClose(tls_); }

    int compare(const std::string& a, const std::string& b) const {
        uint16_t sign = 0;
        expect(nlsCompareN(locale_, tls_, bytesOf(a), bytesOf(b), lengthOf(a), lengthOf(b), kExact, &sign) == NLS_OK,
               "nlsCompareN");
        return static_cast<int16_t>(sign);
    }
    int key(const std::string& text, unsigned char* place) const {
        uint16_t length = 0;
        expect(nlsSortKey(locale_, tls_, bytesOf(text), kKeyRoom, kExact, 0, place, &length) == NLS_OK, "nlsSortKey");
        return length;
    }

private:
    nls::test::OpenHandle open_{
        nls::test::ConvmapBuilder{}.attributes("UTF-8", nls::test::utf8()).unicodeCollation("UTF-8", "basic").build()};
    alignas(8) unsigned char memory_[4096] = {};
    nlsTlsBlock* tls_ = nullptr;
    nlsLocale* locale_ = nullptr;
};

class Converter {
public:
    Converter() : converter_(ucnv_open("utf8", &status_)) { expect(status_ <= U_ZERO_ERROR, "ucnv_open"); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() { ucnv_close(converter_); }

    int32_t convert(const std::string& text, UChar* units, int32_t room) {
        status_ = U_ZERO_ERROR;
        const int32_t count = ucnv_toUChars(converter_, units, room, text.data(), lengthOf(text), &status_);
        expect(U_SUCCESS(status_), "ucnv_toUChars");
        return count;
    }

private:
    UErrorCode status_ = U_ZERO_ERROR;
    UConverter* converter_;
};

class Icu {
public:
    Icu() {
        UErrorCode status = U_ZERO_ERROR;
        collator_ = ucol_open("de@collation=phonebook", &status);
        expect(U_SUCCESS(status), "ucol_open");
    }
    Icu(const Icu&) = delete;
    Icu& operator=(const Icu&) = delete;
    ~Icu() { ucol_close(collator_); }

    int compareByTheSameCalls(const std::string& a, const std::string& b) const {
        constexpr int32_t kRoom = 2000;
        ucol_setStrength(collator_, UCOL_TERTIARY);
        Converter utf8;
        UChar first[kRoom], second[kRoom];
        const int32_t countOfFirst = utf8.convert(a, first, lengthOf(a));
        const int32_t countOfSecond = utf8.convert(b, second, lengthOf(b));
        return ucol_strcoll(collator_, first, countOfFirst, second, countOfSecond);
    }
    int compare(const std::string& a, const std::string& b) const {
        UErrorCode status = U_ZERO_ERROR;
        return ucol_strcollUTF8(collator_, a.data(), lengthOf(a), b.data(), lengthOf(b), &status);
    }
    int keyByTheSameCalls(const std::string& text, unsigned char* place) const {
        ucol_setStrength(collator_, UCOL_TERTIARY);
        Converter utf8;
        return keyThrough(utf8, text, place);
    }
    int keyThrough(Converter& utf8, const std::string& text, unsigned char* place) const {
        constexpr int32_t kRoom = 400;
        UChar units[kRoom];
        const int32_t count = utf8.convert(text, units, kRoom);
        return ucol_getSortKey(collator_, units, count, place, kKeyRoom) - 1;
    }

private:
    UCollator* collator_;
};

struct Values {
    std::vector<std::string> texts, others;
    std::size_t bytes = 0;

    explicit Values(Language language) : texts(nls::bench::column(language, kValues)), others(texts) {
        std::shuffle(others.begin(), others.end(), std::mt19937{1});
        for (const std::string& text : texts) bytes += text.size();
    }
    template <typename Compare>
    void compareAll(Compare compare) const {
        int signs = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) signs += compare(texts[i], others[i]);
        asm volatile("" : : "r"(signs));
    }
    template <typename Make>
    void makeKeys(Make make) const {
        unsigned char place[kKeyRoom];
        int lengths = 0;
        for (const std::string& text : texts) lengths += make(text, place);
        asm volatile("" : : "r"(lengths));
    }
};

void expectTheSame(const Values& values, const Ours& ours, const Icu& icu) {
    Converter utf8;
    for (std::size_t i = 0; i < values.texts.size(); ++i) {
        const std::string &a = values.texts[i], &b = values.others[i];
        expect(ours.compare(a, b) == icu.compare(a, b) && ours.compare(a, b) == icu.compareByTheSameCalls(a, b),
               "different signs");
        unsigned char first[kKeyRoom], second[kKeyRoom];
        expect(ours.key(a, first) == icu.keyThrough(utf8, a, second), "different keys");
    }
}

void compareLanguage(Language language) {
    static const Ours ours;
    static const Icu icu;
    const auto values = std::make_shared<Values>(language);
    expectTheSame(*values, ours, icu);
    const std::string label{languageName(language)};
    const nls::bench::Candidate comparison{
        "nls", [=] { values->compareAll([](auto& a, auto& b) { return ours.compare(a, b); }); }};
    const nls::bench::Candidate key{"nls",
                                    [=] { values->makeKeys([](auto& a, auto* place) { return ours.key(a, place); }); }};
    nls::bench::compare(
        "compare", label, 2 * values->bytes, kValues,
        {comparison, {"ICU, the same calls", [=] {
                          values->compareAll([](auto& a, auto& b) { return icu.compareByTheSameCalls(a, b); });
                      }}});
    nls::bench::compare("compare", label, 2 * values->bytes, kValues,
                        {comparison, {"ICU, kept open", [=] {
                                          values->compareAll([](auto& a, auto& b) { return icu.compare(a, b); });
                                      }}});
    nls::bench::compare("key", label, values->bytes, kValues, {key, {"ICU, the same calls", [=] {
                                                                         values->makeKeys([](auto& a, auto* place) {
                                                                             return icu.keyByTheSameCalls(a, place);
                                                                         });
                                                                     }}});
    nls::bench::compare("key", label, values->bytes, kValues, {key, {"ICU, kept open", [=] {
                                                                         Converter utf8;
                                                                         values->makeKeys([&](auto& a, auto* place) {
                                                                             return icu.keyThrough(utf8, a, place);
                                                                         });
                                                                     }}});
}

}  // namespace

int main(int argc, char** argv) {
    expect(setenv("BINPATHX", NLS_ICU_PACKS, 1) == 0, "setenv");
    for (const Language language : {Language::german, Language::russian, Language::japanese}) compareLanguage(language);
    return nls::bench::runComparisons(argc, argv);
}
