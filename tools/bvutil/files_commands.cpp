// bvutil ini, material and fio: profile files, material files and byte-order data files.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/material_preview.h"
#include "tools/bvutil/value.h"
#include "tools/bvutil/whole_file.h"

#include "bvutil/fio.h"
#include "bvutil/ini_file.h"
#include "bvutil/mat_file.h"
#include "bvutil/mini.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>
#include <windows.h>

namespace {

// Values are read as at most this many bytes.
constexpr int longest_value = 1023;

struct Arguments {
    std::string file, section, key, value, preview, kind = "text";
    bool json = false;
    std::string place() const { return "[" + section + "] " + key; }
};

// The platform looks a bare name up in the Windows directory; a command means the current one.
std::string full_path(const std::string& path) {
    std::string full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr), '\0');
    full.resize(GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

[[noreturn]] void cannot(const char* what, const std::string& path) {
    throw CommandFailed(exit_io_error, path + " cannot be " + what);
}

struct CloseProfile {
    void operator()(MiniHandle h) const { mini_close(&h); }
};
using Profile = std::unique_ptr<CBvIniFile, CloseProfile>;

Profile open_for_reading(const std::string& path) {
    Profile profile(mini_open_ex(path.c_str(), MINI_READONLY));
    if (!profile) cannot("read", path);
    return profile;
}

std::string number_text(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

// Throws unless the value, which is there, has the form asked for.
void expect_form(int result, const Arguments& arguments, const char* form) {
    if (result != 0) throw CommandFailed(exit_bad_input, arguments.place() + " is not " + form);
}

Value read_as(MiniHandle h, const Arguments& arguments, const std::string& text) {
    const char *section = arguments.section.c_str(), *key = arguments.key.c_str();
    if (arguments.kind == "long") {
        long number = 0;
        expect_form(mini_read_long(h, section, key, &number), arguments, "an integer");
        return number;
    }
    if (arguments.kind == "double") {
        double number = 0;
        expect_form(mini_read_double(h, section, key, &number), arguments, "a number");
        return number;
    }
    if (arguments.kind == "doubles") {
        std::vector<double> numbers(longest_value);
        int count = longest_value;
        expect_form(mini_read_doubles(h, section, key, numbers.data(), &count), arguments,
                    "a list of numbers");
        numbers.resize(static_cast<std::size_t>(count));
        return numbers;
    }
    return text;
}

void get_value(const Arguments& arguments) {
    const Profile profile = open_for_reading(full_path(arguments.file));
    std::string text(longest_value + 1, '\0');
    int length = longest_value;
    if (mini_read_string(profile.get(), arguments.section.c_str(), arguments.key.c_str(), text.data(),
                         &length) != 0)
        throw CommandFailed(exit_not_found, arguments.place() + " is not in " + arguments.file);
    text.resize(static_cast<std::size_t>(length));
    const Value value = read_as(profile.get(), arguments, text);
    if (!arguments.json) return print(lines_of(value));
    JsonWriter json;
    json.begin_object().member("file", arguments.file).member("section", arguments.section);
    write(json.member("key", arguments.key).key("value"), value);
    json.end_object().print();
}

// The names that the platform lists: of a file's sections, or of a section's keys.
std::vector<std::string> names_in(const std::string& path, const char* section) {
    std::string buffer(4096, '\0');
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        const DWORD length =
            section ? GetPrivateProfileStringA(section, nullptr, "", buffer.data(), size, path.c_str())
                    : GetPrivateProfileSectionNamesA(buffer.data(), size, path.c_str());
        if (length < size - 2) break;
        buffer.assign(buffer.size() * 2, '\0');
    }
    std::vector<std::string> names;
    for (const char* name = buffer.c_str(); *name; name += names.back().size() + 1)
        names.emplace_back(name);
    return names;
}

// All values but one, each with its section and key.
std::vector<std::string> values_beside(const std::string& path, const Arguments& one) {
    std::vector<std::string> values;
    for (const std::string& section : names_in(path, nullptr))
        for (const std::string& key : names_in(path, section.c_str()))
            if (_stricmp(section.c_str(), one.section.c_str()) != 0 ||
                _stricmp(key.c_str(), one.key.c_str()) != 0)
                values.push_back(section + "\n" + key + "\n" +
                                 CBvIniFile::FileReadString(path, section, key));
    return values;
}

// The platform writes a profile where it lies and does not tell a full disk: what is written is a copy, which
// takes the file's place when it has all of its values.
void set_value(const Arguments& arguments) {
    const std::string path = full_path(arguments.file);
    ReplacementFile file(path);
    if (file_exists(path)) file.put(read_whole_file(path));
    file.close();
    const auto& [section, key, value] = std::tie(arguments.section, arguments.key, arguments.value);
    const bool written = CBvIniFile::FileWriteString(file.path(), section, key, value);
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.path().c_str()); // what is read is on the disk
    if (!written || values_beside(file.path(), arguments) != values_beside(path, arguments) ||
        CBvIniFile::FileReadString(file.path(), section, key) == BVUTIL_INI_MISSING)
        cannot("written", path);
    file.replace();
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str());
}

