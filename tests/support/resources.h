// What only a leak can add to: this process's handles and the bytes of its heaps, of which the C runtime has
// one of its own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <windows.h>

// Handles are numbered from below, and the number of a new one tells how many there are. (Wine's counts of
// them are always 0.)
struct Resources {
    DWORD next_gdi_object = next(CreateSolidBrush(0), DeleteObject) & 0xFFFF;
    DWORD next_window =
        next(CreateWindowA("STATIC", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr), DestroyWindow) &
        0xFFFF;
    DWORD next_handle = next(CreateEventA(nullptr, TRUE, FALSE, nullptr), CloseHandle) / 4;
    DWORD next_thread_slot = next_slot();
    SIZE_T heap_bytes = bytes_in_heaps();

  private:
    template <class Handle, class Release>
    static DWORD next(Handle handle, Release release) {
        release(handle);
        return static_cast<DWORD>(reinterpret_cast<UINT_PTR>(handle));
    }
    static DWORD next_slot() {
        const DWORD slot = TlsAlloc();
        TlsFree(slot);
        return slot;
    }
    static SIZE_T bytes_in_heaps() {
        HANDLE heaps[64];
        const DWORD count = GetProcessHeaps(64, heaps);
        SIZE_T bytes = 0;
        for (DWORD i = 0; i < count; ++i) {
            PROCESS_HEAP_ENTRY entry{};
            HeapLock(heaps[i]);
            while (HeapWalk(heaps[i], &entry))
                if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
            HeapUnlock(heaps[i]);
        }
        return bytes;
    }
};

// Runs work(times) and compares before and after. What is made once, on first use, is made beforehand.
template <class Work>
void expect_nothing_kept(Work&& work, int times = 10000) {
    work(50);
    const Resources before;
    {
        void* const volatile block = std::malloc(10000);
        EXPECT_GE(Resources().heap_bytes, before.heap_bytes + 10000) << "the measure sees nothing";
        std::free(block);
    }
    work(times);
    const Resources after;
    const DWORD gaps = 50; // where handles were released before
    EXPECT_LE(after.next_gdi_object, before.next_gdi_object + gaps);
    EXPECT_LE(after.next_window, before.next_window + gaps);
    EXPECT_LE(after.next_handle, before.next_handle + gaps);
    EXPECT_LE(after.next_thread_slot, before.next_thread_slot);
    EXPECT_LE(after.heap_bytes, before.heap_bytes + 4096);
}
