#include "bvutil/gdi_bitmaps.h"

#include "imaging/bitmap_region.h"
#include "module/guarded.h"
#include "module/handles.h"

namespace {

// Paints the selected brush where the source is 0 and leaves the target where it is 1.
constexpr DWORD brush_where_source_is_black = 0x00B8074A;

// Sets a DC's colours for its lifetime.
class dc_colours {
  public:
    dc_colours(HDC dc, COLORREF background, COLORREF text) noexcept
        : m_dc(dc), m_background(SetBkColor(dc, background)), m_text(SetTextColor(dc, text)) {}
    dc_colours(const dc_colours&) = delete;
    dc_colours& operator=(const dc_colours&) = delete;
    ~dc_colours() {
        SetBkColor(m_dc, m_background);
        SetTextColor(m_dc, m_text);
    }

  private:
    HDC m_dc;
    COLORREF m_background;
    COLORREF m_text;
};

struct Area {
    int x, y, width, height;
};

// A black and white bitmap of this size whose values are plain bits: 0 black, 1 white.
unique_bitmap make_bit_section(HDC dc, int width, int height) {
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[2];
    } info{};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = width;
    info.header.biHeight = height;
    info.header.biPlanes = 1;
    info.header.biBitCount = 1;
    info.colours[1] = {0xFF, 0xFF, 0xFF, 0};
    void* bits = nullptr;
    return unique_bitmap(
        CreateDIBSection(dc, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, &bits, nullptr, 0));
}

// Paints a system colour on the black parts of the mask.
void paint_mask(HDC target, int x, int y, const Area& area, HDC mask, int colour) {
    const unique_brush brush(CreateSolidBrush(GetSysColor(colour)));
    const selected_object selected(target, brush.get());
    BitBlt(target, x, y, area.width, area.height, mask, 0, 0, brush_where_source_is_black);
}

void emboss(HDC target, const Area& area, HDC memory_dc, HDC mask_dc, HBITMAP bitmap, POINT source) {
    const unique_bitmap mask = make_bit_section(mask_dc, area.width, area.height);
    const selected_object mask_selected(mask_dc, mask.get());
    const selected_object bitmap_selected(memory_dc, bitmap);
    BitBlt(mask_dc, 0, 0, area.width, area.height, memory_dc, source.x, source.y, SRCCOPY);

    const RECT rectangle = {area.x, area.y, area.x + area.width, area.y + area.height};
    FillRect(target, &rectangle, GetSysColorBrush(COLOR_3DFACE));
    paint_mask(target, area.x + 1, area.y + 1, area, mask_dc, COLOR_3DHILIGHT);
    paint_mask(target, area.x, area.y, area, mask_dc, COLOR_3DSHADOW);
}

void draw_with_mask(HDC target, HBITMAP bitmap, HBITMAP mask, const Area& area, COLORREF key) {
    const unique_dc bitmap_dc(CreateCompatibleDC(target));
    const unique_dc mask_dc(CreateCompatibleDC(target));
    const selected_object bitmap_selected(bitmap_dc.get(), bitmap);
    const selected_object mask_selected(mask_dc.get(), mask);
    const dc_colours plain(target, RGB(255, 255, 255), RGB(0, 0, 0));

    SetBkColor(bitmap_dc.get(), key);
    BitBlt(mask_dc.get(), 0, 0, area.width, area.height, bitmap_dc.get(), 0, 0, SRCCOPY);
    BitBlt(target, area.x, area.y, area.width, area.height, bitmap_dc.get(), 0, 0, SRCINVERT);
    BitBlt(target, area.x, area.y, area.width, area.height, mask_dc.get(), 0, 0, SRCAND);
    BitBlt(target, area.x, area.y, area.width, area.height, bitmap_dc.get(), 0, 0, SRCINVERT);
}

} // namespace

extern "C" HRGN BVUTIL_CALL BvUtil_CreateRegionFromBitmap(HBITMAP bitmap, DWORD transparentColor) {
    if (!bitmap) return nullptr;
    return guarded(HRGN{}, [&] { return region_of_bitmap(bitmap, transparentColor).release(); });
}

extern "C" int BVUTIL_CALL BvUtil_DrawEmbossedBitmap(HDC target, int x, int y, int width, int height,
                                                     HBITMAP bitmap, int sourceX, int sourceY) {
    if (!target || !bitmap) return 0;
    return guarded(0, [&] {
        unique_dc memory_dc(CreateCompatibleDC(target));
        if (!memory_dc) return 0;
        const unique_dc mask_dc(CreateCompatibleDC(memory_dc.get()));
        emboss(target, {x, y, width, height}, memory_dc.get(), mask_dc.get(), bitmap, {sourceX, sourceY});
        return static_cast<int>(DeleteDC(memory_dc.release()));
    });
}

extern "C" int BVUTIL_CALL BvUtil_DrawTransparentBitmap(HDC target, HBITMAP bitmap, short x, short y,
                                                        COLORREF transparentColor) {
    if (!target || !bitmap) return 0;
    return guarded(0, [&] {
        BITMAP size{};
        GetObjectA(bitmap, sizeof size, &size);
        unique_bitmap mask(CreateBitmap(size.bmWidth, size.bmHeight, 1, 1, nullptr));
        draw_with_mask(target, bitmap, mask.get(), {x, y, size.bmWidth, size.bmHeight}, transparentColor);
        return static_cast<int>(DeleteObject(mask.release()));
    });
}
