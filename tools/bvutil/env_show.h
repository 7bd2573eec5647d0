// Trees as a person reads them.
#pragma once

#include "tools/bvutil/env_tree.h"

#include <string>

// Prints the elements of a walk under a title, in the manner of a folder tree.
void print_tree(const std::string& title, TreeWalk walk);

// A name or text for the console: control characters are written as in C.
std::string printable(std::string_view text);
