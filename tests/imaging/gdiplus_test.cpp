#include "bvutil/gdiplus_services.h"

#include "imaging/gdiplus_objects.h"
#include "tests/support/canvas.h"
#include "tests/support/resources.h"
#include "tests/support/temp_dir.h"

#include <vector>

namespace {

using Argb = Gdiplus::ARGB;
using Pixels = std::vector<Argb>;

const int started = gdiPlusInit();

struct FreeImage {
    using type = BvUtilImage;
    static type none() { return nullptr; }
    static void close(type image) noexcept { gdiPlusFreeImage(image); }
};
using unique_image = unique_handle<FreeImage>;

Argb pixel(const unique_image& image, int x, int y) {
    Gdiplus::Color colour;
    EXPECT_EQ(image.get()->GetPixel(x, y, &colour), Gdiplus::Ok);
    return colour.GetValue();
}

// All pixels, row by row from the top.
Pixels pixels(const unique_image& image) {
    Pixels all;
    for (UINT y = 0; y < image.get()->GetHeight(); ++y)
        for (UINT x = 0; x < image.get()->GetWidth(); ++x)
            all.push_back(pixel(image, static_cast<int>(x), static_cast<int>(y)));
    return all;
}

// A picture of 32-bit pixels, opaque.
unique_image picture(int width, int height, std::uint32_t (*paint)(int, int)) {
    std::vector<std::uint32_t> bits;
    for (int i = 0; i < width * height; ++i)
        bits.push_back(paint(i % width, i / width));
    unique_image image;
    gdiPlusGetBitmap(width, height, width * 4, 2, reinterpret_cast<const BYTE*>(bits.data()), image.put());
    return image;
}

std::uint32_t four_colours(int x, int y) {
    const std::uint32_t colours[] = {0xC00000, 0x00C000, 0x0000C0, 0xC0C000};
    return colours[(x & 1) + 2 * (y & 1)];
}

void handles_are_laid_out_as_the_wrapper_class() {
    const unique_image image = picture(3, 2, four_colours);
    EXPECT_EQ(image.get()->GetWidth(), 3u);
    EXPECT_EQ(image.get()->GetHeight(), 2u);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::Ok);
    Gdiplus::Color colour;
    EXPECT_EQ(image.get()->GetPixel(3, 0, &colour), Gdiplus::InvalidParameter);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::InvalidParameter);

    // The virtual table as the platform's compiler calls it: deleting destructor with flags, Clone.
    using Clone = ImageObject*(__thiscall*)(const void*);
    using Destroy = void*(__thiscall*)(void*, unsigned);
    ImageObject* copy = reinterpret_cast<Clone>((*reinterpret_cast<void***>(image.get()))[1])(image.get());
    ASSERT_TRUE(copy);
    EXPECT_NE(copy->native, reinterpret_cast<ImageObject*>(image.get())->native);
    reinterpret_cast<Destroy>((*reinterpret_cast<void***>(copy))[0])(copy, 1);

    // An object of the caller's own making serves as well.
    auto* own = new Gdiplus::Bitmap(2, 2);
    EXPECT_EQ(gdiPlusDrawImage(own, Canvas(4, 4).dc(), 0, 0), 1);
    EXPECT_EQ(gdiPlusFreeImage(own), 1);
}

