// bvutil: BvUtil's services from the command line.
#include "module/version.h"
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <vector>
#include <windows.h>

namespace {

// The library's texts are in the ANSI code page, file names among them. Throws CommandFailed, in UTF-8, for
// what that page lacks: another character in its place would name another file.
std::vector<std::string> ansi_arguments(int argc, wchar_t** argv) {
    // Windows has no such check for UTF-8, which lacks nothing.
    const bool utf8 = GetACP() == CP_UTF8;
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        const std::wstring wide = argv[i];
        std::string text(wide.size() * 3, '\0');
        BOOL replaced = FALSE;
        const auto convert = [&](UINT page, DWORD flags, BOOL* lost) {
            text.resize(static_cast<std::size_t>(
                WideCharToMultiByte(page, flags, wide.data(), static_cast<int>(wide.size()), text.data(),
                                    static_cast<int>(text.size()), nullptr, lost)));
        };
        convert(CP_ACP, utf8 ? 0 : WC_NO_BEST_FIT_CHARS, utf8 ? nullptr : &replaced);
        if (replaced) {
            text.resize(wide.size() * 3);
            convert(CP_UTF8, 0, nullptr);
            throw CommandFailed(exit_usage, "the argument \"" + text +
                                                "\" holds a character that code page " +
                                                std::to_string(GetACP()) + " lacks");
        }
        arguments.push_back(text);
    }
    return arguments;
}

void add_commands(CLI::App& app) {
    app.set_version_flag("--version", "bvutil " BVUTIL_VERSION_TEXT, "Print the version and exit");
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.allow_windows_style_options(false); // values and paths may begin with a slash
    app.footer(exit_code_table() + "\nbvutil help GROUP lists the commands of a group, bvutil help GROUP "
                                   "COMMAND shows how one is used.");
    add_env_commands(app);
    add_files_commands(app);
    add_where_commands(app);
    add_calc_commands(app);
    add_triangulate_commands(app);
    add_image_commands(app);
    add_filter_commands(app);
    add_help_commands(app);
    add_completion_command(app);
}

ExitCode run(CLI::App& app, std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        print(help_of(named_command(app)));
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        print_error(usage_message(app, error));
        return exit_usage;
    } catch (const CommandFailed& failure) {
        print_error(failure.what());
        return failure.code();
    } catch (const std::exception& error) {
        print_error(error.what());
        return exit_failed;
    }
    return exit_done;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    prepare_output();
    std::vector<std::string> arguments;
    try {
        arguments = ansi_arguments(argc, argv);
    } catch (const CommandFailed& failure) {
        print_error_utf8(failure.what());
        return failure.code();
    }
    CLI::App app("Settings files, profiles, pictures, filters and geometry with BvUtil.", "bvutil");
    add_commands(app);
    const ExitCode code = run(app, std::move(arguments));
    if (output_is_complete()) return code;
    print_error("standard output cannot be written");
    return code == exit_done ? exit_io_error : code;
}
