#include "tools/bvutil/bmp_file.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/whole_file.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <windows.h>

namespace {

template <class Record>
std::string_view bytes_of(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

struct DeleteBitmap {
    using pointer = HBITMAP;
    void operator()(HBITMAP bitmap) const noexcept { DeleteObject(bitmap); }
};
struct DeleteMemoryDc {
    using pointer = HDC;
    void operator()(HDC dc) const noexcept { DeleteDC(dc); }
};

BITMAPINFO top_down_info(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    return info;
}

} // namespace

Picture read_bmp(const std::string& path) {
    if (!file_exists(path)) throw CommandFailed(exit_io_error, "there is no file " + path);
    const std::unique_ptr<HBITMAP, DeleteBitmap> bitmap(static_cast<HBITMAP>(
        LoadImageA(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION)));
    BITMAP form;
    if (!bitmap || !GetObjectA(bitmap.get(), sizeof form, &form))
        throw CommandFailed(exit_bad_input, path + " is not a BMP file");

    Picture picture{form.bmWidth, form.bmHeight, {}};
    const std::uint64_t size =
        std::uint64_t{4} * static_cast<unsigned>(form.bmWidth) * static_cast<unsigned>(form.bmHeight);
    if (size > static_cast<std::uint64_t>(std::numeric_limits<int>::max()))
        throw CommandFailed(exit_bad_input, path + " is too large a picture");
    picture.pixels.resize(static_cast<std::size_t>(size));
    BITMAPINFO info = top_down_info(picture.width, picture.height);
    const std::unique_ptr<HDC, DeleteMemoryDc> dc(CreateCompatibleDC(nullptr));
    if (GetDIBits(dc.get(), bitmap.get(), 0, static_cast<UINT>(picture.height), picture.pixels.data(), &info,
                  DIB_RGB_COLORS) != picture.height)
        throw CommandFailed(exit_failed, "the pixels of " + path + " cannot be read");
    return picture;
}

void write_bmp(const std::string& path, const Picture& picture) {
    const std::size_t columns = static_cast<std::size_t>(picture.width);
    std::string row((columns * 3 + 3) / 4 * 4, '\0');
    BITMAPINFOHEADER info{sizeof info, picture.width, picture.height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    info.biSizeImage = static_cast<DWORD>(row.size()) * static_cast<DWORD>(picture.height);
    BITMAPFILEHEADER header{};
    std::memcpy(&header.bfType, "BM", 2);
    header.bfOffBits = sizeof header + sizeof info;
    header.bfSize = header.bfOffBits + info.biSizeImage;

    ReplacementFile file(path);
    file.put(bytes_of(header));
    file.put(bytes_of(info));
    for (int y = picture.height - 1; y >= 0; --y) {
        const std::uint8_t* pixel = picture.pixels.data() + static_cast<std::size_t>(y) * columns * 4;
        for (std::size_t x = 0; x < columns; ++x, pixel += 4)
            std::memcpy(row.data() + 3 * x, pixel, 3);
        file.put(row);
    }
    file.close();
    file.replace();
}
