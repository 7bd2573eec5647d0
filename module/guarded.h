// The wall around every export: nothing that our code throws leaves it.
#pragma once

#include "module/memory_reserve.h"

#include <type_traits>
#include <utility>

// Runs the body; when it throws (out of memory), gives the family's failure result instead.
template <class Result, class Body>
Result guarded(Result failure, Body&& body) noexcept {
    const memory_reserve::Kept kept; // when the exception is gone, and what was built with it
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return failure;
    }
}

// The same for exports without a result.
template <class Body>
void guarded(Body&& body) noexcept {
    const memory_reserve::Kept kept;
    try {
        std::forward<Body>(body)();
    } catch (...) { // the call simply did not happen
    }
}
