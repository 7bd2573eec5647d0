#include "bvutil/bitmap_ex.h"

#include "imaging/bitmap_ex.h"
#include "imaging/readable_memory.h"
#include "module/guarded.h"
#include "module/handles.h"

#include <cstring>
#include <new>

namespace {

// The result for an object, whatever happens inside.
template <class Body>
int with(CBitmapEx* bitmap, Body&& body) noexcept {
    if (!bitmap) return 0;
    guarded([&] { body(*bitmap); });
    return 1;
}

// Calls draw(info) unless there is nothing to draw. Pixels of 32 bits that call themselves compressed are
// drawn by no device, but recorded in the size that they claim: such a call is not made.
template <class Draw>
void draw_pixels(const CBitmapEx& bitmap, Draw&& draw) {
    const DWORD compression = bitmap.info().compression;
    if (!bitmap.pixels() || (compression != BI_RGB && compression != BI_BITFIELDS)) return;
    const CBitmapEx::DrawingHeader header = bitmap.drawing_header();
    draw(reinterpret_cast<const BITMAPINFO*>(&header));
}

} // namespace

extern "C" int BVUTIL_CALL bmpExInit(CBitmapEx** bitmap) {
    if (!bitmap) return 0;
    CBitmapEx* created = new (std::nothrow) CBitmapEx;
    if (!created) return 0;
    *bitmap = created;
    return 1;
}

extern "C" int BVUTIL_CALL bmpExLoad(CBitmapEx* bitmap, const char* path) {
    return with(bitmap, [&](CBitmapEx& held) {
        if (!path) return;
        const unique_stream file(std::fopen(path, "rb"));
        if (!file) return;
        StreamSource source(file.get());
        held.load(source, CBitmapEx::file);
    });
}

extern "C" int BVUTIL_CALL bmpExLoadFromBits(CBitmapEx* bitmap, const BYTE* image) {
    return bmpExLoadFromBits2(bitmap, image, 1);
}

extern "C" int BVUTIL_CALL bmpExLoadFromBits2(CBitmapEx* bitmap, const BYTE* data, int hasFileHeader) {
    return with(bitmap, [&](CBitmapEx& held) {
        if (!data) return;
        ReadableMemory source(data);
        held.load(source, hasFileHeader ? CBitmapEx::file_image : CBitmapEx::bare_image);
    });
}

extern "C" int BVUTIL_CALL bmpExLoadFromBits3(CBitmapEx* bitmap, const BITMAPFILEHEADER* fileHeader,
                                              const BITMAPINFOHEADER* infoHeader, const BYTE* data) {
    return with(bitmap, [&](CBitmapEx& held) {
        if (!fileHeader || !infoHeader || !data) return;
        BmpFileHeader file;
        BmpInfoHeader info;
        std::memcpy(&file, fileHeader, sizeof file);
        std::memcpy(&info, infoHeader, sizeof info);
        ReadableMemory source(data);
        held.load(file, info, source);
    });
}

extern "C" int BVUTIL_CALL bmpExDraw(CBitmapEx* bitmap, HDC target) {
    return with(bitmap, [&](const CBitmapEx& held) {
        draw_pixels(held, [&](const BITMAPINFO* info) {
            const auto width = static_cast<DWORD>(held.info().width),
                       height = static_cast<DWORD>(held.info().height);
            SetDIBitsToDevice(target, 0, 0, width, height, 0, 0, 0, height, held.pixels(), info,
                              DIB_RGB_COLORS);
        });
    });
}

extern "C" int BVUTIL_CALL bmpExDraw2(CBitmapEx* bitmap, HDC target, int x, int y, int width, int height) {
    return with(bitmap, [&](const CBitmapEx& held) {
        draw_pixels(held, [&](const BITMAPINFO* info) {
            StretchDIBits(target, x, y, width, height, 0, 0, held.info().width, held.info().height,
                          held.pixels(), info, DIB_RGB_COLORS, SRCCOPY);
        });
    });
}

extern "C" int BVUTIL_CALL bmpExSave(CBitmapEx* bitmap, HBITMAP* handle) {
    return with(bitmap, [&](CBitmapEx& held) {
        if (!handle || *handle || !held.pixels()) return;
        held.flip();
        *handle =
            CreateBitmap(held.info().width, held.info().height, 1, held.info().bit_count, held.pixels());
        held.flip();
    });
}

extern "C" int BVUTIL_CALL bmpExSaveToFile(CBitmapEx* bitmap, const char* path) {
    return with(bitmap, [&](CBitmapEx& held) {
        if (!path) return;
        std::vector<std::uint8_t> buffer = held.buffer_for_saving();
        const unique_stream file(std::fopen(path, "wb"));
        held.save(file.get(), std::move(buffer));
    });
}
