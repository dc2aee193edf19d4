// Conversion through a converter of ICU's, by way of UTF-16: of a charset that the data file leaves to ICU, to and from
// UTF-16 in either byte order or UTF-8. Tested by tests/icu/icu_convert_test.cpp.
#pragma once

#include <cstdint>

#include "convmap/conv_table.hpp"
#include "core/base/views.hpp"
#include "icu/entry_points.hpp"
#include "nls/base.h"
#include "nls/status.h"

namespace nls {

// `length` is the bytes written, without a terminator; it counts where `told`.
struct IcuConverted {
    nlsStatus status;
    bool told;
    uint32_t length;
};

// A source is read up to its NUL, of 16 bits for UTF-16, whatever `sourceLength` says: that sizes the work, in units
// for UTF-16 and else in bytes. The pivot of a text in UTF-8 lies in the tail of the target. REQUIRES: a table of type
// 5 or 6, and a source that is terminated. A table without a converter answers NLS_NO_CONV_TABLE.
IcuConverted convertByIcu(ConvTable table, ByteSpan target, const unsigned char* source, uint32_t sourceLength);

}  // namespace nls
