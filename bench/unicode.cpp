// The forms of Unicode into each other, beside ICU and iconv.
//
// One text of a mebibyte in UTF-8, strings of 12 to 16 bytes and column values of 8 to 64 bytes, in many languages. Our
// entry is convertBytes with the table of a conversion object. The last rows show how near ASCII comes to a copy of its
// own result, which bounds it from above.
//   bench_unicode [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/support/compare.hpp"
#include "bench/support/peers.hpp"
#include "bench/support/tables.hpp"
#include "bench/support/texts.hpp"
#include "core/base/cpu.hpp"
#include "nls/convert.h"
#include "nls/status.h"

namespace {

using nls::bench::Candidate;
using nls::bench::giveUp;
using nls::bench::Language;

// What one candidate converts: all texts, one call each, in some form of Unicode.
struct Work {
    std::vector<std::string> texts;
    std::size_t bytes = 0, longest = 0;

    explicit Work(std::vector<std::string> all) : texts(std::move(all)) {
        for (const std::string& text : texts) {
            bytes += text.size();
            longest = std::max(longest, text.size());
        }
    }
};
using WorkPtr = std::shared_ptr<const Work>;

WorkPtr inForm(const Work& utf8, const std::string& form) {
    const nls::bench::Iconv iconv("UTF-8", form);
    std::vector<std::string> texts;
    for (const std::string& text : utf8.texts) texts.push_back(iconv.convert(text));
    return std::make_shared<const Work>(std::move(texts));
}

// convert(source, target, room) runs over all texts.
template <typename Convert>
Candidate candidate(const char* name, const WorkPtr& work, Convert convert) {
    const auto target = std::make_shared<std::string>(work->longest * 4 + 64, '\0');
    return {name, [work, target, convert] {
                for (const std::string& text : work->texts) convert(text, target->data(), target->size());
            }};
}

Candidate ours(const WorkPtr& work, const char* from, const char* to) {
    const nlsConvTable* const table = nls::bench::table(from, to);
    return candidate("nls", work, [table](const std::string& text, char* target, std::size_t room) {
        uint32_t length = 0;
        const nlsStatus status = convertBytes(reinterpret_cast<unsigned char*>(target), static_cast<int32_t>(room),
                                              reinterpret_cast<const unsigned char*>(text.data()),
                                              static_cast<int32_t>(text.size()), nullptr, 0, table, &length, 0);
        if (status != NLS_OK) giveUp("nls: status " + std::to_string(status));
    });
}

Candidate iconvOf(const WorkPtr& work, const char* from, const char* to) {
    const auto iconv = std::make_shared<nls::bench::Iconv>(from, to);
    return candidate("iconv", work, [iconv](const std::string& text, char* target, std::size_t room) {
        iconv->convert(text, target, room);
    });
}

Candidate icuConverter(const WorkPtr& work, const char* from, const char* to) {
    const auto icu = std::make_shared<nls::bench::IcuPair>(from, to);
    return candidate("ICU converters", work, [icu](const std::string& text, char* target, std::size_t room) {
        icu->convertStreaming(text, target, room);
    });
}

// The functions of ustring.h: kTo and kFrom are the element types of both sides.
template <typename To, typename From, auto kFunction>
Candidate icuFunction(const char* name, const WorkPtr& work) {
    return candidate(name, work, [](const std::string& text, char* target, std::size_t room) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        kFunction(reinterpret_cast<To*>(target), static_cast<int32_t>(room / sizeof(To)), &length,
                  reinterpret_cast<const From*>(text.data()), static_cast<int32_t>(text.size() / sizeof(From)), &error);
        if (U_FAILURE(error)) giveUp(std::string("ICU: ") + u_errorName(error));
    });
}

