// bvutil where: where the suite's files are on this machine.
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"

#include "bvutil/locations.h"
#include "bvutil/strings.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <cstring>
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

void print_row(std::string_view label, std::string_view value) {
    std::string row(label);
    row.resize(20, ' ');
    print(row.append(value) + "\n");
}

void where() {
    PathBuffer configuration = "";
    const bool found = configuration_exists() && BvUtil_MB_SucheDatei("", "", nullptr, configuration) == 0;
    print_row("configuration file", found ? configuration : "none");

    // On most systems the library builds on the folder that it is given.
    PathBuffer data = "";
    if (GetEnvironmentVariableA("ALLUSERSPROFILE", data, sizeof data) >= sizeof data) data[0] = '\0';
    print_row("program data", BvUtil_GetProgPathAppData(data) ? data : "none");
    PathBuffer roaming = "";
    print_row("roaming data", BvUtil_GetProgPathRoamingAppData(roaming) ? roaming : "none");

    int major = 0, minor = 0;
    BvUtil_GetOperatingSystem(&major, &minor);
    print_row("system version", std::to_string(major) + "." + std::to_string(minor));
    if (!found)
        throw CommandFailed(exit_not_found, "no mb.ini or mb1.ini to mb9.ini in the current directory, the "
                                            "directory of the environment variable MB or C:\\");
}

} // namespace

void add_where_commands(CLI::App& app) {
    app.add_subcommand("where",
                       "Show the suite's configuration file and data folders, and the system version")
        ->footer(
            "The configuration file is the first of mb9.ini, mb8.ini, ... mb1.ini, mb.ini that exists, each\n"
            "looked for in the current directory, the directory of the environment variable MB and C:\\.\n"
            "The exit code is 1 when there is none.")
        ->callback(where);
}
