// What every exported env_ function begins with.
#pragma once

#include "bvutil/env.h"
#include "env/report.h"
#include "module/guarded.h"

#include <utility>

namespace env {

// Runs the body for a handle that is not null; a null one is reported and gives the invalid result, and so
// does running out of memory.
template <class Result, class Body>
Result for_handle(EnvHandle env, Result invalid, Body&& body) {
    if (!env) {
        report("Nil parametr");
        return invalid;
    }
    return guarded(invalid, std::forward<Body>(body));
}

// The usual case: the result is a status.
template <class Body>
EnvStatus for_handle(EnvHandle env, Body&& body) {
    return for_handle<EnvStatus>(env, ENV_INVALID, std::forward<Body>(body));
}

template <class T>
void store(T* out, T value) {
    if (out) *out = value;
}

} // namespace env
