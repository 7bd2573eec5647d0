#include "filterhost/handle_procs.h"

#include "filterhost/host_state.h"
#include "module/memory_reserve.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <windows.h>

namespace {

using ps::BufferID;
using ps::Handle;
using ps::OSErr;
using ps::Ptr;

// Buffers: the id is the address.

OSErr PS_CALL allocate_buffer(std::int32_t size, BufferID* buffer) noexcept {
    *buffer = std::malloc(static_cast<std::size_t>(size));
    return ps::result_ok; // kept: plug-ins look at the id, not at the code
}
Ptr PS_CALL lock_buffer(BufferID buffer, ps::Boolean) noexcept {
    return static_cast<Ptr>(buffer);
}
void PS_CALL unlock_buffer(BufferID) noexcept {}
void PS_CALL free_buffer(BufferID buffer) noexcept {
    std::free(buffer);
}
std::int32_t PS_CALL buffer_space() noexcept {
    return memory_for_plugins;
}

// Handles: plug-ins pass the host's own, and others that they made with the platform's global memory.

enum class Maker { host, platform, platform_behind_pointer, unknown };

struct Target {
    Maker maker;
    HostHandle* own; // of the host
    HGLOBAL* slot;   // where a pointer to a global handle points
    HGLOBAL memory;  // of the platform
};

HostHandle* as_host_handle(Handle handle) {
    return reinterpret_cast<HostHandle*>(handle);
}

Target find(Handle handle) {
    if (host_state().handles.contains(as_host_handle(handle)))
        return {Maker::host, as_host_handle(handle), nullptr, nullptr};
    if (GlobalSize(handle) != 0) return {Maker::platform, nullptr, nullptr, handle};
    auto* slot = reinterpret_cast<HGLOBAL*>(handle);
    if (!IsBadReadPtr(slot, sizeof *slot) && GlobalSize(*slot) != 0)
        return {Maker::platform_behind_pointer, nullptr, slot, *slot};
    return {Maker::unknown, nullptr, nullptr, nullptr};
}

// At least one byte, so that the data of an empty handle has an address too.
std::size_t bytes_for(std::int32_t size) {
    return std::max<std::size_t>(static_cast<std::size_t>(size), 1);
}

// Null when memory runs out.
Handle PS_CALL new_handle(std::int32_t size) noexcept {
    std::unique_ptr<HostHandle> handle(new (std::nothrow) HostHandle{nullptr, size});
    if (!handle) return nullptr;
    handle->data = static_cast<char*>(std::malloc(bytes_for(size)));
    if (!handle->data) return nullptr;
    try {
        host_state().handles.insert(handle.get());
    } catch (const std::bad_alloc&) {
        memory_reserve::keep();
        std::free(handle->data);
        return nullptr;
    }
    return &handle.release()->data;
}

void PS_CALL dispose_handle(Handle handle) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) {
        host_state().handles.erase(target.own);
        std::free(target.own->data);
        delete target.own;
    } else if (target.memory) {
        GlobalFree(target.memory);
    }
}

std::int32_t PS_CALL handle_size(Handle handle) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) return target.own->size;
    return target.memory ? static_cast<std::int32_t>(GlobalSize(target.memory)) : 0;
}

OSErr resize_own(HostHandle& handle, std::int32_t size) {
    void* data = std::realloc(handle.data, bytes_for(size));
    if (!data) return ps::result_out_of_memory;
    handle = {static_cast<char*>(data), size};
    return ps::result_ok;
}

OSErr PS_CALL set_handle_size(Handle handle, std::int32_t size) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) return resize_own(*target.own, size);
    if (!target.memory) return ps::result_unknown_handle;

    const HGLOBAL resized = GlobalReAlloc(target.memory, static_cast<SIZE_T>(size), 0);
    if (target.maker == Maker::platform)
        return resized == target.memory ? ps::result_ok : ps::result_unknown_handle;
    // Without a new block the old one is still there, and stays reachable.
    if (!resized) return ps::result_out_of_memory;
    *target.slot = resized;
    return ps::result_ok;
}

Ptr PS_CALL lock_handle(Handle handle, ps::Boolean) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) return target.own->data;
    if (target.memory) return static_cast<Ptr>(GlobalLock(target.memory));
    // A handle of the plug-in's own: a pointer to its data.
    if (IsBadReadPtr(handle, sizeof *handle) || IsBadWritePtr(*handle, 8)) return nullptr;
    return *handle;
}

// The next two have no result in the interface; they answer 1 for the host's own handles all the same
// (kept: some plug-ins look).
int PS_CALL unlock_handle(Handle handle) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) return 1;
    return target.memory ? GlobalUnlock(target.memory) : 0;
}

int PS_CALL dispose_regular_handle(Handle handle) noexcept {
    const Target target = find(handle);
    if (target.maker == Maker::host) return 1;
    return target.memory && !GlobalFree(target.memory);
}

void PS_CALL recover_space(std::int32_t) noexcept {}

// An integer result in its register is nothing to a caller who expects none.
ps::HandleReleaseProc without_result(int(PS_CALL* procedure)(Handle) noexcept) {
    return reinterpret_cast<ps::HandleReleaseProc>(reinterpret_cast<void*>(procedure));
}

} // namespace

ps::BufferProcs make_buffer_procs() {
    return {2, 5, allocate_buffer, lock_buffer, unlock_buffer, free_buffer, buffer_space};
}

ps::HandleProcs make_handle_procs() {
    return {1,
            8,
            new_handle,
            dispose_handle,
            handle_size,
            set_handle_size,
            lock_handle,
            without_result(unlock_handle),
            recover_space,
            without_result(dispose_regular_handle)};
}
