// Timing for the benchmarks, and the table that they print.
#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>
#include <windows.h>

namespace bench {

// The host kernel's clock of this thread in milliseconds, below 0 when there is none: Wine tells
// GetThreadTimes in steps of 10 ms only and lacks QueryThreadCycleTime.
inline double host_thread_ms() {
    static const bool is_wine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
    if (!is_wine) return -1;
    constexpr int clock_gettime = 265, thread_clock = 3;
    struct {
        long seconds, nanoseconds;
    } time{};
    int failed;
    asm volatile("int $0x80" : "=a"(failed) : "0"(clock_gettime), "b"(thread_clock), "c"(&time) : "memory");
    return failed ? -1 : 1e3 * time.seconds + 1e-6 * time.nanoseconds;
}

// Processor time of this thread in milliseconds under Wine; elsewhere the time that passes.
inline double now_ms() {
    const double thread = host_thread_ms();
    if (thread >= 0) return thread;
    LARGE_INTEGER frequency, counter;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&counter);
    return 1000.0 * static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// The median over `runs` of what one run takes; `prepare` runs before each and is not timed.
template <class Prepare, class Work>
double median_ms(int runs, Prepare&& prepare, Work&& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        prepare();
        const double start = now_ms();
        work();
        times.push_back(now_ms() - start);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

template <class Work>
double median_ms(int runs, Work&& work) {
    return median_ms(
        runs, [] {}, work);
}

// What a figure should reach; a limit of 0 is none.
struct Goal {
    double limit = 0;
    bool at_least = false; // else at most
};

// A table of figures beside their goals, each also as a multiple of yardsticks: fixed work that is timed in
// the same run.
class Table {
  public:
    explicit Table(const std::vector<const char*>& yardsticks) {
        std::printf("%-44s %10s %14s %8s", "", "figure", "goal", "");
        for (const char* yardstick : yardsticks)
            std::printf(" %10s", yardstick);
        std::printf("\n");
    }

    // `ms` is the time to compare with the yardsticks' times.
    void row(const char* work, double figure, const char* unit, Goal goal, double ms = 0,
             const std::vector<double>& yardsticks = {}) const {
        std::printf("%-44s %5.*f %-4s", work, figure < 100 ? 1 : 0, figure, unit);
        if (goal.limit > 0) {
            const bool met = goal.at_least ? figure >= goal.limit : figure <= goal.limit;
            std::printf(" %s %5g %-8s", goal.at_least ? ">=" : "<=", goal.limit, met ? "met" : "MISSED");
        } else {
            std::printf(" %17s", "");
        }
        for (const double yardstick : yardsticks)
            std::printf(" %9.2fx", ms / yardstick);
        std::printf("\n");
        std::fflush(stdout);
    }
};

} // namespace bench
