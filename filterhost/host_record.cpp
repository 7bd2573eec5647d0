#include "filterhost/host_record.h"

#include "filterhost/display_pixels.h"
#include "filterhost/handle_procs.h"
#include "filterhost/host_state.h"
#include "filterhost/ps_filter.h"
#include "module/module_instance.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr ps::Fixed resolution = 0x00608000; // kept: 96.5 dots per inch
constexpr ps::OSType signature = 0x49525041; // "APRI" in memory
constexpr std::int16_t colour_planes = 3;
constexpr std::int16_t tile_side = 256;

// Calls the caller's progress function, which finds what its program has set. Whether to go on.
bool goes_on(const PSFilter_& filter) noexcept {
    const ArithmeticIn callers(host_state().callers_arithmetic);
    return filter.progress(filter.progress_fraction, filter.callback_context) != 0;
}

// The host's procedures.

ps::Boolean PS_CALL test_abort() noexcept {
    PSFilter_* filter = host_state().current;
    if (!filter) return 1;
    if (!filter->progress) return 0;
    return filter->aborted || !goes_on(*filter);
}

void PS_CALL report_progress(std::int32_t done, std::int32_t total) noexcept {
    PSFilter_* filter = host_state().current;
    if (!filter) return;
    filter->progress_fraction =
        with_own_arithmetic([=] { return static_cast<float>(done) / static_cast<float>(total); });
    if (filter->progress && !goes_on(*filter)) filter->aborted = true;
}

ps::OSErr PS_CALL advance_state() noexcept {
    PSFilter_* filter = host_state().current;
    if (!filter) return -1;
    exchange_buffers(*filter);
    return ps::result_ok;
}

void PS_CALL host_procedure(std::int16_t, std::int32_t*) noexcept {}
void PS_CALL process_event(void*) noexcept {}

// Exchange of pixels.

std::size_t image_size(const PSFilter_& filter) {
    return static_cast<std::size_t>(filter.height) * static_cast<std::size_t>(filter.source_row_bytes);
}

template <class Byte>
BasicImage<Byte> as_image(const PSFilter_& filter, Byte* pixels) {
    if (!pixels) return {};
    return {{pixels, image_size(filter)}, filter.width, filter.height, filter.source_row_bytes};
}

struct FreeMemory {
    void operator()(std::byte* memory) const noexcept { std::free(memory); }
};
using SampleBuffer = std::unique_ptr<std::byte, FreeMemory>;

// What the record's pointer owns; the pointer becomes null.
SampleBuffer take_back(void*& in_record, Loan& loan) {
    auto* held = static_cast<std::byte*>(std::exchange(in_record, nullptr));
    const Loan ended = std::exchange(loan, {});
    return SampleBuffer(ended.has(held) ? ended.start : held);
}

// A buffer for the tile with the image's samples in it; null when no such buffer can be had.
void* hand_out(const ConstImage& image, const Tile& tile, Loan& loan) {
    const auto size = tile.buffer_size();
    if (!size) return nullptr;
    loan = {static_cast<std::byte*>(std::malloc(*size)), *size};
    if (loan.start) gather(image, tile, loan.start);
    return loan.start;
}

} // namespace

void exchange_buffers(PSFilter_& filter) {
    ps::FilterRecord& record = filter.record;
    take_back(record.inData, filter.input_loan);
    if (const SampleBuffer output = take_back(record.outData, filter.output_loan))
        write_back(as_image(filter, filter.output_image), filter.handed_out, output.get());

    if (is_non_empty(record.inRect)) {
        const Tile tile(record.inRect, record.inLoPlane, record.inHiPlane);
        record.inData = hand_out(as_image(filter, filter.input_image), tile, filter.input_loan);
        record.inRowBytes = tile.row_bytes;
    }
    if (is_non_empty(record.outRect)) {
        filter.handed_out = Tile(record.outRect, record.outLoPlane, record.outHiPlane);
        record.outData = hand_out(as_image<const std::byte>(filter, filter.output_image), filter.handed_out,
                                  filter.output_loan);
        record.outRowBytes = filter.handed_out.row_bytes;
    }
}

void prepare_record(PSFilter_& filter) {
    filter.buffer_procs = make_buffer_procs();
    filter.handle_procs = make_handle_procs();
    host_state().platform_window.hwnd = thread_main_window();

    ps::FilterRecord& record = filter.record;
    record.serialNumber = 0;
    record.abortProc = test_abort;
    record.progressProc = report_progress;
    record.maxSpace = memory_for_plugins;
    for (ps::FilterColor* colour : {&record.backColor, &record.foreColor}) {
        std::fill_n(*colour, 3, std::uint8_t{0});
        (*colour)[3] = 255;
    }
    record.hostSig = signature;
    record.hostProc = host_procedure;
    record.imageMode = ps::mode_rgb;
    record.platformData = &host_state().platform_window;
    record.bufferProcs = &filter.buffer_procs;
    record.processEvent = process_event;
    record.displayPixels = display_pixels;
    record.handleProcs = &filter.handle_procs;
    record.dummyPlaneValue = -1;
    record.advanceState = advance_state;
    record.supportsAbsolute = 1;
    record.inLayerPlanes = record.outLayerPlanes = record.absLayerPlanes = colour_planes;
    record.inTransparencyMask = record.outTransparencyMask = record.absTransparencyMask = 1;
    record.inPlaneBytes = record.outPlaneBytes = 1;
    record.inTileHeight = record.absTileHeight = record.outTileHeight = record.maskTileHeight = tile_side;
    record.inTileWidth = record.absTileWidth = record.outTileWidth = record.maskTileWidth = tile_side;
    record.depth = 8;
    filter.prepared = true;
}

void describe_image(PSFilter_& filter) {
    ps::FilterRecord& record = filter.record;
    // The interface counts in 16 bits; larger images lose their upper bits here.
    const ps::Point size{static_cast<std::int16_t>(filter.height), static_cast<std::int16_t>(filter.width)};
    record.imageSize = size;
    record.planes = colour_planes;
    record.filterRect = {0, 0, size.v, size.h};
    record.imageHRes = record.imageVRes = resolution;
    record.floatCoord = size; // kept: the same as the whole size
    record.wholeSize = size;
}
