// A program of another compiler: no runtime, 4-byte stack alignment, x87 arithmetic, its own declarations. It
// uses every family and holds what comes back against what it has to be.
#include "library.h"
#include "support.h"

namespace {

char here[260];

int read_text(void* source) {
    const char*& at = *static_cast<const char**>(source);
    return *at ? *at++ : -1;
}

void write_text(int character, void* sink) {
    char*& at = *static_cast<char**>(sink);
    *at++ = static_cast<char>(character);
}

void sum_up(Environment* sub, const char*, const char* path, void* user) {
    double value = 0;
    CHECK(env_get_double(sub, nullptr, nullptr, 1, &value) == 7);
    CHECK(path[0] == 'a');
    *static_cast<double*>(user) += value;
}

void environment() {
    Environment* const env = env_open(7, nullptr);
    const char* source = "[S]\n a ={\n h = 0.5\n h = 2.25\n }\n";
    CHECK(env_read(read_text, &source, env) == 0);
    double sum = 0;
    CHECK(env_traverse(env, "S", "a", 1, sum_up, &sum) == 0);
    CHECK(sum == 2.75);

    char text[256];
    CHECK(env_create_path(sizeof text, text, "a", "h", "2", static_cast<char*>(nullptr)) == 0);
    CHECK(equal(text, "a@h@2"));
    CHECK(env_put_double(env, "S", text, 1e20) == 0);
    CHECK(env_put_format(env, "S", "f", "%d %s %.3f", 42, "text", 0.125) == 0);
    CHECK(env_get(env, "S", "f", 1, sizeof text, text) == 7 && equal(text, "42 text 0.125"));
    const long numbers[] = {-5, 2147483647};
    long back[2], count = 2;
    CHECK(env_put_longs(env, "S", "l", 2, numbers) == 0);
    CHECK(env_get_longs(env, "S", "l", 1, &count, back) == 7 && count == 2 && back[1] == numbers[1]);

    Environment* const sub = env_open_subenv(env, "S", "a", 1);
    CHECK(env_check(sub, nullptr, nullptr, 1) == -2);
    CHECK(env_close(env, 0) == -8);
    CHECK(env_close(sub, 0) == 0);
    char* sink = text;
    env_write(write_text, &sink, env);
    *sink = '\0';
    CHECK(
        equal(text, "[S]\n  a ={\n    h =0.5\n    h =1e+20\n  }\n  f =42 text 0.125\n  l =-5,2147483647\n"));
    CHECK(env_close(env, 0) == 0);
}

void data_files() {
    DataFile* file = fio_open(here, "data", 0x22);
    CHECK(file && file->byte_order == 0);
    CHECK(fio_putstring(file, "ab", 4) == 0 && fio_putchar(file, '\n') == 0 && fio_tell(file) == 21);
    CHECK(fio_close(file) == 0);
    CHECK(equal(read_file("data"), "1.1  @mbINTEL   ab  \n"));
    write_file("data", "1.1  @mbMOTOROLAxyz", 19);
    file = fio_open(here, "data", 0x21);
    CHECK(file->byte_order == 1 && file->mode == 0x21);
    char c = 0, text[8];
    CHECK(fio_getchar(file, &c) == 0 && c == 'x');
    // The handle begins with a stream of the library's runtime.
    CHECK(BvUtil_GetString(file->stream, 7, text) == 0 && equal(text, "yz"));
    CHECK(fio_getstring(file, 7, text) == -1);
    CHECK(fio_close(file) == 0);
}

void profiles() {
    write_file("values.ini", "", 0);
    char path[300], text[128];
    void* h = mini_open_ex(BvUtil_Makepath(path, "", here, "values.ini"), 0);
    CHECK(h != nullptr);
    double value = 0;
    CHECK(mini_write_double(h, "S", "k", 0.1) == 0);
    CHECK(mini_read_double(h, "S", "k", &value) == 0 && value == 0.1);
    FillStyle fill = {3, 70000, 0x00C86432, 128, 0x00010203, 7, {0x12345678, 0x9ABCDEF0, 1, 2}},
              fill_back = {};
    CHECK(sizeof fill == 31);
    CHECK(mini_write_fillstyle_ex(h, "S", "fill", &fill) == 0);
    CHECK(mini_read_fillstyle_ex(h, "S", "fill", &fill_back) == 0);
    CHECK(fill_back.value1 == 70000 && fill_back.color1 == 0x00C86432 && fill_back.value2 == 128);
    CHECK(fill_back.color2 == 0x00010203 && fill_back.value3 == 7 && fill_back.guid[1] == 0x9ABCDEF0);
    int length = sizeof text - 1;
    CHECK(mini_read_string(h, "S", "fill", text, &length) == 0 &&
          equal(text, "3,70000,50,100,200,128,3,2,1,7.000000"));
    const PenStyle pen = {2, 0.25f, 0x00FF8001};
    PenStyle pen_back = {};
    CHECK(mini_write_penstyle(h, "S", "pen", &pen) == 0 && mini_read_penstyle(h, "S", "pen", &pen_back) == 0);
    CHECK(pen_back.style == 2 && pen_back.width == 0.25f && pen_back.color == 0x00FF8001);
    const TextureProperties texture = {1, {0, 1, 2, 3, 4, 5, 6, 0.5f}, 0, 1, 0.75f, -2};
    TextureProperties texture_back = {};
    CHECK(mini_write_texprops(h, "S", "t", &texture) == 0 &&
          mini_read_texprops(h, "S", "t", &texture_back) == 0);
    CHECK(texture_back.values[7] == 0.5f && texture_back.flag2 == 1 && texture_back.value10 == -2);
    CHECK(mini_close(&h) == 1);
}

void services() {
    BvUtil_SetWriteToLogfile(1, "log.txt", 0);
    CHECK(BvUtil_GetWriteToLogfile() == 1);
    BvUtil_Message("one ", nullptr, "three", "client", 12);
    BvUtil_SetWriteToLogfile(0, nullptr, 0);
    CHECK(contains(read_file("log.txt"), " :: one three in \"client\" line 12\r\n"));
    int major = 0, minor = -1;
    CHECK(BvUtil_GetOperatingSystem(&major, &minor) == 1 && major >= 5 && minor >= 0);
    char path[300], text[] = "\t a b ";
    SetEnvironmentVariableA("MB", here);
    write_file("sought", "12345", 5);
    CHECK(BvUtil_MB_SucheDatei(nullptr, nullptr, "sought", path) == 0 && contains(path, "\\sought"));
    CHECK(equal(BvUtil_StrTrim(text), "a b"));
    Entry* entries = nullptr;
    int count = 0;
    CHECK(sizeof *entries == 272 && BvUtil_Listdir(here, "s*t", 0, &entries, &count) == 0);
    CHECK(count == 1 && equal(entries->name, "sought") && entries->size == 5 && (entries->attributes & 1));
    BvUtil_FreeEntries(&entries);
    CHECK(entries == nullptr);

    CHECK(BvUtil_StringToDouble("-1.5d3x") == -1500);
    CHECK(BvUtil_PRound(-2.5, 0) == -2 && BvUtil_PRound(1250, 2) == 1300);
    CHECK(BvUtil_FRound(0.126f, -2) == 0.13f);
    CHECK(BvUtil_LRound(-2.7) == -2);
    CHECK(near_to(sin_deg(30), 0.5) && sin_deg(-180.0) < 1e-15);
    CHECK(fdiv(1, 4) == 0.25f && fdiv(1, 0) == 0);
}

void calculator_and_geometry() {
    double value = 0;
    char text[128] = "";
    calc_init(0);
    CHECK(ConvStringToDouble("1 + 2 * 3", 0, &value) == 0x1000 && value == 7);
    CHECK(ConvStringToDouble("1 +", 0, &value) != 0x1000 && value == 7);
    CHECK(ConvDoubleToString(2.5, 0, 0, 0, text) == 0x1000 && text[0] == '2');
    const float square[] = {0, 0, 1, 0, 0, 1, 1, 1};
    float* triangles = nullptr;
    unsigned count = 0;
    CHECK(Triangulieren(4, square, &triangles, &count) == 1 && count == 2);
    float sum = 0;
    for (unsigned i = 0; i < 6 * count; ++i)
        sum += triangles[i];
    CHECK(sum == 6); // whichever diagonal was taken
    CHECK(FreeTriangs(&triangles) == 1 && triangles == nullptr);
}

unsigned char __stdcall progress(float fraction, void* context) {
    CHECK(fraction >= 0 && fraction <= 1);
    ++*static_cast<int*>(context);
    return 1;
}

void filters() {
    char path[300];
    unsigned length = GetModuleFileNameA(nullptr, path, 260);
    for (int folders = 0; folders < 2; --length)
        folders += path[length - 1] == '\\';
    const char* name = "\\filters\\duotone.8bf";
    for (unsigned i = 0; i <= length_of(name); ++i)
        path[length + i] = name[i];

    char *category = nullptr, *title = nullptr;
    Filter* filter = nullptr;
    int result = 7, calls = 0;
    CHECK(AVGetPSFilterAndInfo(path, &category, &title, &filter, &result) && result == 0);
    CHECK(category && *category && title && *title);
    CHECK(AVFreeGotPSFilterInfo(&category, &title) && !category);
    const unsigned image[] = {0xFF404040, 0xFF505050, 0xFF606060, 0xFF808080};
    void* output = nullptr;
    CHECK(AVApplyPSFilter(filter, false, progress, &calls, image, 2, 2, 8, &output, &result) && result == 0);
    const auto* pixels = static_cast<const unsigned*>(output);
    CHECK(pixels && pixels[0] != image[0] && pixels[0] >> 24 == 0xFF);
    CHECK(calls > 0);
    CHECK(AVFreeGotPSFilterImage(&output) && AVFreeGotPSFilter(&filter) && !filter);
}

// A picture of 2 x 2 pixels, the lower row first: green and white, red and blue.
constexpr unsigned char pixels[] = {0, 255, 0, 0, 255, 255, 255, 0, 0, 0, 255, 0, 255, 0, 0, 0};
constexpr unsigned red = 0x0000FF, blue = 0xFF0000;

void bitmaps() {
    HDC__* const dc = CreateCompatibleDC(nullptr);
    HBITMAP__* const target = CreateBitmap(8, 8, 1, 32, nullptr);
    SelectObject(dc, target);
    unsigned char image[54 + 16] = {'B', 'M', 70, 0, 0, 0, 0, 0, 0, 0, 54, 0,
                                    0,   0,   40, 0, 0, 0, 2, 0, 0, 0, 2};
    image[26] = 1;
    image[28] = 32;
    for (unsigned i = 0; i < sizeof pixels; ++i)
        image[54 + i] = pixels[i];
    void* bitmap = nullptr;
    CHECK(bmpExInit(&bitmap) == 1 && bmpExLoadFromBits(bitmap, image) == 1);
    CHECK(bmpExDraw2(bitmap, dc, 0, 0, 4, 4) == 1);
    CHECK(GetPixel(dc, 1, 1) == red && GetPixel(dc, 2, 1) == blue);

    HBITMAP__* const rows = CreateBitmap(2, 2, 1, 32, pixels);
    HRGN__* const region = BvUtil_CreateRegionFromBitmap(rows, 0x0000FF00);
    CHECK(!PtInRegion(region, 0, 0) && PtInRegion(region, 1, 0) && PtInRegion(region, 0, 1));
    char text[16];
    CHECK(ConvertFromUTF8("\xC3\xBC", text) == 1 && equal(text, "\xFC"));
    CHECK(ConvertToUTF8("\xFC", text) == 1 && equal(text, "\xC3\xBC"));
    int length = 0;
    CHECK(jpgToXML("sought", text, &length, 1) == 1 && length == 8);
}

void images() {
    HDC__* const dc = CreateCompatibleDC(nullptr);
    HBITMAP__* const target = CreateBitmap(8, 8, 1, 32, nullptr);
    SelectObject(dc, target);
    CHECK(gdiPlusInit() == 1);
    Gdiplus::Image *image = nullptr, *read = nullptr;
    CHECK(gdiPlusBitmapFromBits(pixels, 2, 2, 4, 4, 255, 1, &image) == 1);
    CHECK(gdiPlusSaveImage(image, "image.bmp", 0) == 1);
    CHECK(read_file("image.bmp")[0] == 'B');
    CHECK(gdiPlusGetBitmapFromFile("image.bmp", &read) == 1);
    CHECK(gdiPlusDrawImage(read, dc, 3.0f, 2.0f) == 1 && GetPixel(dc, 3, 2) == red);
    CHECK(gdiPlusPrintImage(image, dc, 1, 1, 2.0f, 1.0f) == 1);
    CHECK(GetPixel(dc, 0, 0) == 0xFFFFFF && GetPixel(dc, 2, 1) == red);
    CHECK(gdiPlusFillRect(dc, 255, 1, 2, 3, 4, 4) == 1 && GetPixel(dc, 3, 3) == 0x030201);
    CHECK(gdiPlusFreeImage(read) == 1 && gdiPlusFreeImage(image) == 1);
    CHECK(gdiPlusExit() == 1);
}

} // namespace

void main_program() {
    GetCurrentDirectoryA(sizeof here, here);
    environment();
    data_files();
    profiles();
    services();
    calculator_and_geometry();
    filters();
    bitmaps();
    images();
}
