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
    EXPECT_EQ(buffers.lockProc(buffer, 1), buffer);
    std::memset(buffer, 1, 1000);
    buffers.unlockProc(buffer);
    buffers.freeProc(buffer);
    EXPECT_EQ(buffers.spaceProc(), 100000000);
    EXPECT_EQ(buffers.allocateProc(-1, &buffer), 0) << "failure shows in the id alone";
    EXPECT_EQ(buffer, nullptr);
}

TEST_F(HostProcedures, ServeTheirOwnHandles) {
    const ps::Handle handle = handles.newProc(5);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handles.getSizeProc(handle), 5);
    EXPECT_EQ(handles.lockProc(handle, 0), *handle) << "the handle's first word points to the data";
    EXPECT_EQ(reinterpret_cast<std::int32_t*>(handle)[1], 5) << "its second is the size";
    std::memcpy(*handle, "abcde", 5);
    EXPECT_EQ(handles.setSizeProc(handle, 100000), 0);
    EXPECT_EQ(handles.getSizeProc(handle), 100000);
    EXPECT_EQ(std::string(*handle, 5), "abcde");
    EXPECT_EQ(handles.setSizeProc(handle, -1), -108);
    EXPECT_EQ(handles.getSizeProc(handle), 100000) << "nothing is lost";
    EXPECT_EQ(handles.setSizeProc(handle, 0), 0);
    EXPECT_EQ(handles.getSizeProc(handle), 0);
    EXPECT_NE(handles.lockProc(handle, 0), nullptr);
    EXPECT_EQ(answer(handles.unlockProc, handle), 1);
    handles.recoverSpaceProc(1);
    EXPECT_EQ(answer(handles.disposeRegularHandleProc, handle), 1);
    EXPECT_EQ(handles.getSizeProc(handle), 0) << "left alone";
    EXPECT_EQ(handles.setSizeProc(handle, 3), 0);
    handles.disposeProc(handle);
    EXPECT_EQ(handles.newProc(-5), nullptr);
}

TEST_F(HostProcedures, ServeGlobalHandlesAndPointersToThem) {
    for (const bool behind_pointer : {false, true}) {
        SCOPED_TRACE(behind_pointer ? "pointer to a handle" : "handle");
        HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 16);
        const auto handle = reinterpret_cast<ps::Handle>(behind_pointer ? &memory : memory);
        EXPECT_EQ(handles.getSizeProc(handle), 16);
        char* data = handles.lockProc(handle, 1);
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 1u);
        std::memcpy(data, "0123456789abcdef", 16);
        handles.unlockProc(handle);
        EXPECT_EQ(GlobalFlags(memory) & GMEM_LOCKCOUNT, 0u);
        EXPECT_EQ(handles.setSizeProc(handle, 5000), 0);
        EXPECT_EQ(GlobalSize(memory), 5000u);
        EXPECT_EQ(std::string(handles.lockProc(handle, 1), 16), "0123456789abcdef");
        handles.unlockProc(handle);
        handles.disposeProc(handle);
        EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));

        memory = GlobalAlloc(GMEM_MOVEABLE, 16);
        handles.disposeRegularHandleProc(reinterpret_cast<ps::Handle>(behind_pointer ? &memory : memory));
        EXPECT_EQ(GlobalFlags(memory), static_cast<UINT>(GMEM_INVALID_HANDLE));
    }
    // A fixed block that would have to move stays as it is.
    unique_global fixed(GlobalAlloc(GMEM_FIXED, 16));
    const unique_global neighbour(GlobalAlloc(GMEM_FIXED, 16));
    EXPECT_EQ(handles.setSizeProc(static_cast<ps::Handle>(fixed.get()), 10000000), -109);
    EXPECT_EQ(GlobalSize(fixed.get()), 16u);
}

