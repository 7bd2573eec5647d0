#include "bvutil/gdiplus_services.h"

#include "imaging/gdiplus_objects.h"
#include "tests/support/canvas.h"
#include "tests/support/resources.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using Argb = Gdiplus::ARGB;

class GdiPlus : public testing::Test {
  protected:
    static void SetUpTestSuite() { EXPECT_EQ(gdiPlusInit(), 1); }
};

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
std::vector<Argb> pixels(const unique_image& image) {
    std::vector<Argb> all;
    for (UINT y = 0; y < image.get()->GetHeight(); ++y)
        for (UINT x = 0; x < image.get()->GetWidth(); ++x)
            all.push_back(pixel(image, static_cast<int>(x), static_cast<int>(y)));
    return all;
}

unique_image import(int width, int height, std::vector<BYTE> bits, int source, int target, BYTE alpha,
                    int with) {
    unique_image image;
    gdiPlusBitmapFromBits(bits.data(), width, height, source, target, alpha, with, image.put());
    return image;
}

// A picture of 32-bit pixels, opaque.
unique_image picture(int width, int height, std::uint32_t (*paint)(int, int)) {
    std::vector<std::uint32_t> bits;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            bits.push_back(paint(x, y));
    unique_image image;
    EXPECT_EQ(gdiPlusGetBitmap(width, height, width * 4, 2, reinterpret_cast<const BYTE*>(bits.data()),
                               image.put()),
              1);
    return image;
}

std::uint32_t four_colours(int x, int y) {
    const std::uint32_t colours[] = {0xC00000, 0x00C000, 0x0000C0, 0xC0C000};
    return colours[(x & 1) + 2 * (y & 1)];
}

TEST_F(GdiPlus, HandlesAreLaidOutAsTheWrapperClass) {
    const unique_image image = picture(3, 2, four_colours);
    EXPECT_EQ(image.get()->GetWidth(), 3u);
    EXPECT_EQ(image.get()->GetHeight(), 2u);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::Ok);
    Gdiplus::Color colour;
    EXPECT_EQ(image.get()->GetPixel(3, 0, &colour), Gdiplus::InvalidParameter);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::InvalidParameter);

    // The virtual table as the platform's compiler calls it: deleting destructor with flags, Clone.
    auto** const table = *reinterpret_cast<void***>(image.get());
    using Clone = ImageObject*(__thiscall*)(const void*);
    using Destroy = void*(__thiscall*)(void*, unsigned);
    ImageObject* copy = reinterpret_cast<Clone>(table[1])(image.get());
    ASSERT_TRUE(copy);
    EXPECT_NE(copy->native, reinterpret_cast<ImageObject*>(image.get())->native);
    reinterpret_cast<Destroy>((*reinterpret_cast<void***>(copy))[0])(copy, 1);

    // An object of the caller's own making serves as well.
    auto* own = new Gdiplus::Bitmap(2, 2);
    Canvas canvas(4, 4);
    EXPECT_EQ(gdiPlusDrawImage(own, canvas.dc(), 0, 0), 1);
    EXPECT_EQ(gdiPlusFreeImage(own), 1);
}

TEST_F(GdiPlus, ImportsPureWhiteAsTransparentOnWhite) {
    // Bottom-up: the second row of bytes is the upper one.
    const std::vector<BYTE> bits4 = {255, 255, 255, 9, 254, 255, 255, 9, 10, 20, 30, 9, 0, 0, 0, 9};
    const std::vector<BYTE> bits3 = {255, 255, 255, 254, 255, 255, 10, 20, 30, 0, 0, 0};
    const std::vector<Argb> opaque = {0xFF1E140A, 0xFF000000, 0xFFFFFFFF, 0xFFFFFFFE};
    EXPECT_EQ(pixels(import(2, 2, bits4, 4, 4, 255, 1)), opaque);
    EXPECT_EQ(pixels(import(2, 2, bits3, 3, 4, 255, 1)), opaque);

    // With alpha 0, the target's white is what shows; half alpha gives a mixture.
    EXPECT_EQ(pixels(import(2, 2, bits4, 4, 4, 0, 1)), std::vector<Argb>(4, 0xFFFFFFFF));
    const Argb half = pixel(import(2, 2, bits4, 4, 4, 128, 1), 1, 0);
    EXPECT_NEAR(static_cast<double>(half & 255), 127, 1);
    EXPECT_EQ(half >> 24, 255u);

    // 24 bits: rows of four pixels, as the platform wants row lengths.
    std::vector<BYTE> row = {1, 2, 3, 4, 5, 6, 7, 8, 9, 255, 255, 255};
    const unique_image rgb = import(4, 1, row, 3, 3, 255, 0);
    EXPECT_EQ(pixels(rgb), (std::vector<Argb>{0xFF030201, 0xFF060504, 0xFF090807, 0xFFFFFFFF}));
    EXPECT_EQ(rgb.get()->GetPixelFormat(), PixelFormat24bppRGB);

    const RamStruct record{bits4.data(), 77, 2, 2, 4};
    unique_image image;
    EXPECT_EQ(gdiPlusBitmapFromRamStruct(&record, 255, 1, image.put()), 1);
    EXPECT_EQ(pixels(image), opaque);
    EXPECT_EQ(image.get()->GetPixelFormat(), PixelFormat32bppARGB);
}

