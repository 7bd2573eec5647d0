// The procedures that plug-ins call: buffers, handles of every maker, and display.
#include "module/handles.h"
#include "tests/filterhost/filter_run.h"
#include "tests/support/canvas.h"

namespace {

class HostProcedures : public FilterRun {
  protected:
    HostProcedures() {
        apply(1, 1);
        record = calls.front().record;
        buffers = *record.bufferProcs;
        handles = *record.handleProcs;
    }
    ps::FilterRecord record;
    ps::BufferProcs buffers;
    ps::HandleProcs handles;
};

// Both release procedures answer 1 for the host's handles, in the register where a result would be.
int answer(ps::HandleReleaseProc procedure, ps::Handle handle) {
    return reinterpret_cast<int(PS_CALL*)(ps::Handle)>(reinterpret_cast<void*>(procedure))(handle);
}

TEST_F(HostProcedures, MakeBuffers) {
    ps::BufferID buffer = nullptr;
    EXPECT_EQ(buffers.allocateProc(1000, &buffer), 0);
    EXPECT_EQ(buffers.lockProc(buffer, 1), std::memset(buffer, 1, 1000));
    buffers.unlockProc(buffer);
    buffers.freeProc(buffer);
    EXPECT_EQ(buffers.spaceProc(), 100000000);
    EXPECT_EQ(buffers.allocateProc(-1, &buffer), 0) << "failure shows in the id alone";
    EXPECT_EQ(buffer, nullptr);
}

TEST_F(HostProcedures, ServeTheirOwnHandles) {
    const ps::Handle handle = handles.newProc(5);
    EXPECT_EQ(handles.lockProc(handle, 0), *handle) << "the handle's first word points to the data";
    EXPECT_EQ(reinterpret_cast<std::int32_t*>(handle)[1], 5) << "its second is the size";
    EXPECT_EQ(handles.setSizeProc(handle, 0), 0);
    EXPECT_EQ(handles.getSizeProc(handle), 0);
    EXPECT_NE(handles.lockProc(handle, 0), nullptr);
    EXPECT_EQ(handles.setSizeProc(handle, 5), 0);
    std::memcpy(*handle, "abcde", 5);
    EXPECT_EQ(handles.setSizeProc(handle, 100000), 0);
    EXPECT_EQ(handles.setSizeProc(handle, -1), -108);
    EXPECT_EQ(handles.getSizeProc(handle), 100000) << "nothing is lost";
    EXPECT_EQ(std::string(*handle, 5), "abcde");
    EXPECT_EQ(answer(handles.unlockProc, handle), 1);
    handles.recoverSpaceProc(1);
    EXPECT_EQ(answer(handles.disposeRegularHandleProc, handle), 1);
    EXPECT_EQ(handles.getSizeProc(handle), 100000) << "left alone";
    handles.disposeProc(handle);
    EXPECT_EQ(handles.newProc(-5), nullptr);
}

TEST_F(HostProcedures, ServeGlobalHandlesAndPointersToThem) {
    for (const bool behind_pointer : {false, true}) {
        SCOPED_TRACE(behind_pointer ? "pointer to a handle" : "handle");
        HGLOBAL memory = nullptr;
        const auto allocate = [&] {
            memory = GlobalAlloc(GMEM_MOVEABLE, 16);
            return reinterpret_cast<ps::Handle>(behind_pointer ? &memory : memory);
        };
        const ps::Handle handle = allocate();
        EXPECT_EQ(handles.getSizeProc(handle), 16);
        std::memcpy(handles.lockProc(handle, 1), "0123456789abcdef", 16);
        EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 1u);
        handles.unlockProc(handle);
        EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 0u);
        EXPECT_EQ(handles.setSizeProc(handle, 5000), 0);
        EXPECT_EQ(GlobalSize(memory), 5000u);
        EXPECT_EQ(std::string(handles.lockProc(handle, 1), 16), "0123456789abcdef");
        handles.unlockProc(handle);
        handles.disposeProc(handle);
        EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));
        handles.disposeRegularHandleProc(allocate());
        EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));
    }
    // A fixed block that would have to move stays as it is.
    const unique_global fixed(GlobalAlloc(GMEM_FIXED, 16)), neighbour(GlobalAlloc(GMEM_FIXED, 16));
    EXPECT_EQ(handles.setSizeProc(static_cast<ps::Handle>(fixed.get()), 10000000), -109);
    EXPECT_EQ(GlobalSize(fixed.get()), 16u);
}

