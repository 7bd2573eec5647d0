// Typed values, and texts that an environment file can hold.
#pragma once

#include "bvutil/env.h"
#include "tools/bvutil/value.h"

#include <string>
#include <vector>

// The kinds of values that a command can be told: "text", "long", "double", "longs", "doubles", "words".
std::vector<std::string> value_kinds();

// Reads the value at (section, path) of a sub-environment or environment as a kind. Throws CommandFailed
// (exit_bad_input) when the text is not of that kind.
Value read_as(const std::string& kind, EnvHandle env, const char* section, const char* path, bool exact);

// Throws CommandFailed (exit_bad_input) for a text that would not read back from a file as it is.
void expect_storable(const std::string& text);
