// The numbers that a caller asks for: of a charset, of a conversion, of memory.
// Tested by tests/core/properties_test.cpp.
#pragma once

#include <cstdint>
#include <optional>

#include "core/base/charset.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// Nothing for a number that isn't one of a charset's own.
std::optional<uint32_t> charsetProperty(Charset charset, uint32_t property);

// Nothing where they aren't known for the type of the conversion. REQUIRES: an attribute table in its target.
std::optional<uint32_t> largestGrowth(const nlsConversion& conversion);
std::optional<uint32_t> largestCharacter(const nlsConversion& conversion);

// Bytes of the image of a locale's tables. REQUIRES: a collation; an attribute table.
uint32_t imageSizeOf(const nlsLocale& locale);

}  // namespace nls
