// What only a leak can add to: this process's GDI handles and the bytes of the heap that the C runtime, GDI
// and GDI+ share.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

struct Resources {
    DWORD gdi_objects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    SIZE_T heap_bytes = bytes_in_heap();

  private:
    static SIZE_T bytes_in_heap() {
        SIZE_T bytes = 0;
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(GetProcessHeap());
        while (HeapWalk(GetProcessHeap(), &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        HeapUnlock(GetProcessHeap());
        return bytes;
    }
};

// Runs work(times) and compares before and after. What is made once, on first use, is made beforehand.
template <class Work>
void expect_nothing_kept(Work&& work, int times = 10000) {
    work(50);
    const Resources before;
    work(times);
    const Resources after;
    EXPECT_EQ(after.gdi_objects, before.gdi_objects);
    EXPECT_LE(after.heap_bytes, before.heap_bytes + 4096);
}
