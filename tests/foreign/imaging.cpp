#include "bvutil/bitmap_ex.h"
#include "bvutil/env.h"
#include "bvutil/filter_host.h"
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/numeric.h"
#include "bvutil/text_exchange.h"
#include "tests/filterhost/plugin_files.h"
#include "tests/foreign/families.h"
#include "tests/support/canvas.h"
#include "tests/support/temp_dir.h"

#include <filesystem>

namespace {

constexpr int side = 12;

std::uint32_t pattern(int x, int y) {
    return x % 4 == 0 ? 0xFFFFFFu : static_cast<std::uint32_t>(x * 0x130509 + y * 0x010B07) & 0xFFFFFF;
}

// A target to draw on, whose pixels go into the transcript after each drawing.
class Target : public Canvas {
  public:
    explicit Target(Caller& caller) : Canvas(2 * side, 2 * side), m_caller(caller) {}
    void note() {
        std::uint32_t pixels[4 * side * side];
        for (int i = 0; i < 4 * side * side; ++i)
            pixels[i] = pixel(i % (2 * side), i / (2 * side));
        m_caller.note_bytes(pixels, sizeof pixels);
    }

  private:
    Caller& m_caller;
};

void use_bitmap_ex(Caller& caller, HBITMAP made, Target& target, const std::string& path) {
    // bmpEx objects have no release: one of this module's own making serves every time.
    CBitmapEx* bitmap = nullptr;
    AT(bmpExInit)(&bitmap);
    AT(bmpExLoad)(bitmap, path.c_str());
    const std::string image = read_file(path);
    const auto* bytes = reinterpret_cast<const BYTE*>(image.data());
    AT(bmpExLoadFromBits2)(bitmap, bytes, 1);
    AT(bmpExLoadFromBits3)
    (bitmap, reinterpret_cast<const BITMAPFILEHEADER*>(bytes),
     reinterpret_cast<const BITMAPINFOHEADER*>(bytes + 14), bytes + 54);
    AT(bmpExLoadFromBits)(bitmap, bytes);
    AT(bmpExDraw)(bitmap, target.dc());
    target.note();
    AT(bmpExDraw2)(bitmap, target.dc(), 1, 2, 17, 9);
    target.note();
    AT(bmpExSave)(bitmap, &made);
    DeleteObject(made);
    const std::string copy = caller.file("copy.bmp");
    AT(bmpExSaveToFile)(bitmap, copy.c_str());
    caller.note_file(copy);
}

BvUtilBool BVUTIL_STDCALL on_progress(float fraction, void* context) {
    Caller& caller = *static_cast<Caller*>(context);
    caller.check_state_in_callback("the progress callback");
    char text[16] = "";
    AT(ConvertToUTF8)("\xFC", text);
    caller.note(fraction, text);
    return 1;
}

void apply_filter(Caller& caller, PSFilter_* filter) {
    std::uint32_t image[side * side];
    for (int i = 0; i < side * side; ++i)
        image[i] = pattern(i % side, i / side);
    void* output = nullptr;
    int error = 0;
    AT(AVApplyPSFilter)(filter, 0, on_progress, &caller, image, side, side, 4 * side, &output, &error);
    caller.note_bytes(output, sizeof image);
    AT(AVFreeGotPSFilterImage)(&output);
    BvUtilBool can_do = 0;
    AT(AVPSFilterCanDoLastFilter)(filter, &can_do);
    caller.note(can_do);
    AT(AVFreeGotPSFilter)(&filter);
}

PSFilter_* open_filter(Caller& caller, const std::string& path) {
    char *category = nullptr, *name = nullptr;
    PSFilter_* filter = nullptr;
    int error = 0;
    AT(AVGetPSFilterAndInfo)(path.c_str(), &category, &name, &filter, &error);
    caller.note(category, name, error);
    AT(AVFreeGotPSFilterInfo)(&category, &name);
    return filter;
}

// A plug-in that calls the library while it works, and forgets what it set.
Caller* caller_of_plugin = nullptr;

void PS_CALL work_as_plugin(std::int16_t selector, ps::FilterRecord* record, std::int32_t*,
                            std::int16_t* result) {
    Caller& caller = *caller_of_plugin;
    caller.check_state("the plug-in", 0x027F, 0x1F80);
    *result = ps::result_ok;
    caller.note(selector);
    AT(BvUtil_PRound)(1 / 3.0, -selector);
    const ps::Rect whole{0, 0, side, side};
    record->inRect = record->outRect = selector == ps::selector_start ? whole : ps::Rect{};
    record->inHiPlane = record->outHiPlane = 2;
    if (selector == ps::selector_continue) {
        std::memset(record->outData, 0x77, 3 * side * side);
        record->progressProc(1, 3);
        AT(env_close)(AT(env_open)(1, nullptr), 0);
        caller.note(record->advanceState());
    }
    const std::uint32_t x87 = 0x0C7F, mxcsr = 0x5F80;
    asm volatile("fldcw %0\n\tldmxcsr %1" : : "m"(x87), "m"(mxcsr));
}

void use_own_plugin(Caller& caller) {
    PluginFiles files;
    const std::string path = files.make(property_bytes::complete_list());
    PSFilter_* const filter = open_filter(caller, path);
    caller_of_plugin = &caller;
    *reinterpret_cast<ps::EntryPoint*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA(path.c_str()), "scripted_behaviour"))) = work_as_plugin;
    apply_filter(caller, filter);
}

