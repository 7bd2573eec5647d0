// Applies a filter plug-in to all BMP pictures of a folder:  batch_filter FILTER.8bf FOLDER OUTPUT-FOLDER
#include <bvutil/filter_host.h>
#include <bvutil/gdiplus_services.h>
#include <bvutil/strings.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include <objidl.h>

using std::max, std::min; // which the next header uses
#include <gdiplus.h>

struct Position {
    std::string name;
    int number, of;
};

// Shows how far the whole batch has got, on one line of the console.
static BvUtilBool BVUTIL_STDCALL on_progress(float fraction, void* context) {
    const auto& at = *static_cast<const Position*>(context);
    const float done = (static_cast<float>(at.number) + fraction) / static_cast<float>(at.of);
    std::fprintf(stderr, "\r%3.0f %%  %-40s", 100 * done, at.name.c_str());
    return 1; // 0 would stop the filter
}

// The handle is a Gdiplus::Bitmap, so its pixels can be read where they are.
static int apply(PSFilter_* filter, BvUtilImage image, Position& at, const std::string& to) {
    const Gdiplus::Rect all(0, 0, static_cast<int>(image->GetWidth()), static_cast<int>(image->GetHeight()));
    Gdiplus::BitmapData pixels;
    if (image->LockBits(&all, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &pixels) != Gdiplus::Ok)
        return -1;
    void* result = nullptr;
    int code = -1;
    // From the second picture on with the settings of the first: the plug-in asks once.
    if (AVApplyPSFilter(filter, at.number > 0, on_progress, &at, pixels.Scan0, all.Width, all.Height,
                        pixels.Stride, &result, &code)) {
        BvUtilImage filtered;
        if (code == 0 && gdiPlusGetBitmap(all.Width, all.Height, pixels.Stride, 1,
                                          static_cast<const BYTE*>(result), &filtered)) {
            gdiPlusSaveImage(filtered, to.c_str(), 0);
            if (filtered->GetLastStatus() != Gdiplus::Ok) code = -1;
            gdiPlusFreeImage(filtered);
        }
    }
    AVFreeGotPSFilterImage(&result);
    image->UnlockBits(&pixels);
    return code;
}

int main(int argc, char** argv) {
    char *category, *name;
    PSFilter_* filter;
    if (argc != 4) return 64;
    if (!AVGetPSFilterAndInfo(argv[1], &category, &name, &filter, nullptr)) return 3;
    std::printf("%s: %s\n", category, name);
    AVFreeGotPSFilterInfo(&category, &name);

    gdiPlusInit();
    BvUtilEntry* entries;
    int count = 0, failed = 0;
    BvUtil_Listdir(argv[2], "*.bmp", 0, &entries, &count);
    for (int i = 0; i < count; ++i) {
        Position at{entries[i].name, i, count};
        BvUtilImage image;
        int code = -1;
        if (gdiPlusGetBitmapFromFile((argv[2] + ("\\" + at.name)).c_str(), &image)) {
            code = apply(filter, image, at, argv[3] + ("\\" + at.name));
            gdiPlusFreeImage(image);
        }
        if (code != 0) std::fprintf(stderr, "\n%s: not filtered (%d)\n", at.name.c_str(), code);
        failed += code != 0;
    }
    BvUtil_FreeEntries(&entries);
    AVFreeGotPSFilter(&filter);
    gdiPlusExit();
    std::fputc('\n', stderr);
    std::printf("%d of %d pictures filtered\n", count - failed, count);
    return failed == 0 ? 0 : 4;
}
