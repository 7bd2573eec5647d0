// The texts of numbers and arrays as they are stored; the same in every C locale.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace env {

// The text of a number: "%ld" or "%g".
class NumberText {
  public:
    explicit NumberText(long value);
    explicit NumberText(double value);
    std::string_view view() const { return {m_text.data(), m_length}; }
    const char* c_str() const { return m_text.data(); }

  private:
    std::array<char, 32> m_text;
    std::size_t m_length;
};

// The joined text of an array, with a limit: the first append that does not fit is refused, and all later
// ones are too.
class ArrayText {
  public:
    static constexpr std::size_t capacity = 1023;
    static constexpr std::size_t longest_item = 1024;

    // Appends an item with its separator. False when the item is too long for any list: it ends there.
    bool add(std::string_view item);
    const char* c_str() const { return m_text.data(); }

  private:
    void append(std::string_view text);

    std::array<char, capacity + 1> m_text{};
    std::size_t m_length = 0;
    bool m_first = true;
    bool m_full = false;
};

} // namespace env
