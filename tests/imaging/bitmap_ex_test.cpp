#include "bvutil/bitmap_ex.h"

#include "tests/imaging/bmp_bytes.h"
#include "tests/support/canvas.h"
#include "tests/support/resources.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using Pixels = std::vector<std::uint32_t>; // with the fourth byte, top row first

CBitmapEx* make() {
    CBitmapEx* bitmap = nullptr;
    EXPECT_EQ(bmpExInit(&bitmap), 1);
    return bitmap;
}

const BYTE* bytes_of(const std::string& text) {
    return reinterpret_cast<const BYTE*>(text.data());
}

// What the object holds, by way of a device bitmap; empty when it holds nothing.
Pixels held(CBitmapEx* bitmap) {
    HBITMAP handle = nullptr;
    EXPECT_EQ(bmpExSave(bitmap, &handle), 1);
    const unique_bitmap owner(handle);
    BITMAP size{};
    if (!handle || !GetObjectA(handle, sizeof size, &size)) return {};
    EXPECT_EQ(size.bmBitsPixel, 32);
    Pixels pixels(static_cast<std::size_t>(size.bmWidth * size.bmHeight));
    GetBitmapBits(handle, static_cast<LONG>(pixels.size() * 4), pixels.data());
    return pixels;
}

const std::string pad2(2, '\x7E'), pad1(1, '\x7E');

TEST(BitmapEx, ConvertsEachFormatTo32Bits) {
    std::string palette(256 * 4, '\0');
    for (std::size_t i = 0; i < 256; ++i) {
        palette[i * 4] = static_cast<char>(i);
        palette[i * 4 + 1] = static_cast<char>(255 - i);
        palette[i * 4 + 2] = static_cast<char>(i ^ 0x55);
        palette[i * 4 + 3] = '\x99';
    }
    const std::string few_colours("\x01\x02\x03\x04\x05\x06\x07\x08", 8);
    const struct {
        const char* name;
        BmpFields fields;
        std::string rest;
        Pixels expected;
    } cases[] = {
        {"8 bits",
         {2, 2, 8},
         palette + std::string("\x00\xFF\x7E\x7E\x10\x20\x7E\x7E", 8),
         {0x45EF10, 0x75DF20, 0x55FF00, 0xAA00FF}},
        {"8 bits, two colours",
         {2, 1, 8, 2},
         few_colours + std::string("\x01\x00\x7E\x7E", 4),
         {0x070605, 0x030201}},
        {"16 bits", {1, 2, 16}, "\xFF\xFF" + pad2 + "\x41\x8C" + pad2, {0x030201, 0x1F1F1F}},
        {"24 bits", {2, 1, 24}, "\x01\x02\x03\x04\x05\x06" + pad2, {0x030201, 0x060504}},
        {"32 bits", {1, 2, 32}, "\x01\x02\x03\x04\x05\x06\x07\x08", {0x08070605, 0x04030201}},
        {"an odd format", {2, 1, 40}, counting(12), {0, 0}},
    };
    TempDir dir;
    for (const auto& c : cases) {
        const std::string file = bmp_file(c.fields, c.rest);
        write_file(dir.file("a.bmp"), file);
        CBitmapEx* bitmap = make();
        EXPECT_EQ(bmpExLoad(bitmap, dir.file("a.bmp").c_str()), 1);
        EXPECT_EQ(held(bitmap), c.expected) << c.name << " in a file";
        bitmap = make();
        EXPECT_EQ(bmpExLoadFromBits(bitmap, bytes_of(file)), 1);
        EXPECT_EQ(held(bitmap), c.expected) << c.name << " in memory";
        bitmap = make();
        BITMAPFILEHEADER file_part;
        BITMAPINFOHEADER info_part;
        memcpy(&file_part, file.data(), 14);
        memcpy(&info_part, file.data() + 14, 40);
        EXPECT_EQ(bmpExLoadFromBits3(bitmap, &file_part, &info_part, bytes_of(c.rest)), 1);
        EXPECT_EQ(held(bitmap), c.expected) << c.name << " in parts";
    }
}

