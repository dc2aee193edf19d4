// Single-byte charsets to and from UTF-8 and to each other, beside ICU, iconv, memcpy and a plain loop.
//
// One text of a mebibyte, strings of 16 bytes and column values of 8 to 64 bytes. The tables are those
// of the real data file.
//   bench_single_byte [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <cstdlib>
#include <cstring>
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
using nls::bench::Language;

// What one candidate converts: all texts, one call each.
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

template <typename Convert>
Candidate candidate(const char* name, const std::shared_ptr<const Work>& work, Convert convert) {
    const auto target = std::make_shared<std::string>(work->longest * 4 + 64, '\0');
    return {name, [work, target, convert] {
                for (const std::string& text : work->texts) convert(text, *target);
            }};
}

Candidate ours(const std::shared_ptr<const Work>& work, const nlsConvTable* table) {
    return candidate("nls", work, [table](const std::string& text, std::string& target) {
        uint32_t length = 0;
        const nlsStatus status =
            convertBytes(reinterpret_cast<unsigned char*>(target.data()), static_cast<int32_t>(target.size()),
                         reinterpret_cast<const unsigned char*>(text.data()), static_cast<int32_t>(text.size()),
                         nullptr, 0, table, &length, 0);
        if (status != NLS_OK)
            nls::bench::giveUp("nls: status " + std::to_string(status) + " on " + text.substr(0, 100));
    });
}

Candidate copying(const std::shared_ptr<const Work>& work) {
    return candidate("memcpy", work, [](const std::string& text, std::string& target) {
        std::memcpy(target.data(), text.data(), text.size());
    });
}

// A table of 256, byte by byte; kept a function so that every candidate pays for a call.
__attribute__((noinline)) void mapPlainly(const unsigned char* map, const std::string& text, std::string& target) {
    for (std::size_t i = 0; i < text.size(); ++i)
        target[i] = static_cast<char>(map[static_cast<unsigned char>(text[i])]);
}

std::vector<Candidate> withPeers(const std::shared_ptr<const Work>& work, const nlsConvTable* table,
                                 const std::string& from, const std::string& to) {
    const auto iconv = std::make_shared<nls::bench::Iconv>(from, to);
    const auto icu = std::make_shared<nls::bench::IcuPair>(from, to);
    return {ours(work, table),
            candidate("iconv", work,
                      [iconv](const std::string& text, std::string& target) {
                          iconv->convert(text, target.data(), target.size());
                      }),
            candidate("ICU streaming", work,
                      [icu](const std::string& text, std::string& target) {
                          icu->convertStreaming(text, target.data(), target.size());
                      }),
            candidate("ICU whole", work, [icu](const std::string& text, std::string& target) {
                icu->convertWhole(text, target.data(), target.size());
            })};
}

// A charset by its name here and by the one that iconv and ICU know.
struct Name {
    const char *nls, *peer;
};

std::shared_ptr<const Work> inCharset(const std::vector<std::string>& utf8, const char* charset) {
    const nls::bench::Iconv iconv("UTF-8", charset);
    std::vector<std::string> texts;
    for (const std::string& text : utf8) texts.push_back(iconv.convert(text));
    return std::make_shared<const Work>(std::move(texts));
}

void compareCharset(const Name& charset, Language language, const char* size, const std::vector<std::string>& texts) {
    const auto utf8 = std::make_shared<const Work>(texts);
    const auto bytes = inCharset(texts, charset.peer);
    const std::string label = std::string(languageName(language)) + " " + charset.nls + size;
    std::vector<Candidate> there = withPeers(bytes, nls::bench::table(charset.nls, "UTF-8"), charset.peer, "UTF-8");
    std::vector<Candidate> back = withPeers(utf8, nls::bench::table("UTF-8", charset.nls), "UTF-8", charset.peer);
    if (language == Language::ascii && texts.size() == 1) {  // the work of a copy: iconv and ICU are far behind it
        there = {there[0], copying(bytes)};
        back = {back[0], copying(utf8)};
    }
    nls::bench::compare("to UTF-8", label, bytes->bytes, texts.size(), there);
    nls::bench::compare("from UTF-8", label, utf8->bytes, texts.size(), back);
}

// Long text beside the plain loop over the same table, short strings beside iconv and ICU.
void compareMaps(const Name& from, const Name& to, Language language, const char* size,
                 const std::vector<std::string>& texts) {
    const nlsConvTable* const table = nls::bench::table(from.nls, to.nls);
    const auto bytes = inCharset(texts, from.peer);
    const auto plain = [table](const std::string& text, std::string& out) {
        mapPlainly(reinterpret_cast<const unsigned char*>(table), text, out);
    };
    const std::string label = std::string(languageName(language)) + " " + from.nls + " to " + to.nls + size;
    std::vector<Candidate> candidates = withPeers(bytes, table, from.peer, to.peer);
    if (texts.size() == 1) candidates = {candidates[0], candidate("plain loop", bytes, plain)};
    nls::bench::compare("byte map", label, bytes->bytes, texts.size(), candidates);
}

std::vector<std::string> strings(Language language, std::size_t shortest, std::size_t longest) {
    return nls::bench::columnValues(language, shortest, longest, 1000);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        constexpr std::string_view kLevel = "--cpu-level=";
        if (std::string_view{argv[i]}.starts_with(kLevel))
            nls::limitCpuLevel(nls::CpuLevel{std::atoi(argv[i] + kLevel.size())});
        else
            arguments.push_back(argv[i]);
    }
    constexpr struct {
        Name name;
        Language language;
    } kCharsets[] = {{{"1252", "CP1252"}, Language::ascii},           {{"1252", "CP1252"}, Language::german},
                     {{"1252", "CP1252"}, Language::french},          {{"ISO8859-2", "ISO-8859-2"}, Language::polish},
                     {{"1251", "CP1251"}, Language::russian},         {{"KOI8-R", "KOI8-R"}, Language::russian},
                     {{"1253", "CP1253"}, Language::greek},           {{"1254", "CP1254"}, Language::turkish},
                     {{"ISO8859-8", "ISO-8859-8"}, Language::hebrew}, {{"1256", "CP1256"}, Language::arabic},
                     {{"620-2533", "TIS-620"}, Language::thai},       {{"IBM037", "IBM037"}, Language::german}};
    for (const auto& row : kCharsets) {
        compareCharset(row.name, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareCharset(row.name, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareCharset(row.name, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    constexpr struct {
        Name from, to;
        Language language;
    } kMaps[] = {{{"1252", "CP1252"}, {"IBM850", "IBM850"}, Language::german},
                 {{"KOI8-R", "KOI8-R"}, {"1251", "CP1251"}, Language::russian},
                 {{"IBM037", "IBM037"}, {"ISO8859-1", "ISO-8859-1"}, Language::german}};
    for (const auto& row : kMaps) {
        compareMaps(row.from, row.to, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareMaps(row.from, row.to, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareMaps(row.from, row.to, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
