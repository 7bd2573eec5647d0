// Looks up the platform's image encoders.
#pragma once

#include <optional>
#include <windows.h>

// The class of the first encoder of exactly this mime type (case counts).
std::optional<CLSID> find_encoder(const wchar_t* mime_type);
