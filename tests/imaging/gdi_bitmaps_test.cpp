#include "bvutil/gdi_bitmaps.h"

#include "tests/support/canvas.h"
#include "tests/support/resources.h"

namespace {

void expect_picture(const Canvas& canvas, const Canvas::Paint& expected) {
    for (int y = 0; y < canvas.height; ++y)
        for (int x = 0; x < canvas.width; ++x)
            EXPECT_EQ(canvas.pixel(x, y), expected(x, y)) << x << ", " << y;
}

TEST(RegionFromBitmap, HoldsExactlyThePixelsOfOtherColours) {
    const struct {
        const char* name;
        int width, height;
        std::uint32_t key; // the lowest byte is blue
        Canvas::Paint paint;
    } cases[] = {
        {"all transparent", 9, 5, 0x123456, [](int, int) { return 0x123456u; }},
        {"all opaque", 9, 5, 0x123456, [](int, int) { return 0x123457u; }},
        {"one pixel", 1, 1, 0, [](int, int) { return 1u; }},
        {"upper left corner only", 6, 4, 0, [](int x, int y) { return x + y ? 0u : 1u; }},
        {"lower right corner only", 7, 4, 0, [](int x, int y) { return x == 6 && y == 3 ? 1u : 0u; }},
        {"fourth byte ignored", 5, 2, 0xFF, [](int x, int) { return x % 2 ? 0xAB0000FFu : 0xFEu; }},
        {"runs of all lengths", 64, 64, 7, [](int x, int y) { return x * 7 % (y + 2) ? 7u : 0x700u; }},
        {"several batches", 141, 101, 0xFFFFFF, [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFu : 0u; }},
    };
    for (const auto& c : cases) {
        Canvas canvas(c.width, c.height, c.paint);
        const unique_region region(BvUtil_CreateRegionFromBitmap(canvas.bitmap(), 0xCC000000 | c.key));
        ASSERT_TRUE(region) << c.name;
        for (int y = -1; y <= c.height; ++y)
            for (int x = -1; x <= c.width; ++x) {
                const bool inside = x >= 0 && y >= 0 && x < c.width && y < c.height;
                ASSERT_EQ(PtInRegion(region.get(), x, y) != 0, inside && (c.paint(x, y) & 0xFFFFFF) != c.key)
                    << c.name << " at " << x << ", " << y;
            }
    }
}

std::uint32_t system_colour(int index) {
    const DWORD colour = GetSysColor(index);
    return static_cast<std::uint32_t>(RGB(GetBValue(colour), GetGValue(colour), GetRValue(colour)));
}

TEST(EmbossedBitmap, DrawsShadowOverHighlightOverFace) {
    // One dark and one half-dark pixel on light ground; the part from (1, 1) is drawn.
    Canvas glyph(6, 5, [](int x, int y) {
        return x == 2 && y == 2 ? 0x202020u : x == 4 && y == 2 ? 0x600000u : 0xE0E0E0u;
    });
    Canvas target(12, 12, [](int, int) { return 0x00FF00u; });
    const HGDIOBJ brush = GetCurrentObject(target.dc(), OBJ_BRUSH);
    EXPECT_NE(BvUtil_DrawEmbossedBitmap(target.dc(), 3, 2, 5, 4, glyph.bitmap(), 1, 1), 0);
    EXPECT_EQ(GetCurrentObject(target.dc(), OBJ_BRUSH), brush);
    expect_picture(target, [](int x, int y) {
        if (y == 3 && (x == 4 || x == 6)) return system_colour(COLOR_3DSHADOW);
        if (y == 4 && (x == 5 || x == 7)) return system_colour(COLOR_3DHILIGHT);
        return x >= 3 && x < 8 && y >= 2 && y < 6 ? system_colour(COLOR_3DFACE) : 0x00FF00u;
    });
}

TEST(TransparentBitmap, LeavesTheTargetWhereTheKeyIs) {
    const auto ground = [](int x, int y) { return static_cast<std::uint32_t>(x * 20 + y * 0x1100); };
    const auto picture = [](int x, int y) {
        return (x + y) % 3 ? 0xFF00FFu : 0x40A0F0u + static_cast<unsigned>(x);
    };
    Canvas bitmap(5, 4, picture), target(10, 10, ground);
    SetBkColor(target.dc(), RGB(1, 2, 3));
    SetTextColor(target.dc(), RGB(4, 5, 6));
    EXPECT_NE(BvUtil_DrawTransparentBitmap(target.dc(), bitmap.bitmap(), -1, 7, RGB(255, 0, 255)), 0);
    EXPECT_EQ(GetBkColor(target.dc()), RGB(1, 2, 3));
    EXPECT_EQ(GetTextColor(target.dc()), RGB(4, 5, 6));
    expect_picture(target, [&](int x, int y) {
        const bool opaque = x < 4 && y >= 7 && picture(x + 1, y - 7) != 0xFF00FF;
        return opaque ? picture(x + 1, y - 7) : ground(x, y);
    });
}

TEST(GdiBitmaps, RefuseNullAndOtherHandles) {
    Canvas canvas(2, 2);
    EXPECT_EQ(BvUtil_CreateRegionFromBitmap(nullptr, 0), nullptr);
    EXPECT_EQ(BvUtil_CreateRegionFromBitmap(static_cast<HBITMAP>(GetStockObject(WHITE_BRUSH)), 0), nullptr);
    EXPECT_EQ(BvUtil_DrawEmbossedBitmap(nullptr, 0, 0, 2, 2, canvas.bitmap(), 0, 0), 0);
    EXPECT_EQ(BvUtil_DrawEmbossedBitmap(canvas.dc(), 0, 0, 2, 2, nullptr, 0, 0), 0);
    EXPECT_EQ(BvUtil_DrawTransparentBitmap(nullptr, canvas.bitmap(), 0, 0, 0), 0);
    EXPECT_EQ(BvUtil_DrawTransparentBitmap(canvas.dc(), nullptr, 0, 0, 0), 0);
}

TEST(GdiBitmaps, KeepNothing) {
    const auto checkerboard = [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFu : 0u; };
    Canvas small(7, 5, checkerboard), of_two_batches(90, 60, checkerboard), target(20, 20);
    expect_nothing_kept([&, bitmap = small.bitmap(), large = of_two_batches.bitmap()](int times) {
        for (int i = 0; i < times; ++i) {
            const unique_region region(BvUtil_CreateRegionFromBitmap(i % 200 ? bitmap : large, 0));
            BvUtil_DrawEmbossedBitmap(target.dc(), 0, 0, 20, 20, bitmap, 0, 0);
            BvUtil_DrawTransparentBitmap(target.dc(), bitmap, 0, 0, 0);
        }
    });
}

} // namespace
