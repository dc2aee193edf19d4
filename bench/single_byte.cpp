// Single-byte charsets to and from UTF-8 and to each other, beside ICU, iconv, memcpy and a plain loop.
//
// One text of a mebibyte, strings of 16 bytes and column values of 8 to 64 bytes. The tables are made from iconv's.
//   bench_single_byte [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/support/compare.hpp"
#include "bench/support/peers.hpp"
#include "bench/support/texts.hpp"
#include "core/base/cpu.hpp"
#include "nls/convert.h"
#include "nls/status.h"
#include "tests/support/made_tables.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::Language;

nls::test::Units unitsOf(const std::string& charset) {
    nls::test::Units units{};
    const iconv_t converter = iconv_open("UTF-16LE", charset.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) nls::bench::giveUp("iconv " + charset);
    for (unsigned c = 0; c < 256; ++c) {
        char byte = static_cast<char>(c);
        char* in = &byte;
        char* out = reinterpret_cast<char*>(&units[c]);
        std::size_t left = 1, room = 2;
        if (iconv(converter, &in, &left, &out, &room) != 0) {  // no character: a filler
            units[c] = static_cast<uint16_t>(0xF700 + c);
            iconv(converter, nullptr, nullptr, nullptr, nullptr);
        }
    }
    iconv_close(converter);
    return units;
}

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

struct Charset {
    const char* name;
    Language language;
    std::shared_ptr<nls::test::MadeCharset> tables;
};

std::shared_ptr<const Work> inCharset(const Work& utf8, const std::string& charset) {
    const nls::bench::Iconv iconv("UTF-8", charset);
    std::vector<std::string> texts;
    for (const std::string& text : utf8.texts) texts.push_back(iconv.convert(text));
    return std::make_shared<const Work>(std::move(texts));
}

void compareCharset(const Charset& charset, const char* size, const std::vector<std::string>& texts) {
    const auto utf8 = std::make_shared<const Work>(texts);
    const auto bytes = inCharset(*utf8, charset.name);
    const std::string label = std::string(languageName(charset.language)) + " " + charset.name + size;
    std::vector<Candidate> there = withPeers(bytes, charset.tables->toUtf8(), charset.name, "UTF-8");
    std::vector<Candidate> back = withPeers(utf8, charset.tables->fromUtf8(), "UTF-8", charset.name);
    if (charset.language == Language::ascii) {
        there = {there[0], copying(bytes)};
        back = {back[0], copying(utf8)};
    }
    nls::bench::compare("to UTF-8", label, bytes->bytes, texts.size(), there);
    nls::bench::compare("from UTF-8", label, utf8->bytes, texts.size(), back);
}

// The plain loop over the same table, on the same text.
void compareMaps(const char* from, const char* to, Language language, const char* size,
                 const std::vector<std::string>& texts) {
    const nls::test::Units source = unitsOf(from), target = unitsOf(to);
    auto map = std::array<unsigned char, 256>{};
    for (unsigned c = 0; c < 256; ++c)
        for (unsigned t = 0; t < 256; ++t)
            if (source[c] == target[t]) map[c] = static_cast<unsigned char>(t);
    static std::vector<std::unique_ptr<nls::test::MadeTable>> tables;
    tables.push_back(std::make_unique<nls::test::MadeTable>(nls::test::MadeTable::byteMap(map)));
    const nlsConvTable* const table = *tables.back();
    const auto bytes = inCharset(Work{texts}, from);
    const auto plain = [table](const std::string& text, std::string& out) {
        mapPlainly(reinterpret_cast<const unsigned char*>(table), text, out);
    };
    const std::string label = std::string(languageName(language)) + " " + from + " to " + to + size;
    nls::bench::compare("byte map", label, bytes->bytes, texts.size(),
                        {ours(bytes, table), candidate("plain loop", bytes, plain)});
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
        const char* name;
        Language language;
    } kCharsets[] = {{"CP1252", Language::ascii},      {"CP1252", Language::german},  {"CP1252", Language::french},
                     {"ISO-8859-2", Language::polish}, {"CP1251", Language::russian}, {"KOI8-R", Language::russian},
                     {"CP1253", Language::greek},      {"CP1254", Language::turkish}, {"ISO-8859-8", Language::hebrew},
                     {"CP1256", Language::arabic},     {"TIS-620", Language::thai},   {"IBM037", Language::german}};
    for (const auto& row : kCharsets) {
        const Charset charset{row.name, row.language, std::make_shared<nls::test::MadeCharset>(unitsOf(row.name))};
        static std::vector<Charset> kept;
        kept.push_back(charset);
        compareCharset(charset, "", {nls::bench::text(row.language, 1 << 20)});
        compareCharset(charset, ", 16 bytes", strings(row.language, 12, 16));
        compareCharset(charset, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    constexpr struct {
        const char *from, *to;
        Language language;
    } kMaps[] = {{"CP1252", "IBM850", Language::german},
                 {"KOI8-R", "CP1251", Language::russian},
                 {"IBM037", "ISO-8859-1", Language::german}};
    for (const auto& row : kMaps) {
        compareMaps(row.from, row.to, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareMaps(row.from, row.to, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareMaps(row.from, row.to, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
