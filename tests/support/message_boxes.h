// Answers message boxes while it lives, so that no test waits for a person, and keeps what they said.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>
#include <windows.h>

class MessageBoxWatcher {
  public:
    struct Box {
        std::string caption;
        std::string text;
        HWND owner = nullptr;
        bool has_icon = false;
    };

    MessageBoxWatcher() : m_thread([this] { run(); }) {}
    ~MessageBoxWatcher() {
        m_stop = true;
        m_thread.join();
    }

    // The boxes answered since the last call, in order.
    std::vector<Box> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_boxes, {});
    }

  private:
    void run() {
        while (!m_stop) {
            EnumWindows(&MessageBoxWatcher::visit, reinterpret_cast<LPARAM>(this));
            Sleep(2);
        }
    }

    static BOOL CALLBACK visit(HWND window, LPARAM self) noexcept {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        char name[16] = "";
        GetClassNameA(window, name, sizeof name);
        // A box is answered once it is visible: by then its texts are set.
        if (process == GetCurrentProcessId() && std::string(name) == "#32770" && IsWindowVisible(window))
            reinterpret_cast<MessageBoxWatcher*>(self)->answer(window);
        return TRUE;
    }

    void answer(HWND window) {
        Box box{text_of(window), {}, GetWindow(window, GW_OWNER), false};
        for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
            char name[16] = "";
            GetClassNameA(child, name, sizeof name);
            if (std::string(name) != "Static") continue;
            if (GetWindowLongA(child, GWL_STYLE) & SS_ICON)
                box.has_icon = box.has_icon || SendMessageA(child, STM_GETICON, 0, 0) != 0;
            else
                box.text = text_of(child);
        }
        {
            const std::lock_guard lock(m_mutex);
            m_boxes.push_back(box);
        }
        PostMessageA(window, WM_COMMAND, IDOK, 0);
        while (!m_stop && IsWindow(window))
            Sleep(1);
    }

    static std::string text_of(HWND window) {
        std::string text(4096, '\0');
        const auto length =
            SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<std::size_t>(length));
        return text;
    }

    std::atomic<bool> m_stop = false;
    std::mutex m_mutex;
    std::vector<Box> m_boxes;
    std::thread m_thread;
};
