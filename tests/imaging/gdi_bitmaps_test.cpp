#include "bvutil/gdi_bitmaps.h"

#include "tests/support/canvas.h"
#include "tests/support/resources.h"

#include <gtest/gtest.h>

namespace {

// The same region without batches, from single pixels' rows.
unique_region expected_region(int width, int height, std::uint32_t key, const Canvas::Paint& paint) {
    unique_region region(CreateRectRgn(0, 0, 0, 0));
    for (int y = 0; y < height; ++y) {
        unique_region row(CreateRectRgn(0, 0, 0, 0));
        for (int x = 0; x < width; ++x) {
            if ((paint(x, y) & 0xFFFFFF) == key) continue;
            const unique_region pixel(CreateRectRgn(x, y, x + 1, y + 1));
            CombineRgn(row.get(), row.get(), pixel.get(), RGN_OR);
        }
        CombineRgn(region.get(), region.get(), row.get(), RGN_OR);
    }
    return region;
}

TEST(RegionFromBitmap, HoldsExactlyThePixelsOfOtherColours) {
    const struct {
        const char* name;
        int width, height;
        std::uint32_t key;
        Canvas::Paint paint;
    } cases[] = {
        {"all transparent", 9, 5, 0x123456, [](int, int) { return 0x123456u; }},
        {"all opaque", 9, 5, 0x123456, [](int, int) { return 0x123457u; }},
        {"one pixel", 1, 1, 0, [](int, int) { return 1u; }},
        {"upper left corner only", 6, 4, 0, [](int x, int y) { return x + y ? 0u : 1u; }},
        {"lower right corner only", 7, 4, 0, [](int x, int y) { return x == 6 && y == 3 ? 1u : 0u; }},
        {"fourth byte ignored", 5, 2, 0xFF, [](int x, int) { return x % 2 ? 0xAB0000FFu : 0xFEu; }},
        {"runs of all lengths", 64, 64, 7, [](int x, int y) { return x * 7 % (y + 2) ? 7u : 0x700u; }},
        {"checkerboard of several batches", 141, 101, 0xFFFFFF,
         [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFu : 0u; }},
    };
    for (const auto& c : cases) {
        Canvas canvas(c.width, c.height, c.paint);
        const unique_region region(BvUtil_CreateRegionFromBitmap(canvas.bitmap(), 0xCC000000 | c.key));
        ASSERT_TRUE(region) << c.name;
        EXPECT_TRUE(EqualRgn(region.get(), expected_region(c.width, c.height, c.key, c.paint).get()))
            << c.name;
    }
}

TEST(RegionFromBitmap, ComparesTheKeyInTheOrderBlueGreenRed) {
    Canvas blue(4, 4, [](int, int) { return 0x0000FFu; });
    const unique_region region(BvUtil_CreateRegionFromBitmap(blue.bitmap(), RGB(255, 0, 0)));
    RECT box;
    EXPECT_EQ(GetRgnBox(region.get(), &box), NULLREGION);
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
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 12; ++x) {
            const bool shadow = y == 3 && (x == 4 || x == 6);
            const bool highlight = y == 4 && (x == 5 || x == 7);
            const bool face = x >= 3 && x < 8 && y >= 2 && y < 6;
            const std::uint32_t expected = shadow      ? system_colour(COLOR_3DSHADOW)
                                           : highlight ? system_colour(COLOR_3DHILIGHT)
                                           : face      ? system_colour(COLOR_3DFACE)
                                                       : 0x00FF00u;
            EXPECT_EQ(target.pixel(x, y), expected) << x << ", " << y;
        }
    }
}

TEST(TransparentBitmap, LeavesTheTargetWhereTheKeyIs) {
    const auto ground = [](int x, int y) { return static_cast<std::uint32_t>(x * 20 + y * 0x1100); };
    const auto picture = [](int x, int y) {
        return (x + y) % 3 ? 0xFF00FFu : 0x40A0F0u + static_cast<unsigned>(x);
    };
    Canvas bitmap(5, 4, picture);
    Canvas target(10, 10, ground);
    SetBkColor(target.dc(), RGB(1, 2, 3));
    SetTextColor(target.dc(), RGB(4, 5, 6));
    EXPECT_NE(BvUtil_DrawTransparentBitmap(target.dc(), bitmap.bitmap(), -1, 7, RGB(255, 0, 255)), 0);
    EXPECT_EQ(GetBkColor(target.dc()), RGB(1, 2, 3));
    EXPECT_EQ(GetTextColor(target.dc()), RGB(4, 5, 6));
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool inside = x < 4 && y >= 7;
            const bool opaque = inside && picture(x + 1, y - 7) != 0xFF00FF;
            EXPECT_EQ(target.pixel(x, y), opaque ? picture(x + 1, y - 7) : ground(x, y)) << x << ", " << y;
        }
    }
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
    const auto draw_all = [&, bitmap = small.bitmap(), large = of_two_batches.bitmap()](int times) {
        for (int i = 0; i < times; ++i) {
            const unique_region region(BvUtil_CreateRegionFromBitmap(i % 200 ? bitmap : large, 0));
            BvUtil_DrawEmbossedBitmap(target.dc(), 0, 0, 20, 20, bitmap, 0, 0);
            BvUtil_DrawTransparentBitmap(target.dc(), bitmap, 0, 0, 0);
        }
    };
    expect_nothing_kept(draw_all);
}

} // namespace
