// Copying the values of one environment into another.
#pragma once

#include "bvutil/env.h"

enum class MergeMode {
    keep = 0,      // only what the destination does not have
    append = 1,    // each as a further occurrence
    overwrite = 2, // all
    update = 3     // only what the destination has
};

// Copies every data element as env_sink() does, of any length, and out of repeated sections too. Consumes the
// source. Returns the number of values copied. Throws CommandFailed.
long merge(EnvHandle destination, EnvHandle source, MergeMode mode);