TEST_F(HostProcedures, RefuseOtherHandles) {
    static char data[16] = "own data";
    static char* pointer_to_data = data;
    static char* pointer_to_nothing = reinterpret_cast<char*>(16);
    for (const ps::Handle handle :
         {ps::Handle{}, reinterpret_cast<ps::Handle>(16), &pointer_to_nothing, &pointer_to_data}) {
        EXPECT_EQ(handles.getSizeProc(handle), 0);
        EXPECT_EQ(handles.setSizeProc(handle, 8), -109);
        EXPECT_EQ(handles.lockProc(handle, 0), handle == &pointer_to_data ? data : nullptr);
        handles.unlockProc(handle);
        handles.disposeProc(handle);
        handles.disposeRegularHandleProc(handle);
    }
    EXPECT_STREQ(data, "own data");
}

// Calls a procedure with the stack this many bytes off a multiple of 16, as plug-ins of other compilers do.
int call_at_offset(void* procedure, std::uint32_t offset) {
    int result;
    asm volatile("movl %%esp, %%ebx\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %%esi, %%esp\n\t"
                 "call *%%edi\n\t"
                 "movl %%ebx, %%esp"
                 : "=a"(result)
                 : "D"(procedure), "S"(offset)
                 : "ebx", "ecx", "edx", "memory", "cc");
    return result;
}

TEST_F(HostProcedures, WorkOnAnyStack) {
    at[selector_start] = [](ps::FilterRecord& record) {
        for (const std::int16_t hi_plane : {std::int16_t{2}, std::int16_t{3}})
            for (std::uint32_t offset = 0; offset < 16; offset += 4) {
                want(record, {0, 0, 40, 40}, {0, 0, 40, 40}, 0, hi_plane);
                EXPECT_EQ(call_at_offset(reinterpret_cast<void*>(record.advanceState), offset) & 0xFFFF, 0);
            }
        want_nothing(record);
    };
    EXPECT_EQ(apply(40, 40), "123 0");
    EXPECT_EQ(output, image);
}

class Display : public HostProcedures {
  protected:
    Display() {
        for (std::size_t i = 0; i < sizeof source; ++i)
            source[i] = static_cast<std::uint8_t>(i);
    }
    int display(const ps::PSPixelMap& from, const ps::VRect& area, int row = 0, int column = 0) {
        return record.displayPixels(&from, &area, row, column, target.dc());
    }
    void expect_picture(const Canvas::Paint& expected) {
        for (int i = 0; i < 256; ++i)
            EXPECT_EQ(target.pixel(i % 16, i / 16), expected(i % 16, i / 16)) << i % 16 << "," << i / 16;
    }

    static std::uint32_t background(int, int) { return 0x123456; }
    Canvas target{16, 16, background};
    std::uint8_t source[256];
    ps::PSPixelMap map{1, {0, 0, 5, 5}, ps::mode_grey, 20, 1, 1, source};
};

TEST_F(Display, DrawsGreyFromTheLeftEdgeOn) {
    source[4] = 255;                                // reads as black
    EXPECT_EQ(display(map, {1, 2, 3, 7}, 6, 3), 0); // 2 rows of 5; the top is not added
    expect_picture([](int x, int y) {
        if (x < 3 || x >= 8 || y < 6 || y >= 8) return background(x, y);
        const int level = 20 * (y - 6) + x - 3 + 2;
        return level == 4 ? 0u : static_cast<std::uint32_t>(level) * 0x010101;
    });
}

TEST_F(Display, DrawsColourByColumnBytes) {
    map.imageMode = ps::mode_rgb;
    map.rowBytes = 40;
    map.colBytes = 4;
    EXPECT_EQ(display(map, {1, 2, 3, 5}, 1, 1), 0); // 2 rows of 3; neither edge is added
    expect_picture([](int x, int y) {
        if (x < 1 || x >= 4 || y < 1 || y >= 3) return background(x, y);
        return static_cast<std::uint32_t>(40 * (y - 1) + 4 * (x - 1)) * 0x010101 + 0x000102;
    });
}

TEST_F(Display, RefusesWhatIsMissingAndIgnoresTheRest) {
    const ps::VRect area{0, 0, 2, 2};
    EXPECT_EQ(record.displayPixels(&map, &area, 0, 0, nullptr), -30100);
    ps::PSPixelMap no_rows = map, no_address = map, other_mode = map;
    no_rows.rowBytes = 0;
    no_address.baseAddr = nullptr;
    other_mode.imageMode = 4;
    EXPECT_EQ(display(no_rows, area), -30100);
    EXPECT_EQ(display(no_address, area), -30100);
    EXPECT_EQ(display(other_mode, area), 0);
    constexpr std::int32_t least = INT32_MIN, most = INT32_MAX;
    for (const ps::VRect& odd : {ps::VRect{0, 0, 0, 2},
                                 {2, 2, 0, 0},
                                 {least, least, most, most},
                                 {0, 0, most, most},
                                 {0, most, 2, least}})
        EXPECT_EQ(display(map, odd), 0);
    expect_picture(background);
}

} // namespace
