// Trees as a person reads them.
#pragma once

#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/json_writer.h"

#include <string>

// Prints the elements of a walk under a title, in the manner of a folder tree.
void print_tree(const std::string& title, TreeWalk walk);

// Writes the elements of a walk as an array. An element has its "name", its "occurrence" where there are
// several of that name, and a "value" or "elements".
void write_tree(JsonWriter& json, TreeWalk walk);

// A name or text for the console: control characters are written as in C.
std::string printable(std::string_view text);
