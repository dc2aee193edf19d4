// Entries for conversions: which type serves a pair of charsets, and the record that it needs.
// Tested by tests/tools/read_back_test.cpp and tests/real/real_forms_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "tools/mkconvmap/charset_source.hpp"
#include "tools/mkconvmap/data_record.hpp"
#include "tools/mkconvmap/multi_byte.hpp"

namespace nls::mkconvmap {

struct ConversionEntry {
    uint8_t code = 0;     // the file's code of the conversion type
    uint8_t subKind = 0;  // 1 on a byte map that loses nothing
    std::optional<DataRecord> record;
};

// A charset with what its mapping became; `multiByte` is set for multi-byte charsets alone.
struct CompiledCharset {
    CharsetSource source;
    std::optional<MultiByteTables> multiByte;
};

// The entries from `from` to `to` and back. Fails at `place` where no type serves the pair.
std::array<ConversionEntry, 2> conversionsBetween(const Place& place, const CompiledCharset& from,
                                                  const CompiledCharset& to);
// The same for Shift-JIS and EUC, which convert by arithmetic.
std::array<ConversionEntry, 2> conversionsByRule(const Place& place, const CompiledCharset& from,
                                                 const CompiledCharset& to);

// The map between two single-byte charsets: bytes without a counterpart become the target's "?".
struct ByteMap {
    std::array<uint8_t, 256> map{};
    int lost = 0;  // bytes without a counterpart
};
ByteMap byteMapBetween(const CharsetSource& from, const CharsetSource& to);

}  // namespace nls::mkconvmap
