// What a person at a console sees of work that takes its time.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// A line on standard error that appears when nothing has been printed for a second, and is wiped before
// anything is printed and at the end. There is none when standard error is no console.
class Progress {
  public:
    explicit Progress(std::string label);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // How much of the work in hand is done, from 0 to 1; any other value for what cannot be told.
    static void report(double fraction) { s_fraction = static_cast<float>(fraction); }
    // Wipes the line of the work in hand.
    static void make_way();

  private:
    using Clock = std::chrono::steady_clock;
    void draw_until_done();
    void draw();
    void wipe();

    static inline std::atomic<float> s_fraction = -1.0f;
    static inline std::atomic<Progress*> s_current = nullptr;

    const std::string m_label;
    const Clock::time_point m_begin = Clock::now();
    Clock::time_point m_silent_since = m_begin;
    std::size_t m_drawn = 0; // columns
    bool m_done = false;
    std::mutex m_mutex;
    std::condition_variable m_end;
    std::thread m_drawer;
};