TEST_F(HostProcedures, RefuseOtherHandles) {
    static char data[16] = "own data";
    static char* pointer_to_data = data;
    static char* pointer_to_nothing = reinterpret_cast<char*>(16);
    const struct {
        ps::Handle handle;
        char* locked;
    } cases[] = {{nullptr, nullptr},
                 {reinterpret_cast<ps::Handle>(16), nullptr},
                 {&pointer_to_nothing, nullptr},
                 {&pointer_to_data, data}};
    for (const auto& each : cases) {
        EXPECT_EQ(handles.getSizeProc(each.handle), 0);
        EXPECT_EQ(handles.setSizeProc(each.handle, 8), -109);
        EXPECT_EQ(handles.lockProc(each.handle, 0), each.locked);
        handles.unlockProc(each.handle);
        handles.disposeProc(each.handle);
        handles.disposeRegularHandleProc(each.handle);
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
    script = [](std::int16_t selector, ps::FilterRecord& record, std::int32_t&, std::int16_t&) {
        if (selector != ps::selector_start) return;
        for (const std::int16_t hi_plane : {std::int16_t{2}, std::int16_t{3}})
            for (std::uint32_t offset = 0; offset < 16; offset += 4) {
                want(record, {0, 0, 40, 40}, {0, 0, 40, 40}, 0, hi_plane);
                EXPECT_EQ(call_at_offset(reinterpret_cast<void*>(record.advanceState), offset) & 0xFFFF, 0);
                EXPECT_NE(record.outData, nullptr);
            }
        want_nothing(record);
    };
    EXPECT_TRUE(apply(40, 40));
    EXPECT_EQ(output, image);
}

constexpr int side = 16;
constexpr std::uint32_t background = 0x123456;

class Display : public HostProcedures {
  protected:
    Display() {
        for (std::size_t i = 0; i < sizeof source; ++i)
            source[i] = static_cast<std::uint8_t>(i);
        map.baseAddr = source;
    }
    int display(const ps::PSPixelMap& from, const ps::VRect& area, int row = 0, int column = 0) {
        return record.displayPixels(&from, &area, row, column, target.dc());
    }

    Canvas target{side, side, [](int, int) { return background; }};
    std::uint8_t source[256];
    ps::PSPixelMap map{1, {0, 0, 5, 5}, ps::mode_grey, 20, 1, 1, nullptr};
};

TEST_F(Display, DrawsGreyFromTheLeftEdgeOn) {
    source[4] = 255;
    EXPECT_EQ(display(map, {1, 2, 3, 7}, 6, 3), 0); // 2 rows of 5; the top is not added
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const bool drawn = y >= 6 && y < 8 && x >= 3 && x < 8;
            const unsigned level = static_cast<unsigned>(20 * (y - 6) + x - 3 + 2);
            const std::uint32_t grey = source[level & 255] == 255 ? 0 : level * 0x010101;
            EXPECT_EQ(target.pixel(x, y), drawn ? grey : background) << x << "," << y;
        }
}

TEST_F(Display, DrawsColourByColumnBytes) {
    map.imageMode = ps::mode_rgb;
    map.rowBytes = 40;
    map.colBytes = 4;
    EXPECT_EQ(display(map, {1, 2, 3, 5}, 1, 1), 0); // 2 rows of 3; neither edge is added
    expect_spots(target, {{1, 1, 0x000102},
                          {2, 1, 0x040506},
                          {3, 1, 0x08090A},
                          {4, 1, background},
                          {1, 2, 0x28292A},
                          {2, 2, 0x2C2D2E},
                          {3, 2, 0x303132},
                          {1, 3, background}});
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
    for (const ps::VRect& odd :
         {ps::VRect{0, 0, 0, 2}, ps::VRect{2, 2, 0, 0}, ps::VRect{least, least, most, most},
          ps::VRect{0, 0, most, most}, ps::VRect{0, most, 2, least}})
        EXPECT_EQ(display(map, odd), 0);
    for (int i = 0; i < side * side; ++i)
        EXPECT_EQ(target.pixel(i % side, i / side), background) << "nothing is drawn";
}

} // namespace
