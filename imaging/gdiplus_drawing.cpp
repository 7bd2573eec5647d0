#include "bvutil/gdiplus_services.h"

#include "imaging/gdiplus_objects.h"
#include "module/own_arithmetic.h"

namespace {

constexpr Gdiplus::ARGB opaque_white = 0xFFFFFFFF;

ImageObject* object_of(BvUtilImage image) {
    return reinterpret_cast<ImageObject*>(image);
}

GraphicsObject* object_of(BvUtilGraphics graphics) {
    return reinterpret_cast<GraphicsObject*>(graphics);
}

constexpr Gdiplus::ARGB argb(BYTE alpha, BYTE red, BYTE green, BYTE blue) {
    return Gdiplus::ARGB{alpha} << 24 | Gdiplus::ARGB{red} << 16 | Gdiplus::ARGB{green} << 8 | blue;
}

unique_gp_graphics graphics_of(HDC dc) {
    unique_gp_graphics graphics;
    if (flat::GdipCreateFromHDC(dc, graphics.put()) != Gdiplus::Ok) return {};
    return graphics;
}

int done(Gdiplus::Status status) {
    return status == Gdiplus::Ok ? 1 : 0;
}

// Runs draw(graphics) on the device context; 0 when it cannot be drawn on.
template <class Draw>
int draw_on(HDC target, Draw&& draw) {
    if (!target) return 0;
    return calculated(0, [&] {
        const unique_gp_graphics graphics = graphics_of(target);
        return graphics ? draw(graphics.get()) : 0;
    });
}

// The same with an image, after clearing the target to white.
template <class Draw>
int draw_on_white(BvUtilImage image, HDC target, Draw&& draw) {
    if (!image) return 0;
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        flat::GdipGraphicsClear(graphics, opaque_white);
        return draw(graphics, *object_of(image));
    });
}

// One image pixel is to become one device pixel.
void set_device_units(Gdiplus::GpGraphics* graphics, ImageObject& image) {
    Gdiplus::REAL device_x = 0, device_y = 0, image_x = 0, image_y = 0;
    flat::GdipGetDpiX(graphics, &device_x);
    flat::GdipGetDpiY(graphics, &device_y);
    flat::GdipSetPageUnit(graphics, Gdiplus::UnitPixel);
    image.keep(flat::GdipGetImageHorizontalResolution(image.native, &image_x));
    image.keep(flat::GdipGetImageVerticalResolution(image.native, &image_y));
    if (image_x != device_x || image_y != device_y)
        image.keep(flat::GdipBitmapSetResolution(image.native_bitmap(), device_x, device_y));
}

} // namespace

extern "C" int BVUTIL_CALL gdiPlusGetGraphicsFromBitmap(BvUtilImage image, BvUtilGraphics* graphics) {
    if (!image || !graphics) return 0;
    ImageObject* object = object_of(image);
    unique_gp_graphics native;
    const Gdiplus::Status status =
        object->keep(flat::GdipGetImageGraphicsContext(object->native, native.put()));
    *graphics = reinterpret_cast<BvUtilGraphics>(make_graphics_object(std::move(native), status));
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusGetHDCFromGraphics(BvUtilGraphics graphics, HDC* dc) {
    if (!graphics || !dc) return 0;
    GraphicsObject* object = object_of(graphics);
    HDC found = nullptr;
    *dc = object->keep(flat::GdipGetDC(object->native, &found)) == Gdiplus::Ok ? found : nullptr;
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusFreeHDC(BvUtilGraphics graphics, HDC dc) {
    if (!graphics) return 0;
    GraphicsObject* object = object_of(graphics);
    object->keep(flat::GdipReleaseDC(object->native, dc));
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusFreeGraphics(BvUtilGraphics graphics) {
    if (!graphics) return 0;
    free_graphics_object(object_of(graphics));
    return 1;
}

extern "C" int BVUTIL_CALL gdiPlusClearGraphics(HDC target, BYTE red, BYTE green, BYTE blue) {
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        return done(flat::GdipGraphicsClear(graphics, argb(255, red, green, blue)));
    });
}

extern "C" int BVUTIL_CALL gdiPlusFillRect(HDC target, BYTE alpha, BYTE red, BYTE green, BYTE blue, int width,
                                           int height) {
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        unique_gp_brush brush;
        flat::GdipCreateSolidFill(argb(alpha, red, green, blue), brush.put());
        return done(flat::GdipFillRectangleI(graphics, brush.get(), 0, 0, width, height));
    });
}