void imports_raw_pixels() {
    using Source = std::vector<BYTE>;
    using Out = BvUtilImage*;
    const Source of_4 = {255, 255, 255, 9, 254, 255, 255, 9, 10, 20, 30, 9, 0, 0, 0, 9};
    const Source of_3 = {255, 255, 255, 254, 255, 255, 10, 20, 30, 0, 0, 0};
    const Source row = {1, 2, 3, 4, 5, 6, 7, 8, 9, 255, 255, 255};
    const Source rows = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18}; // two of eight bytes
    const Pixels keyed = {0xFF1E140A, 0xFF000000, 0xFFFFFFFF, 0xFFFFFFFE}; // white is what shows, bottom-up
    const Pixels by_3 = {0xFF030201, 0xFF060504, 0xFF0D0C0B, 0xFF100F0E};
    const Pixels by_4 = {0xFF030201, 0xFF070605, 0xFF0D0C0B, 0xFF11100F};
    const Pixels flipped = {0xFF0D0C0B, 0xFF100F0E, 0xFF030201, 0xFF060504};
    const auto rgb = PixelFormat24bppRGB, opaque = PixelFormat32bppRGB, argb = PixelFormat32bppARGB;
    const struct {
        const Source& source;
        int (*make)(BYTE* bits, Out image);
        Pixels expected;
        Gdiplus::PixelFormat format;
    } cases[] = {
        {of_4, [](BYTE* b, Out i) { return gdiPlusBitmapFromBits(b, 2, 2, 4, 4, 255, 1, i); }, keyed, argb},
        {of_3, [](BYTE* b, Out i) { return gdiPlusBitmapFromBits(b, 2, 2, 3, 4, 255, 1, i); }, keyed, argb},
        {of_4, [](BYTE* b, Out i) { return gdiPlusBitmapFromBits(b, 2, 2, 4, 4, 0, 1, i); },
         Pixels(4, 0xFFFFFFFF), argb},
        {row,
         [](BYTE* b, Out i) { return gdiPlusBitmapFromBits(b, 4, 1, 3, 3, 255, 0, i); },
         {0xFF030201, 0xFF060504, 0xFF090807, 0xFFFFFFFF},
         rgb},
        {of_4,
         [](BYTE* b, Out i) {
             const RamStruct record{b, 77, 2, 2, 4};
             return gdiPlusBitmapFromRamStruct(&record, 255, 1, i);
         },
         keyed, argb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmap24BPPRGB(2, 2, 8, 99, b, i); }, by_3, rgb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmap(2, 2, 8, 0, b, i); }, by_3, rgb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmap(2, 2, 8, 1, b, i); }, by_4, opaque},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmap(2, 2, 8, 7, b, i); }, by_4, argb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmapEx(2, 2, 8, 3, 0, 4, b, i); }, by_3, rgb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmapEx(2, 2, 8, 12, 1, 4, b, i); }, flipped, opaque},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmapEx(2, 2, 8, 8, 2, 255, b, i); }, flipped, argb},
        {rows, [](BYTE* b, Out i) { return gdiPlusGetBitmapEx(2, 2, 8, 8, 2, 0, b, i); }, Pixels(4), argb},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        Source bits = c.source;
        unique_image image;
        ASSERT_EQ(c.make(bits.data(), image.put()), 1);
        std::fill(bits.begin(), bits.end(), BYTE{0xEE}); // the image is independent
        EXPECT_EQ(pixels(image), c.expected);
        EXPECT_EQ(image.get()->GetPixelFormat(), c.format);
    }
    unique_image half;
    gdiPlusBitmapFromBits(of_4.data(), 2, 2, 4, 4, 128, 1, half.put());
    EXPECT_NEAR(static_cast<double>(pixel(half, 1, 0) & 255), 127, 1) << "a mixture of black and white";
}

