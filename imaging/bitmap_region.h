// Builds a region from the opaque pixels of a bitmap.
#pragma once

#include "module/handles.h"

// Empty when the bitmap is none or cannot be read. The key is 0x00RRGGBB.
unique_region region_of_bitmap(HBITMAP bitmap, DWORD key);
