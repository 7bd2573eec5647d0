// Splitting and joining of paths: no limits, no platform. Separators are '\' and '/', never the second byte
// of a double-byte character.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The parts of a path; joined in this order they are the path.
struct PathParts {
    std::string_view drive;     // "C:" or empty
    std::string_view directory; // up to and including the last separator
    std::string_view name;      // with its extension
};

PathParts split_path(std::string_view path);

// The file, placed under the directory and that under the base until one has a drive; in lower case.
// No value is a text that is left out.
std::string make_path(std::optional<std::string_view> base, std::optional<std::string_view> directory,
                      std::optional<std::string_view> file);

// The directory and the name with a separator between them, unless the directory is empty or ends in one.
std::string join_directory(std::string_view directory, std::string_view name);

// Position of the dot that starts the extension, npos for none. The first byte is never taken for it.
std::size_t extension_position(std::string_view name);
