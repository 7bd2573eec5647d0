#include "tools/bvutil/console.h"

#include "tools/bvutil/progress.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace {

std::wstring widened(UINT code_page, std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(code_page, 0, text.data(), length, wide.data(), length)));
    return wide;
}

// Standard output or standard error.
class Stream {
  public:
    Stream(std::FILE* file, DWORD id) : m_file(file), m_handle(GetStdHandle(id)) {
        DWORD mode = 0;
        m_console = GetConsoleMode(m_handle, &mode) != 0;
        const char* const no_color = std::getenv("NO_COLOR");
        CONSOLE_SCREEN_BUFFER_INFO info{};
        m_coloured =
            m_console && !(no_color && *no_color) && GetConsoleScreenBufferInfo(m_handle, &info) != 0;
        m_plain = info.wAttributes;
    }

    void write(std::string_view utf8) {
        if (m_console)
            write_to_console(widened(CP_UTF8, utf8));
        else
            std::fwrite(utf8.data(), 1, utf8.size(), m_file);
    }
    bool is_console() const { return m_console; }
    bool flush() { return std::fflush(m_file) == 0 && !std::ferror(m_file) && !m_failed; }

    // Changes the colour of the letters and leaves the ground.
    void set_letters(WORD letters) const {
        constexpr WORD all_letters = 0x0F;
        if (m_coloured)
            SetConsoleTextAttribute(m_handle, static_cast<WORD>((m_plain & ~all_letters) | letters));
    }
    void reset_letters() const {
        if (m_coloured) SetConsoleTextAttribute(m_handle, m_plain);
    }

  private:
    // A console takes a limited length at once; a pair of code units stays together.
    void write_to_console(std::wstring_view wide) {
        constexpr std::size_t most = 8000;
        while (!wide.empty() && !m_failed) {
            std::size_t length = std::min(most, wide.size());
            if (length < wide.size() && IS_HIGH_SURROGATE(wide[length - 1])) --length;
            DWORD written = 0;
            m_failed = !WriteConsoleW(m_handle, wide.data(), static_cast<DWORD>(length), &written, nullptr);
            wide.remove_prefix(length);
        }
    }

    std::FILE* m_file;
    HANDLE m_handle;
    bool m_console = false, m_coloured = false, m_failed = false;
    WORD m_plain = 0;
};

Stream& output() {
    static Stream stream(stdout, STD_OUTPUT_HANDLE);
    return stream;
}

Stream& error_output() {
    static Stream stream(stderr, STD_ERROR_HANDLE);
    return stream;
}

void print_message(WORD letters, std::string_view utf8) {
    Progress::make_way();
    output().flush();
    error_output().set_letters(letters);
    error_output().write("bvutil: ");
    error_output().reset_letters();
    error_output().write(std::string(utf8) + "\n");
}

} // namespace

std::string to_utf8(std::string_view ansi) {
    const std::wstring wide = widened(CP_ACP, ansi);
    std::string utf8(wide.size() * 3, '\0');
    utf8.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), utf8.data(),
                            static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

void prepare_output() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

void print_utf8(std::string_view utf8) {
    if (output().is_console()) Progress::make_way();
    output().write(utf8);
}

void print(std::string_view ansi) {
    print_utf8(to_utf8(ansi));
}

void print_error_utf8(std::string_view message) {
    print_message(FOREGROUND_RED | FOREGROUND_INTENSITY, message);
}

void print_error(std::string_view message) {
    print_error_utf8(to_utf8(message));
}

void print_note(std::string_view message) {
    print_message(FOREGROUND_RED | FOREGROUND_GREEN, to_utf8(message));
}

bool error_output_is_console() {
    return error_output().is_console();
}

void write_to_error(std::string_view utf8) {
    error_output().write(utf8);
}

bool output_is_complete() {
    return output().flush();
}

Emphasised::Emphasised(Emphasis emphasis) {
    output().set_letters(emphasis == Emphasis::heading
                             ? FOREGROUND_GREEN | FOREGROUND_BLUE | FOREGROUND_INTENSITY
                             : FOREGROUND_INTENSITY);
}

Emphasised::~Emphasised() {
    output().reset_letters();
}
