// Auto levels: stretches each colour so that it uses the whole range from dark to light.
//
// The simplest kind of filter: no settings, the whole image at once, each pixel by itself. It asks for its
// rectangles at the start call and does its work at the one continue call.
#include "samples/filters/plugin.h"

#include <array>

namespace {

constexpr int planes = 3;
constexpr double ignored_share = 0.005; // of the pixels, at either end: outliers

using Histogram = std::array<std::int32_t, 256>;
using Table = std::array<std::uint8_t, 256>;

Histogram count_levels(const std::uint8_t* samples, int row_bytes, int columns, int rows) {
    Histogram histogram{};
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            ++histogram[samples[y * row_bytes + x * planes]];
    return histogram;
}

Table stretching_table(const Histogram& histogram, double pixels) {
    const auto limit = static_cast<std::int32_t>(pixels * ignored_share);
    int low = 0;
    for (std::int32_t seen = histogram[0]; seen <= limit && low < 255;)
        seen += histogram[static_cast<std::size_t>(++low)];
    int high = 255;
    for (std::int32_t seen = histogram[255]; seen <= limit && high > 0;)
        seen += histogram[static_cast<std::size_t>(--high)];

    Table table;
    for (int level = 0; level < 256; ++level) {
        const int stretched = high > low ? (level - low) * 255 / (high - low) : level;
        table[static_cast<std::size_t>(level)] = static_cast<std::uint8_t>(stretched < 0     ? 0
                                                                           : stretched > 255 ? 255
                                                                                             : stretched);
    }
    return table;
}

void stretch_plane(const ps::FilterRecord& record, int plane) {
    const int columns = record.inRect.right - record.inRect.left;
    const int rows = record.inRect.bottom - record.inRect.top;
    const auto* in = static_cast<const std::uint8_t*>(record.inData) + plane;
    auto* out = static_cast<std::uint8_t*>(record.outData) + plane;
    const Table table =
        stretching_table(count_levels(in, record.inRowBytes, columns, rows), double{1} * rows * columns);
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x)
            out[y * record.outRowBytes + x * planes] = table[in[y * record.inRowBytes + x * planes]];
}

std::int16_t stretch(ps::FilterRecord& record) {
    // A host that cannot give us the whole image leaves these empty.
    if (!record.inData || !record.outData) {
        request_nothing(record);
        return ps::result_out_of_memory;
    }
    for (int plane = 0; plane < planes; ++plane)
        stretch_plane(record, plane);
    request_nothing(record);
    return ps::result_ok;
}

std::int16_t auto_levels(std::int16_t selector, ps::FilterRecord& record, std::int32_t&) {
    switch (selector) {
    case ps::selector_prepare:
        return is_rgb(record) ? ps::result_ok : ps::result_filter_bad_mode;
    case ps::selector_start:
        request_rgb(record, record.filterRect, record.filterRect);
        return ps::result_ok;
    case ps::selector_continue:
        return stretch(record);
    default:
        return ps::result_ok;
    }
}

} // namespace

FILTER_ENTRY_POINT(auto_levels)
