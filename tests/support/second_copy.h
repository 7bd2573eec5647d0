// The library once more: a copy under another name is a module with a state of its own, and can be unloaded.
#pragma once

#include "tests/support/temp_dir.h"

#include <string>
#include <windows.h>

class SecondCopy {
  public:
    SecondCopy() {
        char path[MAX_PATH];
        GetModuleFileNameA(LoadLibraryA("BvUtil.dll"), path, MAX_PATH);
        const std::string copy = m_dir.file("copy.dll");
        CopyFileA(path, copy.c_str(), FALSE);
        m_module = LoadLibraryA(copy.c_str());
    }
    ~SecondCopy() { unload(); }
    SecondCopy(const SecondCopy&) = delete;
    SecondCopy& operator=(const SecondCopy&) = delete;

    void unload() {
        if (m_module) FreeLibrary(m_module);
        m_module = nullptr;
    }
    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }
    const TempDir& dir() const { return m_dir; }

  private:
    TempDir m_dir;
    HMODULE m_module = nullptr;
};
