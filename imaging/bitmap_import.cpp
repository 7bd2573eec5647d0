#include "imaging/bitmap_import.h"

namespace {

unique_gp_bitmap independent_copy(Gdiplus::GpBitmap* original, Ground ground) {
    Gdiplus::PixelFormat format = 0;
    UINT width = 0, height = 0;
    flat::GdipGetImagePixelFormat(original, &format);
    flat::GdipGetImageHeight(original, &height);
    flat::GdipGetImageWidth(original, &width);
    const int columns = static_cast<int>(width), rows = static_cast<int>(height);

    unique_gp_bitmap copy;
    if (flat::GdipCreateBitmapFromScan0(columns, rows, 0, format, nullptr, copy.put()) != Gdiplus::Ok)
        return {};
    unique_gp_graphics graphics;
    if (flat::GdipGetImageGraphicsContext(copy.get(), graphics.put()) != Gdiplus::Ok) return {};
    if (ground == Ground::white) {
        flat::GdipSetPageUnit(graphics.get(), Gdiplus::UnitPixel);
        flat::GdipGraphicsClear(graphics.get(), 0xFFFFFFFF);
    }
    flat::GdipDrawImageRectI(graphics.get(), original, 0, 0, columns, rows);
    return copy;
}

} // namespace

unique_gp_bitmap import_rows(int width, int height, int row_bytes, Gdiplus::PixelFormat format,
                             const std::uint8_t* bits, Ground ground) {
    unique_gp_bitmap wrapped;
    // The platform only reads from a bitmap that is drawn.
    if (flat::GdipCreateBitmapFromScan0(width, height, row_bytes, format, const_cast<BYTE*>(bits),
                                        wrapped.put()) != Gdiplus::Ok)
        return {};
    return independent_copy(wrapped.get(), ground);
}

unique_gp_bitmap import_converted(const RawRows& rows, int target_row_bytes, int target_pixel_bytes,
                                  FourthByte fourth, bool flipped, Gdiplus::PixelFormat format,
                                  Ground ground) {
    const PixelBuffer buffer = convert_rows(rows, target_row_bytes, target_pixel_bytes, fourth, flipped);
    if (!buffer.bits) return {};
    return import_rows(rows.width, rows.height, buffer.row_bytes, format, buffer.bits.get(), ground);
}
