// What bvutil shows on a console: characters of any code page, colours, and the progress of long work.
#include "tests/tools/commands.h"

#include <thread>

namespace {

// A console's screen, for a program to write to.
class Screen {
  public:
    Screen() {
        FreeConsole(); // a console that the tests were started from is not theirs to write to
        AllocConsole();
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        m_handle = CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                             &inherited, CONSOLE_TEXTMODE_BUFFER, nullptr);
    }
    ~Screen() {
        CloseHandle(m_handle);
        FreeConsole();
    }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    HANDLE handle() const { return m_handle; }
    std::wstring text() const {
        std::wstring cells(most, L' ');
        DWORD count = 0;
        ReadConsoleOutputCharacterW(m_handle, cells.data(), most, {0, 0}, &count);
        return cells.substr(0, count);
    }
    // The colours of the first character of a part of the text.
    WORD colour_of(const std::wstring& part) const {
        std::vector<WORD> colours(most);
        DWORD count = 0;
        ReadConsoleOutputAttribute(m_handle, colours.data(), most, {0, 0}, &count);
        const std::size_t at = text().find(part);
        return at < count ? colours[at] : 0xFFFF;
    }

  private:
    static constexpr DWORD most = 800; // cells

    HANDLE m_handle;
};

class Console : public Commands {
  protected:
    int run_on(const Screen& screen, const std::wstring& arguments, HANDLE in = nullptr) const {
        return run_with(L"bvutil.exe " + arguments, dir.path(), in, screen.handle(), screen.handle());
    }
};

TEST_F(Console, ShowsEveryCharacterAndColours) {
    write("a.env", "[S]\n k = \x80\xFC\n");
    for (const bool coloured : {true, false}) {
        SetEnvironmentVariableA("NO_COLOR", coloured ? nullptr : "1");
        const Screen screen;
        EXPECT_EQ(run_on(screen, L"env show a.env"), 0);
        EXPECT_NE(screen.text().find(L"\u2514\u2500\u2500 [S]"), std::wstring::npos);
        EXPECT_NE(screen.text().find(L"\u2514\u2500\u2500 k = \u20AC\u00FC "), std::wstring::npos);
        EXPECT_EQ(run_on(screen, L"env get a.env S none"), 1);
        const WORD plain = screen.colour_of(L"k =");
        EXPECT_EQ(screen.colour_of(L"none is not in"), plain);
        EXPECT_EQ(screen.colour_of(L"[S]") != plain, coloured);
        EXPECT_EQ(screen.colour_of(L"bvutil: [S]") != plain, coloured);
    }
    SetEnvironmentVariableA("NO_COLOR", nullptr);
}

TEST_F(Console, ShowsProgressWhileWorkGoesOnAndWipesItThen) {
    const Screen screen;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE in = nullptr, points = nullptr;
    ASSERT_TRUE(CreatePipe(&in, &points, &inherited, 0));
    SetHandleInformation(points, HANDLE_FLAG_INHERIT, 0);
    bool shown = false;
    // The program waits for points until it has shown that it does.
    std::thread feeder([&] {
        for (int i = 0; i < 300 && !shown; ++i) {
            Sleep(100);
            shown = screen.text().find(L"bvutil triangulate: ") != std::wstring::npos;
        }
        DWORD written = 0;
        WriteFile(points, "0,0\n1,0\n0,1\n", 12, &written, nullptr);
        CloseHandle(points);
    });
    EXPECT_EQ(run_on(screen, L"triangulate --csv t.csv", in), 0);
    feeder.join();
    CloseHandle(in);
    EXPECT_TRUE(shown);
    EXPECT_TRUE(screen.text().starts_with(L"3 points, 1 triangles ")) << read("t.csv");
}

} // namespace
