// Typed values of one section: the conversions between values and the texts of a profile file. Reads give
// nothing when the key is missing or its text does not convert; writes tell whether the platform wrote.
#pragma once

#include "bvutil/ini_file.h"
#include "bvutil/mini.h"

#include <optional>
#include <span>

class ProfileSection {
  public:
    // Whether the object has the path that it was made with: not when memory ran out.
    static bool has_path(const CBvIniFile& file) { return !file.m_file.empty(); }

    ProfileSection(CBvIniFile& file, const char* section) : m_file(file), m_section(section) {}

    std::optional<std::string> read_string(const char* key) const;
    std::optional<double> read_double(const char* key) const;
    // How many were read; those in front of a broken one are stored even when nothing is returned.
    std::optional<std::size_t> read_numbers(const char* key, std::span<double> values) const;
    // The GUID that belongs to the key.
    std::optional<MiniGuid> read_guid(const char* key) const;

    bool write_string(const char* key, const std::string& value) const;
    bool write_double(const char* key, double value) const;
    bool write_numbers(const char* key, std::span<const double> values) const;
    bool write_guid(const char* key, const MiniGuid& guid) const;

  private:
    CBvIniFile& m_file;
    std::string m_section;
};
