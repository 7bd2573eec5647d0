#include "tests/faults/import_faults.h"

#include "bvutil/strings.h"
#include "imaging/gdiplus_objects.h"
#include "tests/faults/memory_faults.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <map>
#include <string_view>

namespace {

// With the size of what came from the heap. Never destroyed: the DLL frees what it holds after this program's
// own objects are gone.
std::multimap<const void*, std::size_t>& held = *new std::multimap<const void*, std::size_t>;
std::size_t held_bytes = 0;
std::size_t countdown = 0; // to the call that fails; 0: none does
std::size_t room = 0;      // bytes that the heap may hold once it is full
bool armed = false, lasts = false, struck = false;

// Whether this call fails. A full heap has room again for what is freed; other objects are not to be had.
bool strikes(std::size_t bytes = 0) {
    if (!armed) return false;
    ++memory_faults::Fault::s_count;
    if (struck) return lasts && (bytes == 0 || held_bytes + bytes > room);
    if (countdown == 0 || --countdown > 0) return false;
    room = held_bytes;
    return struck = true;
}

template <class Handle>
Handle hold(Handle made, Handle none = {}, std::size_t bytes = 0) {
    if (made == none) return made;
    held.emplace(made, bytes);
    held_bytes += bytes;
    return made;
}

// By the name of what they stand for.
std::map<std::string_view, void*>& replacements() {
    static std::map<std::string_view, void*> all;
    return all;
}
#define REPLACES(name)                                                                                       \
    const bool replaces_##name =                                                                             \
        replacements().emplace(#name, reinterpret_cast<void*>(&failing_##name)).second;

void* __cdecl failing_malloc(std::size_t size) {
    return strikes(size + 1) ? nullptr : hold(std::malloc(size), {}, size + 1);
}
void* __cdecl failing_calloc(std::size_t count, std::size_t size) {
    return strikes(count * size + 1) ? nullptr : hold(std::calloc(count, size), {}, count * size + 1);
}
char* __cdecl failing__strdup(const char* text) {
    return strikes(std::strlen(text) + 1) ? nullptr : hold(_strdup(text), {}, std::strlen(text) + 1);
}
void* __cdecl failing_realloc(void* block, std::size_t size) {
    if (size > 0 && strikes(size + 1)) return nullptr;
    import_faults::forget(block);
    return hold(std::realloc(block, size), {}, size + 1);
}
void __cdecl failing_free(void* block) {
    if (block && !held.contains(block)) room += _msize(block); // from before the watch
    import_faults::forget(block);
    std::free(block);
}
REPLACES(malloc)
REPLACES(calloc)
REPLACES(_strdup)
REPLACES(realloc)
REPLACES(free)

// A function that returns what it makes, and one that stores it through its last argument.
#define MAKES(Result, Convention, name, none, parameters, ...)                                               \
    Result Convention failing_##name parameters {                                                            \
        return strikes() ? none : hold<Result>(name(__VA_ARGS__), none);                                     \
    }                                                                                                        \
    REPLACES(name)
#define STORES(Status, name, failure, success, out, parameters, ...)                                         \
    Status WINAPI failing_##name parameters {                                                                \
        if (strikes()) return failure;                                                                       \
        const Status status = name(__VA_ARGS__);                                                             \
        if (status == success) hold<const void*>(*out);                                                      \
        return status;                                                                                       \
    }                                                                                                        \
    REPLACES(name)
#define RELEASES(Result, Convention, name, Type)                                                             \
    Result Convention failing_##name(Type block) {                                                           \
        import_faults::forget(block);                                                                        \
        return name(block);                                                                                  \
    }                                                                                                        \
    REPLACES(name)

MAKES(std::FILE*, __cdecl, fopen, nullptr, (const char* path, const char* mode), path, mode)
RELEASES(int, __cdecl, fclose, std::FILE*)

MAKES(BSTR, WINAPI, SysAllocStringLen, nullptr, (const OLECHAR* text, UINT length), text, length)
MAKES(HMODULE, WINAPI, LoadLibraryA, nullptr, (LPCSTR name), name)
MAKES(HANDLE, WINAPI, FindFirstFileA, INVALID_HANDLE_VALUE, (LPCSTR path, WIN32_FIND_DATAA* found), path,
      found)
STORES(LSTATUS, RegOpenKeyExA, ERROR_NOT_ENOUGH_MEMORY, ERROR_SUCCESS, key,
       (HKEY root, LPCSTR name, DWORD options, REGSAM access, HKEY* key), root, name, options, access, key)
RELEASES(void, WINAPI, SysFreeString, BSTR)
RELEASES(WINBOOL, WINAPI, FreeLibrary, HMODULE)
RELEASES(WINBOOL, WINAPI, FindClose, HANDLE)
RELEASES(LSTATUS, WINAPI, RegCloseKey, HKEY)

