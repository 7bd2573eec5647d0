// Values as the kinds that commands can be told to read them as.
#pragma once

#include "tools/bvutil/json_writer.h"

#include <string>
#include <variant>
#include <vector>

using Value =
    std::variant<std::string, long, double, std::vector<std::string>, std::vector<long>, std::vector<double>>;

// The value, or each item of a list, on a line. Numbers have the shortest digits that read back the same.
std::string lines_of(const Value& value);

void write(JsonWriter& json, const Value& value);
