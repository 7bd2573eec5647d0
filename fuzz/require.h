// What a target's rules are held with.
#pragma once

#include <cstdlib>

// Ends the program, which is what a fuzzer takes for a find.
inline void require(bool holds) {
    if (!holds) std::abort();
}