TEST_F(GdiPlus, ImportsRowsByFormat) {
    const BYTE rows[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18}; // two rows of eight bytes
    const std::vector<Argb> of_3 = {0xFF030201, 0xFF060504, 0xFF0D0C0B, 0xFF100F0E};
    const std::vector<Argb> of_4 = {0xFF030201, 0xFF070605, 0xFF0D0C0B, 0xFF11100F};
    const std::vector<Argb> flipped = {0xFF0D0C0B, 0xFF100F0E, 0xFF030201, 0xFF060504};
    constexpr int bits_24 = -1;
    const struct {
        int format, target_stride; // of gdiPlusGetBitmapEx; 0 for the functions without one
        BYTE alpha;
        std::vector<Argb> expected;
        Gdiplus::PixelFormat pixel_format;
    } cases[] = {
        {bits_24, 0, 0, of_3, PixelFormat24bppRGB}, {0, 0, 0, of_3, PixelFormat24bppRGB},
        {1, 0, 0, of_4, PixelFormat32bppRGB},       {7, 0, 0, of_4, PixelFormat32bppARGB},
        {0, 3, 4, of_3, PixelFormat24bppRGB},       {1, 12, 4, flipped, PixelFormat32bppRGB},
        {2, 8, 255, flipped, PixelFormat32bppARGB}, {2, 8, 0, {0, 0, 0, 0}, PixelFormat32bppARGB},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "format " << c.format << ", target stride " << c.target_stride);
        std::vector<BYTE> bits(rows, rows + sizeof rows);
        unique_image image;
        const int made =
            c.target_stride
                ? gdiPlusGetBitmapEx(2, 2, 8, c.target_stride, c.format, c.alpha, bits.data(), image.put())
            : c.format == bits_24 ? gdiPlusGetBitmap24BPPRGB(2, 2, 8, 99, bits.data(), image.put())
                                  : gdiPlusGetBitmap(2, 2, 8, c.format, bits.data(), image.put());
        ASSERT_EQ(made, 1);
        std::fill(bits.begin(), bits.end(), BYTE{0xEE}); // the image is independent
        EXPECT_EQ(pixels(image), c.expected);
        EXPECT_EQ(image.get()->GetPixelFormat(), c.pixel_format);
    }
}

TEST_F(GdiPlus, SavesByFormatCode) {
    TempDir dir;
    const unique_image image = picture(16, 16, [](int x, int) { return x < 8 ? 0xC00000u : 0x0000C0u; });
    const struct {
        int code;
        std::string magic;
    } cases[] = {{0, "BM"}, {1, "\xFF\xD8"}, {2, "GIF8"}, {3, "II*"}, {4, "BM"}, {5, "BM"}, {-1, "BM"}};
    for (const auto& c : cases) {
        const std::string path = dir.file("picture");
        EXPECT_EQ(gdiPlusSaveImage(image.get(), path.c_str(), c.code), 1);
        EXPECT_EQ(read_file(path).substr(0, c.magic.size()), c.magic) << c.code;
        if (c.code == 2) continue; // Wine writes frames of indexed images only
        unique_image read;
        ASSERT_EQ(gdiPlusGetBitmapFromFile(path.c_str(), read.put()), 1) << c.code;
        const Argb left = pixel(read, 2, 2);
        EXPECT_NEAR(static_cast<double>(left >> 16 & 255), 0xC0, 4) << c.code;
        EXPECT_NEAR(static_cast<double>(left & 255), 0, 4) << c.code;
        if (c.code == 0) {
            EXPECT_EQ(pixels(read), pixels(image));
        }
        read.reset();
        // A freed image does not hold its file.
        EXPECT_TRUE(DeleteFileA(path.c_str())) << c.code;
    }
    EXPECT_EQ(gdiPlusSaveImage(image.get(), dir.file("no\\such").c_str(), 1), 1);
    EXPECT_NE(image.get()->GetLastStatus(), Gdiplus::Ok);
    EXPECT_EQ(image.get()->GetLastStatus(), Gdiplus::Ok);
}

