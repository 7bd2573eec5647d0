// How long tests of random operations run: BVUTIL_OPERATIONS asks for another number of them for each seed,
// BVUTIL_SEED for one seed only.
#pragma once

#include <cstdlib>
#include <numeric>
#include <vector>

namespace random_runs {

inline long operations(long usual) {
    const char* asked = std::getenv("BVUTIL_OPERATIONS");
    return asked ? std::atol(asked) : usual;
}

// 1, 2, ... so many, unless one is asked for.
inline std::vector<unsigned> seeds(std::size_t usual) {
    if (const char* asked = std::getenv("BVUTIL_SEED")) return {static_cast<unsigned>(std::atol(asked))};
    std::vector<unsigned> all(usual);
    std::iota(all.begin(), all.end(), 1U);
    return all;
}

} // namespace random_runs
