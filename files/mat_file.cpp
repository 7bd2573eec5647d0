#include "bvutil/mat_file.h"

#include "bvutil/strings.h"
#include "files/file_access.h"
#include "files/material_profile.h"
#include "module/own_arithmetic.h"

namespace {

constexpr char head_section[] = "Material", name_key[] = "Name", texture_key[] = "Testtextur";

// Copies a text; empty when memory runs out.
void copy(std::string& to, const std::string& from) {
    guarded([&] {
        if (&to == &from) return;
        to.clear();
        to = from;
    });
}

std::string base_name(const std::string& path) {
    char name[BVUTIL_NAME_SIZE];
    BvUtil_Divide(path.c_str(), nullptr, nullptr, name);
    const int extension = BvUtil_GetExtensionPos(name);
    return extension < 0 ? std::string(name) : std::string(name, static_cast<std::size_t>(extension));
}

// A material of another name leaves the file, but only when its section holds a material's values.
bool delete_former(const char* file, const std::string& name) {
    const MaterialValue former(file, head_section, name_key, "");
    if (former.empty() || former.text() == name) return true;
    if (MaterialValue(file, former.text(), "kdiffus", "").empty()) return true;
    return WritePrivateProfileStringA(former.text(), nullptr, nullptr, file) != FALSE;
}

} // namespace

CBvMatFile::CBvMatFile() = default;

CBvMatFile::CBvMatFile(const std::string& path) {
    Read(path);
}

CBvMatFile::CBvMatFile(const CBvMatFile& other) {
    *this = other;
}

CBvMatFile& CBvMatFile::operator=(const CBvMatFile& other) {
    m_loaded = other.m_loaded;
    copy(m_logName, other.m_logName);
    copy(m_testTexture, other.m_testTexture);
    copy(m_path, other.m_path);
    m_material = other.m_material;
    return *this;
}

CBvMatFile::~CBvMatFile() = default;

int CBvMatFile::Read(const std::string& path) {
    return calculated(0, [&] {
        m_path = path;
        const char* const file = m_path.c_str();
        if (!file_access::readable(file)) {
            m_path.clear();
            return m_loaded = 0;
        }
        // Kept: a file that turns out to be no material leaves the flag as it was.
        const MaterialValue name(file, head_section, name_key, "");
        if (name.empty()) return 0;
        m_logName = name.text();
        if (!read_material(file, name.text(), m_material)) return 0;
        m_testTexture = MaterialValue(file, name.text(), texture_key, "").text();
        return m_loaded = 1;
    });
}

int CBvMatFile::Write(const std::string& path) {
    const char* const file = path.c_str();
    if (path.empty() || !file_access::writable(file)) return 0;
    return calculated(0, [&] {
        bool written = delete_former(file, m_logName);
        const auto write = [&](const char* section, const char* key, const std::string& value) {
            written = WritePrivateProfileStringA(section, key, value.c_str(), file) != FALSE && written;
        };
        write(head_section, name_key, m_logName);
        written = write_material(file, m_logName.c_str(), m_material) && written;
        write(m_logName.c_str(), texture_key, m_testTexture);
        WritePrivateProfileStringA(nullptr, nullptr, nullptr, file); // flushes; its result says nothing
        return written ? 1 : 0;
    });
}

int CBvMatFile::Write() {
    return Write(m_path);
}

int CBvMatFile::IsLoaded() {
    return m_loaded;
}

matTyp* CBvMatFile::GetMaterialPtr() {
    return &m_material;
}

void CBvMatFile::GetLogName(std::string& out) {
    if (m_logName.empty()) guarded([&] { m_logName = base_name(m_path); });
    copy(out, m_logName);
}

void CBvMatFile::SetLogName(const std::string& name) {
    copy(m_logName, name);
}

void CBvMatFile::GetTestTexturePath(std::string& out) {
    copy(out, m_testTexture);
}

void CBvMatFile::SetTestTexturePath(const std::string& path) {
    copy(m_testTexture, path);
}
