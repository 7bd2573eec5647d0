// bvutil: BvUtil's services from the command line.
#include "module/version.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace {

// The arguments come in the ANSI code page: a character that it lacks has become another one.
bool arguments_are_ansi() {
    BOOL replaced = FALSE;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, GetCommandLineW(), -1, nullptr, 0, nullptr, &replaced);
    return !replaced;
}

} // namespace

int main(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    // Output is written as it is, so that what is piped or redirected has the same bytes everywhere.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);

    CLI::App app("Settings files, profiles, pictures, filters and geometry with BvUtil.", "bvutil");
    app.set_version_flag("--version", "bvutil " BVUTIL_VERSION_TEXT);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // values and paths may begin with a slash
    app.footer("Exit codes: 0 done, 1 not found, 2 bad input, 3 file cannot be read or written,\n"
               "4 failed, 64 wrong command line.");

    add_calc_commands(app);
    add_env_commands(app);
    add_files_commands(app);
    add_where_commands(app);
    add_filter_commands(app);
    add_triangulate_commands(app);
    add_image_commands(app);

    if (!arguments_are_ansi()) {
        print_error("an argument holds a character that code page " + std::to_string(GetACP()) + " lacks");
        return exit_usage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? exit_done : exit_usage;
    } catch (const CommandFailed& failure) {
        print_error(failure.what());
        return failure.code();
    } catch (const std::exception& error) {
        print_error(error.what());
        return exit_failed;
    }
    return exit_done;
}
