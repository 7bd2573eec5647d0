// A 32-bit picture in memory that can be drawn on and whose pixels can be read, and small bitmaps to draw.
#pragma once

#include "module/handles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

class Canvas {
  public:
    // Pixels are 0x00RRGGBB, from the upper left corner.
    using Paint = std::function<std::uint32_t(int x, int y)>;

    Canvas(
        int width, int height, const Paint& paint = [](int, int) { return 0u; })
        : width(width), height(height), m_dc(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* pixels = nullptr;
        m_bitmap.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
        m_pixels = static_cast<std::uint32_t*>(pixels);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                m_pixels[y * width + x] = paint(x, y);
        m_former = SelectObject(m_dc.get(), m_bitmap.get());
    }
    ~Canvas() { SelectObject(m_dc.get(), m_former); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC dc() const { return m_dc.get(); }
    std::uint32_t pixel(int x, int y) const {
        GdiFlush();
        return m_pixels[y * width + x] & 0xFFFFFF;
    }
    // The picture, no longer selected: for functions that take a bitmap.
    HBITMAP bitmap() {
        SelectObject(m_dc.get(), m_former);
        return m_bitmap.get();
    }

    const int width, height;

  private:
    unique_bitmap m_bitmap;
    unique_dc m_dc;
    std::uint32_t* m_pixels = nullptr;
    HGDIOBJ m_former = nullptr;
};

struct Spot {
    int x, y;
    std::uint32_t colour;
};

inline void expect_spots(const Canvas& canvas, std::initializer_list<Spot> spots) {
    for (const Spot& spot : spots)
        EXPECT_EQ(canvas.pixel(spot.x, spot.y), spot.colour) << spot.x << ", " << spot.y;
}
