#include "tests/icu/peer.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucol.h>
#include <unicode/unistr.h>
#include <unicode/uversion.h>

#include <cstdlib>

namespace nls::test::peer {
namespace {

UCollator* collatorAt(void* collator) {
    return static_cast<UCollator*>(collator);
}
UConverter* converterAt(void* converter) {
    return static_cast<UConverter*>(converter);
}
int32_t lengthOf(std::u16string_view text) {
    return static_cast<int32_t>(text.size());
}

}  // namespace

int versionOfIcu() {
    UVersionInfo version;
    u_getVersion(version);
    return version[0];
}

std::string orderOf(const void* collator) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const locale =
        ucol_getLocaleByType(static_cast<const UCollator*>(collator), ULOC_ACTUAL_LOCALE, &status);
    return locale != nullptr ? locale : "";
}

std::u16string unitsOf(std::string_view utf8) {
    const auto text = icu::UnicodeString::fromUTF8({utf8.data(), static_cast<int32_t>(utf8.size())});
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

Collator::Collator(const char* locale, int strength) {
    UErrorCode status = U_ZERO_ERROR;
    collator_ = ucol_open(locale, &status);
    if (U_FAILURE(status)) std::abort();
    ucol_setStrength(collatorAt(collator_), static_cast<UCollationStrength>(strength));
}
Collator::~Collator() {
    ucol_close(collatorAt(collator_));
}

int Collator::compare(const std::u16string& a, const std::u16string& b) const {
    return ucol_strcoll(collatorAt(collator_), a.data(), lengthOf(a), b.data(), lengthOf(b));
}

std::string Collator::key(const std::u16string& text) const {
    std::string key(text.size() * 16 + 64, '\0');
    const int32_t length = ucol_getSortKey(collatorAt(collator_), text.data(), lengthOf(text),
                                           reinterpret_cast<uint8_t*>(key.data()), static_cast<int32_t>(key.size()));
    if (length < 1 || static_cast<std::size_t>(length) > key.size()) std::abort();
    key.resize(static_cast<std::size_t>(length) - 1);
    return key;
}

std::vector<unsigned char> Collator::version() const {
    std::vector<unsigned char> both(8);
    ucol_getVersion(collatorAt(collator_), both.data());
    ucol_getUCAVersion(collatorAt(collator_), both.data() + 4);
    return both;
}

Converter::Converter(const char* charset) {
    UErrorCode status = U_ZERO_ERROR;
    converter_ = ucnv_open(charset, &status);
    if (U_FAILURE(status)) std::abort();
}
Converter::~Converter() {
    ucnv_close(converterAt(converter_));
}

std::string Converter::encode(std::u16string_view text) const {
    std::string bytes(text.size() * 16 + 64, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(converterAt(converter_), bytes.data(), static_cast<int32_t>(bytes.size()),
                                           text.data(), lengthOf(text), &status);
    if (U_FAILURE(status)) std::abort();
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::u16string Converter::decode(std::string_view bytes) const {
    std::u16string text(bytes.size() * 2 + 64, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converterAt(converter_), text.data(), lengthOf(text), bytes.data(),
                                         static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status)) std::abort();
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::vector<std::size_t> Converter::bytesAfterUnits(std::u16string_view text) const {
    std::vector<std::size_t> counts;
    std::string bytes(text.size() * 16 + 64, '\0');
    char* target = bytes.data();
    ucnv_reset(converterAt(converter_));
    for (std::size_t i = 0; i < text.size(); ++i) {
        const UChar* source = text.data() + i;
        UErrorCode status = U_ZERO_ERROR;
        ucnv_fromUnicode(converterAt(converter_), &target, bytes.data() + bytes.size(), &source, source + 1, nullptr,
                         i + 1 == text.size(), &status);
        if (U_FAILURE(status)) std::abort();
        counts.push_back(static_cast<std::size_t>(target - bytes.data()));
    }
    return counts;
}

}  // namespace nls::test::peer
