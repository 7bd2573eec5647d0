// Which vector instructions this processor and its system have: every kernel that needs more than SSE2 is
// chosen at run time.
#pragma once

enum class CpuLevel { sse2, ssse3, avx2 };

// The best level of this machine.
inline CpuLevel cpu_level() {
    static const bool avx2 = __builtin_cpu_supports("avx2"), ssse3 = __builtin_cpu_supports("ssse3");
    static const CpuLevel level = avx2 ? CpuLevel::avx2 : ssse3 ? CpuLevel::ssse3 : CpuLevel::sse2;
    return level;
}
