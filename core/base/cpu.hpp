// Which instructions the wide loops may use, asked once in a process.
//
// The library is compiled for plain x86-64 (SSE2). A function that needs more is marked with one of the macros below,
// stands in a file named *_avx2.cpp or *_avx512.cpp, and is reached by a test of cpuLevel() at the start of a call,
// never inside a loop. What is inlined into such a function carries the same mark, so that no wide instruction leaks
// into code that runs anywhere.
#pragma once

#include <cstdint>

#include "core/base/process_state.hpp"

namespace nls {

enum class CpuLevel : int32_t {
    baseline = 1,  // SSE2
    avx2 = 2,      // AVX2, BMI1, BMI2, POPCNT, LZCNT
    avx512 = 3,    // the same, and AVX-512 F, BW, DQ, VL, VBMI, VBMI2
};

#define NLS_TARGET_AVX2 __attribute__((target("avx2,bmi,bmi2,popcnt,lzcnt")))
#define NLS_TARGET_AVX512 \
    __attribute__((target("avx2,bmi,bmi2,popcnt,lzcnt,avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,avx512vbmi2")))

CpuLevel askCpuLevel();

// The first call asks the processor; the answer is the same from every thread, so no lock is needed.
inline CpuLevel cpuLevel() {
    const int32_t known = __atomic_load_n(&processState.cpuLevel, __ATOMIC_RELAXED);
    return known != 0 ? CpuLevel{known} : askCpuLevel();
}

// What is known without asking, at first less than any level. For functions that are to make no call, as long as what
// they then call instead asks.
inline CpuLevel knownCpuLevel() {
    return CpuLevel{__atomic_load_n(&processState.cpuLevel, __ATOMIC_RELAXED)};
}

// For tests and benchmarks: holds the level down to `level`, so that each path can be driven on one machine.
void limitCpuLevel(CpuLevel level);

}  // namespace nls
