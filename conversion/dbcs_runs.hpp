// Runs of ASCII and of double-byte characters, converted through the index of their table.
//
// A run converts from the front of the source as far as the index of the table covers the characters, and stops in
// front of the first that it doesn't cover, or where source or room comes near its end. What it writes is what the
// exact walk would write, and no character of a run is a substitute. Nothing behind what it writes is touched. The runs
// of different processors differ in speed alone. Tested by tests/conversion/dbcs_bridge_test.cpp.
#pragma once

#include <cstddef>

#include "conversion/run.hpp"
#include "convmap/dbcs_index.hpp"
#include "core/base/cpu.hpp"
#include "core/base/views.hpp"

namespace nls {

// One character after the other, on any processor; goes on where `run` has ended.
Run runToUtf8Plain(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target, Run run);
Run runFromUtf8Plain(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target, Run run);

// Sixteen characters at a time, up to a rest of a few bytes.
Run runToUtf8Avx512(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target);
Run runFromUtf8Avx512(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target);

// Units of 16 bits, swapped or not; one character after the other.
Run runToUtf16(const DbcsTable& table, const DbcsIndex& index, bool swap, ByteView source, ByteSpan target);
Run runFromUtf16(const DbcsTable& table, const DbcsIndex& index, bool swap, ByteView units, ByteSpan target);

// The run of this processor for a text of this length: sixteen lanes pay from some length on, and leave a short rest.
inline Run runToUtf8(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target) {
    constexpr std::size_t kWide = 64;
    Run run{0, 0};
    if (source.size() >= kWide && cpuLevel() >= CpuLevel::avx512) run = runToUtf8Avx512(table, index, source, target);
    return runToUtf8Plain(table, index, source, target, run);
}
inline Run runFromUtf8(const DbcsTable& table, const DbcsIndex& index, ByteView source, ByteSpan target) {
    constexpr std::size_t kWide = 24;
    Run run{0, 0};
    if (source.size() >= kWide && cpuLevel() >= CpuLevel::avx512) run = runFromUtf8Avx512(table, index, source, target);
    return runFromUtf8Plain(table, index, source, target, run);
}

}  // namespace nls
