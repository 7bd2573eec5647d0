#include "module/bvutil_dll.h"

#include "module/memory_reserve.h"
#include "module/module_instance.h"

#include <objbase.h>
#include <windows.h>

namespace {
CBvUtilDll the_application;
HINSTANCE the_instance = nullptr;
} // namespace

CBvUtilDll& application() {
    return the_application;
}

HINSTANCE module_instance() {
    return the_instance;
}

void CBvUtilDll::init_instance() {
    memory_reserve::keep();
    m_com_initialised = SUCCEEDED(CoInitialize(nullptr));
    write_to_logfile = false;
    log_stream.reset();
    calculator = nullptr;
}

void CBvUtilDll::exit_instance() {
    calculator = nullptr;
    // Only our own initialisation is taken back: a thread that had chosen another COM model keeps it.
    if (m_com_initialised) CoUninitialize();
    m_com_initialised = false;
    log_stream.reset();
    memory_reserve::release();
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        the_instance = instance;
        the_application.init_instance();
    } else if (reason == DLL_PROCESS_DETACH) {
        the_application.exit_instance();
    }
    return TRUE;
}
