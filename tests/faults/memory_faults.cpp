#include "tests/faults/memory_faults.h"

#include <cstdlib>
#include <new>

#ifdef _WIN32
#include "bvutil/strings.h"
#include "imaging/gdiplus_objects.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>
#endif

namespace {

// Whether this allocation fails; without memory there is `room` for so many bytes again.
bool strikes(bool room = false) {
    memory_faults::Fault& fault = memory_faults::the_fault;
    if (!fault.active) return false;
    if (fault.struck) return fault.lasts && !room;
    return fault.struck = fault.countdown > 0 && --fault.countdown == 0;
}

} // namespace

#ifndef _WIN32

namespace {

std::size_t blocks = 0;

void* allocate(std::size_t size) noexcept {
    void* const block = strikes() ? nullptr : std::malloc(size ? size : 1);
    blocks += block != nullptr;
    return block;
}

} // namespace

std::size_t memory_faults::held() {
    return blocks;
}

void* operator new(std::size_t size) {
    if (void* const block = allocate(size)) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    blocks -= block != nullptr;
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}

#else

namespace {

// With the size of what came from the heap. Never destroyed: the DLL frees what it holds after this program's
// own objects are gone.
std::multimap<const void*, std::size_t>& objects = *new std::multimap<const void*, std::size_t>;
std::size_t bytes_held = 0, bytes_before = 0; // now, and when memory ran out

bool heap_strikes(std::size_t size) {
    const bool had_run_out = memory_faults::the_fault.struck;
    const bool fails = strikes(bytes_held + size <= bytes_before);
    if (fails && !had_run_out) bytes_before = bytes_held;
    return fails;
}

template <class Handle>
Handle hold(Handle made, std::size_t bytes = 0) {
    objects.emplace(made, bytes);
    bytes_held += bytes;
    return made;
}
void release(const void* object) {
    const auto found = objects.find(object);
    if (found == objects.end()) return;
    bytes_held -= found->second;
    objects.erase(found);
}

void* __cdecl failing_realloc(void* block, std::size_t size) {
    if (size > 0 && heap_strikes(size + 1)) return nullptr;
    release(block);
    void* const made = std::realloc(block, size);
    return made ? hold(made, size + 1) : made;
}
void* __cdecl failing_malloc(std::size_t size) {
    return heap_strikes(size + 1) ? nullptr : hold(std::malloc(size), size + 1);
}
void* __cdecl failing_calloc(std::size_t count, std::size_t size) {
    return heap_strikes(count * size + 1) ? nullptr : hold(std::calloc(count, size), count * size + 1);
}
char* __cdecl failing__strdup(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    return heap_strikes(size) ? nullptr : hold(_strdup(text), size);
}
void __cdecl failing_free(void* block) {
    if (block && !objects.contains(block)) bytes_before += _msize(block); // from before the watch
    release(block);
    std::free(block);
}

// What stands for an import: the function that fails, and where it finds the one that it stands for.
struct Import {
    std::string_view name;
    void* stand;
    void** real;
};

// One that returns what it makes (null or, where that is no handle, the failure given), stores it through its
// last argument, or releases it.
enum class Way { makes, stores, releases };
template <Way way, int failure, class Call, class... Arguments>
auto stand_in(const Call& call, Arguments... arguments) {
    using Result = decltype(call(arguments...));
    const auto last = std::get<sizeof...(arguments) - 1>(std::tuple(arguments...));
    if constexpr (way == Way::releases) {
        release(last);
        return call(arguments...);
    } else {
        const Result failed = (Result)failure;
        if (strikes()) return failed;
        const Result result = call(arguments...);
        if constexpr (way == Way::makes) {
            if (result != failed) hold(result);
        } else {
            if (result == Result()) hold<const void*>(*last);
        }
        return result;
    }
}

template <class Tag, Way way, int failure, class Function>
struct Stand;
#define STAND(convention)                                                                                    \
    template <class Tag, Way way, int failure, class Result, class... Arguments>                             \
    struct Stand<Tag, way, failure, Result convention(Arguments...)> {                                       \
        static inline Result(convention* real)(Arguments...) = nullptr;                                      \
        static Result convention call(Arguments... arguments) {                                              \
            return stand_in<way, failure>(real, arguments...);                                               \
        }                                                                                                    \
    };
STAND(__cdecl)
STAND(WINAPI)

template <class Tag, Way way, int failure, class Function>
Import stand_for(const char* name) {
    using Here = Stand<Tag, way, failure, Function>;
    return {name, reinterpret_cast<void*>(&Here::call), reinterpret_cast<void**>(&Here::real)};
}
template <class Function>
Import heap(const char* name, Function* function) {
    return {name, reinterpret_cast<void*>(function), nullptr};
}
#define IMPORT(way, failure, name) stand_for<decltype([] {}), Way::way, failure, decltype(name)>(#name)
#define HEAP(name) heap(#name, failing_##name)
#define MAKES(name) IMPORT(makes, 0, name)
#define PICTURE(name) IMPORT(stores, Gdiplus::OutOfMemory, name)
#define RELEASES(name) IMPORT(releases, 0, name)

using namespace Gdiplus::DllExports;
const Import imports[] = {HEAP(malloc),
                          HEAP(calloc),
                          HEAP(realloc),
                          HEAP(_strdup),
                          HEAP(free),
                          MAKES(fopen),
                          RELEASES(fclose),
                          MAKES(SysAllocStringLen),
                          RELEASES(SysFreeString),
                          MAKES(LoadLibraryA),
                          RELEASES(FreeLibrary),
                          IMPORT(makes, -1, FindFirstFileA),
                          RELEASES(FindClose),
                          IMPORT(stores, ERROR_NOT_ENOUGH_MEMORY, RegOpenKeyExA),
                          RELEASES(RegCloseKey),
                          MAKES(CreateCompatibleDC),
                          RELEASES(DeleteDC),
                          MAKES(CreateBitmap),
                          MAKES(CreateDIBSection),
                          MAKES(CreateSolidBrush),
                          MAKES(ExtCreateRegion),
                          RELEASES(DeleteObject),
                          MAKES(GdipAlloc),
                          RELEASES(GdipFree),
                          PICTURE(GdipCloneImage),
                          PICTURE(GdipCreateBitmapFromFile),
                          PICTURE(GdipCreateBitmapFromGdiDib),
                          PICTURE(GdipCreateBitmapFromHBITMAP),
                          PICTURE(GdipCreateBitmapFromScan0),
                          RELEASES(GdipDisposeImage),
                          PICTURE(GdipCreateFromHDC),
                          PICTURE(GdipGetImageGraphicsContext),
                          RELEASES(GdipDeleteGraphics),
                          PICTURE(GdipCreateSolidFill),
                          RELEASES(GdipDeleteBrush)};

// Calls found(name, place) for each function that the module imports.
template <class Found>
void for_each_import(HMODULE module, Found&& found) {
    auto* const base = reinterpret_cast<char*>(module);
    const auto* const headers =
        reinterpret_cast<IMAGE_NT_HEADERS32*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table); from->Name; ++from) {
        const auto* name = reinterpret_cast<IMAGE_THUNK_DATA32*>(base + from->OriginalFirstThunk);
        auto* place = reinterpret_cast<void**>(base + from->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++place)
            found(reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData)->Name, place);
    }
}

