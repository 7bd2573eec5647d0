// Timing for the benchmarks: medians of several runs, in milliseconds of this thread's time.
#pragma once

#include <algorithm>
#include <vector>
#include <windows.h>

namespace bench {

inline double now_ms() {
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

} // namespace bench
