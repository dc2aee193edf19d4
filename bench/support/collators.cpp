#include "bench/support/collators.hpp"

#include <stdlib.h>
#include <unicode/ucasemap.h>
#include <unicode/ucnv.h>
#include <unicode/uiter.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "bench/support/peers.hpp"

namespace nls::bench {

IcuCollator::IcuCollator(UColAttributeValue strength) {
    UErrorCode status = U_ZERO_ERROR;
    collator_.reset(ucol_open("", &status));
    if (U_FAILURE(status)) giveUp("ICU has no root collator");
    ucol_setStrength(collator_.get(), strength);
}

int IcuCollator::compare(std::string_view utf8A, std::string_view utf8B) const {
    UErrorCode status = U_ZERO_ERROR;
    return ucol_strcollUTF8(collator_.get(), utf8A.data(), static_cast<int32_t>(utf8A.size()), utf8B.data(),
                            static_cast<int32_t>(utf8B.size()), &status);
}

std::size_t IcuCollator::key(const std::u16string& text, unsigned char* key, std::size_t room) const {
    const int32_t length = ucol_getSortKey(collator_.get(), text.data(), static_cast<int32_t>(text.size()), key,
                                           static_cast<int32_t>(room));
    if (length <= 0 || static_cast<std::size_t>(length) > room) giveUp("a key of ICU has no room");
    return static_cast<std::size_t>(length);
}

std::u16string utf16Of(const std::string& utf8) {
    std::u16string text(utf8.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(text.data(), static_cast<int32_t>(text.size()), &length, utf8.data(),
                  static_cast<int32_t>(utf8.size()), &status);
    if (U_FAILURE(status)) giveUp("no UTF-8: " + utf8);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string upperCase(const std::string& utf8) {
    UErrorCode status = U_ZERO_ERROR;
    UCaseMap* const map = ucasemap_open("", 0, &status);
    std::string upper(utf8.size() * 3, '\0');
    const int32_t length = ucasemap_utf8ToUpper(map, upper.data(), static_cast<int32_t>(upper.size()), utf8.data(),
                                                static_cast<int32_t>(utf8.size()), &status);
    ucasemap_close(map);
    if (U_FAILURE(status)) giveUp("no upper case: " + utf8);
    upper.resize(static_cast<std::size_t>(length));
    return upper;
}

locale_t compiledLocale(const char* language, const char* charset) {
    static const std::string folder = [] {
        char name[] = "/tmp/nls_bench_XXXXXX";
        if (mkdtemp(name) == nullptr) giveUp("no temporary folder");
        setenv("LOCPATH", name, 1);
        std::atexit([] { std::filesystem::remove_all(getenv("LOCPATH")); });
        return std::string{name};
    }();
    const std::string name = std::string{language} + "." + charset;
    const std::string command =
        std::string{"localedef -c -i "} + language + " -f " + charset + " " + folder + "/" + name + " 2>/dev/null";
    (void)!std::system(command.c_str());
    return newlocale(LC_ALL_MASK, name.c_str(), nullptr);
}

namespace {

// The characters of the bytes 1 to 255; empty where a byte has none.
std::vector<std::u16string> charactersOf(const char* icuCharset) {
    UErrorCode status = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(icuCharset, &status);
    if (U_FAILURE(status)) giveUp(std::string{icuCharset} + ": unknown to ICU");
    std::vector<std::u16string> characters(256);
    for (unsigned byte = 1; byte < 256; ++byte) {
        const char source = static_cast<char>(byte);
        UChar unit[4];
        status = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(converter, unit, 4, &source, 1, &status);
        characters[byte].assign(unit, static_cast<std::size_t>(length));
    }
    ucnv_close(converter);
    return characters;
}

void rank(const std::vector<std::u16string>& characters, UColAttributeValue strength, unsigned char (&map)[256]) {
    const IcuCollator collator{strength};
    const auto order = [&](unsigned a, unsigned b) {
        return ucol_strcoll(collator.get(), characters[a].data(), static_cast<int32_t>(characters[a].size()),
                            characters[b].data(), static_cast<int32_t>(characters[b].size()));
    };
    std::vector<unsigned> bytes;
    for (unsigned byte = 1; byte < 256; ++byte) bytes.push_back(byte);
    std::stable_sort(bytes.begin(), bytes.end(), [&](unsigned a, unsigned b) { return order(a, b) == UCOL_LESS; });
    unsigned char weight = 1;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i != 0 && order(bytes[i - 1], bytes[i]) != UCOL_EQUAL) ++weight;
        map[bytes[i]] = weight;
    }
    for (unsigned byte = 1; byte < 256; ++byte)
        if (characters[byte] == u"ß") map[byte] = 0;
}

}  // namespace

nlsCollStruct rootCollation(const char* icuCharset) {
    const std::vector<std::u16string> characters = charactersOf(icuCharset);
    nlsCollStruct coll{};
    rank(characters, UCOL_TERTIARY, coll.exactMap);
    rank(characters, UCOL_SECONDARY, coll.foldMap);
    coll.collKind = 1;
    coll.collSubKind = 1;
    coll.collMapSize = 256;
    return coll;
}

}  // namespace nls::bench
