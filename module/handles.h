// Owners of platform handles: released once, on every way out.
#pragma once

#include <cstddef>
#include <cstdio>
#include <type_traits>
#include <unknwn.h>
#include <utility>
#include <windows.h>

#include <oleauto.h> // needs windows.h before it

// Owns one handle. Traits: `type`, `static type none()`, `static void close(type) noexcept`. Closing keeps
// the thread's last error, so that an early return can still report why.
template <class Traits>
class unique_handle {
  public:
    using type = typename Traits::type;

    unique_handle() noexcept = default;
    explicit unique_handle(type handle) noexcept : m_handle(handle) {}
    unique_handle(unique_handle&& other) noexcept : m_handle(other.release()) {}
    unique_handle& operator=(unique_handle&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    ~unique_handle() { reset(); }

    type get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle != Traits::none(); }
    type release() noexcept { return std::exchange(m_handle, Traits::none()); }
    void reset(type handle = Traits::none()) noexcept {
        const type old = std::exchange(m_handle, handle);
        if (old == Traits::none()) return;
        const DWORD error = GetLastError();
        Traits::close(old);
        SetLastError(error);
    }
    // For functions that store a new handle through a pointer; what was held is released first.
    type* put() noexcept {
        reset();
        return &m_handle;
    }

  private:
    type m_handle = Traits::none();
};

namespace handle_traits {

template <class Handle>
struct null_is_none {
    using type = Handle;
    static type none() noexcept { return nullptr; }
};
struct kernel : null_is_none<HANDLE> {
    static void close(type h) noexcept { CloseHandle(h); }
};
struct file {
    using type = HANDLE;
    static type none() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(type h) noexcept { CloseHandle(h); }
};
struct find {
    using type = HANDLE;
    static type none() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(type h) noexcept { FindClose(h); }
};
struct stream : null_is_none<std::FILE*> {
    static void close(type f) noexcept { std::fclose(f); }
};
struct registry_key : null_is_none<HKEY> {
    static void close(type k) noexcept { RegCloseKey(k); }
};
struct library : null_is_none<HMODULE> {
    static void close(type m) noexcept { FreeLibrary(m); }
};
struct memory_dc : null_is_none<HDC> {
    static void close(type dc) noexcept { DeleteDC(dc); }
};
struct global_memory : null_is_none<HGLOBAL> {
    static void close(type memory) noexcept { GlobalFree(memory); }
};
template <class Object>
struct gdi_object : null_is_none<Object> {
    static void close(Object object) noexcept { DeleteObject(object); }
};
struct bstr : null_is_none<BSTR> {
    static void close(BSTR text) noexcept { SysFreeString(text); }
};
template <class Interface>
struct com : null_is_none<Interface*> {
    static void close(Interface* pointer) noexcept { pointer->Release(); }
};

} // namespace handle_traits

using unique_kernel_handle = unique_handle<handle_traits::kernel>;
using unique_file = unique_handle<handle_traits::file>;
using unique_find = unique_handle<handle_traits::find>;
using unique_stream = unique_handle<handle_traits::stream>;
using registry_key = unique_handle<handle_traits::registry_key>;
using library = unique_handle<handle_traits::library>;
using unique_dc = unique_handle<handle_traits::memory_dc>; // a DC of our own making (DeleteDC)
using unique_global = unique_handle<handle_traits::global_memory>;
using unique_bitmap = unique_handle<handle_traits::gdi_object<HBITMAP>>;
using unique_brush = unique_handle<handle_traits::gdi_object<HBRUSH>>;
using unique_region = unique_handle<handle_traits::gdi_object<HRGN>>;
using unique_bstr = unique_handle<handle_traits::bstr>;

template <class Interface>
class com_ptr : public unique_handle<handle_traits::com<Interface>> {
  public:
    using unique_handle<handle_traits::com<Interface>>::unique_handle;
    Interface* operator->() const noexcept { return this->get(); }
    void** put_void() noexcept { return reinterpret_cast<void**>(this->put()); }
};

// Selects an object into a DC for its lifetime; the former one is selected back. Declare it after the
// owner of the object and of the DC, so that it ends first.
class selected_object {
  public:
    selected_object(HDC dc, HGDIOBJ object) noexcept : m_dc(dc), m_former(SelectObject(dc, object)) {}
    selected_object(const selected_object&) = delete;
    selected_object& operator=(const selected_object&) = delete;
    ~selected_object() {
        if (m_former) SelectObject(m_dc, m_former);
    }

  private:
    HDC m_dc;
    HGDIOBJ m_former;
};