std::vector<HMODULE> watched;

} // namespace

void memory_faults::watch(HMODULE module, std::string_view only) {
    for_each_import(module, [&](const char* name, void** place) {
        const auto* const import = std::ranges::find(imports, name, &Import::name);
        if (import == std::end(imports) || (!only.empty() && only != name)) return;
        if (import->real) *import->real = *place;
        DWORD former = 0;
        VirtualProtect(place, sizeof *place, PAGE_READWRITE, &former);
        *place = import->stand;
        VirtualProtect(place, sizeof *place, former, &former);
    });
    if (only.empty()) watched.push_back(module);
}

void memory_faults::forget(HMODULE module) {
    std::erase(watched, module);
}

// What a library keeps back for failures is there after one.
std::size_t memory_faults::held() {
    for (const HMODULE module : watched) {
        char path[100];
        the_fault = {.countdown = 1, .active = true};
        reinterpret_cast<decltype(&BvUtil_Makepath)>(reinterpret_cast<void*>(GetProcAddress(
            module, "BvUtil_Makepath")))(path, "", "", "a name that is too long to be kept in its object");
        the_fault = {};
    }
    return objects.size();
}

// This program's library, and what this program itself releases.
const bool watching = [] {
    memory_faults::watch(GetModuleHandleA("BvUtil.dll"));
    memory_faults::watch(GetModuleHandleA(nullptr), "DeleteObject");
    return true;
}();

#endif
