#include "bvutil/ini_file.h"

#include "bvutil/strings.h"
#include "files/number_text.h"
#include "module/guarded.h"
#include "module/profile_value.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <windows.h>

namespace {

ProfileValue<1024> read(const std::string& file, const std::string& section, const std::string& key) {
    return {file.c_str(), section.c_str(), key.c_str(), BVUTIL_INI_MISSING};
}

bool write(const std::string& file, const std::string& section, const std::string& key, const char* value) {
    return WritePrivateProfileStringA(section.c_str(), key.c_str(), value, file.c_str()) != FALSE;
}

} // namespace

CBvIniFile::CBvIniFile() = default;

CBvIniFile::CBvIniFile(const std::string& file, unsigned int flags) : m_flags(flags) {
    guarded([&] { m_file = file; });
}

CBvIniFile::CBvIniFile(const CBvIniFile& other) : CBvIniFile(other.m_file, other.m_flags) {}

CBvIniFile& CBvIniFile::operator=(const CBvIniFile& other) {
    const bool copied = guarded(false, [&] {
        m_file = other.m_file;
        return true;
    });
    if (!copied) m_file.clear();
    m_flags = other.m_flags;
    return *this;
}

CBvIniFile::~CBvIniFile() = default;

bool CBvIniFile::Open(const std::string&, unsigned int) {
    return true; // kept: callers rely on the path staying as it was constructed
}

void CBvIniFile::Close() {}

std::string CBvIniFile::ReadString(const std::string& section, const std::string& key) {
    return FileReadString(m_file, section, key);
}

int CBvIniFile::ReadInt(const std::string& section, const std::string& key) {
    return FileReadInt(m_file, section, key);
}

double CBvIniFile::ReadDouble(const std::string& section, const std::string& key) {
    return FileReadDouble(m_file, section, key);
}

bool CBvIniFile::WriteString(const std::string& section, const std::string& key, const std::string& value) {
    return FileWriteString(m_file, section, key, value);
}

bool CBvIniFile::WriteInt(const std::string& section, const std::string& key, int value) {
    return FileWriteInt(m_file, section, key, value);
}

bool CBvIniFile::WriteDouble(const std::string& section, const std::string& key, double value) {
    return FileWriteDouble(m_file, section, key, value);
}

std::string CBvIniFile::FileReadString(const std::string& file, const std::string& section,
                                       const std::string& key) {
    // The marker is short enough to be kept without an allocation.
    return guarded(std::string(BVUTIL_INI_MISSING),
                   [&] { return std::string(read(file, section, key).text()); });
}

int CBvIniFile::FileReadInt(const std::string& file, const std::string& section, const std::string& key) {
    return static_cast<int>(GetPrivateProfileIntA(section.c_str(), key.c_str(), 0, file.c_str()));
}

double CBvIniFile::FileReadDouble(const std::string& file, const std::string& section,
                                  const std::string& key) {
    const auto value = read(file, section, key);
    const bool missing = value.empty() || std::strcmp(value.text(), BVUTIL_INI_MISSING) == 0;
    return missing ? std::numeric_limits<double>::infinity() : BvUtil_StringToDouble(value.text());
}

bool CBvIniFile::FileWriteString(const std::string& file, const std::string& section, const std::string& key,
                                 const std::string& value) {
    return write(file, section, key, value.c_str());
}

bool CBvIniFile::FileWriteInt(const std::string& file, const std::string& section, const std::string& key,
                              int value) {
    char text[16] = {};
    std::to_chars(text, text + sizeof text - 1, value);
    return write(file, section, key, text);
}

bool CBvIniFile::FileWriteDouble(const std::string& file, const std::string& section, const std::string& key,
                                 double value) {
    GeneralText text;
    return write(file, section, key, general_text(value, text));
}
