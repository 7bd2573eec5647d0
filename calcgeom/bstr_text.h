// Text between the 8-bit strings of the interface and BSTRs.
#pragma once

#include "module/handles.h"

// A BSTR of the text, read in the system's ANSI code page. Throws std::bad_alloc.
unique_bstr to_bstr(const char* text);

// Writes the text, up to its first NUL, in the calling thread's ANSI code page with a terminating zero. A
// null text is empty. The buffer must be large enough.
void copy_to_buffer(const unique_bstr& text, char* buffer);
