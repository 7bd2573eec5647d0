/* Makes thumbnails of a folder's BMP pictures, on grey where they have the key colour:
 *   thumbnails FOLDER RRGGBB SIZE OUTPUT-FOLDER */
#include <bvutil/bitmap_ex.h>
#include <bvutil/gdi_bitmaps.h>
#include <bvutil/gdiplus_services.h>
#include <bvutil/strings.h>

#include <stdio.h>
#include <stdlib.h>

/* The picture on a page of its own size. The key colour goes before the picture gets smaller: afterwards the
 * edges would be mixtures with it. */
static HBITMAP on_page(HBITMAP picture, int width, int height, COLORREF key) {
    const RECT all = {0, 0, width, height};
    const BITMAPINFO info = {{sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {{0}}};
    void* pixels;
    HDC dc = CreateCompatibleDC(NULL);
    HBITMAP page = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, NULL, 0);
    HGDIOBJ before = page ? SelectObject(dc, page) : NULL;
    if (page) {
        FillRect(dc, &all, (HBRUSH)GetStockObject(LTGRAY_BRUSH));
        BvUtil_DrawTransparentBitmap(dc, picture, 0, 0, key);
        SelectObject(dc, before);
    }
    DeleteDC(dc);
    return page;
}

static int make_thumbnail(CBitmapEx* reader, const char* from, const char* to, COLORREF key, int size) {
    BITMAP form;
    HBITMAP picture = NULL, page;
    BvUtilImage small;
    int made = 0, width, height;

    bmpExLoad(reader, from);
    bmpExSave(reader, &picture);
    if (!picture || !GetObjectA(picture, sizeof form, &form)) return 0;
    page = on_page(picture, form.bmWidth, form.bmHeight, key);
    /* The longer side gets the size. */
    width = form.bmWidth >= form.bmHeight ? size : (form.bmWidth * size + form.bmHeight - 1) / form.bmHeight;
    height = form.bmHeight > form.bmWidth ? size : (form.bmHeight * size + form.bmWidth - 1) / form.bmWidth;
    if (gdiPlusResizeBitmap(page, width, height, &small)) {
        gdiPlusSaveImage(small, to, 0); /* tells nothing of failures: the file does */
        gdiPlusFreeImage(small);
        made = GetFileAttributesA(to) != INVALID_FILE_ATTRIBUTES;
    }
    DeleteObject(page);
    DeleteObject(picture);
    if (made) printf("%s: %d x %d\n", to, width, height);
    return made;
}

int main(int argc, char** argv) {
    CBitmapEx* reader; /* one for all: bitmap objects live as long as the process */
    BvUtilEntry* entries;
    int count = 0, made = 0, i;
    unsigned long key;

    if (argc != 5) return 64;
    key = strtoul(argv[2], NULL, 16);
    gdiPlusInit();
    if (!bmpExInit(&reader)) return 4;
    BvUtil_Listdir(argv[1], "*.bmp", 0, &entries, &count);
    for (i = 0; i < count; ++i) {
        char from[2 * MAX_PATH], to[2 * MAX_PATH];
        snprintf(from, sizeof from, "%s\\%s", argv[1], entries[i].name);
        snprintf(to, sizeof to, "%s\\%s", argv[4], entries[i].name);
        DeleteFileA(to);
        made += make_thumbnail(reader, from, to, RGB(key >> 16 & 0xFF, key >> 8 & 0xFF, key & 0xFF),
                               atoi(argv[3]));
    }
    BvUtil_FreeEntries(&entries);
    gdiPlusExit();
    return made == count ? 0 : 3;
}