TEST_F(GdiPlus, FindsEncodersByTheExactMimeType) {
    CLSID png = {1, 0, 0, {}}, untouched = png;
    EXPECT_EQ(gdiPlusGetEncoderClsid("IMAGE/PNG", &png), 0);
    EXPECT_TRUE(IsEqualGUID(png, untouched));
    EXPECT_EQ(gdiPlusGetEncoderClsid("image/png", &png), 1);
    const CLSID known = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0, 0, 0xF8, 0x1E, 0xF3, 0x2E}};
    EXPECT_TRUE(IsEqualGUID(png, known));
    EXPECT_EQ(gdiPlusGetEncoderClsid(nullptr, &png), 0);
    EXPECT_EQ(gdiPlusGetEncoderClsid("image/png", nullptr), 0);
}

TEST_F(GdiPlus, TakesBitmapsOfThePlatformAndResizesThem) {
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

    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 1, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    BYTE bits[] = {1, 2, 3, 0, 4, 5, 6, 0};
    ASSERT_EQ(gdiPlusGetBitmapFromBitmapInfo(&info, bits, image.put()), 1);
    EXPECT_EQ(pixels(image), (std::vector<Argb>{0xFF060504, 0xFF030201}));
}

TEST_F(GdiPlus, GivesDeviceContextsOfImages) {
    const unique_image image = picture(4, 4, four_colours);
    BvUtilGraphics graphics = nullptr;
    ASSERT_EQ(gdiPlusGetGraphicsFromBitmap(image.get(), &graphics), 1);
    HDC dc = nullptr;
    ASSERT_EQ(gdiPlusGetHDCFromGraphics(graphics, &dc), 1);
    ASSERT_TRUE(dc);
    SetPixel(dc, 1, 1, RGB(1, 2, 3));
    HDC second = dc;
    EXPECT_EQ(gdiPlusGetHDCFromGraphics(graphics, &second), 1);
    EXPECT_EQ(second, nullptr) << "busy";
    EXPECT_EQ(graphics->GetLastStatus(), Gdiplus::ObjectBusy);
    EXPECT_EQ(gdiPlusFreeHDC(graphics, dc), 1);
    EXPECT_EQ(gdiPlusFreeGraphics(graphics), 1);
    EXPECT_EQ(pixel(image, 1, 1) & 0xFFFFFF, 0x010203u);
}

TEST_F(GdiPlus, ClearsAndFills) {
    Canvas canvas(10, 10);
    EXPECT_EQ(gdiPlusClearGraphics(canvas.dc(), 10, 20, 30), 1);
    EXPECT_EQ(canvas.pixel(9, 9), 0x0A141Eu);
    EXPECT_EQ(gdiPlusFillRect(canvas.dc(), 255, 200, 100, 50, 4, 3), 1);
    expect_spots(canvas, {{3, 2, 0xC86432u}, {4, 2, 0x0A141Eu}});
    const POINT corners[] = {{5, 5}, {9, 5}, {9, 9}, {5, 9}};
    EXPECT_EQ(gdiPlusFillPolygon(canvas.dc(), 0, 255, 1, 2, 3, corners, 4), 1);
    EXPECT_EQ(canvas.pixel(7, 7), 0x010203u);
    EXPECT_EQ(gdiPlusFillPolygon(canvas.dc(), 0, 255, 1, 2, 3, corners, 0), 0);
}

TEST_F(GdiPlus, DrawsOneImagePixelToOneDevicePixel) {
    const unique_image image = picture(4, 4, four_colours);
    image.get()->SetResolution(600, 300);
    Canvas canvas(10, 10, [](int, int) { return 0x777777u; });
    EXPECT_EQ(gdiPlusDrawImage(image.get(), canvas.dc(), 2.0f, 3.0f), 1);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(canvas.pixel(2 + x, 3 + y), four_colours(x, y));
    expect_spots(canvas, {{1, 3, 0x777777u}, {6, 7, 0x777777u}});
    EXPECT_EQ(image.get()->GetHorizontalResolution(),
              static_cast<float>(GetDeviceCaps(canvas.dc(), LOGPIXELSX)));
}

