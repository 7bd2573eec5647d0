// bvutil filter: image filter plug-ins from the command line.
#include "bvutil/filter_host.h"
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/drawing_surface.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/picture_pixels.h"
#include "tools/bvutil/progress.h"
#include "tools/bvutil/whole_file.h"

#include <CLI/CLI.hpp>
#include <atomic>
#include <memory>
#include <string>
#include <windows.h>

namespace {

struct Arguments {
    std::string plugin, input, output;
    bool repeat_last = false, json = false;
    int again = 0;
};

// An opened plug-in and what it says of itself.
class Filter {
  public:
    explicit Filter(const std::string& path) {
        if (!file_exists(path)) throw CommandFailed(exit_io_error, "there is no file " + path);
        char full[MAX_PATH]; // a bare name would be searched for elsewhere first
        const DWORD length = GetFullPathNameA(path.c_str(), MAX_PATH, full, nullptr);
        char* category = nullptr;
        char* name = nullptr;
        if (length == 0 || length >= MAX_PATH ||
            !AVGetPSFilterAndInfo(full, &category, &name, &m_filter, nullptr))
            throw CommandFailed(exit_bad_input, path + " is not a filter plug-in for 32-bit programs");
        m_category = category ? category : "";
        m_name = name ? name : "";
        AVFreeGotPSFilterInfo(&category, &name);
    }
    ~Filter() { AVFreeGotPSFilter(&m_filter); }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    PSFilter_* get() const { return m_filter; }
    const std::string& category() const { return m_category; }
    const std::string& name() const { return m_name; }

  private:
    PSFilter_* m_filter = nullptr;
    std::string m_category;
    std::string m_name;
};

// Ctrl-C stops the filter, not the program, while this lives.
class Interruption {
  public:
    Interruption() {
        wanted = false;
        SetConsoleCtrlHandler(handle, TRUE);
    }
    ~Interruption() { SetConsoleCtrlHandler(handle, FALSE); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static inline std::atomic<bool> wanted = false;

  private:
    static BOOL WINAPI handle(DWORD event) noexcept {
        if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
        wanted = true;
        return TRUE;
    }
};

// One of several rounds of the same work.
struct Round {
    int number, count;
};

BvUtilBool BVUTIL_STDCALL on_progress(float fraction, void* round) noexcept {
    const auto [number, count] = *static_cast<const Round*>(round);
    if (fraction >= 0 && fraction <= 1) Progress::report((number + static_cast<double>(fraction)) / count);
    return !Interruption::wanted;
}

const char* meaning(int code) {
    switch (code) {
    case -50:
        return "a bad parameter";
    case -108:
        return "out of memory";
    case -30100:
        return "bad filter parameters";
    case -30101:
        return "the filter does not work on colour pictures";
    case -30900:
        return "the filter needs a service that is not offered";
    default:
        return "the filter failed";
    }
}

struct DeleteImage {
    void operator()(void* image) const noexcept { AVFreeGotPSFilterImage(&image); }
};

// Replaces the picture by the filter's work on it.
void apply_once(const Filter& filter, bool repeat_last, Round round, Picture& picture) {
    void* result = nullptr;
    int code = -108; // stays when there is no memory for the result
    const bool done =
        AVApplyPSFilter(filter.get(), repeat_last, on_progress, &round, picture.pixels.data(), picture.width,
                        picture.height, picture.row_bytes(), &result, &code) != 0;
    const std::unique_ptr<void, DeleteImage> owner(result);
    constexpr int cancelled = -128;
    if (Interruption::wanted || code > 0 || code == cancelled)
        throw CommandFailed(exit_failed, filter.name() + " was cancelled; nothing is written");
    if (!done)
        throw CommandFailed(exit_failed,
                            filter.name() + ": " + meaning(code) + " (code " + std::to_string(code) + ")");
    const auto* pixels = static_cast<const std::uint8_t*>(result);
    picture.pixels.assign(pixels, pixels + picture.pixels.size());
}

void show_info(const Arguments& arguments) {
    const Filter filter(arguments.plugin);
    if (arguments.json)
        return JsonWriter()
            .begin_object()
            .member("file", arguments.plugin)
            .member("category", filter.category())
            .member("name", filter.name())
            .end_object()
            .print();
    print("category: " + filter.category() + "\nname:     " + filter.name() + "\n");
}

void apply_filter(const Arguments& arguments) {
    const Filter filter(arguments.plugin);
    const int format = format_code("", arguments.output);
    const GdiPlusSession session;
    Picture picture = read_picture(arguments.input);
    if (picture.width > 32767 || picture.height > 32767)
        throw CommandFailed(exit_bad_input,
                            arguments.input + " is larger than filters can count (32767 pixels)");
    const Interruption interruption;
    for (int round = 0; round <= arguments.again; ++round)
        apply_once(filter, arguments.repeat_last, {round, arguments.again + 1}, picture);
    write_picture(arguments.output, format, picture);
}

} // namespace

void add_filter_commands(CLI::App& app) {
    CLI::App& group = add_group(app, "filter", "Image filter plug-ins (*.8bf)");
    const auto arguments = std::make_shared<Arguments>();
    const auto add = [&](const CommandHelp& help, void (*run)(const Arguments&)) {
        CLI::App* const command = add_command(group, help, [=] { run(*arguments); });
        command->add_option("PLUGIN", arguments->plugin, "Plug-in file")->required();
        return command;
    };

    add_json(add({"info", "Tell a plug-in's menu category and name", {"bvutil filter info unsharp_mask.8bf"}},
                 show_info),
             arguments->json);

    CLI::App* const apply =
        add({"apply",
             "Apply a plug-in to a picture",
             {"bvutil filter apply auto_levels.8bf landscape.bmp clear.png",
              "bvutil filter apply unsharp_mask.8bf landscape.bmp -o crisp.bmp --again 1 --repeat-last"},
             "Ctrl-C cancels, and nothing is written."},
            apply_filter);
    apply->add_option("INPUT", arguments->input, "Picture to read")->required();
    add_output(apply, arguments->output, "Picture to write: bmp, jpeg, gif, tiff or png")->required();
    apply->add_option("--again", arguments->again, "Apply it N more times to its own result")
        ->check(CLI::Range(0, 1000))
        ->type_name("N");
    apply->add_flag("--repeat-last", arguments->repeat_last,
                    "Ask for the settings the first time only and repeat them after that");
}
