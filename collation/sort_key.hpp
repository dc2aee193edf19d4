// Sort keys: byte strings, closed by a NUL, whose plain unsigned order is the order of the texts that they stand for.
// Tested by tests/collation/sort_key_test.cpp against tests/reference/compare.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collation/compare.hpp"
#include "core/base/views.hpp"
#include "nls/records.h"
#include "nls/status.h"

namespace nls {

// `length` counts with status NLS_OK alone: bytes before the key's NUL, all of the buffer if a site's own sort wrote
// none.
struct SortKey {
    nlsStatus status;
    std::size_t length;
};

// What a caller asks for besides the text.
struct KeyOptions {
    uint16_t mode;             // of the comparison that the key agrees with
    bool trim;                 // without the blanks at the end of the text
    bool primaryOnly = false;  // of ICU alone: at the primary strength, whatever the mode

    static KeyOptions of(uint16_t options, uint16_t trim) {
        constexpr uint16_t kModeBits = 0x9FFF, kPrimaryOnly = 0x4000;
        return {static_cast<uint16_t>(options & kModeBits), trim != 0, (options & kPrimaryOnly) != 0};
    }
};

// A key that doesn't fit is cut, but for kind 3, which answers NLS_BUF_SMALL; so does an empty `key` of every kind.
SortKey makeSortKey(const Collation& by, nlsTlsBlock* tls, const unsigned char* src, ByteSpan key, KeyOptions options);

}  // namespace nls
