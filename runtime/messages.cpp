#include "bvutil/messages.h"

#include "module/bvutil_dll.h"
#include "module/guarded.h"
#include "module/module_instance.h"
#include "module/resource.h"
#include "runtime/formatted.h"

#include <ctime>
#include <initializer_list>
#include <string>

namespace {

constexpr int alternative_logs = 20;

std::string local_time_text() {
    char text[128] = "";
    const __time64_t now = _time64(nullptr);
    if (const std::tm* local = _localtime64(&now))
        std::strftime(text, sizeof text, "%B %d, %Y, %H:%M", local);
    return text;
}

void show_box(const std::string& text, const char* caption) {
    MessageBoxA(GetFocus(), text.c_str(), caption, 0);
}

void open_alternative_log(CBvUtilDll& app, const char* path) {
    for (long n = 1; n <= alternative_logs; ++n) {
        const std::string alternative = formatted("%s_%ld", path, n);
        app.log_stream.reset(std::fopen(alternative.c_str(), "w"));
        if (app.log_stream) {
            show_box(formatted(load_string(IDS_LOG_RENAMED).c_str(), path, alternative.c_str()), nullptr);
            return;
        }
    }
    app.write_to_logfile = false;
    show_box(load_string(IDS_LOG_IMPOSSIBLE), nullptr);
}

} // namespace

extern "C" void BVUTIL_CALL BvUtil_Message(const char* text1, const char* text2, const char* text3,
                                           const char* sourceFile, int line) {
    guarded([&] {
        std::string text;
        for (const char* part : {text1, text2, text3})
            if (part) text += part;

        const CBvUtilDll& app = application();
        if (app.write_to_logfile && app.log_stream) {
            std::fprintf(app.log_stream.get(), "%s :: %s in \"%s\" line %d\n", local_time_text().c_str(),
                         text.c_str(), sourceFile ? sourceFile : "", line);
            std::fflush(app.log_stream.get());
            return;
        }
        const std::string caption =
            sourceFile ? formatted("MESSAGE in \"%s\" line %d:", sourceFile, line) : "MESSAGE";
        show_box(text, caption.c_str());
    });
}

extern "C" void BVUTIL_CALL BvUtil_SetWriteToLogfile(int enable, const char* logPath, int append) {
    guarded([&] {
        CBvUtilDll& app = application();
        app.write_to_logfile = enable != 0;
        if (!enable) {
            app.log_stream.reset();
            return;
        }
        if (app.log_stream || !logPath) return;
        // "c": the runtime commits to disk on every flush.
        app.log_stream.reset(std::fopen(logPath, append ? "ac" : "wc"));
        if (!app.log_stream) open_alternative_log(app, logPath);
    });
    if (logPath && !application().log_stream) application().write_to_logfile = false; // memory ran out
}

extern "C" int BVUTIL_CALL BvUtil_GetWriteToLogfile(void) {
    return application().write_to_logfile ? 1 : 0;
}
