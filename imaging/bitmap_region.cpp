#include "imaging/bitmap_region.h"

#include "imaging/opaque_runs.h"

#include <algorithm>
#include <vector>

namespace {

// Rectangles on their way into regions. The platform is given at most `batch_size` at once.
class RegionBuilder {
  public:
    void add(LONG left, LONG top, LONG right, LONG bottom) {
        if (m_count == m_rectangles.size()) m_rectangles.resize(m_rectangles.size() + growth);
        m_rectangles[m_count++] = {left, top, right, bottom};
        m_bounds = {std::min(m_bounds.left, left), std::min(m_bounds.top, top),
                    std::max(m_bounds.right, right), std::max(m_bounds.bottom, bottom)};
        if (m_count == batch_size) finish_batch();
    }

    unique_region finish() {
        finish_batch();
        unique_region result;
        for (unique_region& part : m_parts)
            result = merged(std::move(result), std::move(part));
        return result;
    }

  private:
    static constexpr std::size_t growth = 100, batch_size = 2000;
    static constexpr RECT no_bounds = {0x7FFFFFFF, 0x7FFFFFFF, 0, 0};

    void finish_batch() {
        unique_region region = make_batch();
        m_count = 0;
        m_bounds = no_bounds;
        if (!region) return;
        // Part i holds 2^i batches or none: so each rectangle is merged a logarithmic number of times.
        for (unique_region& part : m_parts) {
            if (!part) {
                part = std::move(region);
                return;
            }
            region = merged(std::move(part), std::move(region));
        }
        m_parts.push_back(std::move(region));
    }

    unique_region make_batch() {
        m_data.resize(sizeof(RGNDATAHEADER) + m_count * sizeof(RECT));
        RGNDATA& data = *reinterpret_cast<RGNDATA*>(m_data.data());
        data.rdh = {sizeof(RGNDATAHEADER), RDH_RECTANGLES, static_cast<DWORD>(m_count), 0, m_bounds};
        std::copy_n(m_rectangles.begin(), m_count, reinterpret_cast<RECT*>(data.Buffer));
        return unique_region(ExtCreateRegion(nullptr, static_cast<DWORD>(m_data.size()), &data));
    }

    // Both as one; the other when one is none.
    static unique_region merged(unique_region one, unique_region other) {
        if (!one) return other;
        if (other) CombineRgn(one.get(), one.get(), other.get(), RGN_OR);
        return one;
    }

    std::vector<RECT> m_rectangles;
    std::vector<std::byte> m_data;
    std::size_t m_count = 0;
    RECT m_bounds = no_bounds;
    std::vector<unique_region> m_parts;
};

} // namespace

unique_region region_of_bitmap(HBITMAP bitmap, DWORD key) {
    BITMAP size{};
    if (!GetObjectA(bitmap, sizeof size, &size)) return {};
    const unique_dc copy_dc(CreateCompatibleDC(nullptr));
    const unique_dc source_dc(CreateCompatibleDC(nullptr));
    if (!copy_dc || !source_dc) return {};

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.bmWidth;
    info.bmiHeader.biHeight = size.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    const unique_bitmap copy(CreateDIBSection(copy_dc.get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (!copy) return {};
    {
        const selected_object copy_selected(copy_dc.get(), copy.get());
        const selected_object source_selected(source_dc.get(), bitmap);
        BitBlt(copy_dc.get(), 0, 0, size.bmWidth, size.bmHeight, source_dc.get(), 0, 0, SRCCOPY);
        GdiFlush();
    }

    RegionBuilder builder;
    const auto width = static_cast<std::size_t>(size.bmWidth);
    const auto* rows = static_cast<const std::uint32_t*>(pixels);
    for (LONG y = 0; y < size.bmHeight; ++y) {
        // The copy's rows stand bottom-up.
        const std::uint32_t* row = rows + static_cast<std::size_t>(size.bmHeight - 1 - y) * width;
        for_each_opaque_run(row, width, key, [&](std::size_t first, std::size_t end) {
            builder.add(static_cast<LONG>(first), y, static_cast<LONG>(end), y + 1);
        });
    }
    return builder.finish();
}
