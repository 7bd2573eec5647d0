// Owners of GDI+ objects, and the two kinds of handles that callers get.
#pragma once

#include "module/handles.h"

#include <objidl.h>

#include <gdiplus.h>

namespace flat = Gdiplus::DllExports;

namespace handle_traits {

template <class Image>
struct gdiplus_image : null_is_none<Image*> {
    static void close(Image* image) noexcept { flat::GdipDisposeImage(image); }
};
struct gdiplus_graphics : null_is_none<Gdiplus::GpGraphics*> {
    static void close(Gdiplus::GpGraphics* graphics) noexcept { flat::GdipDeleteGraphics(graphics); }
};
struct gdiplus_brush : null_is_none<Gdiplus::GpSolidFill*> {
    static void close(Gdiplus::GpSolidFill* brush) noexcept { flat::GdipDeleteBrush(brush); }
};
struct gdiplus_block : null_is_none<void*> {
    static void close(void* block) noexcept { flat::GdipFree(block); }
};

} // namespace handle_traits

using unique_gp_bitmap = unique_handle<handle_traits::gdiplus_image<Gdiplus::GpBitmap>>;
using unique_gp_graphics = unique_handle<handle_traits::gdiplus_graphics>;
using unique_gp_brush = unique_handle<handle_traits::gdiplus_brush>;

// What an image handle points to: an object laid out as the platform's wrapper class Gdiplus::Bitmap, so that
// callers may use it as one. Callers also pass images of their own making, so nothing virtual is called here.
struct ImageObject {
    const void* virtual_table;
    Gdiplus::GpImage* native;
    Gdiplus::Status last_status;
    Gdiplus::Status load_status;

    // Keeps a failure for the caller to ask about.
    Gdiplus::Status keep(Gdiplus::Status status) noexcept {
        if (status != Gdiplus::Ok) last_status = status;
        return status;
    }
    Gdiplus::GpBitmap* native_bitmap() const noexcept { return static_cast<Gdiplus::GpBitmap*>(native); }
};

// The same for Gdiplus::Graphics, which has no virtual functions.
struct GraphicsObject {
    Gdiplus::GpGraphics* native;
    Gdiplus::Status last_status;

    Gdiplus::Status keep(Gdiplus::Status status) noexcept {
        if (status != Gdiplus::Ok) last_status = status;
        return status;
    }
};

// Wraps a bitmap for the caller; null, with the bitmap disposed of, when there is no memory or no bitmap.
ImageObject* make_image_object(unique_gp_bitmap bitmap) noexcept;
void free_image_object(ImageObject* image) noexcept;

// Null when there is no memory.
GraphicsObject* make_graphics_object(unique_gp_graphics graphics, Gdiplus::Status status) noexcept;
void free_graphics_object(GraphicsObject* graphics) noexcept;