TEST(GdiPlus, SavesByFormatCode) {
    TempDir dir;
    const std::string path = dir.file("picture");
    const unique_image image = picture(16, 16, [](int x, int) { return x < 8 ? 0xC00000u : 0x0000C0u; });
    const std::pair<int, std::string> cases[] = {{0, "BM"}, {1, "\xFF\xD8"}, {2, "GIF8"}, {3, "II*"},
                                                 {4, "BM"}, {5, "BM"},       {-1, "BM"}};
    for (const auto& [code, magic] : cases) {
        SCOPED_TRACE(code);
        EXPECT_EQ(gdiPlusSaveImage(image.get(), path.c_str(), code), 1);
        EXPECT_TRUE(read_file(path).starts_with(magic));
        if (code == 2) continue; // Wine writes frames of indexed images only
        unique_image read;
        ASSERT_EQ(gdiPlusGetBitmapFromFile(path.c_str(), read.put()), 1);
        EXPECT_NEAR(static_cast<double>(pixel(read, 2, 2) >> 16 & 255), 0xC0, 4);
        EXPECT_NEAR(static_cast<double>(pixel(read, 2, 2) & 255), 0, 4);
        EXPECT_TRUE(code != 0 || pixels(read) == pixels(image));
        read.reset();
        EXPECT_TRUE(DeleteFileA(path.c_str())) << "a freed image does not hold its file";
    }
    EXPECT_EQ(gdiPlusSaveImage(image.get(), dir.file("no\\such").c_str(), 1), 1);
    EXPECT_NE(image.get()->GetLastStatus(), Gdiplus::Ok);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::Ok);
}

void finds_encoders_by_the_exact_mime_type() {
    CLSID png = {1, 0, 0, {}};
    EXPECT_EQ(gdiPlusGetEncoderClsid("IMAGE/PNG", &png), 0);
    EXPECT_EQ(gdiPlusGetEncoderClsid(nullptr, &png), 0);
    EXPECT_EQ(gdiPlusGetEncoderClsid("image/png", nullptr), 0);
    EXPECT_EQ(png.Data1, 1u);
    EXPECT_EQ(gdiPlusGetEncoderClsid("image/png", &png), 1);
    const CLSID known = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0, 0, 0xF8, 0x1E, 0xF3, 0x2E}};
    EXPECT_TRUE(IsEqualGUID(png, known));
}

