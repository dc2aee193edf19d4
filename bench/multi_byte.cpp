// Multi-byte charsets to and from UTF-8 and UTF-16, and Shift-JIS to and from EUC, beside ICU and iconv.
//
// One text of a mebibyte, strings of 16 bytes and column values of 8 to 64 bytes (bytes of UTF-8). The tables are those
// of the real data file.
//   bench_multi_byte [--cpu-level=1|2|3] [flags of Google Benchmark]
#include "bench/support/charset_work.hpp"
#include "bench/support/tables.hpp"

namespace {

using nls::bench::inCharset;
using nls::bench::kUtf8;
using nls::bench::Language;
using nls::bench::Name;
using nls::bench::strings;
using nls::bench::withPeers;

constexpr Name kUtf16 = {"UTF-16LE", "UTF-16LE", "UTF-16LE"};
constexpr Name kSjis = {"SHIFT-JIS", "CP932", "ibm-943_P15A-2003"};
constexpr Name kEuc = {"EUCJIS", "EUC-JP", "EUC-JP"};

constexpr struct {
    Name name;
    Language language;
} kCharsets[] = {{kSjis, Language::japanese},
                 {kEuc, Language::japanese},
                 {{"GB2312", "EUC-CN", "ibm-1383_P110-1999"}, Language::chineseSimplified},
                 {{"CP936", "GBK", "windows-936-2000"}, Language::chineseSimplified},
                 {{"BIG-5", "BIG5", "windows-950-2000"}, Language::chineseTraditional},
                 {{"CP950-HKSCS", "BIG5-HKSCS", "ibm-1375_P100-2008"}, Language::chineseTraditional},
                 {{"KSC5601", "EUC-KR", "ibm-970_P110_P110-2006_U2"}, Language::korean},
                 {{"CP949", "UHC", "windows-949-2000"}, Language::korean}};

void comparePair(const char* work, const Name& from, const Name& to, Language language, const char* size,
                 const std::vector<std::string>& texts) {
    const auto source = inCharset(texts, from);
    const char* const legacy = std::string_view{from.nls}.starts_with("UTF") ? to.nls : from.nls;
    nls::bench::compare(work, std::string(languageName(language)) + " " + legacy + size, source->bytes, texts.size(),
                        withPeers(source, nls::bench::table(from.nls, to.nls), from, to));
}

void compareCharset(const Name& charset, Language language, const char* size, const std::vector<std::string>& texts) {
    comparePair("to UTF-8", charset, kUtf8, language, size, texts);
    comparePair("from UTF-8", kUtf8, charset, language, size, texts);
    comparePair("to UTF-16", charset, kUtf16, language, size, texts);
    comparePair("from UTF-16", kUtf16, charset, language, size, texts);
}

void compareByRule(const char* size, const std::vector<std::string>& texts) {
    comparePair("Shift-JIS to EUC", kSjis, kEuc, Language::japanese, size, texts);
    comparePair("EUC to Shift-JIS", kEuc, kSjis, Language::japanese, size, texts);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> arguments = nls::bench::holdCpuLevel(argc, argv);
    for (const auto& row : kCharsets) {
        compareCharset(row.name, row.language, "", {nls::bench::text(row.language, 1 << 20)});
        compareCharset(row.name, row.language, ", 16 bytes", strings(row.language, 12, 16));
        compareCharset(row.name, row.language, ", 8 to 64 bytes", strings(row.language, 8, 64));
    }
    compareByRule("", {nls::bench::text(Language::japanese, 1 << 20)});
    compareByRule(", 16 bytes", strings(Language::japanese, 12, 16));
    compareByRule(", 8 to 64 bytes", strings(Language::japanese, 8, 64));
    return nls::bench::runComparisons(static_cast<int>(arguments.size()), arguments.data());
}