void print_sections(const std::string& path, CBvIniFile& profile, const std::vector<std::string>& sections) {
    for (const std::string& section : sections) {
        print("[" + section + "]\n");
        for (const std::string& key : names_in(path, section.c_str()))
            print(key + "=" + profile.ReadString(section, key) + "\n");
    }
}

void write_sections(const std::string& file, const std::string& path, CBvIniFile& profile,
                    const std::vector<std::string>& sections) {
    JsonWriter json;
    json.begin_object().member("file", file).key("sections").begin_array();
    for (const std::string& section : sections) {
        json.begin_object().member("name", section).key("values").begin_array();
        for (const std::string& key : names_in(path, section.c_str()))
            json.begin_object()
                .member("key", key)
                .member("value", profile.ReadString(section, key))
                .end_object();
        json.end_array().end_object();
    }
    json.end_array().end_object().print();
}

void list_values(const Arguments& arguments) {
    const std::string path = full_path(arguments.file);
    const Profile profile = open_for_reading(path);
    std::vector<std::string> sections = names_in(path, nullptr);
    if (!arguments.section.empty()) {
        std::erase_if(sections, [&](const std::string& name) {
            return _stricmp(name.c_str(), arguments.section.c_str()) != 0;
        });
        if (sections.empty())
            throw CommandFailed(exit_not_found, "[" + arguments.section + "] is not in " + arguments.file);
    }
    if (arguments.json)
        write_sections(arguments.file, path, *profile, sections);
    else
        print_sections(path, *profile, sections);
}

void print_row(std::string_view label, const std::string& value) {
    std::string row(label);
    row.resize(20, ' ');
    print(row + value + "\n");
}

void print_color(std::string_view label, const float (&color)[3]) {
    print_row(label, number_text(color[0]) + " " + number_text(color[1]) + " " + number_text(color[2]));
}

void write_floats(JsonWriter& json, const char* key, std::span<const float> numbers) {
    json.key(key).begin_array();
    for (const float number : numbers)
        json.value(number);
    json.end_array();
}

void write_material(const std::string& file, const std::string& name, const std::string& texture,
                    const matTyp& material) {
    JsonWriter json;
    json.begin_object()
        .member("file", file)
        .member("name", name)
        .member("diffuse", material.diffuse)
        .member("ambient", material.ambient)
        .member("specular", material.specular)
        .member("alpha", material.alpha);
    write_floats(json, "diffuse_colour", material.diffuseColor);
    write_floats(json, "specular_colour", material.specularColor);
    json.member("exponent", material.exponent);
    write_floats(json, "shading_constants", {{material.shade1, material.shade2, material.shade3}});
    json.member("bits", material.bits).key("test_texture");
    if (texture.empty())
        json.null();
    else
        json.value(texture);
    json.end_object().print();
}

void show_material(const Arguments& arguments) {
    const std::string path = full_path(arguments.file);
    open_for_reading(path);
    CBvMatFile file(path);
    if (!file.IsLoaded())
        throw CommandFailed(exit_bad_input,
                            path + " is no material: it has no name, or kdiffus or kambient is empty");
    std::string name, texture;
    file.GetLogName(name);
    file.GetTestTexturePath(texture);
    const matTyp& material = *file.GetMaterialPtr();
    if (!arguments.preview.empty()) save_material_preview(material, arguments.preview);
    if (arguments.json) return write_material(arguments.file, name, texture, material);
    print_row("name", name);
    print_row("diffuse", number_text(material.diffuse));
    print_row("ambient", number_text(material.ambient));
    print_row("specular", number_text(material.specular));
    print_row("alpha", number_text(material.alpha));
    print_color("diffuse colour", material.diffuseColor);
    print_color("specular colour", material.specularColor);
    print_row("exponent", number_text(material.exponent));
    print_row("shading constants", number_text(material.shade1) + " " + number_text(material.shade2) + " " +
                                       number_text(material.shade3));
    print_row("bits", std::to_string(material.bits));
    print_row("test texture", texture.empty() ? "none" : texture);
}

