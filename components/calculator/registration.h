// The component's entries in the registry.
#pragma once

#include <windows.h>

inline constexpr wchar_t class_id_text[] = L"{9BA593B7-2640-493B-AA8A-B3D9172337C1}";

// Registers the module for the machine, or, where that is not allowed, for the user.
HRESULT register_component(HMODULE module);

// Removes what register_component made, in both places; what is not there is no failure.
HRESULT unregister_component();
