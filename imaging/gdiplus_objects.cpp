#include "imaging/gdiplus_objects.h"

#include <new>

static_assert(sizeof(void*) == 4 && sizeof(ImageObject) == 16 && sizeof(GraphicsObject) == 8,
              "the layout is that of the platform's wrapper classes");
static_assert(sizeof(Gdiplus::Graphics) == sizeof(GraphicsObject) &&
              sizeof(Gdiplus::Bitmap) <= sizeof(ImageObject));

namespace {

// The virtual table of Gdiplus::Bitmap as the platform's own compiler lays it out: the deleting destructor,
// which takes its flags from the stack, and Clone.
__attribute__((thiscall)) void* destroy(ImageObject* image, unsigned flags) noexcept {
    constexpr unsigned also_free = 1;
    flat::GdipDisposeImage(image->native);
    image->native = nullptr;
    if (flags & also_free) flat::GdipFree(image);
    return image;
}

__attribute__((thiscall)) ImageObject* clone(const ImageObject* image) noexcept {
    Gdiplus::GpImage* copy = nullptr;
    if (const_cast<ImageObject*>(image)->keep(flat::GdipCloneImage(image->native, &copy)) != Gdiplus::Ok)
        return nullptr;
    return make_image_object(unique_gp_bitmap(static_cast<Gdiplus::GpBitmap*>(copy)));
}

const void* const virtual_table[] = {reinterpret_cast<const void*>(&destroy),
                                     reinterpret_cast<const void*>(&clone)};

} // namespace

ImageObject* make_image_object(unique_gp_bitmap bitmap) noexcept {
    if (!bitmap) return nullptr;
    void* block = flat::GdipAlloc(sizeof(ImageObject));
    if (!block) return nullptr;
    return new (block) ImageObject{virtual_table, bitmap.release(), Gdiplus::Ok, Gdiplus::Ok};
}

void free_image_object(ImageObject* image) noexcept {
    flat::GdipDisposeImage(image->native);
    flat::GdipFree(image);
}

GraphicsObject* make_graphics_object(unique_gp_graphics graphics, Gdiplus::Status status) noexcept {
    void* block = flat::GdipAlloc(sizeof(GraphicsObject));
    if (!block) return nullptr;
    return new (block) GraphicsObject{graphics.release(), status};
}

void free_graphics_object(GraphicsObject* graphics) noexcept {
    flat::GdipDeleteGraphics(graphics->native);
    flat::GdipFree(graphics);
}
