#include "bvutil/gdiplus_services.h"

#include "imaging/bitmap_import.h"
#include "imaging/encoders.h"
#include "imaging/gdiplus_objects.h"
#include "imaging/wide_text.h"
#include "module/own_arithmetic.h"

#include <limits>

namespace {

ImageObject* object_of(BvUtilImage image) {
    return reinterpret_cast<ImageObject*>(image);
}

// Hands a bitmap to the caller; 0, with the out-parameter untouched, when there is none.
int hand_out(unique_gp_bitmap bitmap, BvUtilImage* out) {
    ImageObject* object = make_image_object(std::move(bitmap));
    if (!object) return 0;
    *out = reinterpret_cast<BvUtilImage>(object);
    return 1;
}

// Runs create(native out-parameter) and hands out what it made.
template <class Create>
int hand_out_created(BvUtilImage* out, Create&& create) {
    if (!out) return 0;
    return calculated(0, [&] {
        unique_gp_bitmap bitmap;
        if (create(bitmap.put()) != Gdiplus::Ok) return 0;
        return hand_out(std::move(bitmap), out);
    });
}

// Format codes of raw pixels: 0 is 24 bits, and never gets here.
Gdiplus::PixelFormat format_of_32_bits(int code) {
    return code == 1 ? PixelFormat32bppRGB : PixelFormat32bppARGB;
}

// The length of a row; 0, which no import accepts, when there is none.
int row_length(int width, int pixel_bytes) {
    const std::int64_t length = std::int64_t{width} * pixel_bytes;
    return length > 0 && length <= std::numeric_limits<int>::max() ? static_cast<int>(length) : 0;
}

int import_keyed(const RawRows& rows, int target_row_bytes, int target_pixel_bytes, BYTE alpha,
                 int with_alpha, BvUtilImage* out) {
    return calculated(0, [&] {
        return hand_out(import_converted(rows, target_row_bytes, target_pixel_bytes, {alpha, true}, true,
                                         with_alpha ? PixelFormat32bppARGB : PixelFormat24bppRGB,
                                         Ground::white),
                        out);
    });
}

unique_gp_bitmap resized(HBITMAP bitmap, int width, int height) {
    unique_gp_bitmap source, target;
    if (flat::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, source.put()) != Gdiplus::Ok) return {};
    if (flat::GdipCreateBitmapFromScan0(width, height, 0, PixelFormat32bppARGB, nullptr, target.put()) !=
        Gdiplus::Ok)
        return {};
    flat::GdipBitmapSetResolution(target.get(), 600.0f, 600.0f);
    unique_gp_graphics graphics;
    flat::GdipGetImageGraphicsContext(target.get(), graphics.put());
    flat::GdipSetCompositingQuality(graphics.get(), Gdiplus::CompositingQualityHighQuality);
    flat::GdipSetInterpolationMode(graphics.get(), Gdiplus::InterpolationModeHighQualityBicubic);
    flat::GdipSetSmoothingMode(graphics.get(), Gdiplus::SmoothingModeHighQuality);
    flat::GdipSetPixelOffsetMode(graphics.get(), Gdiplus::PixelOffsetModeHighQuality);
    flat::GdipDrawImageRectI(graphics.get(), source.get(), 0, 0, width, height);
    return target;
}

const wchar_t* mime_type_of(int format_code) {
    switch (format_code) {
    case 1:
        return L"image/jpeg";
    case 2:
        return L"image/gif";
    case 3:
        return L"image/tiff";
    default: // 4 as well: kept, callers get a BMP file for it
        return L"image/bmp";
    }
}

constexpr GUID encoder_quality = {
    0x1D5BE4B5, 0xFA4A, 0x452D, {0x9C, 0xDD, 0x5D, 0xB3, 0x51, 0x05, 0xE7, 0xEB}};

} // namespace

extern "C" int BVUTIL_CALL gdiPlusGetBitmapFromFile(const char* path, BvUtilImage* image) {
    if (!path) return 0;
    return hand_out_created(image, [&](Gdiplus::GpBitmap** out) {
        return flat::GdipCreateBitmapFromFile(widen(path, CP_ACP).c_str(), out);
    });
}