TEST(BitmapEx, TakesPixelsFromBehindThePaletteHeld) {
    const std::string gap(256 * 4, '\x33');
    const std::string eight_bits = bmp_file({1, 1, 8}, std::string(256 * 4, '\x22') + std::string(4, '\0'));
    const std::string pixel = "\x01\x02\x03" + pad1;
    const Pixels expected = {0x030201};

    CBitmapEx* bitmap = make();
    bmpExLoadFromBits(bitmap, bytes_of(eight_bits));
    ASSERT_EQ(held(bitmap), Pixels{0x222222});
    bmpExLoadFromBits2(bitmap, bytes_of(bmp_file({1, 1, 24}, gap + pixel)), 7);
    EXPECT_EQ(held(bitmap), expected) << "with a file header";
    bmpExLoadFromBits2(bitmap, bytes_of(info_header({1, 1, 24}) + gap + pixel), 0);
    EXPECT_EQ(held(bitmap), expected) << "without";
    TempDir dir;
    write_file(dir.file("a.bmp"), bmp_file({1, 1, 24}, pixel));
    bmpExLoad(bitmap, dir.file("a.bmp").c_str());
    EXPECT_EQ(held(bitmap), expected) << "a file's pixels follow its headers all the same";
}

TEST(BitmapEx, ReadsABareImagesPaletteFromByte54) {
    // Pixels from byte 40 + 4 * 6 = 64 on, palette entries from byte 54: entry 2 lies at 62.
    std::string image =
        info_header({2, 1, 8, 6}) + std::string(24, '\0') + std::string("\x02\x00\x31\x32", 4);
    image.replace(54, 4, "\x41\x42\x43\x44");
    image.replace(62, 2, "\x51\x52");
    image += std::string(16, '\x61');
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits2(bitmap, bytes_of(image), 0);
    EXPECT_EQ(held(bitmap), (Pixels{0x025251, 0x434241}));
}

TEST(BitmapEx, WritesEveryByteOfA24BitFile) {
    TempDir dir;
    const std::string path = dir.file("out.bmp");
    CBitmapEx* bitmap = make();
    const std::string rows = counting(3 * 2 * 4);
    bmpExLoadFromBits(bitmap, bytes_of(bmp_file({3, 2, 32, 9, 0}, rows)));
    const Pixels before = held(bitmap);
    EXPECT_EQ(bmpExSaveToFile(bitmap, path.c_str()), 1);

    std::string expected = "BM";
    put(expected, 54 + 24, 4);
    put(expected, 0x00010002, 4);
    put(expected, 54, 4);
    expected += info_header({3, 2, 24, 9, 0});
    for (std::size_t y = 0; y < 2; ++y) {
        for (std::size_t x = 0; x < 3; ++x)
            expected += rows.substr((y * 3 + x) * 4, 3);
        expected += std::string(3, '\0');
    }
    EXPECT_EQ(read_file(path), expected);

    Pixels after = before;
    for (std::uint32_t& pixel : after)
        pixel &= 0xFFFFFF;
    EXPECT_NE(before, after);
    EXPECT_EQ(held(bitmap), after);
    EXPECT_EQ(bmpExSaveToFile(bitmap, dir.file("no\\such.bmp").c_str()), 1);
    EXPECT_EQ(held(bitmap), after);
    EXPECT_EQ(bmpExLoad(bitmap, path.c_str()), 1);
    EXPECT_EQ(held(bitmap), after);
}

TEST(BitmapEx, KeepsTheFileHeaderThroughABareImage) {
    TempDir dir;
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits2(bitmap, bytes_of(info_header({1, 1, 24}) + "\x01\x02\x03" + pad1), 0);
    bmpExSaveToFile(bitmap, dir.file("a.bmp").c_str());
    std::string header(2, '\0');
    put(header, 58, 4);
    put(header, 0, 4);
    put(header, 54, 4);
    EXPECT_EQ(read_file(dir.file("a.bmp")).substr(0, 14), header) << "cleared in a fresh object";
}

