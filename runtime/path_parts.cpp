#include "runtime/path_parts.h"

#include "module/multibyte.h"

PathParts split_path(std::string_view path) {
    PathParts parts;
    if (path.size() >= 2 && path[1] == ':' && multibyte::character_length(path) == 1)
        parts.drive = path.substr(0, 2);
    const std::string_view rest = path.substr(parts.drive.size());

    std::size_t name_at = 0;
    multibyte::for_each_character(rest, [&](std::size_t at, std::size_t) {
        if (rest[at] == '\\' || rest[at] == '/') name_at = at + 1;
        return true;
    });
    parts.directory = rest.substr(0, name_at);
    parts.name = rest.substr(name_at);
    return parts;
}

namespace {

// Puts the result so far under a directory, whose drive it then has.
std::string place_under(std::string_view directory, const PathParts& parts, std::string_view result) {
    std::string placed;
    placed.reserve(directory.size() + 1 + result.size());
    placed = directory;
    // Without a name the directory ends in a separator or its drive, or is empty.
    if (!result.empty() && !parts.name.empty()) placed += '\\';
    if (!placed.empty() && placed.back() == '\\' && result.starts_with('\\')) result.remove_prefix(1);
    placed += result;
    return placed;
}

} // namespace

std::string make_path(std::optional<std::string_view> base, std::optional<std::string_view> directory,
                      std::optional<std::string_view> file) {
    std::string result(file.value_or(std::string_view{}));
    bool has_drive = !split_path(result).drive.empty();
    for (const auto& prefix : {directory, base}) {
        if (!prefix || has_drive) continue;
        const PathParts parts = split_path(*prefix);
        result = place_under(*prefix, parts, result);
        has_drive = !parts.drive.empty();
    }
    multibyte::make_lower(result);
    return result;
}

std::string join_directory(std::string_view directory, std::string_view name) {
    std::string joined;
    joined.reserve(directory.size() + 1 + name.size());
    joined = directory;
    const PathParts parts = split_path(directory);
    if (!parts.name.empty() || (parts.directory.empty() && !parts.drive.empty())) joined += '\\';
    joined += name;
    return joined;
}

std::size_t extension_position(std::string_view name) {
    // The dot is no lead byte in any code page: looking at single bytes backwards is enough.
    const std::size_t dot = name.rfind('.');
    return dot == 0 ? std::string_view::npos : dot;
}
