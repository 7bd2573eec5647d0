// bvutil filter: image filter plug-ins from the command line.
#include "bvutil/filter_host.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/drawing_surface.h"
#include "tools/bvutil/picture_pixels.h"
#include "tools/bvutil/whole_file.h"

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <io.h>
#include <memory>
#include <string>
#include <windows.h>

namespace {

struct Arguments {
    std::string plugin, input, output;
    bool repeat_last = false;
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

// A bar on the console; silent when the output goes elsewhere.
class ProgressBar {
  public:
    ~ProgressBar() {
        if (m_percent >= 0) write("\n");
    }
    void show(float fraction) {
        if (!m_visible || !(fraction >= 0 && fraction <= 1)) return;
        const int percent = static_cast<int>(100 * fraction);
        if (percent == m_percent) return;
        m_percent = percent;
        const auto filled = static_cast<std::size_t>(percent * width / 100);
        write("\r[" + std::string(filled, '#') + std::string(width - filled, ' ') + "] " +
              std::to_string(percent) + " %");
    }

  private:
    // In one piece: the runtime's stream writes to a console byte by byte.
    static void write(const std::string& text) {
        std::fflush(stdout);
        _write(_fileno(stdout), text.data(), static_cast<unsigned>(text.size()));
    }

    static constexpr std::size_t width = 40;
    bool m_visible = output_is_console();
    int m_percent = -1;
};

BvUtilBool BVUTIL_STDCALL on_progress(float fraction, void* bar) noexcept {
    static_cast<ProgressBar*>(bar)->show(fraction);
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
void apply_once(const Filter& filter, bool repeat_last, Picture& picture) {
    void* result = nullptr;
    int code = -108; // stays when there is no memory for the result
    bool done = false;
    {
        ProgressBar bar;
        done = AVApplyPSFilter(filter.get(), repeat_last, on_progress, &bar, picture.pixels.data(),
                               picture.width, picture.height, picture.row_bytes(), &result, &code) != 0;
    }
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
        apply_once(filter, arguments.repeat_last, picture);
    write_picture(arguments.output, format, picture);
}

} // namespace

void add_filter_commands(CLI::App& app) {
    auto* group = app.add_subcommand("filter", "Image filter plug-ins (*.8bf)");
    group->require_subcommand(1);
    const auto arguments = std::make_shared<Arguments>();

    auto* info = group->add_subcommand("info", "Tell a plug-in's menu category and name");
    info->add_option("plugin", arguments->plugin, "Plug-in file")->required();
    info->callback([arguments] { show_info(*arguments); });

    auto* apply = group->add_subcommand("apply", "Apply a plug-in to a picture");
    apply->add_option("plugin", arguments->plugin, "Plug-in file")->required();
    apply->add_option("input", arguments->input, "Picture to read")->required();
    apply->add_option("output", arguments->output, "Picture to write: bmp, jpeg, gif, tiff or png")
        ->required();
    apply->add_option("--again", arguments->again, "Apply it N more times to its own result")
        ->check(CLI::Range(0, 1000))
        ->type_name("N");
    apply->add_flag("--repeat-last", arguments->repeat_last,
                    "Ask for the settings the first time only and repeat them after that");
    apply->footer("A bar shows the progress on a console; Ctrl-C cancels, and nothing is written.");
    apply->callback([arguments] { apply_filter(*arguments); });
}
