// Pictures without memory and without the platform's objects: a result that tells, and nothing kept.
#include "bvutil/bitmap_ex.h"
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/text_exchange.h"
#include "imaging/gdiplus_objects.h"
#include "tests/faults/import_faults.h"
#include "tests/faults/memory_faults.h"
#include "tests/imaging/bmp_bytes.h"
#include "tests/support/canvas.h"
#include "tests/support/temp_dir.h"

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

std::uint32_t checkered(int x, int y) {
    return (x + y) % 2 ? 0xFFFFFFu : 0x204060u;
}

TEST(ImagingMemory, RegionsAndDrawing) {
    Canvas picture(130, 70, checkered), target(130, 70); // more rectangles than one batch
    const HBITMAP bitmap = picture.bitmap();
    fail_each_allocation([&](Fault& fault) {
        const HRGN region = fault([&] { return BvUtil_CreateRegionFromBitmap(bitmap, 0xFFFFFF); });
        EXPECT_TRUE(region || fault.struck());
        if (region) {
            EXPECT_TRUE(fault.struck() || (PtInRegion(region, 128, 68) && !PtInRegion(region, 129, 68)));
            DeleteObject(region);
            import_faults::forget(region);
        }
        for (const auto draw :
             {+[](HDC dc, HBITMAP b) { return BvUtil_DrawEmbossedBitmap(dc, 0, 0, 9, 9, b, 0, 0); },
              +[](HDC dc, HBITMAP b) { return BvUtil_DrawTransparentBitmap(dc, b, 1, 1, 0xFFFFFF); }})
            EXPECT_TRUE(fault([&] { return draw(target.dc(), bitmap); }) || fault.struck());
        EXPECT_EQ(SetBkColor(target.dc(), RGB(1, 2, 3)), RGB(255, 255, 255))
            << "the target's colours are others";
        SetBkColor(target.dc(), RGB(255, 255, 255));
    });
}

TEST(ImagingMemory, BitmapsHoldTheirPixelsOrNone) {
    const TempDir dir;
    const std::string in = dir.file("in.bmp"), out = dir.file("out.bmp");
    const std::string image = bmp_file({40, 30}, counting(40 * 30 * 3));
    write_file(in, image);
    CBitmapEx* bitmap = nullptr;
    ASSERT_EQ(bmpExInit(&bitmap), 1);
    fail_each_allocation([&](Fault& fault) {
        CBitmapEx* made = nullptr;
        if (fault.succeeds(1, 0, [&] { return bmpExInit(&made); })) import_faults::forget(made);
        EXPECT_EQ(made != nullptr, !fault.struck());

        fault([&] { return bmpExLoad(bitmap, in.c_str()); });
        HBITMAP handle = nullptr;
        fault([&] { return bmpExSave(bitmap, &handle); });
        EXPECT_TRUE(handle || fault.struck());
        DeleteObject(handle);
        import_faults::forget(handle);
        const bool held = handle != nullptr;

        write_file(out, "the only copy");
        fault([&] { return bmpExSaveToFile(bitmap, out.c_str()); });
        const std::string saved = read_file(out);
        const bool whole = saved.size() >= 54 && saved.substr(54) == image.substr(54);
        EXPECT_TRUE(!held || whole || (fault.struck() && saved == "the only copy")) << saved.size();
        bmpExLoadFromBits(
            bitmap, reinterpret_cast<const BYTE*>(bmp_file({1, 1, 4}, "").c_str())); // gives its pixels back
    });
}

TEST(ImagingMemory, TextsAndFilesAreConvertedWholeOrNot) {
    const TempDir dir;
    write_file(dir.file("f"), std::string(5000, 'x'));
    const std::string path = dir.file("f"), text(300, 'u');
    fail_each_allocation([&](Fault& fault) {
        std::string out(8000, '\0');
        int length = -1;
        if (fault.succeeds(1, 0, [&] { return ConvertToUTF8(text.c_str(), out.data()); })) {
            EXPECT_EQ(out.c_str(), text);
        }
        if (fault.succeeds(1, 0, [&] { return ConvertFromUTF8(text.c_str(), out.data()); })) {
            EXPECT_EQ(out.c_str(), text);
        }
        if (fault.succeeds(1, 0, [&] { return jpgToXML(path.c_str(), nullptr, &length, 1); })) {
            EXPECT_EQ(length, 6668);
        }
        fault.succeeds(1, 0, [&] { return jpgToXML(path.c_str(), out.data(), nullptr, 0); });
    });
}

