// Property lists as bytes, right or wrong.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace property_bytes {

inline std::string number(std::uint32_t value, int width = 4) {
    std::string bytes;
    for (int i = 0; i < width; ++i)
        bytes += static_cast<char>(value >> 8 * i & 0xFF);
    return bytes;
}

// Four-character codes lie in memory last character first.
inline std::string code(std::string characters) {
    std::reverse(characters.begin(), characters.end());
    return characters;
}

inline std::string property(const std::string& key, const std::string& data) {
    return code("8BIM") + code(key) + number(0) + number(static_cast<std::uint32_t>(data.size())) + data;
}

// A length byte, the characters, and a byte of filler.
inline std::string counted(const std::string& text) {
    return static_cast<char>(text.size()) + text + '\0';
}

inline std::string list(const std::vector<std::string>& properties, std::uint32_t format = 0) {
    std::string bytes = number(1, 2) + number(format) + number(static_cast<std::uint32_t>(properties.size()));
    for (const std::string& each : properties)
        bytes += each;
    return bytes;
}

inline const std::string filter_kind = property("kind", code("8BFM"));
inline const std::string entry = property("wx86", std::string("FilterMain\0\0", 12));

inline std::string version(std::uint32_t major, std::uint32_t minor) {
    return property("vers", number(major << 16 | minor));
}
inline std::string category(const std::string& text) {
    return property("catg", counted(text));
}
inline std::string name(const std::string& text) {
    return property("name", counted(text));
}

inline std::string complete_list(const std::string& category_text = "Category",
                                 const std::string& name_text = "Name") {
    return list({filter_kind, version(4, 0), entry, category(category_text), name(name_text)});
}

} // namespace property_bytes
