// Trees as a person reads them.
#pragma once

#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/json_writer.h"

#include <functional>
#include <string>
#include <string_view>

// What there is to tell of the value that a walk stands on.
using ValueNote = std::function<std::string(const TreeWalk&)>;

// Prints the elements of a walk under a title, in the manner of a folder tree; the note behind each value.
void print_tree(const std::string& title, TreeWalk walk, const ValueNote& note = {});

// Writes the elements of a walk as an array. An element has its "name", its "occurrence" where there are
// several of that name, and a "value" or "elements"; a value has its note, too, under the name given.
void write_tree(JsonWriter& json, TreeWalk walk, const char* note_name = "", const ValueNote& note = {});

// A name or text for the console: control characters are written as in C.
std::string printable(std::string_view text);
