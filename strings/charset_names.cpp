#include "strings/charset_names.hpp"

#include "collation/compare.hpp"
#include "core/base/names.hpp"

namespace nls {

// clang-format off
const char* const zelCharset[] = {
    // Arabic
    "709", "708", "721", "711", "786", "714", "710", "720",
    // International standards, and sets of single makers and countries
    "ISO6937", "ISO8859-1", "ISO8859-2", "ISO8859-5", "ISO8859-8", "ISO8859-15", "ROMAN-8", "MAZOVIA", "KOI8-R",
    // DOS
    "IBM850", "IBM851", "IBM852", "IBM857", "IBM858", "IBM861", "IBM862", "IBM866", "IBM437",
    // EBCDIC
    "IBM037", "IBM278", "IBM280", "IBM500", "IBM297", "IBM273", "IBM277", "IBM284",
    // Windows
    "1250", "1251", "1252", "1253", "1254", "1256", "1257",
    // Multi-byte
    "SHIFT-JIS", "EUCJIS", "KSC5601", "BIG-5", "GB2312", "CP949", "CP1361", "CP950", "CP950-HKSCS", "CP936",
    // Thai
    "620-2533",
    // Unicode
    "UTF-8", "UTF-16", "UTF-32", "UCS2",
    nullptr,
};
// clang-format on
static_assert(sizeof zelCharset / sizeof zelCharset[0] == 56 + 1);

const char* canonicalCharsetName(const char* name) {
    for (const char* const* entry = zelCharset; *entry != nullptr; ++entry) {
        if (sameName(*entry, name)) return *entry;
    }
    return nullptr;
}

FoundName canonicalCharsetNameUnder(const nlsLocale& locale, const char* name) {
    constexpr uint16_t kFolded = 0;
    const auto textOf = [](const char* bytes) { return Text::of(reinterpret_cast<const unsigned char*>(bytes), -1); };
    for (const char* const* entry = zelCharset; *entry != nullptr; ++entry) {
        const Compared compared = compareTexts(locale, nullptr, textOf(name), textOf(*entry), kFolded);
        if (compared.status != NLS_OK) return {compared.status, nullptr};
        if (static_cast<uint16_t>(compared.sign) == 0) return {NLS_OK, *entry};
    }
    return {NLS_END_OF_STRING, nullptr};
}

}  // namespace nls
