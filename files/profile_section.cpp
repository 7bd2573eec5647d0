#include "files/profile_section.h"

#include "bvutil/numeric.h"
#include "files/number_list.h"
#include "files/number_text.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <objbase.h>
#include <windows.h>

namespace {

static_assert(sizeof(MiniGuid) == sizeof(GUID));
constexpr std::size_t guid_length = 38; // braces and hyphens included

// The key of a GUID; nothing when the key that it belongs to is too long.
std::optional<std::string> guid_key(std::string key) {
    constexpr std::size_t longest = 250;
    if (key.size() > longest) return std::nullopt;
    return std::move(key) + "GUID";
}

std::optional<MiniGuid> parse_guid(const std::string& text) {
    // The platform would look a text without a brace up as the name of a class.
    if (text.size() != guid_length || text[0] != '{') return std::nullopt;
    const std::wstring wide(text.begin(), text.end()); // what is not ASCII does not parse either way
    GUID guid;
    if (FAILED(CLSIDFromString(wide.c_str(), &guid))) return std::nullopt;
    return std::bit_cast<MiniGuid>(guid);
}

std::string guid_text(const MiniGuid& guid) {
    std::array<wchar_t, guid_length + 1> wide = {};
    StringFromGUID2(std::bit_cast<GUID>(guid), wide.data(), static_cast<int>(wide.size())); // upper case
    std::string text;
    for (const wchar_t c : std::span(wide).first<guid_length>())
        text += static_cast<char>(c);
    return text;
}

void append_number(std::string& text, double value) {
    // An infinity counts as whole, and as out of range.
    if (std::trunc(value) == value)
        text += std::to_string(BvUtil_LRound(value));
    else
        append_fixed(text, value);
}

} // namespace

std::optional<std::string> ProfileSection::read_string(const char* key) const {
    std::string value = m_file.ReadString(m_section, key);
    if (value == BVUTIL_INI_MISSING) return std::nullopt;
    return value;
}

std::optional<double> ProfileSection::read_double(const char* key) const {
    const double value = m_file.ReadDouble(m_section, key);
    if (value == std::numeric_limits<double>::infinity()) return std::nullopt;
    return value;
}

std::optional<std::size_t> ProfileSection::read_numbers(const char* key, std::span<double> values) const {
    const auto text = read_string(key);
    return text ? ::read_numbers(*text, values) : std::nullopt;
}

std::optional<MiniGuid> ProfileSection::read_guid(const char* key) const {
    const auto own_key = guid_key(key);
    const auto text = own_key ? read_string(own_key->c_str()) : std::nullopt;
    return text ? parse_guid(*text) : std::nullopt;
}

bool ProfileSection::write_string(const char* key, const std::string& value) const {
    return m_file.WriteString(m_section, key, value);
}

bool ProfileSection::write_double(const char* key, double value) const {
    return m_file.WriteDouble(m_section, key, value);
}

bool ProfileSection::write_numbers(const char* key, std::span<const double> values) const {
    std::string text;
    for (const double value : values) {
        if (!text.empty()) text += ',';
        append_number(text, value);
    }
    return write_string(key, text);
}

bool ProfileSection::write_guid(const char* key, const MiniGuid& guid) const {
    const auto own_key = guid_key(key);
    return own_key && write_string(own_key->c_str(), guid_text(guid));
}
