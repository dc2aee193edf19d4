#include "tools/mkconvmap/collator.hpp"

#include <unicode/ucol.h>
#include <unicode/utf16.h>

#include <array>

namespace nls::mkconvmap {

void Collator::Close::operator()(UCollator* collator) const {
    ucol_close(collator);
}

Collator::Collator(const Place& place, const std::string& locale) {
    const auto open = [&](UCollationStrength strength) {
        UErrorCode error = U_ZERO_ERROR;
        Handle collator{ucol_open(locale.c_str(), &error)};
        const char* const found =
            U_SUCCESS(error) ? ucol_getLocaleByType(collator.get(), ULOC_VALID_LOCALE, &error) : "";
        if (U_FAILURE(error)) fail(place, "ICU has no collator \"" + locale + "\"");
        if (locale != found) fail(place, "ICU has no collator \"" + locale + "\"; it would take \"" + found + "\"");
        ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &error);
        ucol_setStrength(collator.get(), strength);
        if (U_FAILURE(error)) fail(place, "ICU's collator \"" + locale + "\" can't be made to look at all signs");
        return collator;
    };
    tertiary_ = open(UCOL_TERTIARY);
    secondary_ = open(UCOL_SECONDARY);
}

std::string Collator::key(const UCollator& collator, char32_t character) {
    std::array<UChar, U16_MAX_LENGTH> units;
    int32_t count = 0;
    U16_APPEND_UNSAFE(units.data(), count, static_cast<UChar32>(character));
    std::array<uint8_t, 64> bytes;
    const int32_t size = ucol_getSortKey(&collator, units.data(), count, bytes.data(), bytes.size());
    // The closing NUL is counted. A key of separators alone is that of a character that is passed over.
    std::string key{reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(size - 1)};
    return key.find_first_not_of('\x01') == std::string::npos ? std::string{} : key;
}

}  // namespace nls::mkconvmap
