// The forms of Unicode into each other, beside ICU and iconv.
//
// One text of a mebibyte in UTF-8, strings of 12 to 16 bytes and column values of 8 to 64 bytes, in many languages. Our
// entry is convertBytes with the table of a conversion object. The peers are iconv, ICU's converters, and where ICU has
// a function for the two forms (ustring.h), that one. The last rows show how near ASCII comes to a copy of its own
// result, which bounds it from above.
//   bench_unicode [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/charset_work.hpp"
#include "bench/support/peers.hpp"
#include "bench/support/tables.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::kUtf8;
using nls::bench::Language;
using nls::bench::Name;
using nls::bench::Work;

constexpr Name kUtf16 = {"UTF-16", "UTF-16LE", "UTF-16LE"}, kUtf16be = {"UTF-16BE", "UTF-16BE", "UTF-16BE"};
constexpr Name kUtf32 = {"UTF-32", "UTF-32LE", "UTF-32LE"};

// A function of ustring.h between elements of the types From and To.
template <typename To, typename From, auto kFunction>
Candidate icuFunction(const char* name, const std::shared_ptr<const Work>& work) {
    return nls::bench::candidate(name, work, [name](const std::string& text, std::string& target) {
        UErrorCode error = U_ZERO_ERROR;
        int32_t length = 0;
        kFunction(reinterpret_cast<To*>(target.data()), static_cast<int32_t>(target.size() / sizeof(To)), &length,
                  reinterpret_cast<const From*>(text.data()), static_cast<int32_t>(text.size() / sizeof(From)), &error);
        if (U_FAILURE(error)) nls::bench::giveUp(std::string(name) + ": " + u_errorName(error));
    });
}

using MakeCandidate = Candidate (*)(const char* name, const std::shared_ptr<const Work>& work);
struct Function {
    const char* name;
    MakeCandidate make;
};

void compareForms(const std::string& label, const std::vector<std::string>& utf8) {
    const struct {
        const char* work;
        Name from, to;
        std::vector<Function> functions;
    } kPairs[] = {
        {"UTF-8 to UTF-16",
         kUtf8,
         kUtf16,
         {{"u_strFromUTF8", icuFunction<UChar, char, u_strFromUTF8>},
          {"u_strFromUTF8Lenient", icuFunction<UChar, char, u_strFromUTF8Lenient>}}},
        {"UTF-16 to UTF-8", kUtf16, kUtf8, {{"u_strToUTF8", icuFunction<char, UChar, u_strToUTF8>}}},
        {"UTF-8 to UTF-16BE", kUtf8, kUtf16be, {}},
        {"UTF-16BE to UTF-8", kUtf16be, kUtf8, {}},
        {"UTF-8 to UTF-32", kUtf8, kUtf32, {}},
        {"UTF-32 to UTF-8", kUtf32, kUtf8, {}},
        {"UTF-16 to UTF-32", kUtf16, kUtf32, {{"u_strToUTF32", icuFunction<UChar32, UChar, u_strToUTF32>}}},
        {"UTF-32 to UTF-16", kUtf32, kUtf16, {{"u_strFromUTF32", icuFunction<UChar, UChar32, u_strFromUTF32>}}},
    };
    for (const auto& pair : kPairs) {
        const std::shared_ptr<const Work> source = inCharset(utf8, pair.from);
        std::vector<Candidate> candidates =
            withPeers(source, nls::bench::table(pair.from.nls, pair.to.nls), pair.from, pair.to);
        for (const Function& function : pair.functions) candidates.push_back(function.make(function.name, source));
        nls::bench::compare(pair.work, label, source->bytes, source->texts.size(), candidates);
    }
}

// ASCII to UTF-16 beside a copy of what it writes: the writing alone takes that long.
void compareWithCopy(std::size_t bytes) {
    const std::vector<std::string> utf8 = {nls::bench::text(Language::ascii, bytes)};
    const auto source = std::make_shared<const Work>(utf8), result = inCharset(utf8, kUtf16);
    const auto copy = [result](const std::string&, std::string& target) {
        std::copy(result->texts[0].begin(), result->texts[0].end(), target.begin());
    };
    nls::bench::compare("UTF-8 to UTF-16, and a copy of the result", "ASCII, " + std::to_string(bytes / 1024) + " KiB",
                        source->bytes, 1,
                        {nls::bench::ours(source, nls::bench::table("UTF-8", "UTF-16")),
                         nls::bench::candidate("memmove", source, copy)});
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    constexpr Language kWithShort[] = {Language::ascii, Language::german,   Language::russian,
                                       Language::thai,  Language::japanese, Language::emoji};
    constexpr Language kLong[] = {Language::french, Language::polish, Language::greek, Language::chineseSimplified,
                                  Language::korean};
    for (const Language language : kWithShort) {
        const std::string name = nls::bench::languageName(language);
        compareForms(name, {nls::bench::text(language, 1 << 20)});
        compareForms(name + ", 16 bytes", nls::bench::strings(language, 12, 16));
        compareForms(name + ", 8 to 64 bytes", nls::bench::strings(language, 8, 64));
    }
    for (const Language language : kLong)
        compareForms(nls::bench::languageName(language), {nls::bench::text(language, 1 << 20)});
    for (const std::size_t kibibytes : {16U, 64U, 1024U}) compareWithCopy(kibibytes << 10);
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