MAKES(HDC, WINAPI, CreateCompatibleDC, nullptr, (HDC dc), dc)
MAKES(HBITMAP, WINAPI, CreateBitmap, nullptr,
      (int width, int height, UINT planes, UINT bits, const void* pixels), width, height, planes, bits,
      pixels)
MAKES(HBITMAP, WINAPI, CreateDIBSection, nullptr,
      (HDC dc, const BITMAPINFO* info, UINT use, void** bits, HANDLE file, DWORD offset), dc, info, use, bits,
      file, offset)
MAKES(HBRUSH, WINAPI, CreateSolidBrush, nullptr, (COLORREF colour), colour)
MAKES(HRGN, WINAPI, ExtCreateRegion, nullptr, (const XFORM* transform, DWORD size, const RGNDATA* data),
      transform, size, data)
RELEASES(WINBOOL, WINAPI, DeleteDC, HDC)
RELEASES(WINBOOL, WINAPI, DeleteObject, HGDIOBJ)

using namespace Gdiplus;
using namespace Gdiplus::DllExports;
MAKES(void*, WINAPI, GdipAlloc, nullptr, (size_t size), size)
STORES(GpStatus, GdipCloneImage, OutOfMemory, Ok, out, (GpImage * image, GpImage** out), image, out)
STORES(GpStatus, GdipCreateBitmapFromFile, OutOfMemory, Ok, out, (const WCHAR* path, GpBitmap** out), path,
       out)
STORES(GpStatus, GdipCreateBitmapFromGdiDib, OutOfMemory, Ok, out,
       (const BITMAPINFO* info, void* bits, GpBitmap** out), info, bits, out)
STORES(GpStatus, GdipCreateBitmapFromHBITMAP, OutOfMemory, Ok, out,
       (HBITMAP bitmap, HPALETTE palette, GpBitmap** out), bitmap, palette, out)
STORES(GpStatus, GdipCreateBitmapFromScan0, OutOfMemory, Ok, out,
       (INT width, INT height, INT stride, PixelFormat format, BYTE* bits, GpBitmap** out), width, height,
       stride, format, bits, out)
STORES(GpStatus, GdipCreateFromHDC, OutOfMemory, Ok, out, (HDC dc, GpGraphics** out), dc, out)
STORES(GpStatus, GdipCreateSolidFill, OutOfMemory, Ok, out, (ARGB colour, GpSolidFill** out), colour, out)
STORES(GpStatus, GdipGetImageGraphicsContext, OutOfMemory, Ok, out, (GpImage * image, GpGraphics** out),
       image, out)
RELEASES(void, WINAPI, GdipFree, void*)
RELEASES(GpStatus, WINAPI, GdipDisposeImage, GpImage*)
RELEASES(GpStatus, WINAPI, GdipDeleteGraphics, GpGraphics*)
RELEASES(GpStatus, WINAPI, GdipDeleteBrush, GpBrush*)

} // namespace

namespace import_faults {

void watch(HMODULE module) {
    auto* const base = reinterpret_cast<char*>(module);
    const auto* const headers =
        reinterpret_cast<IMAGE_NT_HEADERS32*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table); from->Name; ++from) {
        const auto* name = reinterpret_cast<IMAGE_THUNK_DATA32*>(base + from->OriginalFirstThunk);
        auto* slot = reinterpret_cast<IMAGE_THUNK_DATA32*>(base + from->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            const auto* import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            const auto replacement = replacements().find(reinterpret_cast<const char*>(import->Name));
            if (replacement == replacements().end()) continue;
            DWORD former = 0;
            VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &former);
            slot->u1.Function = reinterpret_cast<DWORD>(replacement->second);
            VirtualProtect(slot, sizeof *slot, former, &former);
        }
    }
}

void forget(const void* block) {
    const auto found = held.find(block);
    if (found == held.end()) return;
    held_bytes -= found->second;
    held.erase(found);
}

} // namespace import_faults

namespace {

const bool watched = [] {
    import_faults::watch(GetModuleHandleA("BvUtil.dll"));
    return true;
}();

} // namespace

namespace memory_faults {

void arm(std::size_t n, bool lasting) {
    countdown = n;
    lasts = lasting;
    struck = false;
    armed = true;
}

bool disarm() {
    armed = false;
    return struck;
}

// What the library keeps back for failures is there after one.
std::size_t live() {
    char path[100];
    arm(1, false);
    BvUtil_Makepath(path, nullptr, nullptr, "a name that is too long to be kept in its object");
    disarm();
    return held.size();
}

} // namespace memory_faults
