// The library's own module, and what it keeps in its resources.
#pragma once

#include <string>
#include <windows.h>

HINSTANCE module_instance();

// The text of the string table with this id (module/resource.h), in the ANSI code page; empty when missing.
std::string load_string(UINT id);

// A modal box with the string-table text, an OK button and the exclamation sign, owned by the thread's
// main window and titled with the library's name.
int message_box(UINT text_id);

// The main window of the calling thread: its first visible top-level window without an owner, else its
// first top-level window; null when it has none.
HWND thread_main_window();