TEST_F(GdiPlus, DrawsOnWhite) {
    const unique_image image = picture(8, 8, [](int, int y) { return y < 4 ? 0xC00000u : 0x0000C0u; });
    const float dpi = static_cast<float>(GetDeviceCaps(Canvas(1, 1).dc(), LOGPIXELSX));
    image.get()->SetResolution(dpi, dpi);
    const auto grey = [](int, int) { return 0x777777u; };

    Canvas points(20, 20, grey);
    EXPECT_EQ(gdiPlusDrawImage2(image.get(), points.dc(), 4, 2, 20, 2, 4, 18), 1);
    expect_spots(points, {{12, 4, 0xC00000u}, {12, 15, 0x0000C0u}, {1, 10, 0xFFFFFFu}});

    // From half the height on, and a quarter of it plus that half high: the lower colour, then nothing.
    Canvas part(20, 20, grey);
    EXPECT_EQ(gdiPlusDrawImage3(image.get(), part.dc(), 0, 1, 0.5f, 0), 1);
    expect_spots(part, {{4, 1, 0x0000C0u}, {4, 6, 0x0000C0u}, {12, 12, 0xFFFFFFu}});

    Canvas plain(20, 20, grey);
    EXPECT_EQ(gdiPlusDrawTranspImage(image.get(), plain.dc(), 3, 5), 1);
    expect_spots(plain, {{3, 5, 0xC00000u}, {10, 12, 0x0000C0u}, {2, 5, 0xFFFFFFu}});

    // The position is scaled too.
    Canvas print(40, 40, grey);
    EXPECT_EQ(gdiPlusPrintImage(image.get(), print.dc(), 3, 5, 2.0f, 3.0f), 1);
    expect_spots(print, {{10, 17, 0xC00000u}, {14, 33, 0x0000C0u}, {4, 20, 0xFFFFFFu}, {10, 13, 0xFFFFFFu}});
}

TEST_F(GdiPlus, RefusesNullAndWhatCannotBeMade) {
    const unique_image image = picture(2, 2, four_colours);
    Canvas canvas(4, 4);
    BYTE bits[64] = {};
    const BvUtilImage mark = reinterpret_cast<BvUtilImage>(bits);
    BvUtilImage out = mark;
    BvUtilGraphics graphics = nullptr;
    HDC dc = nullptr;
    const POINT corner{};
    const RamStruct empty{}, wide{bits, 0, 1, 0x40000000, 4};
    const int results[] = {gdiPlusGetBitmapFromFile(nullptr, &out),
                           gdiPlusGetBitmapFromFile("no such file", &out),
                           gdiPlusGetBitmapFromFile("a", nullptr),
                           gdiPlusGetBitmapFromHBitmap(nullptr, &out),
                           gdiPlusGetBitmapFromBitmapInfo(nullptr, bits, &out),
                           gdiPlusBitmapFromBits(nullptr, 1, 1, 4, 4, 0, 0, &out),
                           gdiPlusBitmapFromBits(bits, 2, 0, 4, 4, 0, 1, &out),
                           gdiPlusBitmapFromBits(bits, 0, 2, 4, 4, 0, 1, &out),
                           gdiPlusBitmapFromBits(bits, -2, 2, 4, 4, 0, 1, &out),
                           gdiPlusBitmapFromBits(bits, 0x7FFFFFFF, 2, 4, 4, 0, 1, &out),
                           gdiPlusBitmapFromBits(bits, 3, 1, 3, 3, 0, 0, &out), // rows of nine bytes
                           gdiPlusBitmapFromBits(bits, 1, 1, 4, 4, 0, 1, nullptr),
                           gdiPlusBitmapFromRamStruct(nullptr, 0, 1, &out),
                           gdiPlusBitmapFromRamStruct(&empty, 0, 1, &out),
                           gdiPlusBitmapFromRamStruct(&wide, 0, 1, &out),
                           gdiPlusGetBitmap24BPPRGB(1, 1, 4, 0, nullptr, &out),
                           gdiPlusGetBitmap(1, 1, 4, 1, nullptr, &out),
                           gdiPlusGetBitmap(1, 1, -4, 1, bits, &out),
                           gdiPlusGetBitmapEx(1, 1, 4, 4, 2, 0, nullptr, &out),
                           gdiPlusGetBitmapEx(1, 0, 4, 4, 2, 0, bits, &out),
                           gdiPlusResizeBitmap(nullptr, 4, 4, &out),
                           gdiPlusResizeBitmap(canvas.bitmap(), 0, 4, &out),
                           gdiPlusSaveImage(nullptr, "a", 0),
                           gdiPlusSaveImage(image.get(), nullptr, 0),
                           gdiPlusFreeImage(nullptr),
                           gdiPlusGetGraphicsFromBitmap(nullptr, &graphics),
                           gdiPlusGetHDCFromGraphics(nullptr, &dc),
                           gdiPlusFreeHDC(nullptr, nullptr),
                           gdiPlusFreeGraphics(nullptr),
                           gdiPlusClearGraphics(nullptr, 0, 0, 0),
                           gdiPlusFillRect(nullptr, 0, 0, 0, 0, 1, 1),
                           gdiPlusFillPolygon(nullptr, 0, 0, 0, 0, 0, &corner, 1),
                           gdiPlusFillPolygon(canvas.dc(), 0, 0, 0, 0, 0, nullptr, 1),
                           gdiPlusDrawImage(nullptr, canvas.dc(), 0, 0),
                           gdiPlusDrawImage(image.get(), nullptr, 0, 0),
                           gdiPlusDrawImage2(nullptr, canvas.dc(), 0, 0, 1, 0, 0, 1),
                           gdiPlusDrawImage3(nullptr, canvas.dc(), 0, 1, 0, 1),
                           gdiPlusDrawTranspImage(nullptr, canvas.dc(), 0, 0),
                           gdiPlusPrintImage(nullptr, canvas.dc(), 0, 0, 1, 1)};
    for (std::size_t i = 0; i < std::size(results); ++i)
        EXPECT_EQ(results[i], 0) << i;
    EXPECT_EQ(out, mark);
    EXPECT_EQ(gdiPlusLoad(), 1);
}

