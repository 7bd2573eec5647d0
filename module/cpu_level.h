// Which vector instructions this processor and its system have: every kernel that needs more than SSE2 is
// chosen at run time.
#pragma once

enum class CpuLevel { sse2, ssse3, avx2, avx512 }; // each has all of those before

// The attribute of functions for CpuLevel::avx512.
#define AVX512_TARGET target("avx512f,avx512vl,avx512bw,avx512dq,popcnt")

// The best level of this machine. AVX-512 is used from the processors with VBMI2 on: those before become
// slower when they use wide registers.
inline CpuLevel cpu_level() {
    static const bool avx512 = __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vl") &&
                               __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq");
    static const bool avx2 = __builtin_cpu_supports("avx2"), ssse3 = __builtin_cpu_supports("ssse3");
    return static_cast<CpuLevel>(ssse3 + avx2 + avx512);
}
