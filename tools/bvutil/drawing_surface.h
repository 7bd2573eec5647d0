// A picture to draw on, and pictures from and to files by way of it.
#pragma once

#include <string>
#include <windows.h>

// GDI+ from its start to its end. All that uses it, surfaces too, ends first.
struct GdiPlusSession {
    GdiPlusSession();
    ~GdiPlusSession();
    GdiPlusSession(const GdiPlusSession&) = delete;
    GdiPlusSession& operator=(const GdiPlusSession&) = delete;
};

// A white picture selected into a device context of its own. Its 24 bits have no room for an alpha value,
// which would keep colours from comparing equal.
class DrawingSurface {
  public:
    // Throws CommandFailed (exit_failed) when there is no memory.
    DrawingSurface(int width, int height);
    ~DrawingSurface();
    DrawingSurface(const DrawingSurface&) = delete;
    DrawingSurface& operator=(const DrawingSurface&) = delete;

    HDC dc() const { return m_dc; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    // The picture for functions that take a bitmap: no longer selected, so nothing more can be drawn.
    HBITMAP take_bitmap();

  private:
    int m_width, m_height;
    HDC m_dc;
    HBITMAP m_bitmap;
    HGDIOBJ m_former;
};

struct PictureFacts {
    int width = 0, height = 0, bits_per_pixel = 0;
    double dots_per_inch_x = 0, dots_per_inch_y = 0;
};

// A picture file of any kind that the platform reads. Throws CommandFailed: exit_io_error when there is no
// such file, exit_bad_input when it is no picture.
class PictureFile {
  public:
    explicit PictureFile(const std::string& path);
    ~PictureFile();
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    PictureFacts facts() const;
    // Draws it at its own size, one pixel to one.
    void draw(const DrawingSurface& surface, int x, int y) const;

  private:
    void* m_image = nullptr;
};

// Codes of the formats that pictures are saved in, by name ("bmp", "jpeg", "gif", "tiff", "png") or, when
// that is empty, by the extension of the path. Throws CommandFailed (exit_bad_input) for any other.
int format_code(const std::string& name, const std::string& path);

// Saves a bitmap, in another size when one is given. A former file is replaced only when all is written.
// Throws CommandFailed.
void save_bitmap(HBITMAP bitmap, const std::string& path, int format, SIZE new_size = {0, 0});
