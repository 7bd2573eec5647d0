// Writing values: the exact walk that creates what is missing.
#pragma once

#include "bvutil/env.h"
#include "env/lookup.h"

namespace env {

// Writes the text as data, or the external when the text is null. Throws std::bad_alloc and
// then changes nothing.
EnvStatus put(const Address& address, const char* text, long external);

// The same for a text, from an element on along a path.
EnvStatus put_text(Tree& tree, Element* start, const char* path, const char* text);

// Appends data under a block that has no element which the component names, and what lacks before its
// occurrence.
void append_text(Tree& tree, Element* block, const Component& component, std::string_view text);

} // namespace env
