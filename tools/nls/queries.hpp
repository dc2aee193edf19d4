// What the library answers of a handle, a locale and a conversion, by number (nls/properties.h).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nls/nls.h"

namespace nls::tool {

// The numbers of a list: of its length, and of its text.
struct ListNumbers {
    uint32_t length, text;
};
inline constexpr ListNumbers charsetList{NLS_PROP_CHARSETS_LENGTH, NLS_PROP_CHARSETS};
inline constexpr ListNumbers collationList{NLS_PROP_COLLATIONS_LENGTH, NLS_PROP_COLLATIONS};
inline constexpr ListNumbers caseList{NLS_PROP_CASES_LENGTH, NLS_PROP_CASES};
inline constexpr ListNumbers conversionList{NLS_PROP_CONVERSIONS_LENGTH, NLS_PROP_CONVERSIONS};

// The items of a list, in the order of the data file. Throws a Failure where the library refuses.
std::vector<std::string> listOf(const nlsHandle& handle, ListNumbers numbers);
std::vector<std::string> listOf(const nlsLocale& locale, ListNumbers numbers);

// Throws a Failure where the library refuses; of a conversion nothing is what it doesn't know.
uint32_t numberOf(const nlsLocale& locale, uint32_t property);
std::optional<uint32_t> numberOf(const nlsConversion& conversion, uint32_t property);

// "CHARSET NAME" and "SOURCE -> TARGET" in two.
struct Pair {
    std::string first, second;
};
Pair pairOf(const std::string& item, const std::string& between);

}  // namespace nls::tool
