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
#include "tests/support/run_program.h"

#include <cstring>

namespace {

constexpr int side = 12;

std::uint32_t pattern(int x, int y) {
    return x % 4 == 0 ? 0xFFFFFFu : static_cast<std::uint32_t>(x * 0x130509 + y * 0x010B07) & 0xFFFFFF;
}

// What is drawn, handed over and filtered, and a target to draw on whose pixels go into the transcript.
struct Pictures {
    explicit Pictures(Caller& caller) : caller(caller) {
        for (int i = 0; i < side * side; ++i)
            pixels[i] = pattern(i % side, i / side);
    }
    void note() {
        std::uint32_t drawn[4 * side * side];
        for (int i = 0; i < 4 * side * side; ++i)
            drawn[i] = target.pixel(i % (2 * side), i / (2 * side));
        caller.note_bytes(drawn, sizeof drawn);
        caller.note(GetBkColor(dc), GetTextColor(dc)); // the caller's again
    }

    Caller& caller;
    Canvas source{side, side, pattern}, target{2 * side, 2 * side};
    const HBITMAP bitmap = source.bitmap();
    const HDC dc = target.dc();
    std::uint32_t pixels[side * side];
    BYTE* const bits = reinterpret_cast<BYTE*>(pixels);
};

BvUtilBool BVUTIL_STDCALL on_progress(float fraction, void* context) {
    Caller& caller = *static_cast<Caller*>(context);
    caller.check_state_in_callback("the progress callback");
    char text[16] = "";
    AT(ConvertToUTF8)("\xFC", text);
    caller.note(fraction);
    return 1;
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
        if (record->outData) std::memset(record->outData, 0x77, 3 * side * side);
        record->progressProc(1, 3);
        AT(env_close)(AT(env_open)(1, nullptr), 0);
        caller.note(record->advanceState());
    }
    const std::uint32_t x87 = 0x0C7F, mxcsr = 0x5F80;
    asm volatile("fldcw %0\n\tldmxcsr %1" : : "m"(x87), "m"(mxcsr));
}

void use_filter(Caller& caller, const std::string& path, ps::EntryPoint behaviour) {
    const Pictures pictures(caller);
    char *category = nullptr, *name = nullptr;
    PSFilter_* filter = nullptr;
    int error = 0;
    AT(AVGetPSFilterAndInfo)(path.c_str(), &category, &name, &filter, &error);
    AT(AVFreeGotPSFilterInfo)(&category, &name);
    caller_of_plugin = &caller;
    if (filter && behaviour)
        *reinterpret_cast<ps::EntryPoint*>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleA(path.c_str()), "scripted_behaviour"))) = behaviour;
    for (const BvUtilBool repeat : {BvUtilBool{0}, BvUtilBool{1}}) {
        void* output = nullptr;
        caller.restart = [&] { AT(AVFreeGotPSFilterImage)(&output); };
        AT(AVApplyPSFilter)
        (filter, repeat, on_progress, &caller, pictures.bits, side, side, 4 * side, &output, &error);
        caller.note_bytes(output, sizeof pictures.pixels);
        AT(AVFreeGotPSFilterImage)(&output);
    }
    BvUtilBool can_do = 0;
    AT(AVPSFilterCanDoLastFilter)(filter, &can_do);
    AT(AVFreeGotPSFilter)(&filter);
}

void use_bitmap_ex(Caller& caller, Pictures& pictures, const std::string& path) {
    // The library has no function that releases the object: it comes from the heap of the runtime.
    CBitmapEx* bitmap = nullptr;
    HBITMAP made = nullptr;
    AT(bmpExInit)(&bitmap);
    const std::string image = read_file(path), copy = caller.file("copy.bmp");
    const auto* bytes = reinterpret_cast<const BYTE*>(image.data());
    AT(bmpExLoad)(bitmap, path.c_str());
    AT(bmpExSave)(bitmap, &made);
    DeleteObject(made);
    AT(bmpExLoadFromBits2)(bitmap, bytes, 1);
    AT(bmpExLoadFromBits3)
    (bitmap, reinterpret_cast<const BITMAPFILEHEADER*>(bytes),
     reinterpret_cast<const BITMAPINFOHEADER*>(bytes + 14), bytes + 54);
    AT(bmpExDraw)(bitmap, pictures.dc);
    pictures.note();
    AT(bmpExDraw2)(bitmap, pictures.dc, 1, 2, 17, 9);
    pictures.note();
    write_file(copy, "the only copy");
    caller.written_file = copy;
    AT(bmpExSaveToFile)(bitmap, copy.c_str());
    caller.written_file.clear();
    caller.note_file(copy);
    AT(bmpExLoadFromBits)(bitmap, reinterpret_cast<const BYTE*>(std::string(54, '\0').c_str())); // no pixels
    std::free(bitmap);
}

void note_and_free(Caller& caller, BvUtilImage image, int format = 0) {
    caller.written_file = caller.file("image.bmp");
    write_file(caller.written_file, "the only copy");
    AT(gdiPlusSaveImage)(image, caller.written_file.c_str(), format);
    caller.note_file(caller.written_file);
    caller.written_file.clear();
    AT(gdiPlusFreeImage)(image);
}

