#include "conversion/byte_map.hpp"

#include <cstdint>

#include "core/base/cpu.hpp"

namespace nls {

bool mapBytesPlain(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target) {
    unsigned changed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned before = source[i], after = map[before];
        target[i] = static_cast<unsigned char>(after);
        changed |= before ^ after;
    }
    return changed != 0;
}

bool mapBytes(const unsigned char* map, const unsigned char* source, std::size_t count, unsigned char* target) {
    // A walk into its own source reads what it has written.
    const std::uintptr_t lead = reinterpret_cast<std::uintptr_t>(target) - reinterpret_cast<std::uintptr_t>(source);
    const bool readsItself = lead != 0 && lead < count;
    const CpuLevel level = cpuLevel();
    constexpr std::size_t kWorthRows = 64;  // below it, setting up 16 rows takes longer than the plain walk
    if (!readsItself && level >= CpuLevel::avx512) return mapBytesAvx512(map, source, count, target);
    if (!readsItself && level >= CpuLevel::avx2 && count >= kWorthRows) return mapBytesAvx2(map, source, count, target);
    return mapBytesPlain(map, source, count, target);
}

}  // namespace nls
