// Work on rows of bytes against the fixed yardstick of such work: memcpy of as many bytes as it reads and
// writes, that is, of half as many from one place to another.
#pragma once

#include "bench/bench.h"

#include <cmath>
#include <cstring>

namespace bench {

// Copies the bytes that a kernel reads and writes, in memory that was touched before.
class Copying {
  public:
    explicit Copying(std::size_t most_traffic) : m_from(most_traffic / 2, 'a'), m_to(most_traffic / 2, 'b') {}

    // Prints the median time of the work, its goal and its ratio to the yardstick, taken in turn with it. The
    // goal is a multiple of the yardstick; 0 for none.
    template <class Work>
    void compare(const Table& table, const char* name, std::size_t traffic, double goal, Work&& work) {
        std::vector<double> copies;
        const auto copy = [&] {
            const double start = now_ms();
            std::memcpy(m_to.data(), m_from.data(), traffic / 2);
            copies.push_back(now_ms() - start);
        };
        const double time = median_ms(runs, copy, work);
        std::nth_element(copies.begin(), copies.begin() + runs / 2, copies.end());
        const double yardstick = copies[runs / 2];
        table.row(name, time, "ms", {std::round(goal * yardstick * 100) / 100}, time, {yardstick});
    }

  private:
    static constexpr int runs = 21;
    std::vector<char> m_from, m_to;
};

} // namespace bench
