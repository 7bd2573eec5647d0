#include "tools/bvutil/progress.h"

#include "tools/bvutil/console.h"

#include <system_error>

using namespace std::chrono_literals;

Progress::Progress(std::string label) : m_label(std::move(label)) {
    if (!error_output_is_console()) return;
    s_fraction = -1.0f;
    try {
        m_drawer = std::thread([this] { draw_until_done(); });
        s_current = this;
    } catch (const std::system_error&) {
        // Without a thread to spare the work goes on unseen.
    }
}

Progress::~Progress() {
    if (!m_drawer.joinable()) return;
    s_current = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        m_done = true;
    }
    m_end.notify_one();
    m_drawer.join();
    wipe();
}

void Progress::make_way() {
    Progress* const current = s_current;
    if (!current) return;
    const std::lock_guard lock(current->m_mutex);
    current->wipe();
    current->m_silent_since = Clock::now();
}

void Progress::draw_until_done() {
    std::unique_lock lock(m_mutex);
    while (!m_end.wait_for(lock, 100ms, [this] { return m_done; }))
        if (Clock::now() - m_silent_since >= 1s) draw();
}

void Progress::draw() {
    constexpr int width = 30;
    const float fraction = s_fraction;
    std::string line = m_label + ": ";
    if (fraction >= 0 && fraction <= 1) {
        const int filled = static_cast<int>(fraction * width);
        line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
                std::string(static_cast<std::size_t>(width - filled), ' ') + "] " +
                std::to_string(static_cast<int>(fraction * 100)) + " %, ";
    }
    line += std::to_string((Clock::now() - m_begin) / 1s) + " s";
    const std::size_t columns = line.size();
    if (columns < m_drawn) line.append(m_drawn - columns, ' ');
    m_drawn = columns;
    write_to_error("\r" + line);
}

void Progress::wipe() {
    if (m_drawn > 0) write_to_error("\r" + std::string(m_drawn, ' ') + "\r");
    m_drawn = 0;
}