void note_and_free(Caller& caller, BvUtilImage& image) {
    const std::string path = caller.file("image.bmp");
    AT(gdiPlusSaveImage)(image, path.c_str(), 0);
    caller.note_file(path);
    AT(gdiPlusFreeImage)(image);
    image = nullptr;
}

void import_pixels(Caller& caller, const BYTE* bits, HBITMAP bitmap) {
    BvUtilImage image = nullptr;
    const RamStruct record{bits, 0, side, side, 4};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, side, side, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    AT(gdiPlusBitmapFromBits)(bits, side, side, 4, 4, BYTE{200}, 1, &image);
    note_and_free(caller, image);
    AT(gdiPlusBitmapFromRamStruct)(&record, BYTE{99}, 1, &image);
    note_and_free(caller, image);
    AT(gdiPlusGetBitmap24BPPRGB)(side, side, 4 * side, 0, const_cast<BYTE*>(bits), &image);
    note_and_free(caller, image);
    AT(gdiPlusGetBitmap)(side, side, 4 * side, 2, bits, &image);
    note_and_free(caller, image);
    AT(gdiPlusGetBitmapEx)(side, side, 3 * side, 4 * side, 2, BYTE{50}, bits, &image);
    note_and_free(caller, image);
    AT(gdiPlusGetBitmapFromBitmapInfo)(&info, const_cast<BYTE*>(bits), &image);
    note_and_free(caller, image);
    AT(gdiPlusResizeBitmap)(bitmap, 17, 9, &image);
    note_and_free(caller, image);
}

void draw(Caller& caller, BvUtilImage image, Target& target) {
    const HDC dc = target.dc();
    const POINT corners[] = {{1, 2}, {20, 5}, {7, 19}};
    AT(gdiPlusDrawImage)(image, dc, 1.5f, 2.25f);
    target.note();
    AT(gdiPlusDrawImage2)(image, dc, 2, 1, 19, 4, 5, 21);
    target.note();
    AT(gdiPlusDrawImage3)(image, dc, 0.1f, 0.7f, 0.2f, 0.6f);
    target.note();
    AT(gdiPlusDrawTranspImage)(image, dc, 3, 4);
    target.note();
    caller.at<decltype(gdiPlusPrintImage)>("?gdiPlusPrintImage@@YAHPAVImage@Gdiplus@@PAUHDC__@@HHMM@Z")(
        reinterpret_cast<Gdiplus::Image*>(image), dc, 1, 1, 1.3f, 0.7f);
    target.note();
    AT(gdiPlusFillPolygon)(dc, 0, BYTE{200}, BYTE{10}, BYTE{20}, BYTE{30}, corners, 3);
    target.note();
    AT(gdiPlusFillRect)(dc, BYTE{99}, BYTE{10}, BYTE{200}, BYTE{30}, 9, 8);
    target.note();
    AT(gdiPlusClearGraphics)(dc, BYTE{1}, BYTE{2}, BYTE{3});
    target.note();
}

} // namespace

