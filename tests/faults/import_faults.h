// The library under test, its imports of functions that hand out memory and other objects of the platform
// replaced by ones that count what is held and fail on demand (memory_faults).
#pragma once

#include <windows.h>

namespace import_faults {

// Does so with another copy of the library; with BvUtil.dll it is done.
void watch(HMODULE module);

// The test program itself releases what the library handed out.
void forget(const void* block);

} // namespace import_faults
