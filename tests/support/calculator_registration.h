// Takes the calculator's registration out of the prefix while it lives, and puts back what was there. The
// test programs that use it hold the same RESOURCE_LOCK.
#pragma once

#include "module/handles.h"

inline constexpr char calculator_class_key[] =
    "Software\\Classes\\CLSID\\{9BA593B7-2640-493B-AA8A-B3D9172337C1}";

inline bool key_exists(HKEY root, const char* path) {
    registry_key key;
    return RegOpenKeyExA(root, path, 0, KEY_READ, key.put()) == ERROR_SUCCESS;
}

class HiddenCalculatorRegistration {
  public:
    HiddenCalculatorRegistration() {
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            move(root, calculator_class_key, shelf);
    }
    ~HiddenCalculatorRegistration() {
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
            RegDeleteTreeA(root, calculator_class_key);
            move(root, shelf, calculator_class_key);
        }
    }
    HiddenCalculatorRegistration(const HiddenCalculatorRegistration&) = delete;
    HiddenCalculatorRegistration& operator=(const HiddenCalculatorRegistration&) = delete;

  private:
    static constexpr char shelf[] = "Software\\BvUtilTests\\Calculator";

    static void move(HKEY root, const char* from, const char* to) {
        registry_key source, target;
        if (RegOpenKeyExA(root, from, 0, KEY_ALL_ACCESS, source.put()) != ERROR_SUCCESS) return;
        RegCreateKeyExA(root, to, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, target.put(), nullptr);
        if (RegCopyTreeA(source.get(), nullptr, target.get()) == ERROR_SUCCESS) RegDeleteTreeA(root, from);
    }
};
