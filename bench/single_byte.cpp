// Single-byte charsets to and from UTF-8 and to each other, beside ICU, iconv, memcpy and a plain loop.
//
// One text of a mebibyte, strings of 16 bytes and column values of 8 to 64 bytes. The tables are those
// of the real data file.
//   bench_single_byte [--cpu-level=1|2|3] [flags of Google Benchmark]
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/charset_work.hpp"
#include "bench/support/tables.hpp"

namespace {

using nls::bench::Candidate;
using nls::bench::inCharset;
using nls::bench::kUtf8;
using nls::bench::Language;
using nls::bench::Name;
using nls::bench::strings;
using nls::bench::withPeers;
using nls::bench::Work;

Candidate copying(const std::shared_ptr<const Work>& work) {
    return nls::bench::candidate("memcpy", work, [](const std::string& text, std::string& target) {
        std::memcpy(target.data(), text.data(), text.size());
    });
}

// A table of 256, byte by byte; kept a function so that every candidate pays for a call.
__attribute__((noinline)) void mapPlainly(const unsigned char* map, const std::string& text, std::string& target) {
    for (std::size_t i = 0; i < text.size(); ++i)
        target[i] = static_cast<char>(map[static_cast<unsigned char>(text[i])]);
}

void compareCharset(const Name& charset, Language language, const char* size, const std::vector<std::string>& texts) {
    const auto utf8 = std::make_shared<const Work>(texts);
    const auto bytes = inCharset(texts, charset);
    const std::string label = std::string(languageName(language)) + " " + charset.nls + size;
    std::vector<Candidate> there = withPeers(bytes, nls::bench::table(charset.nls, "UTF-8"), charset, kUtf8);
    std::vector<Candidate> back = withPeers(utf8, nls::bench::table("UTF-8", charset.nls), kUtf8, charset);
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
    const auto bytes = inCharset(texts, from);
    const auto plain = [table](const std::string& text, std::string& out) {
        mapPlainly(reinterpret_cast<const unsigned char*>(table), text, out);
    };
    const std::string label = std::string(languageName(language)) + " " + from.nls + " to " + to.nls + size;
    std::vector<Candidate> candidates = withPeers(bytes, table, from, to);
    if (texts.size() == 1) candidates = {candidates[0], nls::bench::candidate("plain loop", bytes, plain)};
    nls::bench::compare("byte map", label, bytes->bytes, texts.size(), candidates);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    constexpr struct {
        Name name;
        Language language;
    } kCharsets[] = {{{"1252", "CP1252", "CP1252"}, Language::ascii},
                     {{"1252", "CP1252", "CP1252"}, Language::german},
                     {{"1252", "CP1252", "CP1252"}, Language::french},
                     {{"ISO8859-2", "ISO-8859-2", "ISO-8859-2"}, Language::polish},
                     {{"1251", "CP1251", "CP1251"}, Language::russian},
                     {{"KOI8-R", "KOI8-R", "KOI8-R"}, Language::russian},
                     {{"1253", "CP1253", "CP1253"}, Language::greek},
                     {{"1254", "CP1254", "CP1254"}, Language::turkish},
                     {{"ISO8859-8", "ISO-8859-8", "ISO-8859-8"}, Language::hebrew},
                     {{"1256", "CP1256", "CP1256"}, Language::arabic},
                     {{"620-2533", "TIS-620", "TIS-620"}, Language::thai},
                     {{"IBM037", "IBM037", "IBM037"}, Language::german}};
    for (const auto& row : kCharsets) {
        compareCharset(row.name, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareCharset(row.name, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareCharset(row.name, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    constexpr struct {
        Name from, to;
        Language language;
    } kMaps[] = {{{"1252", "CP1252", "CP1252"}, {"IBM850", "IBM850", "IBM850"}, Language::german},
                 {{"KOI8-R", "KOI8-R", "KOI8-R"}, {"1251", "CP1251", "CP1251"}, Language::russian},
                 {{"IBM037", "IBM037", "IBM037"}, {"ISO8859-1", "ISO-8859-1", "ISO-8859-1"}, Language::german}};
    for (const auto& row : kMaps) {
        compareMaps(row.from, row.to, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareMaps(row.from, row.to, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareMaps(row.from, row.to, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
