#include "tools/bvutil/picture_pixels.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/drawing_surface.h"

#include <windows.h>

namespace {

BITMAPINFO layout_of(const Picture& picture) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    return info;
}

UINT rows_of(const Picture& picture) {
    return static_cast<UINT>(picture.height);
}

} // namespace

Picture read_picture(const std::string& path) {
    const PictureFile file(path);
    Picture picture{file.facts().width, file.facts().height, {}};
    DrawingSurface surface(picture.width, picture.height);
    file.draw(surface, 0, 0);
    picture.pixels.resize(static_cast<std::size_t>(picture.row_bytes()) * rows_of(picture));
    BITMAPINFO info = layout_of(picture);
    if (!GetDIBits(surface.dc(), surface.take_bitmap(), 0, rows_of(picture), picture.pixels.data(), &info,
                   DIB_RGB_COLORS))
        throw CommandFailed(exit_failed, "the picture cannot be read");
    return picture;
}

void write_picture(const std::string& path, int format, const Picture& picture) {
    DrawingSurface surface(picture.width, picture.height);
    const BITMAPINFO info = layout_of(picture);
    const auto width = static_cast<DWORD>(picture.width);
    if (!SetDIBitsToDevice(surface.dc(), 0, 0, width, rows_of(picture), 0, 0, 0, rows_of(picture),
                           picture.pixels.data(), &info, DIB_RGB_COLORS))
        throw CommandFailed(exit_failed, "the picture cannot be drawn");
    save_bitmap(surface.take_bitmap(), path, format);
}