void takes_bitmaps_of_the_platform_and_resizes_them() {
    Canvas canvas(8, 4, [](int x, int) { return x < 4 ? 0x204060u : 0xE0C0A0u; });
    unique_image image;
    const HBITMAP bitmap = canvas.bitmap();
    ASSERT_EQ(gdiPlusGetBitmapFromHBitmap(bitmap, image.put()), 1);
    EXPECT_EQ(pixel(image, 0, 0) & 0xFFFFFF, 0x204060u);
    ASSERT_EQ(gdiPlusResizeBitmap(bitmap, 80, 20, image.put()), 1);
    EXPECT_EQ(image.get()->GetWidth(), 80u);
    EXPECT_EQ(image.get()->GetHeight(), 20u);
    EXPECT_EQ(image.get()->GetPixelFormat(), PixelFormat32bppARGB);
    EXPECT_EQ(image.get()->GetHorizontalResolution(), 600.0f);
    EXPECT_EQ(pixel(image, 20, 10) & 0xFFFFFF, 0x204060u);
    EXPECT_EQ(pixel(image, 60, 10) & 0xFFFFFF, 0xE0C0A0u);

    BITMAPINFO info{{sizeof info.bmiHeader, 1, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
    BYTE bits[] = {1, 2, 3, 0, 4, 5, 6, 0};
    ASSERT_EQ(gdiPlusGetBitmapFromBitmapInfo(&info, bits, image.put()), 1);
    EXPECT_EQ(pixels(image), (Pixels{0xFF060504, 0xFF030201}));
}

void gives_device_contexts_of_images() {
    const unique_image image = picture(4, 4, four_colours);
    BvUtilGraphics graphics = nullptr;
    ASSERT_EQ(gdiPlusGetGraphicsFromBitmap(image.get(), &graphics), 1);
    HDC dc = nullptr, second = reinterpret_cast<HDC>(1);
    ASSERT_EQ(gdiPlusGetHDCFromGraphics(graphics, &dc), 1);
    SetPixel(dc, 1, 1, RGB(1, 2, 3));
    EXPECT_EQ(gdiPlusGetHDCFromGraphics(graphics, &second), 1);
    EXPECT_EQ(second, nullptr) << "busy";
    EXPECT_EQ(graphics->GetLastStatus(), Gdiplus::ObjectBusy);
    EXPECT_EQ(gdiPlusFreeHDC(graphics, dc), 1);
    EXPECT_EQ(gdiPlusFreeGraphics(graphics), 1);
    EXPECT_EQ(pixel(image, 1, 1) & 0xFFFFFF, 0x010203u);
}

void clears_fills_and_draws() {
    const POINT corners[] = {{5, 5}, {9, 5}, {9, 9}, {5, 9}};
    const unique_image image = picture(8, 8, [](int, int y) { return y < 4 ? 0xC00000u : 0x0000C0u; });
    const float dpi = static_cast<float>(GetDeviceCaps(Canvas(1, 1).dc(), LOGPIXELSX));
    image.get()->SetResolution(dpi, dpi);
    const unique_image other = picture(4, 4, four_colours);
    other.get()->SetResolution(600, 300);
    const struct {
        std::function<int(HDC)> draw;
        std::vector<Spot> spots;
    } cases[] = {
        {[](HDC dc) { return gdiPlusClearGraphics(dc, 10, 20, 30); }, {{39, 39, 0x0A141E}}},
        {[](HDC dc) { return gdiPlusFillRect(dc, 255, 200, 100, 50, 4, 3); },
         {{3, 2, 0xC86432}, {4, 2, 0x777777}}},
        {[&](HDC dc) { return gdiPlusFillPolygon(dc, 0, 255, 1, 2, 3, corners, 4); }, {{7, 7, 0x010203}}},
        // One image pixel to one device pixel, whatever the image's resolution.
        {[&](HDC dc) { return gdiPlusDrawImage(other.get(), dc, 2.0f, 3.0f); },
         {{2, 3, 0xC00000}, {3, 3, 0x00C000}, {5, 6, 0xC0C000}, {1, 3, 0x777777}, {6, 7, 0x777777}}},
        // The others draw on white.
        {[&](HDC dc) { return gdiPlusDrawImage2(image.get(), dc, 4, 2, 20, 2, 4, 18); },
         {{12, 4, 0xC00000}, {12, 15, 0x0000C0}, {1, 10, 0xFFFFFF}}},
        // From half the height on, and a quarter of it plus that half high: the lower colour, then nothing.
        {[&](HDC dc) { return gdiPlusDrawImage3(image.get(), dc, 0, 1, 0.5f, 0); },
         {{4, 1, 0x0000C0}, {4, 6, 0x0000C0}, {12, 12, 0xFFFFFF}}},
        {[&](HDC dc) { return gdiPlusDrawTranspImage(image.get(), dc, 3, 5); },
         {{3, 5, 0xC00000}, {10, 12, 0x0000C0}, {2, 5, 0xFFFFFF}}},
        // The position is scaled too.
        {[&](HDC dc) { return gdiPlusPrintImage(image.get(), dc, 3, 5, 2.0f, 3.0f); },
         {{10, 17, 0xC00000}, {14, 33, 0x0000C0}, {4, 20, 0xFFFFFF}, {10, 13, 0xFFFFFF}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        Canvas canvas(40, 40, [](int, int) { return 0x777777u; });
        EXPECT_EQ(c.draw(canvas.dc()), 1);
        for (const Spot& spot : c.spots)
            expect_spots(canvas, {spot});
    }
    EXPECT_EQ(other.get()->GetHorizontalResolution(), dpi);
}

TEST(GdiPlus, WorksAndKeepsNothing) {
    const TempDir dir;
    const unique_image image = picture(4, 4, four_colours);
    const auto check_all = [&](int times) {
        for (int i = 0; i < times && !HasFailure(); ++i) {
            handles_are_laid_out_as_the_wrapper_class();
            imports_raw_pixels();
            finds_encoders_by_the_exact_mime_type();
            takes_bitmaps_of_the_platform_and_resizes_them();
            gives_device_contexts_of_images();
            clears_fills_and_draws();
            if (i % 8) continue;
            unique_image read;
            gdiPlusSaveImage(image.get(), dir.file("a.bmp").c_str(), i % 16 ? 1 : 0);
            gdiPlusGetBitmapFromFile(dir.file("a.bmp").c_str(), read.put());
        }
    };
    expect_nothing_kept(check_all, 1000);
}

TEST(GdiPlus, RefusesNullAndWhatCannotBeMade) {
    const unique_image image = picture(2, 2, four_colours);
    Canvas canvas(4, 4);
    const HDC target = canvas.dc();
    BYTE bits[64] = {};
    const BvUtilImage mark = reinterpret_cast<BvUtilImage>(bits);
    BvUtilImage out = mark;
    const POINT corner{};
    const RamStruct empty{}, wide{bits, 0, 1, 0x40000000, 4};
    const int results[] = {
        gdiPlusGetBitmapFromFile(nullptr, &out),
        gdiPlusGetBitmapFromFile("no such file", &out),
        gdiPlusGetBitmapFromFile("a", nullptr),
        gdiPlusGetBitmapFromHBitmap(nullptr, &out),
        gdiPlusGetBitmapFromBitmapInfo(nullptr, bits, &out),
        gdiPlusBitmapFromBits(nullptr, 1, 1, 4, 4, 0, 0, &out),
        gdiPlusBitmapFromBits(bits, 2, 0, 4, 4, 0, 1, &out),
        gdiPlusBitmapFromBits(bits, 0x7FFFFFFF, 2, 4, 4, 0, 1, &out),
        gdiPlusBitmapFromBits(bits, 3, 1, 3, 3, 0, 0, &out), // rows of nine bytes
        gdiPlusBitmapFromBits(bits, 1, 1, 4, 4, 0, 1, nullptr),
        gdiPlusBitmapFromRamStruct(nullptr, 0, 1, &out),
        gdiPlusBitmapFromRamStruct(&empty, 0, 1, &out),
        gdiPlusBitmapFromRamStruct(&wide, 0, 1, &out),
        gdiPlusGetBitmap24BPPRGB(1, 1, 4, 0, nullptr, &out),
        gdiPlusGetBitmap(1, 1, 4, 1, nullptr, &out),
        gdiPlusGetBitmapEx(1, 1, 4, 4, 2, 0, nullptr, &out),
        gdiPlusResizeBitmap(nullptr, 4, 4, &out),
        gdiPlusResizeBitmap(canvas.bitmap(), 0, 4, &out),
        gdiPlusSaveImage(nullptr, "a", 0),
        gdiPlusSaveImage(image.get(), nullptr, 0),
        gdiPlusFreeImage(nullptr),
        gdiPlusGetGraphicsFromBitmap(nullptr, nullptr),
        gdiPlusGetHDCFromGraphics(nullptr, nullptr),
        gdiPlusFreeHDC(nullptr, nullptr),
        gdiPlusFreeGraphics(nullptr),
        gdiPlusClearGraphics(nullptr, 0, 0, 0),
        gdiPlusFillPolygon(target, 0, 0, 0, 0, 0, nullptr, 1),
        gdiPlusFillPolygon(target, 0, 0, 0, 0, 0, &corner, 0),
        gdiPlusDrawImage(nullptr, target, 0, 0),
        gdiPlusDrawImage(image.get(), nullptr, 0, 0),
        gdiPlusDrawImage2(nullptr, target, 0, 0, 1, 0, 0, 1),
        gdiPlusDrawImage3(nullptr, target, 0, 1, 0, 1),
    };
    for (const int& result : results)
        EXPECT_EQ(result, 0) << &result - results;
    EXPECT_EQ(out, mark);
    EXPECT_EQ(gdiPlusLoad(), 1);
    EXPECT_EQ(started, 1);
    EXPECT_EQ(gdiPlusInit(), 1) << "once more";
}

} // namespace
