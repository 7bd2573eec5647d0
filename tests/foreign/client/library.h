// The library and the system as a program of another compiler declares them for itself: nothing here comes
// from the library's headers or from those of a runtime.
#pragma once

#define LIBRARY extern "C" __declspec(dllimport)
#define SYSTEM LIBRARY

// Environment store.
struct Environment;
LIBRARY Environment* env_open(long tag, Environment* fallback);
LIBRARY int env_close(Environment*, int chain);
LIBRARY Environment* env_open_subenv(Environment*, const char*, const char*, int exact);
LIBRARY int env_check(Environment*, const char*, const char*, int exact);
LIBRARY int env_create_path(long size, char* buffer, const char* first, ...);
LIBRARY int env_get(Environment*, const char*, const char*, int exact, long size, char* buffer);
LIBRARY int env_get_double(Environment*, const char*, const char*, int exact, double*);
LIBRARY int env_get_longs(Environment*, const char*, const char*, int exact, long* count, long*);
LIBRARY int env_put_double(Environment*, const char*, const char*, double);
LIBRARY int env_put_format(Environment*, const char*, const char*, const char* format, ...);
LIBRARY int env_put_longs(Environment*, const char*, const char*, long count, const long*);
LIBRARY int env_read(int (*read)(void*), void* source, Environment*);
LIBRARY void env_write(void (*write)(int, void*), void* sink, Environment*);
LIBRARY int env_traverse(Environment*, const char*, const char*, int exact,
                         void (*visit)(Environment*, const char*, const char*, void*), void* user);

// Data files.
struct DataFile {
    void* stream;
    int byte_order;
    int mode;
    char* path;
};
LIBRARY DataFile* fio_open(const char* folder, const char* name, int mode);
LIBRARY int fio_close(DataFile*);
LIBRARY int fio_putchar(DataFile*, char);
LIBRARY int fio_getchar(DataFile*, char*);
LIBRARY int fio_putstring(DataFile*, const char*, int width);
LIBRARY int fio_getstring(DataFile*, int most, char*);
LIBRARY long fio_tell(DataFile*);

// Profiles.
#pragma pack(push, 1)
struct FillStyle {
    unsigned char type;
    unsigned value1;
    unsigned color1;
    unsigned char value2;
    unsigned color2;
    unsigned char value3;
    unsigned guid[4];
};
#pragma pack(pop)
struct PenStyle {
    int style;
    float width;
    unsigned color;
};
struct TextureProperties {
    int enabled;
    float values[8];
    int flag1, flag2;
    float value9, value10;
};
LIBRARY void* mini_open_ex(const char* path, int flags);
LIBRARY int mini_close(void**);
LIBRARY int mini_write_double(void*, const char*, const char*, double);
LIBRARY int mini_read_double(void*, const char*, const char*, double*);
LIBRARY int mini_read_string(void*, const char*, const char*, char*, int* length);
LIBRARY int mini_write_fillstyle_ex(void*, const char*, const char*, const FillStyle*);
LIBRARY int mini_read_fillstyle_ex(void*, const char*, const char*, FillStyle*);
LIBRARY int mini_write_penstyle(void*, const char*, const char*, const PenStyle*);
LIBRARY int mini_read_penstyle(void*, const char*, const char*, PenStyle*);
LIBRARY int mini_write_texprops(void*, const char*, const char*, const TextureProperties*);
LIBRARY int mini_read_texprops(void*, const char*, const char*, TextureProperties*);

// Run-time services.
struct Entry {
    char name[256];
    unsigned attributes, size;
    int modified;
    unsigned reserved;
};
LIBRARY void BvUtil_Message(const char*, const char*, const char*, const char* source, int line);
LIBRARY void BvUtil_SetWriteToLogfile(int enable, const char* path, int append);
LIBRARY int BvUtil_GetWriteToLogfile();
LIBRARY int BvUtil_GetOperatingSystem(int* major, int* minor);
LIBRARY int BvUtil_MB_SucheDatei(const char* section, const char* key, const char* file, char* out);
LIBRARY char* BvUtil_Makepath(char* out, const char* base, const char* folder, const char* file);
LIBRARY char* BvUtil_StrTrim(char*);
LIBRARY int BvUtil_GetString(void* stream, int most, char*);
LIBRARY int BvUtil_Listdir(const char* folder, const char* pattern, int, Entry**, int* count);
LIBRARY void BvUtil_FreeEntries(Entry**);
LIBRARY double BvUtil_StringToDouble(const char*);
LIBRARY double BvUtil_PRound(double, int);
LIBRARY float BvUtil_FRound(float, int);
LIBRARY long BvUtil_LRound(double);
LIBRARY double sin_deg(double);
LIBRARY float fdiv(float, float);

