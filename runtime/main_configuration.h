// The suite's main configuration file, and the search for other files that it directs.
#pragma once

#include <optional>
#include <string>

// The path of the main configuration file. Waits for ever when there is none.
std::string find_main_configuration();

// The file in the current directory, in that of the environment variable MB, or in one that the entry of the
// main configuration file lists. Without an entry (null or empty) the main configuration file itself.
std::optional<std::string> search_file(const char* section, const char* key, const char* file);