extern "C" int BVUTIL_CALL gdiPlusGetBitmapFromHBitmap(HBITMAP bitmap, BvUtilImage* image) {
    if (!bitmap) return 0;
    return hand_out_created(image, [&](Gdiplus::GpBitmap** out) {
        return flat::GdipCreateBitmapFromHBITMAP(bitmap, nullptr, out);
    });
}

extern "C" int BVUTIL_CALL gdiPlusGetBitmapFromBitmapInfo(const BITMAPINFO* info, void* bits,
                                                          BvUtilImage* image) {
    if (!info || !bits) return 0;
    return hand_out_created(
        image, [&](Gdiplus::GpBitmap** out) { return flat::GdipCreateBitmapFromGdiDib(info, bits, out); });
}

extern "C" int BVUTIL_CALL gdiPlusBitmapFromBits(const BYTE* bits, int width, int height,
                                                 int sourceBytesPerPixel, int targetBytesPerPixel, BYTE alpha,
                                                 int withAlpha, BvUtilImage* image) {
    if (!bits || !image) return 0;
    const RawRows rows{bits, width, height, row_length(width, sourceBytesPerPixel), sourceBytesPerPixel};
    return import_keyed(rows, row_length(width, targetBytesPerPixel), targetBytesPerPixel, alpha, withAlpha,
                        image);
}

extern "C" int BVUTIL_CALL gdiPlusBitmapFromRamStruct(const RamStruct* record, BYTE alpha, int withAlpha,
                                                      BvUtilImage* image) {
    if (!record || !record->data || !image) return 0;
    const int row_bytes = row_length(record->width, record->bytesPerPixel);
    return import_keyed({record->data, record->width, record->height, row_bytes, 4}, row_bytes, 4, alpha,
                        withAlpha, image);
}

extern "C" int BVUTIL_CALL gdiPlusGetBitmap24BPPRGB(int width, int height, int stride, int, BYTE* bits,
                                                    BvUtilImage* image) {
    if (!bits || !image) return 0;
    return calculated(
        0, [&] { return hand_out(import_rows(width, height, stride, PixelFormat24bppRGB, bits), image); });
}

extern "C" int BVUTIL_CALL gdiPlusGetBitmap(int width, int height, int stride, int format, const BYTE* bits,
                                            BvUtilImage* image) {
    if (format == 0)
        return gdiPlusGetBitmap24BPPRGB(width, height, stride, format, const_cast<BYTE*>(bits), image);
    if (!bits || !image) return 0;
    return calculated(0, [&] {
        return hand_out(import_converted({bits, width, height, stride, 4}, stride, 4, {255, false}, false,
                                         format_of_32_bits(format)),
                        image);
    });
}

extern "C" int BVUTIL_CALL gdiPlusGetBitmapEx(int width, int height, int sourceStride, int targetStride,
                                              int format, BYTE alpha, const BYTE* bits, BvUtilImage* image) {
    if (format == 0)
        return gdiPlusGetBitmap24BPPRGB(width, height, sourceStride, format, const_cast<BYTE*>(bits), image);
    if (!bits || !image) return 0;
    return calculated(0, [&] {
        return hand_out(import_converted({bits, width, height, sourceStride, 3}, targetStride, 4,
                                         {alpha, false}, true, format_of_32_bits(format)),
                        image);
    });
}

extern "C" int BVUTIL_CALL gdiPlusResizeBitmap(HBITMAP bitmap, int width, int height, BvUtilImage* image) {
    if (!bitmap || !image) return 0;
    return calculated(0, [&] { return hand_out(resized(bitmap, width, height), image); });
}

extern "C" int BVUTIL_CALL gdiPlusSaveImage(BvUtilImage image, const char* path, int format) {
    if (!image || !path) return 0;
    return calculated(0, [&] {
        const CLSID encoder = find_encoder(mime_type_of(format)).value_or(CLSID{});
        ULONG quality = 100;
        Gdiplus::EncoderParameters parameters{
            1, {{encoder_quality, 1, Gdiplus::EncoderParameterValueTypeLong, &quality}}};
        ImageObject* object = object_of(image);
        object->keep(
            flat::GdipSaveImageToFile(object->native, widen(path, CP_ACP).c_str(), &encoder, &parameters));
        return 1;
    });
}

extern "C" int BVUTIL_CALL gdiPlusFreeImage(BvUtilImage image) {
    if (!image) return 0;
    free_image_object(object_of(image));
    return 1;
}
