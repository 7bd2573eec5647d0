#include "bvutil/bitmap_ex.h"

#include "tests/imaging/bmp_bytes.h"
#include "tests/support/canvas.h"
#include "tests/support/resources.h"
#include "tests/support/temp_dir.h"

namespace {

using Pixels = std::vector<std::uint32_t>; // with the fourth byte, top row first

const BYTE* bytes_of(const std::string& text) {
    return reinterpret_cast<const BYTE*>(text.data());
}

// An object, with an image if one is given; there is no way to release it.
CBitmapEx* make(const std::string& file = "") {
    CBitmapEx* bitmap = nullptr;
    EXPECT_EQ(bmpExInit(&bitmap), 1);
    if (!file.empty()) bmpExLoadFromBits(bitmap, bytes_of(file));
    return bitmap;
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

const std::string pixel = "\x01\x02\x03~"; // one of 24 bits, with its row's padding

TEST(BitmapEx, ConvertsEachFormatTo32Bits) {
    const struct {
        const char* name;
        BmpFields fields;
        std::string rest;
        Pixels expected;
    } cases[] = {
        {"8 bits",
         {2, 2, 8},
         counting(256 * 4) + std::string("\0\xFF~~\x10\x20~~", 8),
         {0xCFC8C1, 0x8F8881, 0x0F0801, 0xF3ECE5}},
        {"8 bits, two colours", {2, 1, 8, 2}, counting(8) + std::string("\1\0~~", 4), {0x2B241D, 0x0F0801}},
        {"16 bits", {1, 2, 16}, "\xFF\xFF~~\x41\x8C~~", {0x030201, 0x1F1F1F}},
        {"24 bits", {2, 1, 24}, "\x01\x02\x03\x04\x05\x06~~", {0x030201, 0x060504}},
        {"32 bits", {1, 2, 32}, "\x01\x02\x03\x04\x05\x06\x07\x08", {0x08070605, 0x04030201}},
        {"an odd format", {2, 1, 40}, counting(12), {0, 0}},
    };
    TempDir dir;
    for (const auto& c : cases) {
        const std::string file = bmp_file(c.fields, c.rest);
        EXPECT_EQ(held(make(file)), c.expected) << c.name << " in memory";
        write_file(dir.file("a.bmp"), file);
        CBitmapEx* bitmap = make();
        EXPECT_EQ(bmpExLoad(bitmap, dir.file("a.bmp").c_str()), 1);
        EXPECT_EQ(held(bitmap), c.expected) << c.name << " in a file";
        bitmap = make();
        EXPECT_EQ(bmpExLoadFromBits3(bitmap, reinterpret_cast<const BITMAPFILEHEADER*>(file.data()),
                                     reinterpret_cast<const BITMAPINFOHEADER*>(file.data() + 14),
                                     bytes_of(c.rest)),
                  1);
        EXPECT_EQ(held(bitmap), c.expected) << c.name << " in parts";
    }
}

TEST(BitmapEx, TakesPixelsFromBehindThePaletteHeld) {
    const std::string gap(256 * 4, '\x33');
    CBitmapEx* bitmap = make(bmp_file({1, 1, 8}, std::string(256 * 4, '\x22') + std::string(4, '\0')));
    ASSERT_EQ(held(bitmap), Pixels{0x222222});
    bmpExLoadFromBits2(bitmap, bytes_of(bmp_file({1, 1, 24}, gap + pixel)), 7);
    EXPECT_EQ(held(bitmap), Pixels{0x030201}) << "with a file header";
    bmpExLoadFromBits2(bitmap, bytes_of(info_header({1, 1, 24}) + gap + pixel), 0);
    EXPECT_EQ(held(bitmap), Pixels{0x030201}) << "without";
    TempDir dir;
    write_file(dir.file("a.bmp"), bmp_file({1, 1, 24}, pixel));
    bmpExLoad(bitmap, dir.file("a.bmp").c_str());
    EXPECT_EQ(held(bitmap), Pixels{0x030201}) << "a file's pixels follow its headers all the same";

    // A bare image's pixels from byte 40 + 4 * 6 = 64 on, palette entries from byte 54: entry 2 lies at 62.
    const std::string bare = info_header({2, 1, 8, 6}) + std::string(14, '\0') + "ABCD" + "....QR" +
                             std::string("\x02\x00", 2) + std::string(18, 'a');
    bmpExLoadFromBits2(bitmap, bytes_of(bare), 0);
    EXPECT_EQ(held(bitmap), (Pixels{0x025251, 0x434241}));
}

TEST(BitmapEx, WritesEveryByteOfA24BitFile) {
    TempDir dir;
    const std::string path = dir.file("out.bmp"), rows = counting(3 * 2 * 4);
    CBitmapEx* bitmap = make(bmp_file({3, 2, 32, 9, 0}, rows));
    Pixels pixels = held(bitmap);
    EXPECT_EQ(pixels[5] >> 24, 0x4Eu);
    EXPECT_EQ(bmpExSaveToFile(bitmap, path.c_str()), 1);
    std::string expected =
        "BM" + packed({{54 + 24, 4}, {0x00010002, 4}, {54, 4}}) + info_header({3, 2, 24, 9, 0});
    for (std::size_t i = 0; i < 6; ++i)
        expected += rows.substr(i * 4, 3) + std::string(i % 3 == 2 ? 3 : 0, '\0');
    EXPECT_EQ(read_file(path), expected);

    for (std::uint32_t& each : pixels)
        each &= 0xFFFFFF;
    EXPECT_EQ(held(bitmap), pixels) << "the fourth bytes are gone";
    EXPECT_EQ(bmpExSaveToFile(bitmap, dir.file("no\\such.bmp").c_str()), 1);
    EXPECT_EQ(bmpExLoad(bitmap, path.c_str()), 1);
    EXPECT_EQ(held(bitmap), pixels);

    bitmap = make();
    bmpExLoadFromBits2(bitmap, bytes_of(info_header({1, 1, 24}) + pixel), 0);
    bmpExSaveToFile(bitmap, path.c_str());
    EXPECT_EQ(read_file(path).substr(0, 14), packed({{0, 2}, {58, 4}, {0, 4}, {54, 4}}))
        << "a fresh object's file header is cleared, and stays so through a bare image";
}

TEST(BitmapEx, WithoutPixelsDrawsNothingAndWritesHeaders) {
    TempDir dir;
    Canvas target(4, 4, [](int, int) { return 0x123456u; });
    for (const BmpFields& f : {BmpFields{2, 2, 4},
                               {2, 2, 1},
                               {2, -2, 32},
                               {2, 0, 24},
                               {-2, 2, 24},
                               {0, 2, 8},
                               {0x7FFFFFFF, 0x7FFFFFFF, 32},
                               {0x10000, 0x10000, 8},
                               {0x40000001, 4, 32}}) {
        SCOPED_TRACE(testing::Message() << f.width << " x " << f.height << ", " << f.bits);
        CBitmapEx* bitmap = make(bmp_file({2, 2, 32}, counting(16)));
        bmpExLoadFromBits(bitmap, bytes_of(bmp_file(f, counting(4096))));
        EXPECT_TRUE(held(bitmap).empty());
        EXPECT_EQ(bmpExDraw(bitmap, target.dc()), 1);
        EXPECT_EQ(bmpExDraw2(bitmap, target.dc(), 0, 0, 4, 4), 1);
        EXPECT_EQ(target.pixel(0, 0), 0x123456u);
        EXPECT_EQ(bmpExSaveToFile(bitmap, dir.file("a.bmp").c_str()), 1);
        EXPECT_EQ(read_file(dir.file("a.bmp")).size(), 54u);
    }
}

TEST(BitmapEx, KeepsTheImageWhenThereIsNothingToLoad) {
    CBitmapEx* bitmap = make(bmp_file({1, 1, 32}, "\x01\x02\x03\x04"));
    BITMAPFILEHEADER file{};
    HBITMAP there = reinterpret_cast<HBITMAP>(5);
    const int results[] = {bmpExLoad(bitmap, "c:\\no\\such\\file.bmp"),
                           bmpExLoad(bitmap, nullptr),
                           bmpExLoadFromBits2(bitmap, nullptr, 0),
                           bmpExLoadFromBits3(bitmap, &file, nullptr, nullptr),
                           bmpExSave(bitmap, nullptr),
                           bmpExSave(bitmap, &there),
                           bmpExSaveToFile(bitmap, nullptr)};
    for (const int result : results)
        EXPECT_EQ(result, 1);
    EXPECT_EQ(held(bitmap), Pixels{0x04030201});
    EXPECT_EQ(there, reinterpret_cast<HBITMAP>(5));
    EXPECT_EQ(bmpExLoad(nullptr, "a"), 0);
    EXPECT_EQ(bmpExInit(nullptr), 0);
}

TEST(BitmapEx, StopsWhereMemoryEnds) {
    // Two rows of 1000 pixels, of which one and a half lie before the end of what can be read.
    auto* const pages = static_cast<char*>(VirtualAlloc(nullptr, 0x4000, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(pages, 0x2000, MEM_COMMIT, PAGE_READWRITE);
    char* const end = pages + 0x2000;
    memcpy(end - 4554, bmp_file({1000, 2, 24}, std::string(4500, '\x01')).data(), 4554);
    CBitmapEx* bitmap = make();
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(end - 4554));
    Pixels expected(2000, 0x010101u);
    std::fill(expected.begin() + 500, expected.begin() + 1000, 0u);
    EXPECT_TRUE(held(bitmap) == expected);
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(end - 20));
    EXPECT_TRUE(held(bitmap).empty());
    VirtualFree(pages, 0, MEM_RELEASE);
}

// At its own size and stretched, whatever size the header claims.
TEST(BitmapEx, DrawsAtItsOwnSizeAndStretched) {
    for (const std::uint32_t size : {40u, 124u, 125u, 0x10000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(size);
        CBitmapEx* bitmap = make(bmp_file({2, 2, 24, 0, 0, size}, "\x01\x01\x01\x02\x02\x02~~"
                                                                  "\x03\x03\x03\x04\x04\x04~~"));
        Canvas target(6, 6, [](int, int) { return 0x999999u; });
        EXPECT_EQ(bmpExDraw(bitmap, target.dc()), 1);
        expect_spots(target, {{0, 0, 0x030303}, {1, 0, 0x040404}, {0, 1, 0x010101}, {1, 1, 0x020202}});
        EXPECT_EQ(target.pixel(2, 2), 0x999999u);
        EXPECT_EQ(bmpExDraw2(bitmap, target.dc(), 2, 2, 4, 4), 1);
        expect_spots(target, {{2, 2, 0x030303}, {5, 3, 0x040404}, {3, 5, 0x010101}, {4, 4, 0x020202}});
        const HDC recording = CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr);
        bmpExDraw(bitmap, recording);
        DeleteEnhMetaFile(CloseEnhMetaFile(recording));
    }
}

TEST(BitmapEx, SurvivesHostileFilesAndKeepsNothing) {
    TempDir dir;
    const std::vector<std::string> files = hostile_files();
    Canvas target(8, 8);
    CBitmapEx* bitmap = make();
    const auto use = [&](int times) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(times); ++i) {
            write_file(dir.file("a.bmp"), files[i % files.size()]);
            bmpExLoad(bitmap, dir.file("a.bmp").c_str());
            bmpExDraw(bitmap, target.dc());
            bmpExDraw2(bitmap, target.dc(), 0, 0, 8, 8);
            bmpExSaveToFile(bitmap, dir.file("b.bmp").c_str());
            const std::size_t pixels = held(bitmap).size();
            EXPECT_TRUE(pixels == 0 || pixels == 9);
        }
    };
    use(static_cast<int>(files.size()));
    expect_nothing_kept(use, 1000);
}

} // namespace
