#include "bvutil/mini.h"

#include "bvutil/strings.h"
#include "files/drawing_records.h"
#include "files/file_access.h"
#include "files/profile_section.h"
#include "module/own_arithmetic.h"

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr int success = 0, failure = -1;

// Runs the body on the handle's section unless an argument is null; it tells whether it succeeded.
template <class Body>
int on_section(MiniHandle h, const char* section, const void* key, const void* value, Body&& body) {
    if (!h || !section || !key || !value) return failure;
    return calculated(failure, [&] { return body(ProfileSection(*h, section)) ? success : failure; });
}

// Reads the record's numbers; those that the list lacks are 0.
template <class Numbers, class Record>
bool read_record(const ProfileSection& section, const char* key, Record& record) {
    Numbers numbers = {};
    if (!section.read_numbers(key, numbers)) return false;
    from_numbers(numbers, record);
    return true;
}

template <class Numbers, class Record>
int read_record(MiniHandle h, const char* section, const char* key, Record* record) {
    return on_section(h, section, key, record,
                      [&](const ProfileSection& file) { return read_record<Numbers>(file, key, *record); });
}

template <class Record>
int write_record(MiniHandle h, const char* section, const char* key, const Record* record) {
    return on_section(h, section, key, record, [&](const ProfileSection& file) {
        return file.write_numbers(key, to_numbers(*record));
    });
}

} // namespace

extern "C" MiniHandle BVUTIL_CALL mini_open(const char* dir, const char* file, int flags) {
    if (!file) return nullptr;
    return guarded(MiniHandle{}, [&] {
        std::string path((dir ? std::strlen(dir) : 0) + std::strlen(file) + 3, '\0');
        return mini_open_ex(BvUtil_Makepath(path.data(), "", dir, file), flags);
    });
}

extern "C" MiniHandle BVUTIL_CALL mini_open_ex(const char* path, int flags) {
    if (!path || !*path) return nullptr;
    const bool read_only = (flags & MINI_READONLY) != 0;
    if (!(read_only ? file_access::readable(path) : file_access::writable(path))) return nullptr;
    return guarded(MiniHandle{}, [&] {
        auto file = std::make_unique<CBvIniFile>(path, read_only ? 0 : 1);
        return ProfileSection::has_path(*file) ? file.release() : nullptr;
    });
}

extern "C" int BVUTIL_CALL mini_close(MiniHandle* h) {
    if (!h) return failure;
    const bool open = *h != nullptr;
    delete *h;
    return open ? 1 : 0;
}

extern "C" int BVUTIL_CALL mini_read_long(MiniHandle h, const char* section, const char* key, long* value) {
    return on_section(h, section, key, value, [&](const ProfileSection& file) {
        const auto text = file.read_string(key);
        if (text) *value = std::strtol(text->c_str(), nullptr, 10);
        return text.has_value();
    });
}

extern "C" int BVUTIL_CALL mini_read_double(MiniHandle h, const char* section, const char* key,
                                            double* value) {
    return on_section(h, section, key, value, [&](const ProfileSection& file) {
        const auto number = file.read_double(key);
        if (number) *value = *number;
        return number.has_value();
    });
}

extern "C" int BVUTIL_CALL mini_read_string(MiniHandle h, const char* section, const char* key, char* buffer,
                                            int* length) {
    if (!buffer) return failure;
    return on_section(h, section, key, length, [&](const ProfileSection& file) {
        if (*length < 0) return false;
        const auto text = file.read_string(key);
        if (!text) return false;
        const auto capacity = static_cast<std::size_t>(*length);
        buffer[text->copy(buffer, capacity)] = '\0';
        if (text->size() < capacity) *length = static_cast<int>(text->size());
        return true;
    });
}

extern "C" int BVUTIL_CALL mini_read_doubles(MiniHandle h, const char* section, const char* key,
                                             double* values, int* count) {
    if (!values) return failure;
    return on_section(h, section, key, count, [&](const ProfileSection& file) {
        if (*count < 1) return false;
        const auto read = file.read_numbers(key, {values, static_cast<std::size_t>(*count)});
        if (read) *count = static_cast<int>(*read);
        return read.has_value();
    });
}

extern "C" int BVUTIL_CALL mini_write_long(MiniHandle h, const char* section, const char* key, long value) {
    return on_section(h, section, key, &value, [&](const ProfileSection& file) {
        return file.write_string(key, std::to_string(value));
    });
}

extern "C" int BVUTIL_CALL mini_write_double(MiniHandle h, const char* section, const char* key,
                                             double value) {
    return on_section(h, section, key, &value,
                      [&](const ProfileSection& file) { return file.write_double(key, value); });
}

extern "C" int BVUTIL_CALL mini_write_string(MiniHandle h, const char* section, const char* key,
                                             const char* value) {
    return on_section(h, section, key, value,
                      [&](const ProfileSection& file) { return file.write_string(key, value); });
}

extern "C" int BVUTIL_CALL mini_write_doubles(MiniHandle h, const char* section, const char* key,
                                              const double* values, int count) {
    return on_section(h, section, key, values, [&](const ProfileSection& file) {
        return count >= 0 && file.write_numbers(key, {values, static_cast<std::size_t>(count)});
    });
}

extern "C" int BVUTIL_CALL mini_read_fillstyle(MiniHandle h, const char* section, const char* key,
                                               MiniFillStyle* fill) {
    return read_record<FillNumbers>(h, section, key, fill);
}

extern "C" int BVUTIL_CALL mini_write_fillstyle(MiniHandle h, const char* section, const char* key,
                                                const MiniFillStyle* fill) {
    return write_record(h, section, key, fill);
}

extern "C" int BVUTIL_CALL mini_read_fillstyle_ex(MiniHandle h, const char* section, const char* key,
                                                  MiniFillStyleEx* fill) {
    return on_section(h, section, key, fill, [&](const ProfileSection& file) {
        MiniFillStyle numbers;
        if (!read_record<FillNumbers>(file, key, numbers)) return false;
        const auto guid = file.read_guid(key);
        if (guid) *fill = {numbers, *guid};
        return guid.has_value();
    });
}

extern "C" int BVUTIL_CALL mini_write_fillstyle_ex(MiniHandle h, const char* section, const char* key,
                                                   const MiniFillStyleEx* fill) {
    return on_section(h, section, key, fill, [&](const ProfileSection& file) {
        return file.write_numbers(key, to_numbers(fill->fill)) && file.write_guid(key, fill->guid);
    });
}

extern "C" int BVUTIL_CALL mini_read_penstyle(MiniHandle h, const char* section, const char* key,
                                              MiniPenStyle* pen) {
    return read_record<PenNumbers>(h, section, key, pen);
}

extern "C" int BVUTIL_CALL mini_write_penstyle(MiniHandle h, const char* section, const char* key,
                                               const MiniPenStyle* pen) {
    return write_record(h, section, key, pen);
}

extern "C" int BVUTIL_CALL mini_write_penstyleEX(MiniHandle h, const char* section, const char* key,
                                                 const MiniPenStyle* pen) {
    return on_section(h, section, key, pen, [&](const ProfileSection& file) {
        return file.write_numbers(key, to_scaled_numbers(*pen));
    });
}

extern "C" int BVUTIL_CALL mini_read_texprops(MiniHandle h, const char* section, const char* key,
                                              MiniTexProps* texture) {
    return read_record<TextureNumbers>(h, section, key, texture);
}

extern "C" int BVUTIL_CALL mini_write_texprops(MiniHandle h, const char* section, const char* key,
                                               const MiniTexProps* texture) {
    return write_record(h, section, key, texture);
}
