// One value of a profile file, read through the platform into a buffer of the size that a family states.
#pragma once

#include <cstddef>
#include <windows.h>

// Capacity counts the terminating zero: the platform cuts a longer value.
template <std::size_t Capacity>
class ProfileValue {
  public:
    ProfileValue(const char* file, const char* section, const char* key, const char* missing) noexcept {
        // With nothing returned, the buffer's text does not count.
        if (GetPrivateProfileStringA(section, key, missing, m_text, Capacity, file) == 0) m_text[0] = '\0';
    }
    const char* text() const noexcept { return m_text; }
    bool empty() const noexcept { return *m_text == '\0'; }

  private:
    char m_text[Capacity] = {};
};