struct CloseFile {
    void operator()(FioFile* h) const { fio_close(h); }
};

void write_data_file(const FioFile& file, long start, long size) {
    JsonWriter json;
    json.begin_object().member("file", file.path).key("byte_order");
    if (file.byteOrder == FIO_NO_HEADER)
        json.null();
    else
        json.value(file.byteOrder == FIO_MOTOROLA ? "big-endian" : "little-endian");
    json.member("data_begin", start).member("data_size", size - start).end_object().print();
}

void show_data_file(const Arguments& arguments) {
    const std::string path = full_path(arguments.file);
    const std::unique_ptr<FioFile, CloseFile> h(fio_open("", path.c_str(), FIO_READ | FIO_HEADER));
    if (!h) cannot("read", path);
    const long start = fio_tell(h.get());
    const long size = fio_seek(h.get(), 0, 2) == 0 ? fio_tell(h.get()) : -1;
    if (start < 0 || size < 0) cannot("read", path); // such as a file beyond 2 GB
    if (arguments.json) return write_data_file(*h, start, size);
    print_row("file", h->path);
    print_row("byte order", h->byteOrder == FIO_NO_HEADER  ? "not stated: no header"
                            : h->byteOrder == FIO_MOTOROLA ? "MOTOROLA (big-endian)"
                                                           : "INTEL (little-endian)");
    print_row("data", std::to_string(size - start) + " bytes from byte " + std::to_string(start));
}

// A command on a file.
CLI::App* add_file_command(CLI::App& group, const CommandHelp& help,
                           const std::shared_ptr<Arguments>& arguments, void (*run)(const Arguments&)) {
    CLI::App* const command = add_command(group, help, [arguments, run] { run(*arguments); });
    command->add_option("FILE", arguments->file, "The file")->required();
    return command;
}

void add_ini_commands(CLI::App& app) {
    CLI::App& ini = add_group(app, "ini", "Profile (ini) files: read, change and list values");
    const auto arguments = std::make_shared<Arguments>();
    const auto add_section = [&](CLI::App* command) {
        return command->add_option("SECTION", arguments->section, "Name of the section");
    };
    const auto add_key = [&](CLI::App* command) {
        command->add_option("KEY", arguments->key, "Name of the value")->required();
    };

    CLI::App* const get = add_file_command(ini,
                                           {"get",
                                            "Print a value",
                                            {"bvutil ini get zeichnung.ini Blatt name",
                                             "bvutil ini get zeichnung.ini Stifte fenster --as doubles"}},
                                           arguments, get_value);
    add_section(get)->required();
    add_key(get);
    add_json(get, arguments->json);
    get->add_option("--as", arguments->kind, "Read the value as this kind")
        ->check(CLI::IsMember({"text", "long", "double", "doubles"}));

    CLI::App* const set = add_file_command(ini,
                                           {"set",
                                            "Store a value, creating file, section and key as needed",
                                            {"bvutil ini set zeichnung.ini Blatt name Obergeschoss"}},
                                           arguments, set_value);
    add_section(set)->required();
    add_key(set);
    set->add_option("VALUE", arguments->value, "The text to store; one that begins with - goes behind --")
        ->required();

    CLI::App* const list =
        add_file_command(ini,
                         {"list",
                          "Print all values, or those of a section",
                          {"bvutil ini list zeichnung.ini", "bvutil ini list zeichnung.ini Stifte"}},
                         arguments, list_values);
    add_section(list);
    add_json(list, arguments->json);
}

} // namespace

void add_files_commands(CLI::App& app) {
    add_ini_commands(app);
    const auto arguments = std::make_shared<Arguments>();

    CLI::App& materials = add_group(app, "material", "Material files");
    CLI::App* const material = add_file_command(
        materials,
        {"show",
         "Print a material's values and its derived shading constants",
         {"bvutil material show eiche.mat", "bvutil material show eiche.mat --preview eiche.png"}},
        arguments, show_material);
    material
        ->add_option("--preview", arguments->preview,
                     "Picture to write, of a lit sphere: bmp, jpeg, gif, tiff or png")
        ->type_name("FILE");
    add_json(material, arguments->json);

    CLI::App& fio = add_group(app, "fio", "Data files with a byte-order header");
    add_json(add_file_command(
                 fio, {"info", "Print the byte order and where the data are", {"bvutil fio info punkte.dat"}},
                 arguments, show_data_file),
             arguments->json);
}
