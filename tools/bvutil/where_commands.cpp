// bvutil where: where the suite's files are on this machine.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/json_writer.h"

#include "bvutil/locations.h"
#include "bvutil/strings.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <windows.h>

namespace {

using PathBuffer = char[BVUTIL_PATH_SIZE];

bool exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string path_in(const char* directory, const std::string& name) {
    std::string path(std::strlen(directory) + name.size() + 3, '\0');
    return BvUtil_Makepath(path.data(), "", directory, name.c_str());
}

// The library's search waits until there is a configuration file: it is started only when it will end.
bool configuration_exists() {
    const char* mb = std::getenv("MB");
    for (int number = 0; number <= 9; ++number) {
        const std::string name = "mb" + (number ? std::to_string(number) : "") + ".ini";
        if (exists(name) || (mb && exists(path_in(mb, name))) || exists("C:\\" + name)) return true;
    }
    return false;
}

// A place, or nothing when there is none.
using Place = std::optional<std::string>;

struct Whereabouts {
    Place configuration, program_data, roaming_data;
    std::string system_version;
};

Whereabouts find_all() {
    Whereabouts found;
    PathBuffer configuration = "", data = "", roaming = "";
    if (configuration_exists() && BvUtil_MB_SucheDatei("", "", nullptr, configuration) == 0)
        found.configuration = configuration;
    // On most systems the library builds on the folder that it is given.
    if (GetEnvironmentVariableA("ALLUSERSPROFILE", data, sizeof data) >= sizeof data) data[0] = '\0';
    if (BvUtil_GetProgPathAppData(data)) found.program_data = data;
    if (BvUtil_GetProgPathRoamingAppData(roaming)) found.roaming_data = roaming;
    int major = 0, minor = 0;
    BvUtil_GetOperatingSystem(&major, &minor);
    found.system_version = std::to_string(major) + "." + std::to_string(minor);
    return found;
}

void print_row(std::string_view label, std::string_view value) {
    std::string row(label);
    row.resize(20, ' ');
    print(row.append(value) + "\n");
}

void write(JsonWriter& json, const char* key, const Place& place) {
    json.key(key);
    if (place)
        json.value(*place);
    else
        json.null();
}

void where(bool as_json) {
    const Whereabouts found = find_all();
    if (as_json) {
        JsonWriter json;
        json.begin_object();
        write(json, "configuration_file", found.configuration);
        write(json, "program_data", found.program_data);
        write(json, "roaming_data", found.roaming_data);
        json.member("system_version", found.system_version).end_object().print();
    } else {
        print_row("configuration file", found.configuration.value_or("none"));
        print_row("program data", found.program_data.value_or("none"));
        print_row("roaming data", found.roaming_data.value_or("none"));
        print_row("system version", found.system_version);
    }
    if (!found.configuration)
        throw CommandFailed(exit_not_found, "no mb.ini or mb1.ini to mb9.ini in the current directory, the "
                                            "directory of the environment variable MB or C:\\");
}

} // namespace

void add_where_commands(CLI::App& app) {
    const auto json = std::make_shared<bool>(false);
    CLI::App* const command = add_command(
        app,
        {"where",
         "Show the suite's configuration file and data folders, and the system version",
         {"bvutil where"},
         "The configuration file is the first of mb9.ini, mb8.ini, ... mb1.ini, mb.ini that exists, each\n"
         "looked for in the current directory, the directory of the environment variable MB and C:\\.\n"
         "The exit code is 1 when there is none."},
        [json] { where(*json); });
    add_json(command, *json);
}