// Each way to a picture gives one, or 0 and leaves its out-parameter alone.
TEST(ImagingMemory, PicturesAreMadeOrNot) {
    gdiPlusInit();
    const TempDir dir;
    const std::string in = dir.file("in.bmp"), out = dir.file("out.bmp");
    static Canvas picture(8, 8, checkered);
    static const HBITMAP bitmap = picture.bitmap();
    static std::string bits = counting(8 * 8 * 4);
    static BYTE* const bytes = reinterpret_cast<BYTE*>(bits.data());
    static const std::string info = info_header({8, 8});
    static RamStruct record{bytes, 0, 8, 8, 4};
    BvUtilImage first = nullptr;
    ASSERT_EQ(gdiPlusGetBitmapFromHBitmap(bitmap, &first), 1);
    gdiPlusSaveImage(first, in.c_str(), 0);
    gdiPlusFreeImage(first);
    using Make = int (*)(const char* path, BvUtilImage* image);
    constexpr Make makes[] = {
        [](const char* path, BvUtilImage* image) { return gdiPlusGetBitmapFromFile(path, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusGetBitmapFromHBitmap(bitmap, image); },
        [](const char*, BvUtilImage* image) {
            return gdiPlusGetBitmapFromBitmapInfo(reinterpret_cast<const BITMAPINFO*>(info.data()), bytes,
                                                  image);
        },
        [](const char*, BvUtilImage* image) { return gdiPlusBitmapFromBits(bytes, 8, 8, 3, 4, 9, 1, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusBitmapFromRamStruct(&record, 9, 1, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusGetBitmap(8, 8, 32, 0, bytes, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusGetBitmap(8, 8, 32, 2, bytes, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusGetBitmapEx(8, 8, 24, 32, 2, 9, bytes, image); },
        [](const char*, BvUtilImage* image) { return gdiPlusResizeBitmap(bitmap, 5, 5, image); },
    };
    for (const Make& make : makes) {
        SCOPED_TRACE(&make - makes);
        fail_each_allocation([&](Fault& fault) {
            BvUtilImage image = nullptr;
            if (!fault.succeeds(1, 0, [&] { return make(in.c_str(), &image); })) {
                EXPECT_EQ(image, nullptr);
                return;
            }
            const Canvas target(20, 20);
            for (const auto draw :
                 {+[](BvUtilImage i, HDC dc) { return gdiPlusDrawImage(i, dc, 0, 0); },
                  +[](BvUtilImage i, HDC dc) { return gdiPlusDrawImage2(i, dc, 0, 0, 5, 0, 0, 5); },
                  +[](BvUtilImage i, HDC dc) { return gdiPlusDrawImage3(i, dc, 0, 1, 0, 1); },
                  +[](BvUtilImage i, HDC dc) { return gdiPlusDrawTranspImage(i, dc, 0, 0); },
                  +[](BvUtilImage i, HDC dc) { return gdiPlusPrintImage(i, dc, 0, 0, 1, 1); },
                  +[](BvUtilImage, HDC dc) { return gdiPlusFillRect(dc, 9, 9, 9, 9, 5, 5); },
                  +[](BvUtilImage, HDC dc) {
                      const POINT corners[] = {{0, 0}, {5, 0}, {0, 5}};
                      return gdiPlusFillPolygon(dc, 0, 9, 9, 9, 9, corners, 3);
                  },
                  +[](BvUtilImage, HDC dc) { return gdiPlusClearGraphics(dc, 9, 9, 9); }})
                EXPECT_TRUE(fault([&] { return draw(image, target.dc()); }) || fault.struck());
            BvUtilGraphics graphics = nullptr;
            EXPECT_EQ(fault([&] { return gdiPlusGetGraphicsFromBitmap(image, &graphics); }), 1);
            EXPECT_TRUE(graphics || fault.struck());
            if (graphics) gdiPlusFreeGraphics(graphics);
            write_file(out, "the only copy");
            fault.succeeds(1, 0, [&] { return gdiPlusSaveImage(image, out.c_str(), 0); });
            EXPECT_TRUE(read_file(out).starts_with("BM") ||
                        (fault.struck() && read_file(out) == "the only copy"));
            EXPECT_EQ(gdiPlusFreeImage(image), 1);
        });
    }
}

} // namespace