TEST(BitmapEx, WithoutPixelsDrawsNothingAndWritesHeaders) {
    TempDir dir;
    Canvas target(4, 4, [](int, int) { return 0x123456u; });
    const std::string good = bmp_file({2, 2, 32}, counting(16));
    for (const BmpFields& f :
         {BmpFields{2, 2, 4}, BmpFields{2, 2, 1}, BmpFields{2, -2, 32}, BmpFields{2, 0, 24},
          BmpFields{-2, 2, 24}, BmpFields{0, 2, 8}, BmpFields{0x7FFFFFFF, 0x7FFFFFFF, 32},
          BmpFields{0x10000, 0x10000, 8}, BmpFields{0x40000001, 4, 32}}) {
        CBitmapEx* bitmap = make();
        bmpExLoadFromBits(bitmap, bytes_of(good));
        bmpExLoadFromBits(bitmap, bytes_of(bmp_file(f, counting(4096))));
        EXPECT_TRUE(held(bitmap).empty()) << f.width << " x " << f.height << ", " << f.bits;
        EXPECT_EQ(bmpExDraw(bitmap, target.dc()), 1);
        EXPECT_EQ(bmpExDraw2(bitmap, target.dc(), 0, 0, 4, 4), 1);
        EXPECT_EQ(target.pixel(0, 0), 0x123456u);
        EXPECT_EQ(bmpExSaveToFile(bitmap, dir.file("a.bmp").c_str()), 1);
        EXPECT_EQ(read_file(dir.file("a.bmp")).size(), 54u);
    }
}

TEST(BitmapEx, KeepsTheImageWhenThereIsNothingToLoad) {
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits(bitmap, bytes_of(bmp_file({1, 1, 32}, "\x01\x02\x03\x04")));
    BITMAPFILEHEADER file{};
    EXPECT_EQ(bmpExLoad(bitmap, "c:\\no\\such\\file.bmp"), 1);
    EXPECT_EQ(bmpExLoad(bitmap, nullptr), 1);
    EXPECT_EQ(bmpExLoadFromBits(bitmap, nullptr), 1);
    EXPECT_EQ(bmpExLoadFromBits2(bitmap, nullptr, 0), 1);
    EXPECT_EQ(bmpExLoadFromBits3(bitmap, &file, nullptr, nullptr), 1);
    EXPECT_EQ(bmpExSave(bitmap, nullptr), 1);
    EXPECT_EQ(bmpExSaveToFile(bitmap, nullptr), 1);
    EXPECT_EQ(held(bitmap), Pixels{0x04030201});
    HBITMAP other = reinterpret_cast<HBITMAP>(5);
    bmpExSave(bitmap, &other);
    EXPECT_EQ(other, reinterpret_cast<HBITMAP>(5));

    EXPECT_EQ(bmpExInit(nullptr), 0);
    EXPECT_EQ(bmpExLoad(nullptr, "a"), 0);
    EXPECT_EQ(bmpExLoadFromBits(nullptr, nullptr), 0);
    EXPECT_EQ(bmpExLoadFromBits2(nullptr, nullptr, 0), 0);
    EXPECT_EQ(bmpExLoadFromBits3(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(bmpExDraw(nullptr, nullptr), 0);
    EXPECT_EQ(bmpExDraw2(nullptr, nullptr, 0, 0, 1, 1), 0);
    EXPECT_EQ(bmpExSave(nullptr, nullptr), 0);
    EXPECT_EQ(bmpExSaveToFile(nullptr, nullptr), 0);
}

TEST(BitmapEx, StopsWhereMemoryEnds) {
    // Two rows of 1000 pixels, of which one and a half lie before the end of what can be read.
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    auto* pages =
        static_cast<char*>(VirtualAlloc(nullptr, 4 * system.dwPageSize, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages, 2 * system.dwPageSize, MEM_COMMIT, PAGE_READWRITE);
    char* front = pages + 2 * system.dwPageSize - 54 - 4500;
    memcpy(front, bmp_file({1000, 2, 24}, std::string(4500, '\x01')).data(), 4554);
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(front));
    const Pixels pixels = held(bitmap);
    ASSERT_EQ(pixels.size(), 2000u);
    EXPECT_EQ(pixels[1999], 0x010101u);
    EXPECT_EQ(pixels[499], 0x010101u);
    EXPECT_EQ(pixels[500], 0u);
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(pages + 2 * system.dwPageSize - 20));
    EXPECT_TRUE(held(bitmap).empty());
    VirtualFree(pages, 0, MEM_RELEASE);
}

TEST(BitmapEx, DrawsAtItsOwnSizeAndStretched) {
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits(bitmap, bytes_of(bmp_file({2, 2, 24}, "\x01\x01\x01\x02\x02\x02" + pad2 +
                                                                "\x03\x03\x03\x04\x04\x04" + pad2)));
    Canvas target(6, 6, [](int, int) { return 0x999999u; });
    EXPECT_EQ(bmpExDraw(bitmap, target.dc()), 1);
    expect_spots(
        target,
        {{0, 0, 0x030303u}, {1, 0, 0x040404u}, {0, 1, 0x010101u}, {1, 1, 0x020202u}, {2, 2, 0x999999u}});
    EXPECT_EQ(bmpExDraw2(bitmap, target.dc(), 2, 2, 4, 4), 1);
    expect_spots(target, {{2, 2, 0x030303u}, {5, 3, 0x040404u}, {3, 5, 0x010101u}, {4, 4, 0x020202u}});
}

TEST(BitmapEx, DrawsWhateverSizeTheHeaderClaims) {
    for (const std::uint32_t size : {40u, 124u, 125u, 0x10000u, 0xFFFFFFFFu}) {
        CBitmapEx* bitmap = make();
        bmpExLoadFromBits(bitmap, bytes_of(bmp_file({1, 1, 24, 0, 0, size}, "\x01\x02\x03" + pad1)));
        Canvas target(2, 1);
        bmpExDraw(bitmap, target.dc());
        bmpExDraw2(bitmap, target.dc(), 1, 0, 1, 1);
        EXPECT_EQ(target.pixel(0, 0), 0x030201u) << size;
        EXPECT_EQ(target.pixel(1, 0), 0x030201u) << size;
        const HDC recording = CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr);
        bmpExDraw(bitmap, recording);
        DeleteEnhMetaFile(CloseEnhMetaFile(recording));
    }
}