extern "C" int BVUTIL_CALL gdiPlusFillPolygon(HDC target, int, BYTE alpha, BYTE red, BYTE green, BYTE blue,
                                              const POINT* points, int count) {
    if (!points) return 0;
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        static_assert(sizeof(POINT) == sizeof(Gdiplus::GpPoint));
        unique_gp_brush brush;
        flat::GdipSetPageUnit(graphics, Gdiplus::UnitPixel);
        flat::GdipCreateSolidFill(argb(alpha, red, green, blue), brush.put());
        return done(flat::GdipFillPolygonI(graphics, brush.get(),
                                           reinterpret_cast<const Gdiplus::GpPoint*>(points), count,
                                           Gdiplus::FillModeAlternate));
    });
}

extern "C" int BVUTIL_CALL gdiPlusDrawImage(BvUtilImage image, HDC target, float x, float y) {
    if (!image) return 0;
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        ImageObject& object = *object_of(image);
        set_device_units(graphics, object);
        return done(flat::GdipDrawImage(graphics, object.native, x, y));
    });
}

extern "C" int BVUTIL_CALL gdiPlusDrawImage2(BvUtilImage image, HDC target, int x1, int y1, int x2, int y2,
                                             int x3, int y3) {
    if (!image) return 0;
    return draw_on(target, [&](Gdiplus::GpGraphics* graphics) {
        const Gdiplus::GpPoint corners[] = {{x1, y1}, {x2, y2}, {x3, y3}};
        flat::GdipSetPageUnit(graphics, Gdiplus::UnitPixel);
        flat::GdipGraphicsClear(graphics, opaque_white);
        flat::GdipDrawImagePointsI(graphics, object_of(image)->native, corners, 3);
        return 1;
    });
}

extern "C" int BVUTIL_CALL gdiPlusDrawImage3(BvUtilImage image, HDC target, float fx, float fw, float fy,
                                             float fh) {
    return draw_on_white(image, target, [&](Gdiplus::GpGraphics* graphics, ImageObject& object) {
        Gdiplus::RectF bounds;
        Gdiplus::Unit unit = Gdiplus::UnitPixel;
        object.keep(flat::GdipGetImageBounds(object.native, &bounds, &unit));
        const float left = bounds.X * fx;
        const float top = bounds.Height * fy + bounds.Y;
        const float width = bounds.Width * fw;
        const float height = bounds.Height * fh + top; // kept: the height grows with the top
        flat::GdipDrawImageRectRect(graphics, object.native, bounds.X, bounds.Y, bounds.Width, bounds.Height,
                                    left, top, width, height, Gdiplus::UnitPixel, nullptr, nullptr, nullptr);
        return 1;
    });
}

extern "C" int BVUTIL_CALL gdiPlusDrawTranspImage(BvUtilImage image, HDC target, int x, int y) {
    return draw_on_white(image, target, [&](Gdiplus::GpGraphics* graphics, ImageObject& object) {
        flat::GdipDrawImageI(graphics, object.native, x, y);
        return 1;
    });
}

extern "C" int BVUTIL_CALL gdiPlusPrintImage(Gdiplus::Image* image, HDC target, int x, int y, float scaleX,
                                             float scaleY) {
    return draw_on_white(
        static_cast<BvUtilImage>(image), target, [&](Gdiplus::GpGraphics* graphics, ImageObject& object) {
            flat::GdipScaleWorldTransform(graphics, scaleX, scaleY, Gdiplus::MatrixOrderPrepend);
            return done(flat::GdipDrawImageI(graphics, object.native, x, y));
        });
}
