#include "tools/bvutil/drawing_surface.h"

#include "bvutil/gdiplus_services.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/whole_file.h"

#include <objidl.h>

#include <gdiplus.h>

namespace {

// Frees an image handle on every way out.
struct ImageOwner {
    BvUtilImage image = nullptr;
    ~ImageOwner() { gdiPlusFreeImage(image); }
};

// The tool's own code for PNG: the saving service has none.
constexpr int format_png = -1;

// Saves through GDI+ itself, which a handle allows.
void save_png(BvUtilImage image, const std::string& path) {
    CLSID encoder;
    std::wstring wide(path.size() + 1, L'\0');
    MultiByteToWideChar(CP_ACP, 0, path.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    if (!gdiPlusGetEncoderClsid("image/png", &encoder))
        throw CommandFailed(exit_failed, "this system cannot write that format");
    image->Save(wide.c_str(), &encoder, nullptr); // the handle keeps the status
}

BvUtilImage handle_of(void* image) {
    return static_cast<BvUtilImage>(image);
}

} // namespace

GdiPlusSession::GdiPlusSession() {
    gdiPlusInit();
}

GdiPlusSession::~GdiPlusSession() {
    gdiPlusExit();
}

DrawingSurface::DrawingSurface(int width, int height) : m_width(width), m_height(height) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    m_dc = CreateCompatibleDC(nullptr);
    m_bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    if (!m_dc || !m_bitmap) {
        DeleteDC(m_dc);
        throw CommandFailed(exit_failed, "there is not enough memory for the picture");
    }
    m_former = SelectObject(m_dc, m_bitmap);
    gdiPlusClearGraphics(m_dc, 255, 255, 255);
}

DrawingSurface::~DrawingSurface() {
    SelectObject(m_dc, m_former);
    DeleteObject(m_bitmap);
    DeleteDC(m_dc);
}

HBITMAP DrawingSurface::take_bitmap() {
    GdiFlush();
    SelectObject(m_dc, m_former);
    return m_bitmap;
}

PictureFile::PictureFile(const std::string& path) {
    if (!file_exists(path)) throw CommandFailed(exit_io_error, "there is no file " + path);
    BvUtilImage image = nullptr;
    if (!gdiPlusGetBitmapFromFile(path.c_str(), &image))
        throw CommandFailed(exit_bad_input, path + " is not a picture that can be read");
    m_image = image;
}

PictureFile::~PictureFile() {
    gdiPlusFreeImage(handle_of(m_image));
}

PictureFacts PictureFile::facts() const {
    const BvUtilImage image = handle_of(m_image);
    return {static_cast<int>(image->GetWidth()), static_cast<int>(image->GetHeight()),
            static_cast<int>(Gdiplus::GetPixelFormatSize(image->GetPixelFormat())),
            static_cast<double>(image->GetHorizontalResolution()),
            static_cast<double>(image->GetVerticalResolution())};
}

void PictureFile::draw(const DrawingSurface& surface, int x, int y) const {
    if (!gdiPlusDrawImage(handle_of(m_image), surface.dc(), static_cast<float>(x), static_cast<float>(y)))
        throw CommandFailed(exit_failed, "the picture cannot be drawn");
}

int format_code(const std::string& name, const std::string& path) {
    const auto dot = path.find_last_of("./\\");
    std::string wanted = name;
    if (wanted.empty() && dot != std::string::npos && path[dot] == '.') wanted = path.substr(dot + 1);
    for (const auto& [known, code] : {std::pair{"bmp", 0},
                                      {"jpg", 1},
                                      {"jpeg", 1},
                                      {"gif", 2},
                                      {"tif", 3},
                                      {"tiff", 3},
                                      {"png", format_png}})
        if (_stricmp(wanted.c_str(), known) == 0) return code;
    throw CommandFailed(exit_bad_input,
                        "pictures are saved as bmp, jpeg, gif, tiff or png, not as '" + wanted + "'");
}

void save_bitmap(HBITMAP bitmap, const std::string& path, int format, SIZE new_size) {
    ReplacementFile file(path);
    file.close();
    {
        ImageOwner owner;
        const int made = new_size.cx > 0 ? gdiPlusResizeBitmap(bitmap, new_size.cx, new_size.cy, &owner.image)
                                         : gdiPlusGetBitmapFromHBitmap(bitmap, &owner.image);
        if (!made) throw CommandFailed(exit_failed, "there is not enough memory for the picture");
        if (format == format_png)
            save_png(owner.image, file.path());
        else
            gdiPlusSaveImage(owner.image, file.path().c_str(), format);
        if (owner.image->GetLastStatus() != Gdiplus::Ok)
            throw CommandFailed(exit_io_error, path + " cannot be written");
        // An encoder can fail and not say so.
        ImageOwner written;
        if (!gdiPlusGetBitmapFromFile(file.path().c_str(), &written.image))
            throw CommandFailed(exit_failed, "this system cannot write that format");
    }
    file.replace();
}
