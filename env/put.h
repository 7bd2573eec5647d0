// Writing values: the exact walk that creates what is missing.
#pragma once

#include "bvutil/env.h"
#include "env/lookup.h"

namespace env {

// Writes the text as data, or the external when the text is null. Throws std::bad_alloc and
// then changes nothing.
EnvStatus put(const Address& address, const char* text, long external);

} // namespace env