// Calculator and geometry.
LIBRARY void calc_init(int);
LIBRARY int ConvStringToDouble(const char*, int, double*);
LIBRARY int ConvDoubleToString(double, int, int, int, char*);
LIBRARY int Triangulieren(unsigned count, const float* points, float** triangles, unsigned* triangle_count);
LIBRARY int FreeTriangs(float**);

// Filters.
struct Filter;
using Progress = unsigned char(__stdcall*)(float fraction, void* context);
LIBRARY bool AVGetPSFilterAndInfo(const char* path, char** category, char** name, Filter**, int* error);
LIBRARY bool AVFreeGotPSFilterInfo(char** category, char** name);
LIBRARY bool AVFreeGotPSFilter(Filter**);
LIBRARY bool AVApplyPSFilter(Filter*, bool repeat, Progress, void* context, const void* image, int width,
                             int height, int row_bytes, void** output, int* result);
LIBRARY bool AVFreeGotPSFilterImage(void**);

// Imaging.
struct HDC__;
struct HBITMAP__;
struct HRGN__;
namespace Gdiplus {
class Image;
}
LIBRARY HRGN__* BvUtil_CreateRegionFromBitmap(HBITMAP__*, unsigned transparent);
LIBRARY int bmpExInit(void**);
LIBRARY int bmpExLoadFromBits(void*, const unsigned char*);
LIBRARY int bmpExDraw2(void*, HDC__*, int x, int y, int width, int height);
LIBRARY int gdiPlusInit();
LIBRARY int gdiPlusExit();
LIBRARY int gdiPlusBitmapFromBits(const unsigned char*, int width, int height, int source_bytes,
                                  int target_bytes, unsigned char alpha, int with_alpha, Gdiplus::Image**);
LIBRARY int gdiPlusSaveImage(Gdiplus::Image*, const char* path, int format);
LIBRARY int gdiPlusFreeImage(Gdiplus::Image*);
LIBRARY int gdiPlusGetBitmapFromFile(const char* path, Gdiplus::Image**);
LIBRARY int gdiPlusDrawImage(Gdiplus::Image*, HDC__*, float x, float y);
LIBRARY int gdiPlusFillRect(HDC__*, unsigned char alpha, unsigned char red, unsigned char green,
                            unsigned char blue, int width, int height);
// The one export with a decorated name: this compiler has to spell it as the library does.
__declspec(dllimport) int gdiPlusPrintImage(Gdiplus::Image*, HDC__*, int x, int y, float scale_x,
                                            float scale_y);
LIBRARY int ConvertFromUTF8(const char*, char*);
LIBRARY int ConvertToUTF8(const char*, char*);
LIBRARY int jpgToXML(const char* path, char* out, int* length, int length_only);

// The system.
SYSTEM int __stdcall WriteFile(void*, const void*, unsigned, unsigned*, void*);
SYSTEM int __stdcall ReadFile(void*, void*, unsigned, unsigned*, void*);
SYSTEM void* __stdcall CreateFileA(const char*, unsigned access, unsigned share, void*, unsigned how,
                                   unsigned, void*);
SYSTEM int __stdcall CloseHandle(void*);
SYSTEM unsigned __stdcall GetModuleFileNameA(void*, char*, unsigned);
SYSTEM void* __stdcall GetModuleHandleA(const char*);
SYSTEM unsigned __stdcall GetCurrentDirectoryA(unsigned, char*);
SYSTEM int __stdcall SetEnvironmentVariableA(const char*, const char*);
SYSTEM void __stdcall ExitProcess(unsigned);
SYSTEM HDC__* __stdcall CreateCompatibleDC(HDC__*);
SYSTEM HBITMAP__* __stdcall CreateBitmap(int width, int height, unsigned planes, unsigned bits, const void*);
SYSTEM void* __stdcall SelectObject(HDC__*, void*);
SYSTEM unsigned __stdcall GetPixel(HDC__*, int x, int y);
SYSTEM int __stdcall PtInRegion(HRGN__*, int x, int y);
