#include "core/base/cpu.hpp"

#include <cpuid.h>

namespace nls {

namespace {

struct Registers {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Registers cpuid(unsigned leaf) {
    Registers r;
    __get_cpuid_count(leaf, 0, &r.eax, &r.ebx, &r.ecx, &r.edx);
    return r;
}

constexpr bool hasBits(uint64_t word, uint64_t bits) {
    return (word & bits) == bits;
}

// The registers that the operating system saves for each thread.
uint64_t enabledState() {
    unsigned low = 0, high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (uint64_t{high} << 32) | low;
}

CpuLevel askProcessor() {
    const Registers basic = cpuid(1), extended = cpuid(7), amd = cpuid(0x80000001);
    constexpr unsigned kOsxsave = 1U << 27, kAvx = 1U << 28, kPopcnt = 1U << 23, kLzcnt = 1U << 5;
    if (!hasBits(basic.ecx, kOsxsave | kAvx | kPopcnt) || !hasBits(amd.ecx, kLzcnt)) return CpuLevel::baseline;
    const uint64_t state = enabledState();
    constexpr unsigned kBmi1 = 1U << 3, kAvx2 = 1U << 5, kBmi2 = 1U << 8;
    if (!hasBits(state, 0x06) || !hasBits(extended.ebx, kBmi1 | kAvx2 | kBmi2)) return CpuLevel::baseline;
    constexpr unsigned kF = 1U << 16, kDq = 1U << 17, kBw = 1U << 30, kVl = 1U << 31;
    constexpr unsigned kVbmi = 1U << 1, kVbmi2 = 1U << 6;
    if (!hasBits(state, 0xE6) || !hasBits(extended.ebx, kF | kDq | kBw | kVl) || !hasBits(extended.ecx, kVbmi | kVbmi2))
        return CpuLevel::avx2;
    return CpuLevel::avx512;
}

}  // namespace

CpuLevel askCpuLevel() {
    const CpuLevel level = askProcessor();
    __atomic_store_n(&processState.cpuLevel, static_cast<int32_t>(level), __ATOMIC_RELAXED);
    return level;
}

void limitCpuLevel(CpuLevel level) {
    const CpuLevel real = askProcessor();
    const CpuLevel held = level < real ? level : real;
    __atomic_store_n(&processState.cpuLevel, static_cast<int32_t>(held), __ATOMIC_RELAXED);
}

}  // namespace nls