void compareForms(const std::string& label, const WorkPtr& utf8) {
    const WorkPtr utf16 = inForm(*utf8, "UTF-16LE"), utf16be = inForm(*utf8, "UTF-16BE");
    const WorkPtr utf32 = inForm(*utf8, "UTF-32LE");
    const auto row = [&](const char* work, const WorkPtr& source, const std::vector<Candidate>& candidates) {
        nls::bench::compare(work, label, source->bytes, source->texts.size(), candidates);
    };
    row("UTF-8 to UTF-16", utf8,
        {ours(utf8, "UTF-8", "UTF-16"), icuFunction<UChar, char, u_strFromUTF8>("u_strFromUTF8", utf8),
         icuFunction<UChar, char, u_strFromUTF8Lenient>("u_strFromUTF8Lenient", utf8)});
    row("UTF-16 to UTF-8", utf16,
        {ours(utf16, "UTF-16", "UTF-8"), icuFunction<char, UChar, u_strToUTF8>("u_strToUTF8", utf16)});
    row("UTF-8 to UTF-16BE", utf8,
        {ours(utf8, "UTF-8", "UTF-16BE"), icuConverter(utf8, "UTF-8", "UTF-16BE"), iconvOf(utf8, "UTF-8", "UTF-16BE")});
    row("UTF-16BE to UTF-8", utf16be,
        {ours(utf16be, "UTF-16BE", "UTF-8"), icuConverter(utf16be, "UTF-16BE", "UTF-8"),
         iconvOf(utf16be, "UTF-16BE", "UTF-8")});
    row("UTF-8 to UTF-32", utf8,
        {ours(utf8, "UTF-8", "UTF-32"), icuConverter(utf8, "UTF-8", "UTF-32LE"), iconvOf(utf8, "UTF-8", "UTF-32LE")});
    row("UTF-32 to UTF-8", utf32,
        {ours(utf32, "UTF-32", "UTF-8"), icuConverter(utf32, "UTF-32LE", "UTF-8"),
         iconvOf(utf32, "UTF-32LE", "UTF-8")});
    row("UTF-16 to UTF-32", utf16,
        {ours(utf16, "UTF-16", "UTF-32"), icuFunction<UChar32, UChar, u_strToUTF32>("u_strToUTF32", utf16),
         iconvOf(utf16, "UTF-16LE", "UTF-32LE")});
    row("UTF-32 to UTF-16", utf32,
        {ours(utf32, "UTF-32", "UTF-16"), icuFunction<UChar, UChar32, u_strFromUTF32>("u_strFromUTF32", utf32),
         iconvOf(utf32, "UTF-32LE", "UTF-16LE")});
}

// ASCII to UTF-16 beside a copy of what it writes: the writing alone takes that long.
void compareWithCopy(std::size_t bytes) {
    const auto utf8 = std::make_shared<const Work>(std::vector{nls::bench::text(Language::ascii, bytes)});
    const WorkPtr utf16 = inForm(*utf8, "UTF-16LE");
    const auto copy = [utf16](const std::string&, char* target, std::size_t) {
        std::copy(utf16->texts[0].begin(), utf16->texts[0].end(), target);  // a memcpy
    };
    nls::bench::compare("UTF-8 to UTF-16 beside memcpy of the result",
                        "ASCII, " + std::to_string(bytes / 1024) + " KiB", utf8->bytes, 1,
                        {ours(utf8, "UTF-8", "UTF-16"), candidate("memcpy", utf8, copy)});
}

void compareLanguage(Language language, bool shortToo) {
    const std::string name = nls::bench::languageName(language);
    const auto work = [](std::vector<std::string> texts) { return std::make_shared<const Work>(std::move(texts)); };
    compareForms(name, work({nls::bench::text(language, 1 << 20)}));
    if (!shortToo) return;
    compareForms(name + ", 16 bytes", work(nls::bench::columnValues(language, 12, 16, 1000)));
    compareForms(name + ", 8 to 64 bytes", work(nls::bench::columnValues(language, 8, 64, 1000)));
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        constexpr std::string_view kLevel = "--cpu-level=";
        if (std::string_view{argv[i]}.starts_with(kLevel))
            nls::limitCpuLevel(nls::CpuLevel{static_cast<int32_t>(std::strtol(argv[i] + kLevel.size(), nullptr, 10))});
        else
            arguments.push_back(argv[i]);
    }
    constexpr Language kWithShort[] = {Language::ascii, Language::german,   Language::russian,
                                       Language::thai,  Language::japanese, Language::emoji};
    constexpr Language kLong[] = {Language::french, Language::polish, Language::greek, Language::chineseSimplified,
                                  Language::korean};
    for (const Language language : kWithShort) compareLanguage(language, true);
    for (const Language language : kLong) compareLanguage(language, false);
    for (const std::size_t kibibytes : {16U, 64U, 1024U}) compareWithCopy(kibibytes << 10);
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
