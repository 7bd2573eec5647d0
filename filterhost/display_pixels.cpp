#include "filterhost/display_pixels.h"

#include "module/handles.h"

#include <cstddef>
#include <cstring>
#include <limits>

namespace {

struct GreyBitmapInfo {
    BITMAPINFOHEADER header;
    RGBQUAD palette[256];
};

WORD bits_per_pixel(std::int32_t image_mode) {
    return image_mode == ps::mode_grey ? 8 : image_mode == ps::mode_rgb ? 24 : 0;
}

// A top-down bitmap. White stays out of the grey palette (kept: entry 255 reads as black).
GreyBitmapInfo describe(std::int32_t columns, std::int32_t rows, WORD bits) {
    GreyBitmapInfo info{};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = columns;
    info.header.biHeight = -rows;
    info.header.biPlanes = 1;
    info.header.biBitCount = bits;
    info.header.biCompression = BI_RGB;
    if (bits == 8)
        for (int i = 0; i < 255; ++i) {
            const auto level = static_cast<BYTE>(i);
            info.palette[i] = {level, level, level, 0};
        }
    return info;
}

void copy_colour_row(std::byte* to, const std::byte* from, std::ptrdiff_t step, std::int32_t columns) {
    for (std::int32_t i = 0; i < columns; ++i, to += 3, from += step) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

} // namespace

ps::OSErr PS_CALL display_pixels(const ps::PSPixelMap* source, const ps::VRect* area, std::int32_t row,
                                 std::int32_t column, void* context) noexcept {
    if (!context || !source || !area || source->rowBytes == 0 || !source->baseAddr)
        return ps::result_filter_bad_parameters;
    const HDC target = static_cast<HDC>(context);
    const std::int64_t area_rows = std::int64_t{area->bottom} - area->top;
    const std::int64_t area_columns = std::int64_t{area->right} - area->left;
    const WORD bits = bits_per_pixel(source->imageMode);
    // No bitmap can be made of these: nothing is drawn.
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    if (area_rows <= 0 || area_columns <= 0 || area_rows > most || area_columns > most || bits == 0)
        return ps::result_ok;
    const auto rows = static_cast<std::int32_t>(area_rows);
    const auto columns = static_cast<std::int32_t>(area_columns);

    const GreyBitmapInfo info = describe(columns, rows, bits);
    void* bits_start = nullptr;
    const unique_bitmap bitmap(CreateDIBSection(target, reinterpret_cast<const BITMAPINFO*>(&info),
                                                DIB_RGB_COLORS, &bits_start, nullptr, 0));
    if (!bitmap || !bits_start) return ps::result_ok;

    const std::ptrdiff_t stride = (static_cast<std::ptrdiff_t>(columns) * (bits / 8) - 1) / 4 * 4 + 4;
    auto* to = static_cast<std::byte*>(bits_start);
    auto* from = static_cast<const std::byte*>(source->baseAddr);
    for (std::int32_t i = 0; i < rows; ++i, to += stride, from += source->rowBytes) {
        if (bits == 8)
            std::memcpy(to, from + area->left, static_cast<std::size_t>(columns));
        else
            copy_colour_row(to, from, source->colBytes, columns);
    }

    const unique_dc memory(CreateCompatibleDC(target));
    const selected_object selected(memory.get(), bitmap.get());
    BitBlt(target, column, row, columns, rows, memory.get(), 0, 0, SRCCOPY);
    return ps::result_ok;
}