void make_images(Caller& caller, const Pictures& pictures) {
    BYTE* const bits = pictures.bits;
    const RamStruct record{bits, 0, side, side, 4};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, side, side, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    BvUtilImage images[9] = {}, *image = images;
    AT(gdiPlusBitmapFromBits)(bits, side, side, 4, 4, 200, 1, image++);
    AT(gdiPlusBitmapFromRamStruct)(&record, 99, 1, image++);
    AT(gdiPlusGetBitmap24BPPRGB)(side, side, 4 * side, 0, bits, image++);
    AT(gdiPlusGetBitmap)(side, side, 4 * side, 2, bits, image++);
    AT(gdiPlusGetBitmapEx)(side, side, 3 * side, 4 * side, 2, 50, bits, image++);
    AT(gdiPlusGetBitmapFromBitmapInfo)(&info, bits, image++);
    AT(gdiPlusResizeBitmap)(pictures.bitmap, 17, 9, image++);
    AT(gdiPlusGetBitmapFromFile)(caller.file("drawn.bmp").c_str(), image++);
    AT(gdiPlusGetBitmapFromHBitmap)(pictures.bitmap, image++);
    for (int i = 0; i < 9; ++i)
        note_and_free(caller, images[i], i > 4 ? i - 4 : 0);
}

void draw(Caller& caller, BvUtilImage image, Pictures& pictures) {
    const HDC dc = pictures.dc;
    const POINT corners[] = {{1, 2}, {20, 5}, {7, 19}};
    AT(gdiPlusDrawImage)(image, dc, 1.5f, 2.25f);
    pictures.note();
    AT(gdiPlusDrawImage2)(image, dc, 2, 1, 19, 4, 5, 21);
    pictures.note();
    AT(gdiPlusDrawImage3)(image, dc, 0.1f, 0.7f, 0.2f, 0.6f);
    pictures.note();
    AT(gdiPlusDrawTranspImage)(image, dc, 3, 4);
    pictures.note();
    caller.at<decltype(gdiPlusPrintImage)>("?gdiPlusPrintImage@@YAHPAVImage@Gdiplus@@PAUHDC__@@HHMM@Z")(
        reinterpret_cast<Gdiplus::Image*>(image), dc, 1, 1, 1.3f, 0.7f);
    pictures.note();
    AT(gdiPlusFillPolygon)(dc, 0, 200, 10, 20, 30, corners, 3);
    pictures.note();
    AT(gdiPlusFillRect)(dc, 99, 10, 200, 30, 9, 8);
    pictures.note();
    AT(gdiPlusClearGraphics)(dc, 1, 2, 3);
    pictures.note();
}

} // namespace

void use_filters(Caller& caller) {
    for (const std::string name : {"auto_levels", "unsharp_mask", "duotone"})
        use_filter(caller, program_path("filters\\" + name + ".8bf"), nullptr);
}

void use_own_filter(Caller& caller) {
    PluginFiles files;
    use_filter(caller, files.make(property_bytes::complete_list()), work_as_plugin);
}

void use_gdi(Caller& caller) {
    Canvas checkered(130, 70, [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFu : 0x204060u; });
    // More rectangles than one batch.
    const HRGN region = AT(BvUtil_CreateRegionFromBitmap)(checkered.bitmap(), 0x00FFFFFFu);
    std::vector<char> data(GetRegionData(region, 0, nullptr));
    GetRegionData(region, static_cast<DWORD>(data.size()), reinterpret_cast<RGNDATA*>(data.data()));
    caller.note_bytes(data.data(), data.size());
    DeleteObject(region);
    Pictures pictures(caller);
    const auto clear = [&] { PatBlt(pictures.dc, 0, 0, 2 * side, 2 * side, BLACKNESS); };
    caller.restart = clear;
    AT(BvUtil_DrawEmbossedBitmap)(pictures.dc, 2, 3, side, side, pictures.bitmap, 0, 0);
    pictures.note();
    clear();
    caller.restart = clear;
    AT(BvUtil_DrawTransparentBitmap)(pictures.dc, pictures.bitmap, 5, 6, 0x00FFFFFF);
    pictures.note();

    const std::string path = caller.file("image.bmp");
    BITMAPINFOHEADER info{sizeof info, 3, 2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    BITMAPFILEHEADER head{0x4D42, 54 + 24, 0, 0, 54};
    write_file(path, std::string(reinterpret_cast<char*>(&head), sizeof head) +
                         std::string(reinterpret_cast<char*>(&info), sizeof info) + std::string(24, '\x5A'));
    use_bitmap_ex(caller, pictures, path);

    char text[1024] = "";
    AT(ConvertFromUTF8)(("\xC3\xBC" + std::string(300, 'u')).c_str(), text);
    AT(ConvertToUTF8)(("\xFC" + std::string(300, 'u')).c_str(), text);
    int length = 7;
    AT(jpgToXML)(path.c_str(), nullptr, &length, 1);
    AT(jpgToXML)(path.c_str(), text, &length, 0);
}

void use_gdiplus(Caller& caller) {
    AT(gdiPlusInit)();
    AT(gdiPlusLoad)();
    CLSID encoder{};
    AT(gdiPlusGetEncoderClsid)("image/png", &encoder);
    caller.note_bytes(&encoder, sizeof encoder);
    {
        Pictures pictures(caller);
        BvUtilImage image = nullptr;
        AT(gdiPlusGetBitmapFromHBitmap)(pictures.bitmap, &image);
        draw(caller, image, pictures);
        BvUtilGraphics graphics = nullptr;
        HDC dc = nullptr;
        caller.restart = [&] { AT(gdiPlusFreeGraphics)(graphics); };
        AT(gdiPlusGetGraphicsFromBitmap)(image, &graphics);
        AT(gdiPlusGetHDCFromGraphics)(graphics, &dc);
        AT(gdiPlusFreeHDC)(graphics, dc);
        AT(gdiPlusFreeGraphics)(graphics);
        AT(gdiPlusSaveImage)(image, caller.file("drawn.bmp").c_str(), 0);
        AT(gdiPlusFreeImage)(image);
        make_images(caller, pictures);
    }
    AT(gdiPlusExit)();
}