TEST(BitmapEx, SurvivesHostileFiles) {
    TempDir dir;
    Canvas target(8, 8);
    CBitmapEx* bitmap = make();
    for (const std::string& bytes : hostile_files()) {
        write_file(dir.file("a.bmp"), bytes);
        bmpExLoad(bitmap, dir.file("a.bmp").c_str());
        bmpExDraw(bitmap, target.dc());
        bmpExDraw2(bitmap, target.dc(), 0, 0, 8, 8);
        bmpExSaveToFile(bitmap, dir.file("b.bmp").c_str());
        const std::size_t pixels = held(bitmap).size();
        EXPECT_TRUE(pixels == 0 || pixels == 9);
    }
}

TEST(BitmapEx, KeepsNothing) {
    TempDir dir;
    const std::string path = dir.file("a.bmp"), image = bmp_file({5, 5, 8}, counting(256 * 4 + 40));
    write_file(path, image);
    Canvas target(8, 8);
    CBitmapEx* bitmap = make();
    int round = 0;
    expect_nothing_kept([&](int times) {
        for (int i = 0; i < times; ++i) {
            if (++round % 20 == 0) {
                bmpExLoad(bitmap, path.c_str());
                bmpExSaveToFile(bitmap, path.c_str());
                write_file(path, image);
            }
            bmpExLoadFromBits(bitmap, bytes_of(image));
            bmpExDraw(bitmap, target.dc());
            bmpExDraw2(bitmap, target.dc(), 0, 0, 8, 8);
            HBITMAP handle = nullptr;
            bmpExSave(bitmap, &handle);
            DeleteObject(handle);
        }
    });
}

} // namespace
