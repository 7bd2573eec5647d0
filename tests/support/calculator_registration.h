// Takes the calculator's registration out of the prefix while it lives, and puts back what was there. The
// test programs that use it hold the same RESOURCE_LOCK.
#pragma once

#include <array>
#include <windows.h>

inline constexpr char calculator_class_key[] =
    "Software\\Classes\\CLSID\\{9BA593B7-2640-493B-AA8A-B3D9172337C1}";

inline bool key_exists(HKEY root, const char* path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

class HiddenCalculatorRegistration {
  public:
    HiddenCalculatorRegistration() {
        for (std::size_t i = 0; i < roots.size(); ++i)
            m_was_there[i] = move(roots[i], calculator_class_key, shelves[i]);
    }
    ~HiddenCalculatorRegistration() {
        for (std::size_t i = 0; i < roots.size(); ++i) {
            RegDeleteTreeA(roots[i], calculator_class_key);
            if (m_was_there[i]) move(roots[i], shelves[i], calculator_class_key);
        }
    }
    HiddenCalculatorRegistration(const HiddenCalculatorRegistration&) = delete;
    HiddenCalculatorRegistration& operator=(const HiddenCalculatorRegistration&) = delete;

  private:
    static inline const std::array<HKEY, 2> roots = {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER};
    static constexpr std::array<const char*, 2> shelves = {"Software\\BvUtilTests\\Machine",
                                                           "Software\\BvUtilTests\\User"};

    static bool move(HKEY root, const char* from, const char* to) {
        HKEY source = nullptr;
        HKEY target = nullptr;
        if (RegOpenKeyExA(root, from, 0, KEY_ALL_ACCESS, &source) != ERROR_SUCCESS) return false;
        RegCreateKeyExA(root, to, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &target, nullptr);
        const bool copied = RegCopyTreeA(source, nullptr, target) == ERROR_SUCCESS;
        RegCloseKey(target);
        RegCloseKey(source);
        if (copied) RegDeleteTreeA(root, from);
        return copied;
    }

    std::array<bool, 2> m_was_there{};
};