std::string filter_path(const char* name) {
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    return (std::filesystem::path(self).parent_path().parent_path() / "filters" / name).string();
}

void use_filters(Caller& caller) {
    for (const char* name : {"auto_levels.8bf", "unsharp_mask.8bf", "duotone.8bf"})
        apply_filter(caller, open_filter(caller, filter_path(name)));
    use_own_plugin(caller);
}

void use_gdi(Caller& caller) {
    Canvas source(side, side, pattern);
    Target target(caller);
    HBITMAP bitmap = source.bitmap();
    const HRGN region = AT(BvUtil_CreateRegionFromBitmap)(bitmap, 0x00FFFFFFu);
    std::uint32_t data[1024] = {};
    GetRegionData(region, sizeof data, reinterpret_cast<RGNDATA*>(data));
    caller.note_bytes(data, sizeof data);
    DeleteObject(region);
    AT(BvUtil_DrawEmbossedBitmap)(target.dc(), 2, 3, side, side, bitmap, 0, 0);
    target.note();
    AT(BvUtil_DrawTransparentBitmap)(target.dc(), bitmap, 5, 6, 0x00FFFFFF);
    target.note();

    const std::string path = caller.file("image.bmp");
    BITMAPINFOHEADER info{sizeof info, 3, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    BITMAPFILEHEADER head{0x4D42, 54 + 24, 0, 0, 54};
    write_file(path, std::string(reinterpret_cast<char*>(&head), sizeof head) +
                         std::string(reinterpret_cast<char*>(&info), sizeof info) + std::string(24, '\x5A'));
    use_bitmap_ex(caller, nullptr, target, path);

    char text[128] = "";
    AT(ConvertFromUTF8)("\xC3\xBC", text);
    caller.note(text);
    AT(ConvertToUTF8)("\xFC", text);
    caller.note(text);
    int length = 0;
    AT(jpgToXML)(path.c_str(), nullptr, &length, 1);
    AT(jpgToXML)(path.c_str(), text, &length, 0);
    caller.note(length, text);
}

void use_gdiplus(Caller& caller) {
    AT(gdiPlusInit)();
    AT(gdiPlusLoad)();
    CLSID encoder{};
    AT(gdiPlusGetEncoderClsid)("image/png", &encoder);
    caller.note_bytes(&encoder, sizeof encoder);
    {
        Canvas source(side, side, pattern);
        Target target(caller);
        std::uint32_t bits[side * side];
        for (int i = 0; i < side * side; ++i)
            bits[i] = pattern(i % side, i / side);
        const HBITMAP bitmap = source.bitmap();
        import_pixels(caller, reinterpret_cast<const BYTE*>(bits), bitmap);
        BvUtilImage image = nullptr;
        AT(gdiPlusGetBitmapFromHBitmap)(bitmap, &image);
        draw(caller, image, target);
        BvUtilGraphics graphics = nullptr;
        HDC dc = nullptr;
        AT(gdiPlusGetGraphicsFromBitmap)(image, &graphics);
        AT(gdiPlusGetHDCFromGraphics)(graphics, &dc);
        AT(gdiPlusFreeHDC)(graphics, dc);
        AT(gdiPlusFreeGraphics)(graphics);
        for (const int format : {1, 2, 3, 4}) {
            const std::string path = caller.file("saved" + std::to_string(format));
            AT(gdiPlusSaveImage)(image, path.c_str(), format);
            caller.note_file(path);
        }
        AT(gdiPlusFreeImage)(image);
        AT(gdiPlusGetBitmapFromFile)(caller.file("saved1").c_str(), &image);
        note_and_free(caller, image);
    }
    AT(gdiPlusExit)();
}
