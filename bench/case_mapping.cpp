// Lower and upper case beside ICU (ucasemap) and the C library, on the same texts.
//
// One text of a mebibyte, and column values of 8 to 64 bytes; sizes are those in UTF-8. Charsets of one byte have the
// texts in their own bytes, while ICU, which knows no other way, has them in UTF-8. The case tables hold what the C
// library's Unicode locale maps.
//   bench_case_mapping [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <unicode/ucasemap.h>

#include <cctype>
#include <clocale>
#include <cstring>
#include <cwchar>

#include "bench/support/charset_work.hpp"
#include "bench/support/peers.hpp"
#include "tests/support/case_locale.hpp"

namespace {

using nls::CaseForm;
using nls::bench::Candidate;
using nls::bench::giveUp;
using nls::bench::Language;
using nls::bench::Name;
using nls::bench::Work;
using nls::test::HandLocale;
using Shared = std::shared_ptr<const Work>;

unsigned char* bytes(std::string& text) {
    return reinterpret_cast<unsigned char*>(text.data());
}

Candidate ours(const Shared& work, const nlsLocale* locale, CaseForm form) {
    return nls::bench::candidate("nls", work, [locale, form](const std::string& text, std::string& target) {
        const nlsStr from{const_cast<unsigned char*>(nls::test::bytesOf(text)), 0, 0};
        nlsStr to{bytes(target), static_cast<int32_t>(target.size()), 0};
        const nlsStatus status = form == CaseForm::lower ? nlsLowerCase(locale, nullptr, &from, &to)
                                                         : nlsUpperCase(locale, nullptr, &from, &to);
        if (status != NLS_OK) giveUp("nls: case");
    });
}

Candidate icu(const Shared& work, CaseForm form) {
    UErrorCode error = U_ZERO_ERROR;
    static UCaseMap* const map = ucasemap_open("", 0, &error);
    if (U_FAILURE(error)) giveUp("ucasemap_open");
    return nls::bench::candidate("ICU", work, [form](const std::string& text, std::string& target) {
        UErrorCode status = U_ZERO_ERROR;
        (form == CaseForm::lower ? ucasemap_utf8ToLower : ucasemap_utf8ToUpper)(
            map, target.data(), static_cast<int32_t>(target.size()), text.data(), static_cast<int32_t>(text.size()),
            &status);
        if (U_FAILURE(status)) giveUp("ICU: case");
    });
}

// What a program without a library writes: characters decoded, mapped and encoded by the C library.
Candidate wideLibc(const Shared& work, CaseForm form) {
    return nls::bench::candidate("towlower", work, [form](const std::string& text, std::string& target) {
        std::mbstate_t in{}, out{};
        std::size_t written = 0;
        for (const char *place = text.data(), *end = place + text.size(); place != end;) {
            wchar_t c = 0;
            place += std::mbrtowc(&c, place, static_cast<std::size_t>(end - place), &in);
            const auto wide = static_cast<wint_t>(c);
            const wint_t mapped = form == CaseForm::lower ? std::towlower(wide) : std::towupper(wide);
            written += std::wcrtomb(&target[written], static_cast<wchar_t>(mapped), &out);
        }
    });
}

Candidate byteLibc(const Shared& work, CaseForm form) {
    return nls::bench::candidate("tolower", work, [form](const std::string& text, std::string& target) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const int c = static_cast<unsigned char>(text[i]);
            target[i] = static_cast<char>(form == CaseForm::lower ? std::tolower(c) : std::toupper(c));
        }
    });
}

nlsCaseStruct byteTable(const Name& charset) {
    const nls::test::LibraryCase library;
    const nls::bench::Iconv toUtf8{charset.iconv, "UTF-32LE"}, back{"UTF-32LE", charset.iconv};
    nlsCaseStruct table{256, {}, {}};
    for (unsigned c = 0; c < 256; ++c) {
        table.upperMap[c] = table.lowerMap[c] = static_cast<unsigned char>(c);
        char unit[8], mapped[8];
        const char own = static_cast<char>(c);
        if (c >= 0x80 && c < 0xC0) continue;  // signs for the most part, and bytes without a character
        if (toUtf8.convert(std::string_view{&own, 1}, unit, sizeof unit) != 4) continue;
        char32_t point = 0;
        std::memcpy(&point, unit, 4);
        for (const CaseForm form : {CaseForm::upper, CaseForm::lower}) {
            const char32_t to = library(point, form);
            if (to == point || (to > 0xFF && point <= 0xFF)) continue;  // not in the charset
            std::memcpy(unit, &to, 4);
            if (back.convert(std::string_view{unit, 4}, mapped, sizeof mapped) != 1) continue;
            (form == CaseForm::upper ? table.upperMap : table.lowerMap)[c] = static_cast<unsigned char>(mapped[0]);
        }
    }
    return table;
}

void compareForms(const std::string& label, const Shared& utf8, const Shared& own, const nlsLocale* locale) {
    for (const CaseForm form : {CaseForm::lower, CaseForm::upper}) {
        const Candidate libc = own == utf8 ? wideLibc(own, form) : byteLibc(own, form);
        nls::bench::compare(form == CaseForm::lower ? "lower case" : "upper case", label, utf8->bytes,
                            utf8->texts.size(), {ours(own, locale, form), icu(utf8, form), libc});
    }
}

struct Size {
    const char* name;
    std::vector<std::string> (*texts)(Language);
};
const Size kSizes[] = {
    {" 1 MiB", [](Language language) { return std::vector{nls::bench::text(language, std::size_t{1} << 20)}; }},
    {" columns", [](Language language) { return nls::bench::strings(language, 8, 64); }},
};

void registerUtf8() {
    static nls::test::MadeCaseTable table;
    table.fillFromLibrary();
    static HandLocale locale{nls::test::utf8Charset()};
    locale.get()->caseTable = table.get();
    for (const Size& size : kSizes)
        for (const Language language : {Language::ascii, Language::german, Language::russian, Language::greek,
                                        Language::japanese, Language::emoji}) {
            const auto work = std::make_shared<const Work>(size.texts(language));
            compareForms(std::string(languageName(language)) + " UTF-8" + size.name, work, work, locale.get());
        }
}

void registerBytes() {
    constexpr struct {
        Name name;
        Language language;
    } kCharsets[] = {{{"1252", "CP1252", "CP1252"}, Language::ascii},
                     {{"1252", "CP1252", "CP1252"}, Language::german},
                     {{"1251", "CP1251", "CP1251"}, Language::russian}};
    static std::vector<std::unique_ptr<HandLocale>> locales;
    static std::vector<std::unique_ptr<nlsCaseStruct>> tables;
    for (const auto& charset : kCharsets) {
        tables.push_back(std::make_unique<nlsCaseStruct>(byteTable(charset.name)));
        locales.push_back(std::make_unique<HandLocale>(nls::test::singleByteCharset()));
        locales.back()->get()->caseTable = tables.back().get();
        for (const Size& size : kSizes) {
            const std::vector<std::string> texts = size.texts(charset.language);
            compareForms(std::string(languageName(charset.language)) + " " + charset.name.nls + size.name,
                         std::make_shared<const Work>(texts), nls::bench::inCharset(texts, charset.name),
                         locales.back()->get());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    registerUtf8();
    registerBytes();
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