TEST_F(GdiPlus, KeepsNothing) {
    TempDir dir;
    const std::string path = dir.file("a.bmp");
    const unique_image image = picture(4, 4, four_colours);
    gdiPlusSaveImage(image.get(), path.c_str(), 0);
    const std::vector<BYTE> bits(64, 255);
    Canvas source(4, 4), canvas(8, 8);
    const POINT corners[] = {{0, 0}, {4, 0}, {0, 4}};
    const RamStruct record{bits.data(), 0, 4, 4, 4};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 4, 4, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    int round = 0;
    expect_nothing_kept([&, bitmap = source.bitmap()](int times) {
        for (int i = 0; i < times; ++i) {
            unique_image made;
            gdiPlusBitmapFromBits(bits.data(), 4, 4, 4, 4, 9, 1, made.put());
            gdiPlusBitmapFromBits(bits.data(), 3, 1, 3, 3, 9, 0, made.put());
            gdiPlusGetBitmap(4, 4, 16, 1, bits.data(), made.put());
            gdiPlusGetBitmapEx(4, 4, 12, 16, 1, 9, bits.data(), made.put());
            gdiPlusBitmapFromRamStruct(&record, 9, 1, made.put());
            gdiPlusGetBitmap24BPPRGB(4, 4, 12, 0, const_cast<BYTE*>(bits.data()), made.put());
            gdiPlusGetBitmapFromBitmapInfo(&info, const_cast<BYTE*>(bits.data()), made.put());
            gdiPlusGetBitmapFromHBitmap(bitmap, made.put());
            gdiPlusResizeBitmap(bitmap, 5, 5, made.put());
            if (++round % 20 == 0) {
                gdiPlusGetBitmapFromFile(path.c_str(), made.put());
                gdiPlusSaveImage(image.get(), path.c_str(), round % 40 ? 1 : 0);
            }
            gdiPlusClearGraphics(canvas.dc(), 1, 2, 3);
            gdiPlusFillRect(canvas.dc(), 255, 1, 2, 3, 4, 4);
            gdiPlusFillPolygon(canvas.dc(), 0, 255, 1, 2, 3, corners, 3);
            gdiPlusDrawImage(image.get(), canvas.dc(), 0, 0);
            gdiPlusDrawImage2(image.get(), canvas.dc(), 0, 0, 4, 0, 0, 4);
            gdiPlusDrawImage3(image.get(), canvas.dc(), 0, 1, 0, 1);
            gdiPlusDrawTranspImage(image.get(), canvas.dc(), 0, 0);
            gdiPlusPrintImage(image.get(), canvas.dc(), 0, 0, 1, 1);
            BvUtilGraphics graphics = nullptr;
            HDC dc = nullptr;
            gdiPlusGetGraphicsFromBitmap(image.get(), &graphics);
            gdiPlusGetHDCFromGraphics(graphics, &dc);
            gdiPlusFreeHDC(graphics, dc);
            gdiPlusFreeGraphics(graphics);
        }
    });
}

} // namespace
